// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "pictures/Sheet.h"
#include "store/Entry.h"

#include <filesystem>
#include <string>

namespace kel {

/// Saves a picture of each sheet in a folder: 000001.svg for the first. After one that cannot be written there are no
/// others.
class PictureFolder final : public host::Events {
public:
    /// CommandFailure if there is no such folder and none can be made.
    PictureFolder(std::filesystem::path folder, PictureForm form);

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure&) override {}
    void end(const host::BatchEnd&) override {}

    /// The sentence about a picture that could not be written; empty while all could.
    [[nodiscard]] const std::string& problem() const { return problem_; }

private:
    std::filesystem::path folder_;
    PictureForm form_;
    std::string problem_;
};

/// The same for sheets of a store: READER-BATCH-000001.svg, each on the form that it was read with. CommandFailure as
/// soon as one cannot be written.
class EntryPictures {
public:
    explicit EntryPictures(std::filesystem::path folder);

    void sheet(const Entry& entry);

private:
    std::filesystem::path folder_;
};

} // namespace kel
