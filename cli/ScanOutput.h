// SPDX-License-Identifier: MIT
#pragma once

#include "cli/PictureFolder.h"
#include "cli/Progress.h"
#include "host/Events.h"
#include "host/Form.h"
#include "host/TextOutput.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// The fields of a form, for a command that is to write their columns; nothing if it is not. UsageError for a form that
/// has none, and for a format without columns.
[[nodiscard]] std::optional<std::vector<host::Field>> wantedFields(bool wanted, const host::Form& form,
                                                                   const std::string& format);

/// Writes the events of a scan in the form that was asked for, with the progress line kept out of the way. What a
/// person should read of them goes to standard error.
class ScanOutput final : public host::Events {
public:
    /// `format` is json, csv, table or html; an empty name of a file is standard output. A page needs to know what it
    /// is a page of; with fields, json and csv have their columns. CommandFailure if the file cannot be made.
    ScanOutput(const std::string& outFile, const std::string& format, const std::string& title = {},
               const PictureForm& form = {}, const std::optional<std::vector<host::Field>>& fields = {});

    /// Has a picture of each sheet put into a folder, too. CommandFailure if there is none and none can be made.
    void addPictures(const std::filesystem::path& folder, const PictureForm& form);

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override;

    /// The sentence about what could not be written; empty while all could.
    [[nodiscard]] std::string problem() const;

private:
    Progress progress_;
    std::optional<host::TextOutput> output_;
    std::unique_ptr<host::Events> lines_;
    std::unique_ptr<PictureFolder> pictures_;
};

} // namespace kel
