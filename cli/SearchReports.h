#pragma once

#include "cli/ScanEvents.h"
#include "failure/ErrorReport.h"
#include "reader/clsKELReader.h"

#include <string>
#include <vector>

namespace kel {

/// Collects the reports of a search for a reader, as long as it lives, and tells those that mean something to a
/// person: of ports that have a device.
class SearchReports {
public:
    explicit SearchReports(clsKELReader& reader);
    ~SearchReports();
    SearchReports(const SearchReports&) = delete;
    SearchReports& operator=(const SearchReports&) = delete;

    /// Writes them to standard error, one line each.
    void tell() const;

private:
    class Collector;

    clsKELReader& reader_;
    std::shared_ptr<Collector> collector_;
};

} // namespace kel
