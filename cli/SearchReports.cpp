#include "cli/SearchReports.h"

#include "cli/FailureSentence.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"

#include <algorithm>
#include <iostream>

namespace kel {

class SearchReports::Collector final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        failures.push_back(reportedFailure(report));
        return 0;
    }

    std::vector<ReportedFailure> failures;
};

SearchReports::SearchReports(clsKELReader& reader) : reader_(reader), collector_(std::make_shared<Collector>())
{
    reader_.SetError(collector_);
}

SearchReports::~SearchReports()
{
    reader_.SetError(nullptr);
}

void SearchReports::tell() const
{
    for (const ReportedFailure& failure : collector_->failures)
        std::cerr << "kelreader: " << failureSentence(failure) << std::endl;
}

void SearchReports::tellOfDevices() const
{
    const auto devices = PortMap(platform().registry()).all();
    for (const ReportedFailure& failure : collector_->failures) {
        const bool ofADevice = std::any_of(devices.begin(), devices.end(), [&](const auto& port) {
            return failure.description.find(port.second) != std::string::npos;
        });
        if (ofADevice)
            std::cerr << "kelreader: " << failureSentence(failure) << std::endl;
    }
}

} // namespace kel
