// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <semaphore.h>
#include <thread>

namespace kel::python {

/// Ends the wait of another thread, once.
class Signal {
public:
    Signal();
    ~Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void give();

    /// Waits for it, but no longer than so many milliseconds, nor than until a handler of a signal has run. Whether it
    /// came.
    [[nodiscard]] bool taken(int milliseconds);

private:
    sem_t semaphore_;
};

/// A thread for what has to stay on one thread: a reader is made, read and ended there, whichever thread of the
/// interpreter wants it.
class Worker {
public:
    using Task = std::function<void()>;

    Worker();
    /// Ends after the tasks that it was given.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Gives it something to do. A task must not throw.
    void post(Task task);

    /// By a task: carries out other tasks until one of them has set `done`.
    void serveUntil(const bool& done);

private:
    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<Task> tasks_;
    bool ended_ = false;
    std::thread thread_;
};

} // namespace kel::python
