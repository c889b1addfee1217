// SPDX-License-Identifier: MIT
#include "stream/StreamNews.h"

#include <utility>

namespace kel {

void StreamNews::up()
{
    {
        const std::lock_guard lock(mutex_);
        problem_.clear();
        told_.clear();
        if (std::exchange(isUp_, true))
            return;
    }
    tell_(upText_);
}

void StreamNews::down(const std::string& problem)
{
    bool isFirst = false;
    {
        const std::lock_guard lock(mutex_);
        isUp_ = false;
        problem_ = problem;
        isFirst = told_.empty();
        if (!told_.insert(problem).second)
            return;
    }
    tell_(isFirst ? problem + " " + meanwhile_ : problem);
}

bool StreamNews::isUp() const
{
    const std::lock_guard lock(mutex_);
    return isUp_;
}

std::string StreamNews::problem() const
{
    const std::lock_guard lock(mutex_);
    return problem_;
}

} // namespace kel
