#include "Value.h"

namespace Core {

void Value::Set(IValue* value) {
    if (value) value->AddRef();
    IValue* old = std::exchange(m_value, value);
    if (old && old->Release() == 0) delete old;
}

void Value::Detach() {
    if (m_value && m_value->GetRefCount() >= 2) Set(m_value->Clone());
}

}  // namespace Core
