// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// All mistakes in a file: one does not hide the next.
class JsonFaults {
public:
    /// Reads a value at a place, and collects refusals.
    void attempt(const JsonPlace& place, const std::function<void()>& read);

    /// Passes each key's value to its reader, as `readJsonObject` does, and goes on after a mistake.
    void readObject(const Json& value, const JsonPlace& place, const JsonKeyReaders& readers);

    /// A key that an object has twice, of which JSON's readers take the last. The text is JSON.
    void findRepeatedKeys(std::string_view text);

    void add(const JsonPlace& place, const std::string& complaint);

    [[nodiscard]] const std::vector<std::string>& all() const noexcept { return faults_; }

private:
    void keep(const std::string& sentence);

    std::vector<std::string> faults_;
};

} // namespace kel
