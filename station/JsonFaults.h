// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"

#include <functional>
#include <string>
#include <vector>

namespace kel {

/// What is wrong with a file, all of it: one thing does not hide the next.
class JsonFaults {
public:
    /// Reads something at a place; what it refuses is kept.
    void attempt(const JsonPlace& place, const std::function<void()>& read);

    /// Hands each key's value to its reader, as `readJsonObject`, and goes on after a fault.
    void readObject(const Json& value, const JsonPlace& place, const JsonKeyReaders& readers);

    void add(const JsonPlace& place, const std::string& complaint);

    [[nodiscard]] const std::vector<std::string>& all() const noexcept { return faults_; }

private:
    std::vector<std::string> faults_;
};

} // namespace kel
