// Objects by the name of their class.
#pragma once

#include <functional>
#include <map>

#include "Exceptions.h"
#include "Format.h"
#include "Singleton.h"

namespace Factory {

/// Creators by key. A class registers itself before the factory is first asked.
template <typename Product, typename Key, typename... Arguments>
class ClassFactory {
public:
    using Creator = std::function<Product*(Arguments...)>;

    /// @throws Common::Exception for a key that is taken
    void Register(const Key& key, Creator creator) {
        if (!m_creators.emplace(key, std::move(creator)).second)
            throw Common::Exception(Common::Format("Class ${1} is registered twice") % key);
    }
    /// The new object belongs to the caller; null for an unknown key.
    Product* Create(const Key& key, Arguments... arguments) const {
        const auto found = m_creators.find(key);
        return found == m_creators.end() ? nullptr : found->second(arguments...);
    }

private:
    std::map<Key, Creator> m_creators;
};

}  // namespace Factory
