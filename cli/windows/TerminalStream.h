// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>

namespace kel {

/// While one exists, a standard stream that goes to a console gives it whole letters. Without a console it does
/// nothing.
class TerminalStream final : public std::streambuf {
public:
    TerminalStream(std::ostream& stream, int descriptor);
    ~TerminalStream() override;
    TerminalStream(const TerminalStream&) = delete;
    TerminalStream& operator=(const TerminalStream&) = delete;

protected:
    int_type overflow(int_type byte) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int sync() override;

private:
    bool write();

    std::ostream& stream_;
    int descriptor_;
    std::streambuf* before_ = nullptr;
    std::mutex mutex_; // any thread may complain
    std::string waiting_{};
};

} // namespace kel
