// SPDX-License-Identifier: MIT
#pragma once

#include "host/Failure.h"
#include "types/Export.h"

#include <functional>
#include <memory>

namespace kel::host {

/// Receives the reports of the calling thread's readers for as long as it lives; of several on a thread the latest does
/// so. The host's error object, if it has registered one, gets those of other threads meanwhile, and all of them
/// afterwards. It ends on the thread that made it.
class KEL_PUBLIC Reports {
public:
    /// Takes one report.
    using Take = std::function<void(const Failure& failure)>;

    /// Takes those of the calling thread.
    explicit Reports(Take take);
    ~Reports();
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

private:
    struct Place;

    std::unique_ptr<Place> place_;
};

} // namespace kel::host
