// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/pseudo_terminal/Pty.h"

#include <poll.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

namespace kel {

using Clock = std::chrono::steady_clock;
using std::chrono::duration;
using std::chrono::microseconds;

inline constexpr int kRows = 60;
inline constexpr int kPageBytes = 2 * kRows + 2;

inline std::string page()
{
    return "\n" + std::string(2 * kRows, '\x41') + "\r";
}

/// The far end of a VMR138's line as far as these figures need it.
class Reader {
public:
    /// A page comes in pieces of so many bytes, each after its time on the wire; without a wait for 0 microseconds.
    Reader(int piece, microseconds byteTime) : piece_(piece), byteTime_(byteTime), thread_([this] { run(); }) {}
    ~Reader()
    {
        stop_ = true;
        thread_.join();
    }

    [[nodiscard]] const std::string& device() const { return pty_.name(); }
    [[nodiscard]] Clock::time_point lastByte() const { return lastByte_.load(); }
    [[nodiscard]] duration<double> wireTime() const { return wireTime_.load(); }

private:
    void run()
    {
        while (!stop_) {
            pollfd master{pty_.handle(), POLLIN, 0};
            if (::poll(&master, 1, 20) < 1)
                continue;
            for (const char byte : pty_.read())
                answer(byte);
        }
    }

    void answer(char byte)
    {
        if (byte == 'Q')
            put(std::string("X\0\0", 3));
        else if (byte == '+')
            put("F0");
        else if (byte == '8')
            sendPage();
    }

    void sendPage()
    {
        const std::string bytes = page();
        const Clock::time_point begin = Clock::now();
        for (std::size_t at = 0; at < bytes.size(); at += static_cast<std::size_t>(piece_)) {
            const std::string piece = bytes.substr(at, static_cast<std::size_t>(piece_));
            std::this_thread::sleep_until(begin + (static_cast<int>(at + piece.size())) * byteTime_);
            lastByte_ = Clock::now();
            put(piece);
        }
        wireTime_ = duration<double>(Clock::now() - begin);
    }

    void put(const std::string& bytes)
    {
        if (pty_.write(bytes) != bytes.size())
            stop_ = true;
    }

    Pty pty_;
    int piece_;
    microseconds byteTime_;
    std::atomic<bool> stop_{false};
    std::atomic<Clock::time_point> lastByte_{};
    std::atomic<duration<double>> wireTime_{};
    std::thread thread_;
};

} // namespace kel
