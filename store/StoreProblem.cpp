// SPDX-License-Identifier: MIT
#include "store/StoreProblem.h"

#include "platform/posix/Sqlite.h"

namespace kel {

namespace {

std::string sentence(const std::string& file, const SqliteFailure& failure)
{
    if (failure.isFull())
        return "The store " + file +
               " is full: its disk has no space left. Free some, or remove old sheets with 'kelreader sheets "
               "FILE --forget --before T'.";
    if (failure.isBusy())
        return "The store " + file + " is locked by another program; end what holds it.";
    if (failure.isDamage())
        return "The store " + file + " is damaged: " + failure.what() +
               ". Move it away, with the file FILE-wal that may be beside it, and a new store is made; 'sqlite3 FILE "
               ".recover' saves what can be read.";
    if (failure.isAccess())
        return "The store " + file + " cannot be opened for writing: " + failure.what() +
               ". May this user write the file and its folder?";
    return "The store " + file + " cannot be used: " + failure.what() + ". Is its disk there, and does it have space?";
}

} // namespace

void onStore(const std::filesystem::path& file, const std::function<void()>& work)
{
    try {
        work();
    } catch (const SqliteFailure& failure) {
        const std::string problem = sentence(file.string(), failure);
        if (failure.isFull() || failure.isBusy())
            throw StoreBusy(problem);
        throw StoreProblem(problem);
    }
}

} // namespace kel
