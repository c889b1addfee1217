// SPDX-License-Identifier: MIT
#include "python/Worker.h"

#include <csignal>
#include <ctime>
#include <pthread.h>

namespace kel::python {

namespace {

constexpr long kNanosecondsPerMillisecond = 1'000'000;
constexpr long kNanosecondsPerSecond = 1'000'000'000;

/// While it lives the calling thread, and a thread that it makes, takes no signals but those of a fault of its own.
/// Signals are the interpreter's: its main thread waits for them.
class WithoutSignals {
public:
    WithoutSignals()
    {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT})
            sigdelset(&blocked, fault);
        pthread_sigmask(SIG_BLOCK, &blocked, &before_);
    }
    ~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
    sigset_t before_{};
};

} // namespace

Signal::Signal()
{
    sem_init(&semaphore_, 0, 0);
}

Signal::~Signal()
{
    sem_destroy(&semaphore_);
}

void Signal::give()
{
    sem_post(&semaphore_);
}

bool Signal::taken(int milliseconds)
{
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_nsec += milliseconds * kNanosecondsPerMillisecond;
    until.tv_sec += until.tv_nsec / kNanosecondsPerSecond;
    until.tv_nsec %= kNanosecondsPerSecond;
    return sem_clockwait(&semaphore_, CLOCK_MONOTONIC, &until) == 0;
}

Worker::Worker()
{
    const WithoutSignals without;
    thread_ = std::thread([this] { serveUntil(ended_); });
}

Worker::~Worker()
{
    post([this] { ended_ = true; });
    thread_.join();
}

void Worker::post(Task task)
{
    // Within the lock: whoever waits for the task may end the worker as soon as it is done.
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    posted_.notify_one();
}

void Worker::serveUntil(const bool& done)
{
    while (!done) {
        Task task;
        {
            std::unique_lock lock(mutex_);
            posted_.wait(lock, [this] { return !tasks_.empty(); });
            task = std::move(tasks_.front());
            tasks_.pop_front();
        }
        task();
    }
}

} // namespace kel::python
