// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

namespace kel {

/// A store that cannot do its work. The text is a sentence for a person, with what to try.
class StoreProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A store takes nothing now: its disk is full, or another program holds it. That may pass.
class StoreBusy final : public StoreProblem {
public:
    using StoreProblem::StoreProblem;
};

/// An entry of another store contradicts one that is there: the same number of the same batch, but not the same sheet.
class EntryRefused final : public StoreProblem {
public:
    using StoreProblem::StoreProblem;
};

/// Runs work on a store's file, and makes a StoreProblem of what SQLite refuses.
void onStore(const std::filesystem::path& file, const std::function<void()>& work);

} // namespace kel
