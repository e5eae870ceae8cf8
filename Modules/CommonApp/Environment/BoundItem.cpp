#include "Environment/BoundItem.h"

#include "Format.h"

namespace Environment {

bool ABoundItem::Load(const XML::Node& node) {
    const auto* text = node.Get(m_name);
    if (!text) return m_presence == Presence::Optional;
    m_text = *text;
    m_isLoaded = true;
    return Bind(node);
}

bool ABoundItem::Bind(const NamedStorage& variables) {
    return !m_isLoaded || Convert(variables.Expanded(m_text, false));
}

DataBinderException::DataBinderException(const ABoundItem& item)
    : Exception(Common::Format("${1} is out of range") % item.GetName()),
      m_item(item.GetName()),
      m_text(item.GetText()) {}

}  // namespace Environment
