// Notes the events of a document as one text: "<a" open, "b=c" attribute, "'t'" text, ">" close.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>

#include "Xml/BinaryParser.h"
#include "Xml/Parser.h"

struct XmlEvents : XML::IListener {
    void BeginDocument() override { seen += "{"; }
    void EndDocument() override { seen += "}"; }
    void Abort() override { seen += "!"; }
    void OpenTag(const char* name) override { seen += std::string("<") + name + " "; }
    void CloseTag() override { seen += ">"; }
    void Attribute(const char* name, const char* value) override { seen += std::string(name) + "=" + value + " "; }
    void Text(const char* text) override { seen += std::string("'") + text + "'"; }
    std::string seen;

    /// A stream that gives its text in pieces of one byte.
    struct Trickle : std::stringbuf {
        using std::stringbuf::stringbuf;
        std::streamsize xsgetn(char* target, std::streamsize count) override {
            return std::stringbuf::xsgetn(target, std::min<std::streamsize>(count, 1));
        }
    };

    /// Of a document; "fail" behind it when the stream has the fail bit.
    static std::string OfText(const std::string& text) {
        std::stringbuf buffer(text);
        return OfText(&buffer);
    }
    static std::string OfText(std::streambuf* buffer) {
        std::istream stream(buffer);
        XmlEvents events;
        const bool good = XML::Parser(&events).Parse(stream);
        return events.seen + (stream.fail() ? "fail" : "") + (good == stream.fail() ? " and answers otherwise" : "");
    }
    static std::string OfBinary(const std::string& bytes) {
        std::istringstream stream(bytes);
        XmlEvents events;
        XML::BinaryParser().Parse(stream, events);
        return events.seen + (stream.fail() ? "fail" : "");
    }
};

/// The binary form of a document.
inline std::string PackedXml(const std::string& text) {
    std::istringstream stream(text);
    std::stringbuf target;
    XML::BinaryParser writer(&target);
    XML::Parser(&writer).Parse(stream);
    return target.str();
}
