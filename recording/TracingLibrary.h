// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PlatformAround.h"
#include "recording/SpelledLibrary.h"
#include "recording/TraceLog.h"

#include <filesystem>

namespace kel {

/// A platform that writes a transcript of all calls of the USB readers' library. The pause before a call lasts to its
/// end. A trailing run of zeros is left out of what it delivers.
///
///     @ OMR_SetReadingMethod 3 0 = 1
///     + 812.4
///     @ OMR_FeedSheet = 1
class TracingLibrary final : public PlatformAround {
public:
    TracingLibrary(Platform& machine, TraceLog::Write write)
        : PlatformAround(machine), library_(machine, std::move(write)), loader_(machine, library_)
    {
    }

    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return loader_; }

private:
    class Library final : public SpelledLibrary {
    public:
        Library(Platform& machine, TraceLog::Write write) : machine_(machine), write_(std::move(write)) {}

    private:
        Int32 called(const Call& call) override;
        void note(TranscriptLine line);

        Platform& machine_;
        TraceLog::Write write_;
        Moment lastLine_{};
        bool begun_ = false;
    };

    class Loader final : public OmrApiLoader {
    public:
        Loader(Platform& machine, OmrApi& library) : machine_(machine), library_(library) {}

        [[nodiscard]] OmrApi& omrApi() override { return library_; }
        void libraryFile(const std::filesystem::path& file) override { machine_.omrApiLoader().libraryFile(file); }
        [[nodiscard]] Int32 widthNeeded() const override { return machine_.omrApiLoader().widthNeeded(); }

    private:
        Platform& machine_;
        OmrApi& library_;
    };

    Library library_;
    Loader loader_;
};

} // namespace kel
