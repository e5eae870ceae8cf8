// The stack of variable scopes in which commands run.
#pragma once

#include <list>

#include "CountedPtr.h"
#include "Environment/Variables.h"

namespace Environment {

class IContext {
public:
    virtual ~IContext() = default;
    virtual const Variables& GetLocal() const = 0;
    virtual Variables& GetLocal() = 0;
    virtual const Variables& GetGlobal() const = 0;
    virtual Variables& GetGlobal() = 0;
    /// Adds an innermost scope, which asks the one around it for what it doesn't know.
    virtual void Push() = 0;
    /// Removes the innermost scope; the outermost one stays.
    virtual void Pop() = 0;
    /// Sets the variables of the children "Local" and "Global"; null does nothing.
    virtual void Load(const XML::Node* node) = 0;
    /// Copies the other's global variables into this one's.
    virtual void Merge(const IContext* other) = 0;
};

class AContext : public IContext {
public:
    AContext() { m_scopes.push_front(MakeCounted<Variables>()); }
    const Variables& GetLocal() const override { return *m_scopes.front(); }
    Variables& GetLocal() override { return *m_scopes.front(); }
    const Variables& GetGlobal() const override { return *m_scopes.back(); }
    Variables& GetGlobal() override { return *m_scopes.back(); }
    void Push() override;
    void Pop() override;
    void Load(const XML::Node* node) override;
    void Merge(const IContext* other) override;

private:
    std::list<CountedPtr<Variables>> m_scopes;  // innermost first
};

}  // namespace Environment
