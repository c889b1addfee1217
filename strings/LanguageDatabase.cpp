// SPDX-License-Identifier: MIT
#include "strings/LanguageDatabase.h"

namespace kel {

namespace {

/// Never destroyed: texts are asked for until the very end of the process.
std::unique_ptr<LanguageDatabase>& processDatabase()
{
    static auto* const database = new std::unique_ptr<LanguageDatabase>(std::make_unique<LanguageDatabase>());
    return *database;
}

} // namespace

void LanguageDatabase::askFor(std::string language)
{
    const std::lock_guard lock(loading_);
    asked_ = std::move(language);
}

std::vector<std::string> LanguageDatabase::languageNames() const
{
    try {
        LanguageState ofNoLoad;
        return LanguageLoad(ofNoLoad, fileName_).languageNames();
    } catch (const LoadFailed&) {
        return {};
    }
}

LanguageState LanguageDatabase::state() const
{
    const std::lock_guard lock(loading_);
    return state_;
}

std::string LanguageDatabase::loadAndLookUp(Int32 Index)
{
    const std::lock_guard lock(loading_);
    try {
        if (!loaded_) {
            auto table = LanguageLoad(state_, fileName_, asked_).run();
            // Whoever was asked let the load go on without a table: the next text loads again.
            if (!table->isDimensioned())
                return Index == -1 ? std::string() : lookUp(*table, Index);
            // A load within this one, by way of the host's pump, may have been faster; its table stays in use.
            if (!loaded_)
                loaded_ = std::move(table);
            table_.store(loaded_.get(), std::memory_order_release);
            if (Index == -1)
                return {};
        }
        return lookUp(*loaded_, Index);
    } catch (const LoadFailed& failed) {
        return failed.answer;
    } catch (const std::exception&) {
        // Not even the box could be shown.
        return kNotAvailable;
    }
}

LanguageDatabase& languageDatabase()
{
    return *processDatabase();
}

void renewLanguageDatabase(std::string fileName)
{
    processDatabase() = std::make_unique<LanguageDatabase>(std::move(fileName));
}

} // namespace kel
