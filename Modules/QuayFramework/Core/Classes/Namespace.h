// A tree of named objects, reached by dotted paths.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "CoreObject.h"

namespace Core {

/// Gets an object with its dotted path; the object is null for a bare name. False stops the walk.
using Visitor = std::function<bool(const std::string& path, IInterface* object)>;

class INamespace : public virtual IInterface {
public:
    /// The object at `path`, or null. A path that begins with anything but a letter, digit or "_" starts at the root.
    virtual const IInterface* Find(const std::string& path) const = 0;
    virtual IInterface* Find(const std::string& path) = 0;
    /// Walks all objects, nested namespaces too; `context` is the path that their paths begin with.
    /// False when the visitor stopped it.
    virtual bool Enumerate(const Visitor& visitor, const std::string& context) = 0;
    virtual bool Exists(const std::string& path) const = 0;
};

class IDynamicNamespace : public virtual INamespace {
public:
    virtual IInterface* FindLocal(const std::string& name) = 0;
    /// Stores an object, which then belongs to the namespace, and makes the namespaces on the way. What stood there
    /// before is deleted. False, with the object still the caller's, for an empty path and where a part of the path is
    /// an object that is no namespace.
    virtual bool Add(const std::string& path, IInterface* object) = 0;
    virtual std::string CutName(std::string& path) const = 0;
    /// Takes an object out; it belongs to the caller then. False when it isn't there.
    virtual bool Remove(IInterface* object) = 0;
    virtual bool Remove(const std::string& path) = 0;
};

/// An object that knows in which namespaces it stands.
class IAttachableObject : public virtual IInterface {
public:
    /// Adds this object to `parent` under one name, not a path; false where that is refused.
    virtual bool Attach(IDynamicNamespace& parent, const std::string& name) = 0;
    virtual void Detach(IDynamicNamespace& parent) = 0;
};

class AttachableObject : public virtual IAttachableObject {
public:
    AttachableObject() = default;
    AttachableObject(const AttachableObject&) = delete;
    AttachableObject& operator=(const AttachableObject&) = delete;
    ~AttachableObject() override;

    bool Attach(IDynamicNamespace& parent, const std::string& name) override;
    void Detach(IDynamicNamespace& parent) override;

protected:
    /// The parent and the name of each place where this object stands.
    const std::map<IDynamicNamespace*, std::string>& Attachments() const { return m_attachments; }

private:
    std::map<IDynamicNamespace*, std::string> m_attachments;
};

/// An object that namespaces refer to without owning it.
class IReferenceableObject : public virtual IInterface {
public:
    virtual void AddReference(IDynamicNamespace& holder) = 0;
    virtual void RemoveReference(IDynamicNamespace& holder) = 0;
};

/// The logic of paths, over FindLocal.
class ANamespace : public virtual INamespace {
public:
    /// The object stored under exactly this name, or null.
    virtual IInterface* FindLocal(const std::string& name);
    virtual const IInterface* FindLocal(const std::string& name) const = 0;
    /// The leading name of `path`; `rest` is what stands behind it.
    std::string TakeName(const std::string& path, std::string& rest) const;
    /// Cuts the leading name, and the separator behind it, off `path`.
    virtual std::string CutName(std::string& path) const;
    static bool IsNameChar(char c);
    static char GetSeparator() { return '.'; }

    const IInterface* Find(const std::string& path) const override;
    IInterface* Find(const std::string& path) override;
    bool Exists(const std::string& path) const override { return Find(path) != nullptr; }

protected:
    /// Gives one object to the visitor, then what is in it when it is a namespace.
    bool Visit(const Visitor& visitor, const std::string& path, const std::string& name, IInterface* object);
    /// Cuts what makes `path` absolute; true when there was something.
    static bool CutRootMark(std::string& path);
};

/// A namespace that owns its objects: it deletes them with itself, unless they are referenceable. A value counts as
/// held once by each namespace that it stands in, so that handles on it stay good.
class Namespace : public AttachableObject, public ANamespace, public virtual IDynamicNamespace {
public:
    Namespace() = default;
    ~Namespace() override;

    /// The root of the process.
    static Namespace& Get() { return Utilities::Singleton<Namespace>::Instance(); }

    /// The first namespace that this one is attached to, or null.
    virtual IDynamicNamespace* GetParent() const;
    /// A new empty namespace, which belongs to the caller.
    virtual Namespace* CreateChild() const { return new Namespace; }

    IInterface* FindLocal(const std::string& name) override { return ANamespace::FindLocal(name); }
    const IInterface* FindLocal(const std::string& name) const override;
    std::string CutName(std::string& path) const override { return ANamespace::CutName(path); }
    bool Enumerate(const Visitor& visitor, const std::string& context) override;
    bool Add(const std::string& path, IInterface* object) override;
    bool Remove(IInterface* object) override;
    bool Remove(const std::string& path) override;

private:
    void Store(const std::string& name, IInterface* object);
    /// Forgets an entry and every tie of its object to this namespace, and gives the object.
    IInterface* Drop(std::map<std::string, IInterface*>::iterator entry);
    /// As Drop, and deletes the object unless others hold it.
    void Destroy(std::map<std::string, IInterface*>::iterator entry);

    std::map<std::string, IInterface*> m_objects;
};

}  // namespace Core
