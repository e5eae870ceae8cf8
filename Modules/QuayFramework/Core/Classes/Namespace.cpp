#include "Namespace.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "CoreErrors.h"
#include "IValue.h"

namespace Core {

AttachableObject::~AttachableObject() {
    while (!m_attachments.empty())
        AttachableObject::Detach(*m_attachments.begin()->first);
}

bool AttachableObject::Attach(IDynamicNamespace& parent, const std::string& name) {
    if (name.empty() || !std::all_of(name.begin(), name.end(), ANamespace::IsNameChar)) return false;
    Detach(parent);  // an object stands only once in a namespace
    if (!parent.Add(name, this)) return false;
    m_attachments[&parent] = name;
    return true;
}

void AttachableObject::Detach(IDynamicNamespace& parent) {
    const auto entry = m_attachments.find(&parent);
    if (entry == m_attachments.end()) return;
    const std::string name = entry->second;
    m_attachments.erase(entry);
    // The name may be gone, or another object may stand under it.
    if (parent.Find(name) == static_cast<IInterface*>(this)) parent.Remove(name);
}

IInterface* ANamespace::FindLocal(const std::string& name) {
    return const_cast<IInterface*>(std::as_const(*this).FindLocal(name));
}

std::string ANamespace::TakeName(const std::string& path, std::string& rest) const {
    rest = path;
    return CutName(rest);
}

std::string ANamespace::CutName(std::string& path) const {
    const auto end = std::find_if_not(path.begin(), path.end(), IsNameChar);
    std::string name(path.begin(), end);
    path.erase(path.begin(), end != path.end() && *end == GetSeparator() ? end + 1 : end);
    return name;
}

bool ANamespace::IsNameChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool ANamespace::CutRootMark(std::string& path) {
    // A path that is absolute again behind its first mark would start at the root once more: all marks go at once.
    const auto end = std::find_if(path.begin(), path.end(), IsNameChar);
    const bool absolute = end != path.begin();
    path.erase(path.begin(), end);
    return absolute;
}

const IInterface* ANamespace::Find(const std::string& path) const {
    std::string rest = path;
    if (CutRootMark(rest)) return std::as_const(Namespace::Get()).Find(rest);
    if (rest.empty()) return nullptr;
    if (const IInterface* whole = FindLocal(rest)) return whole;
    const IInterface* object = FindLocal(CutName(rest));
    if (!object || rest.empty()) return object;
    const auto* nested = dynamic_cast<const INamespace*>(object);
    return nested ? nested->Find(rest) : nullptr;
}

IInterface* ANamespace::Find(const std::string& path) {
    return const_cast<IInterface*>(std::as_const(*this).Find(path));
}

bool ANamespace::Visit(const Visitor& visitor, const std::string& path, const std::string& name, IInterface* object) {
    const std::string full = path.empty() ? name : path + GetSeparator() + name;
    if (!visitor(full, object)) return false;
    auto* nested = dynamic_cast<INamespace*>(object);
    return !nested || nested->Enumerate(visitor, full);
}

Namespace::~Namespace() {
    while (!m_objects.empty())
        Destroy(m_objects.begin());
}

IDynamicNamespace* Namespace::GetParent() const {
    return Attachments().empty() ? nullptr : Attachments().begin()->first;
}

const IInterface* Namespace::FindLocal(const std::string& name) const {
    const auto entry = m_objects.find(name);
    return entry == m_objects.end() ? nullptr : entry->second;
}

bool Namespace::Enumerate(const Visitor& visitor, const std::string& context) {
    for (const auto& [name, object] : m_objects)
        if (!Visit(visitor, context, name, object)) return false;
    return true;
}

bool Namespace::Add(const std::string& path, IInterface* object) {
    CORE_ASSERT(object && object != static_cast<IInterface*>(this), "Core::Namespace::Add");
    std::string rest = path;
    if (CutRootMark(rest) && this != &Get()) return Get().Add(rest, object);
    if (rest.empty()) return false;
    const std::string name = FindLocal(rest) ? std::exchange(rest, {}) : CutName(rest);
    if (rest.empty()) {
        Store(name, object);
        return true;
    }
    if (IInterface* found = FindLocal(name)) {
        auto* nested = dynamic_cast<IDynamicNamespace*>(found);
        return nested && nested->Add(rest, object);
    }
    std::unique_ptr<Namespace> child(CreateChild());
    if (!child->Add(rest, object) || !child->Attach(*this, name)) return false;
    static_cast<void>(child.release());  // it is this namespace's now
    return true;
}

void Namespace::Store(const std::string& name, IInterface* object) {
    const auto entry = m_objects.find(name);
    if (entry != m_objects.end() && entry->second == object) return;
    if (entry != m_objects.end()) Destroy(entry);
    if (auto* referenceable = dynamic_cast<IReferenceableObject*>(object)) referenceable->AddReference(*this);
    if (auto* value = dynamic_cast<IValue*>(object)) value->AddRef();
    m_objects[name] = object;
}

IInterface* Namespace::Drop(std::map<std::string, IInterface*>::iterator entry) {
    IInterface* object = entry->second;
    m_objects.erase(entry);
    if (auto* attachable = dynamic_cast<IAttachableObject*>(object)) attachable->Detach(*this);
    if (auto* referenceable = dynamic_cast<IReferenceableObject*>(object)) referenceable->RemoveReference(*this);
    if (auto* value = dynamic_cast<IValue*>(object)) value->Release();
    return object;
}

void Namespace::Destroy(std::map<std::string, IInterface*>::iterator entry) {
    IInterface* object = Drop(entry);
    const bool elsewhere = std::any_of(m_objects.begin(), m_objects.end(),
                                       [object](const auto& stored) { return stored.second == object; });
    if (elsewhere || dynamic_cast<IReferenceableObject*>(object)) return;
    const auto* value = dynamic_cast<IValue*>(object);
    if (!value || value->GetRefCount() == 0) delete object;
}

bool Namespace::Remove(IInterface* object) {
    const auto entry = std::find_if(m_objects.begin(), m_objects.end(),
                                    [object](const auto& stored) { return stored.second == object; });
    if (entry == m_objects.end()) return false;
    Drop(entry);
    return true;
}

bool Namespace::Remove(const std::string& path) {
    std::string rest = path;
    if (CutRootMark(rest) && this != &Get()) return Get().Remove(rest);
    const std::string name = FindLocal(rest) ? std::exchange(rest, {}) : CutName(rest);
    const auto entry = m_objects.find(name);
    if (entry == m_objects.end()) return false;
    if (rest.empty()) {
        Drop(entry);
        return true;
    }
    auto* nested = dynamic_cast<IDynamicNamespace*>(entry->second);
    return nested && nested->Remove(rest);
}

}  // namespace Core
