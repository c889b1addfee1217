// SPDX-License-Identifier: MIT
#pragma once

#include "host/Reports.h"

#include <vector>

namespace kel {

/// Collects the reports of a search for a reader, as long as it exists, and prints them for a person.
class SearchReports {
public:
    SearchReports();
    SearchReports(const SearchReports&) = delete;
    SearchReports& operator=(const SearchReports&) = delete;

    /// Writes them to standard error, one line each: all of them, or those of ports that have a device.
    void tell() const;
    void tellOfDevices() const;

private:
    std::vector<host::Failure> failures_;
    host::Reports reports_;
};

} // namespace kel
