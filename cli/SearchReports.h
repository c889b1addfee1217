#pragma once

#include "cli/ScanEvents.h"
#include "failure/ErrorReport.h"
#include "reader/clsKELReader.h"

#include <string>
#include <vector>

namespace kel {

/// Collects the reports of a look for a reader at its ports, as long as it lives, and tells them to a person.
class SearchReports {
public:
    explicit SearchReports(clsKELReader& reader);
    ~SearchReports();
    SearchReports(const SearchReports&) = delete;
    SearchReports& operator=(const SearchReports&) = delete;

    /// Writes them to standard error, one line each: all of them, or those of ports that have a device.
    void tell() const;
    void tellOfDevices() const;

private:
    class Collector;

    clsKELReader& reader_;
    std::shared_ptr<Collector> collector_;
};

} // namespace kel
