// SPDX-License-Identifier: MIT
#include "host/Reports.h"

#include "failure/ThreadReports.h"

#include <utility>

namespace kel::host {

namespace {

/// Hands each report on as a value.
class Taker final : public ErrorObject {
public:
    explicit Taker(Reports::Take take) : take_(std::move(take)) {}

    Int32 RaiseError(const ErrorReport& report) override
    {
        take_(failureOf(report));
        return 0;
    }

private:
    Reports::Take take_;
};

} // namespace

struct Reports::Place {
    explicit Place(Take take) : reports(std::make_shared<Taker>(std::move(take))) {}

    ThreadReports reports;
};

Reports::Reports(Take take) : place_(std::make_unique<Place>(std::move(take))) {}

Reports::~Reports() = default;

} // namespace kel::host
