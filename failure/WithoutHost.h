// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ThreadReports.h"

namespace kel {

/// For as long as this lives, the calling thread works for the component itself: its reports go to the given object,
/// and nothing of the host hears of it, neither the error object nor the error library nor a debugger.
class WithoutHost {
public:
    explicit WithoutHost(std::shared_ptr<ErrorObject> reports);
    ~WithoutHost();
    WithoutHost(const WithoutHost&) = delete;
    WithoutHost& operator=(const WithoutHost&) = delete;

    /// Whether the calling thread works for the component itself.
    [[nodiscard]] static bool isHere() noexcept;

private:
    ThreadReports reports_;
};

} // namespace kel
