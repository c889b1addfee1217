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

/// The store of a scan.
class ScanStore {
public:
    /// CommandFailure if the store cannot be opened or made, UsageError where this system has none.
    explicit ScanStore(const StoreNames& names);
    ~ScanStore();
    ScanStore(const ScanStore&) = delete;
    ScanStore& operator=(const ScanStore&) = delete;

    /// How many sheets it has of the batch.
    [[nodiscard]] Int32 sheetsBefore();

    /// Takes what the reader reports, once that is connected, and hands it on to `output`.
    [[nodiscard]] host::Events& events(host::Reader& reader, host::Events& output);

    /// A sheet that went through the reader and is not there is what the person must know: CommandFailure.
    void demandAll() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace kel
