// SPDX-License-Identifier: MIT
#include "host/Reports.h"

#include <algorithm>
#include <iostream>
#include <mutex>

namespace kel::host {

namespace {

thread_local std::vector<const Reports::Take*> takers;

std::mutex registration;
int living = 0;

/// The process's error object: it finds out whose report it is by the thread.
class Router final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        if (takers.empty())
            std::cerr << failureSentence(failureOf(report)) << std::endl;
        else
            (*takers.back())(failureOf(report));
        return 0;
    }
};

} // namespace

Reports::Reports(clsKELReader& reader, Take take) : reader_(reader), take_(std::move(take))
{
    takers.push_back(&take_);
    const std::lock_guard lock(registration);
    if (living++ == 0)
        reader_.SetError(std::make_shared<Router>());
}

Reports::~Reports()
{
    std::erase(takers, &take_);
    const std::lock_guard lock(registration);
    if (--living == 0)
        reader_.SetError(nullptr);
}

} // namespace kel::host
