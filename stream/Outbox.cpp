// SPDX-License-Identifier: MIT
#include "stream/Outbox.h"

#include <utility>

namespace kel {

void Outbox::add(std::int64_t id, std::string line, StreamMessage message)
{
    queue(id, std::move(line), std::move(message));
    open_.insert(id);
    loaded_ = id;
}

void Outbox::addAgain(std::int64_t id, std::string line, StreamMessage message)
{
    queue(id, std::move(line), std::move(message));
}

void Outbox::queue(std::int64_t id, std::string line, StreamMessage message)
{
    Line& messages = lines_[std::move(line)];
    messages.push_back({.id = id, .message = std::move(message)});
    ++size_;
    if (messages.size() == 1)
        ready_.push_back(&messages);
}

std::optional<Outbox::Due> Outbox::next(Time now)
{
    if (ready_.empty())
        return std::nullopt;
    Line* const line = ready_.front();
    ready_.pop_front();
    const Waiting& first = line->front();
    underWay_.emplace(first.id, line);
    sent_.emplace_back(now, first.id);
    return Due{.id = first.id, .message = &first.message};
}

std::optional<Outbox::Time> Outbox::oldest()
{
    while (!sent_.empty() && !underWay_.contains(sent_.front().second))
        sent_.pop_front();
    if (sent_.empty())
        return std::nullopt;
    return sent_.front().first;
}

void Outbox::acknowledge(std::int64_t id)
{
    const auto found = underWay_.find(id);
    if (found == underWay_.end())
        return;
    Line* const line = found->second;
    underWay_.erase(found);
    open_.erase(id);
    line->pop_front();
    --size_;
    if (!line->empty())
        ready_.push_back(line);
}

} // namespace kel
