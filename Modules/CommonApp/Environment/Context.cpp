#include "Environment/Context.h"

#include "Xml/Node.h"

namespace Environment {

void AContext::Push() {
    auto scope = MakeCounted<Variables>();
    scope->SetParent(&GetLocal());
    m_scopes.push_front(scope);
}

void AContext::Pop() {
    if (m_scopes.size() > 1) m_scopes.pop_front();
}

void AContext::Load(const XML::Node* node) {
    if (!node) return;
    GetLocal().Load(node->FindChild("Local"));
    GetGlobal().Load(node->FindChild("Global"));
}

void AContext::Merge(const IContext* other) {
    if (other) GetGlobal().Merge(other->GetGlobal());
}

}  // namespace Environment
