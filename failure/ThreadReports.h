// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ErrorReport.h"
#include "types/Export.h"

#include <memory>

namespace kel {

/// Takes the reports of the calling thread for as long as it lives, of several on a thread the latest. The process's
/// error object stays registered: it gets the reports of other threads meanwhile, and all of them afterwards. Those of
/// a thread may end in any order, on that thread.
class KEL_INTERNAL ThreadReports {
public:
    explicit ThreadReports(std::shared_ptr<ErrorObject> taker);
    ~ThreadReports();
    ThreadReports(const ThreadReports&) = delete;
    ThreadReports& operator=(const ThreadReports&) = delete;

    /// What takes the reports of the calling thread; null if the process's error object does.
    [[nodiscard]] static std::shared_ptr<ErrorObject> taker();

private:
    std::shared_ptr<ErrorObject> taker_;
    ThreadReports* earlier_;
};

} // namespace kel
