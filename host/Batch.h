// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "host/Request.h"
#include "reader/clsKELReader.h"

#include <functional>
#include <memory>

namespace kel::host {

/// Sets a reader up with the saved settings or the model's defaults, the form, the answer key, the port, the
/// assignments and the print settings, and reports which of the saved settings failed. UsageError for a wrong
/// assignment and for a text that cannot be printed.
std::vector<Failure> prepareReader(clsKELReader& reader, const Request& request);

/// Reads a batch with a reader that is set up, and reports everything that happens to the sink. While it runs, the
/// reports of the calling thread go to the sink, and `stopWanted` is called again and again: once it returns true,
/// `CancelScan` is set.
[[nodiscard]] Result runScan(clsKELReader& reader, const Request& request, Events& sink,
                             const std::function<bool()>& stopWanted = {}, StopAsked asked = StopAsked::InEachTurn);

/// A batch that its caller reads sheet by sheet. While it exists, the reports of the calling thread go to the sink.
class Session {
public:
    Session(clsKELReader& reader, const Request& request, Events& sink);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Starts the reader; false after a report.
    bool start();

    /// Reads the next sheet and passes it to the sink; false when the batch has ended.
    bool next();

    /// Sends the last sheet out and ends the reader, as `ReadBatch` would. It may be called again.
    void end();

    /// What was reported so far.
    [[nodiscard]] const std::vector<Failure>& failures() const;

    class Ties;

private:
    clsKELReader& reader_;
    const Request& request_;
    std::unique_ptr<Ties> ties_;
    Int32 reads_ = 0;
    bool open_ = false;
    bool lastRead_ = false;
};

/// A print text with its placeholders filled in.
[[nodiscard]] std::string filledIn(std::string text, Int32 sheet, const std::string& barcode);

} // namespace kel::host
