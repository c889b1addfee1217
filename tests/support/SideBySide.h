// SPDX-License-Identifier: MIT
#pragma once

#include "failure/basError.h"

#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace kel::test {

/// Takes the reports of all threads; each fails the test.
class NoReports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        const std::lock_guard lock(mutex_);
        ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
        return 0;
    }

private:
    std::mutex mutex_;
};

/// Runs the parts of a test, 0 to `parts` - 1, in a thread each, and waits for all. Dialogues with fixed pauses mostly
/// sleep: in parallel they cost no more time than the longest.
inline void inParallel(std::size_t parts, const std::function<void(std::size_t part)>& body)
{
    std::vector<std::thread> threads;
    for (std::size_t part = 0; part < parts; ++part)
        threads.emplace_back(body, part);
    for (std::thread& thread : threads)
        thread.join();
}

/// The same for parts none of which may report anything.
inline void sideBySide(std::size_t parts, const std::function<void(std::size_t part)>& body)
{
    setErrorObject(std::make_shared<NoReports>());
    inParallel(parts, body);
    setErrorObject(nullptr);
}

/// One part of as many as there are, of equal length but for the last ones.
template <class T>
[[nodiscard]] std::vector<T> partOf(const std::vector<T>& all, std::size_t part, std::size_t parts)
{
    const std::size_t begin = all.size() * part / parts;
    const std::size_t end = all.size() * (part + 1) / parts;
    return {all.begin() + static_cast<std::ptrdiff_t>(begin), all.begin() + static_cast<std::ptrdiff_t>(end)};
}

} // namespace kel::test
