// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"

#include <memory>

namespace kel {

/// The object that hosts of other languages take for a dictionary: one of a class of the system's, where the component
/// serves such hosts.
class DictionaryObject {
public:
    virtual ~DictionaryObject() = default;
};

/// Installs how such an object is made; it fails where the system does not have the class. Called once at start-up;
/// with null, as at first, dictionaries have none.
using DictionaryObjectCreator = std::shared_ptr<DictionaryObject> (*)();
void setDictionaryObjectCreator(DictionaryObjectCreator creator);

/// An empty dictionary together with its object. Its copies share the object.
[[nodiscard]] Dictionary newDictionary();

/// The object of a dictionary; null for one that was not made by `newDictionary`.
[[nodiscard]] std::shared_ptr<DictionaryObject> objectOf(const Dictionary& dictionary);

} // namespace kel
