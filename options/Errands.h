// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WakeCall.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace kel {

/// Background tasks of a window, one thread each, and what the window's thread does with their results.
///
///     window's thread   send ... take ..... take ........... ~Errands
///                         |                  ^ arrival          | ends the waits, and comes back when all have ended;
///     errand              +--> work ---------+                  v nothing arrives any more
class Errands {
public:
    /// What to do with a result, run on the window's thread.
    using Arrival = std::function<void()>;
    /// The work. If it fails, `late` arrives.
    using Errand = std::function<Arrival()>;
    using Clock = std::chrono::steady_clock;
    /// Begins a thread that does a work. std::system_error if there is none to be had.
    using BeginThread = std::function<std::thread(std::function<void()> work)>;

    explicit Errands(BeginThread beginThread = [](std::function<void()> work) { return std::thread(std::move(work)); });
    ~Errands();
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;

    /// Sends one out. After the limit its waits are ended, and `late` stands for whatever it brings. An errand
    /// for which the system has no thread is late at once.
    void send(Errand errand, Arrival late, Clock::duration limit = Clock::duration::max());

    /// Runs what has arrived; True if anything has. `takeAll` waits for all tasks, at most until their limits.
    bool take();
    void takeAll();

    /// Ends the waits of all running tasks. They still arrive.
    void callBack();

    /// Whether no task is running.
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
    void arrive(Task& task, Arrival arrival);

    BeginThread beginThread_;
    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    std::list<Task> tasks_;
    bool ended_ = false;
};

} // namespace kel
