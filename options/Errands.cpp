// SPDX-License-Identifier: MIT
#include "options/Errands.h"

#include <algorithm>
#include <system_error>
#include <vector>

namespace kel {

Errands::Errands(BeginThread beginThread) : beginThread_(std::move(beginThread)) {}

Errands::~Errands()
{
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    callBack();
    for (Task& task : tasks_) {
        if (task.thread.joinable())
            task.thread.join();
    }
}

void Errands::send(Errand errand, Arrival late, Clock::duration limit)
{
    const Clock::time_point now = Clock::now();
    const bool isLimited = limit < Clock::time_point::max() - now;
    Task* task = nullptr;
    {
        const std::lock_guard lock(mutex_);
        task = &tasks_.emplace_back(
            Task{.late = std::move(late), .end = isLimited ? now + limit : Clock::time_point::max()});
    }
    try {
        task->thread = beginThread_([this, task, errand = std::move(errand)] { run(*task, errand); });
    } catch (const std::system_error&) {
        arrive(*task, nullptr);
    }
}

void Errands::run(Task& task, const Errand& errand)
{
    Arrival arrival;
    try {
        std::shared_ptr<WakeCall> wake = wakeCallOfThisThread();
        bool isWanted = false;
        {
            const std::lock_guard lock(mutex_);
            task.wake = std::move(wake);
            isWanted = !ended_ && !task.isTaken; // it may have begun after its limit
        }
        if (isWanted)
            arrival = errand();
    } catch (const std::exception&) {
        arrival = nullptr;
    }
    arrive(task, std::move(arrival));
}

/// Without an arrival of its own it is late.
void Errands::arrive(Task& task, Arrival arrival)
{
    const std::lock_guard lock(mutex_);
    task.arrival = arrival ? std::move(arrival) : task.late;
    task.isDone = true;
    arrived_.notify_all();
}

bool Errands::take()
{
    std::vector<Arrival> arrivals;
    {
        const std::lock_guard lock(mutex_);
        const Clock::time_point now = Clock::now();
        for (Task& task : tasks_) {
            const bool isLate = !task.isDone && now >= task.end;
            if (task.isTaken || (!task.isDone && !isLate))
                continue;
            if (isLate && task.wake)
                task.wake->call();
            task.isTaken = true;
            arrivals.push_back(isLate ? task.late : task.arrival);
        }
    }
    for (const Arrival& arrival : arrivals)
        arrival();
    return !arrivals.empty();
}

void Errands::takeAll()
{
    while (!isIdle()) {
        {
            std::unique_lock lock(mutex_);
            Clock::time_point next = Clock::time_point::max();
            for (const Task& task : tasks_) {
                if (!task.isTaken)
                    next = std::min(next, task.isDone ? Clock::time_point::min() : task.end);
            }
            const auto anyDone = [&] {
                return std::any_of(tasks_.begin(), tasks_.end(),
                                   [](const Task& task) { return task.isDone && !task.isTaken; });
            };
            if (next == Clock::time_point::max())
                arrived_.wait(lock, anyDone);
            else
                arrived_.wait_until(lock, next, anyDone);
        }
        take();
    }
}

void Errands::callBack()
{
    const std::lock_guard lock(mutex_);
    for (const Task& task : tasks_) {
        if (task.wake && !task.isDone)
            task.wake->call();
    }
}

bool Errands::isIdle() const
{
    const std::lock_guard lock(mutex_);
    return std::all_of(tasks_.begin(), tasks_.end(), [](const Task& task) { return task.isTaken; });
}

} // namespace kel
