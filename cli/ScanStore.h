// SPDX-License-Identifier: MIT
#pragma once

#include "host/Reader.h"

#include <memory>
#include <string>

namespace kel {

/// The file of a store, and what a scan's sheets are called in it; without a batch's name it is the time.
struct StoreNames {
    std::string file;
    std::string reader;
    std::string batch;
};

/// The store of a scan: `output` has what it has taken.
class ScanStore {
public:
    /// CommandFailure if the store cannot be opened or made, UsageError where this system has none.
    ScanStore(const StoreNames& names, host::Reader& reader, host::Events& output);
    ~ScanStore();
    ScanStore(const ScanStore&) = delete;
    ScanStore& operator=(const ScanStore&) = delete;

    [[nodiscard]] host::Events& events();

    /// A sheet that went through the reader and is not there is what the person must know: CommandFailure.
    void demandAll() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace kel
