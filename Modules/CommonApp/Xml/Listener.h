// What every reader of XML calls and every writer is.
#pragma once

namespace XML {

/// The events of one document, in its order. Texts end with a NUL byte and are the caller's; copy what is kept.
class IListener {
public:
    virtual ~IListener() = default;
    virtual void BeginDocument() = 0;
    /// The document ended well.
    virtual void EndDocument() = 0;
    /// The document is bad, or the stream broke.
    virtual void Abort() = 0;
    virtual void OpenTag(const char* name) = 0;
    /// Ends the innermost element.
    virtual void CloseTag() = 0;
    /// Of the innermost element.
    virtual void Attribute(const char* name, const char* value) = 0;
    /// Character data of the innermost element.
    virtual void Text(const char* text) = 0;
};

}  // namespace XML
