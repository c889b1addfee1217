// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WakeCall.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace kel {

/// What is done beside a window, each errand on a thread of its own, and what the window's thread does with the
/// outcome.
///
///     window's thread   send ... take ..... take ........... ~Errands
///                         |                  ^ arrival          | ends the waits, and comes back when all have ended;
///     errand              +--> work ---------+                  v nothing arrives any more
class Errands {
public:
    /// What an outcome means, run on the window's thread.
    using Arrival = std::function<void()>;
    /// The work. What fails in it arrives as if it were late.
    using Errand = std::function<Arrival()>;
    using Clock = std::chrono::steady_clock;

    Errands() = default;
    ~Errands();
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;

    /// Sends one out. After the limit its waits are ended, and `late` stands for whatever it brings.
    void send(Errand errand, Arrival late, Clock::duration limit = Clock::duration::max());

    /// Runs what has arrived since; True if anything has. `takeAll` waits for all of them, at most to their limits.
    bool take();
    void takeAll();

    /// Ends the waits of all that are out. They arrive all the same.
    void callBack();

    /// Whether none is out.
    [[nodiscard]] bool isIdle() const;

private:
    struct Task {
        Arrival late;
        Clock::time_point end;
        Arrival arrival{};
        bool isDone = false;
        bool isTaken = false;
        std::shared_ptr<WakeCall> wake{};
        std::thread thread{};
    };

    void run(Task& task, const Errand& errand);

    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    std::list<Task> tasks_;
    bool ended_ = false;
};

} // namespace kel
