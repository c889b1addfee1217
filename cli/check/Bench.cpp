// SPDX-License-Identifier: MIT
#include "cli/check/Bench.h"

#include "cli/check/ReportText.h"

#include <algorithm>

namespace kel {

namespace {

constexpr Int32 kBetweenSections = 100; // milliseconds

} // namespace

Reference<Carrier> LineBench::begin(const std::string& name, const Reference<Carrier>& own, const TraceLog::Head& head)
{
    // What a reader still sends of the session before it is not for this one.
    platform().pump().Sleep(kBetweenSections);
    open_ = std::make_unique<Open>();
    open_->name = name;
    write_(sectionLine(name));
    const TraceLog::Write write = [this](const std::string& line) {
        open_->text += line;
        write_(line);
    };
    open_->carrier = makeReference<TracingCarrier>(own, head, write);
    open_->watchful = std::make_unique<WatchfulPlatform>(platform(), lookingAt(open_->carrier));
    open_->machine = std::make_unique<TracingLibrary>(*open_->watchful, write);
    open_->scope = std::make_unique<PlatformScope>(*open_->machine);
    return open_->carrier;
}

void LineBench::lookAtModemLines()
{
    auto* const telling = dynamic_cast<TellsModemLines*>(&open_->carrier->mscComm());
    open_->modem = telling ? telling->modemLines() : std::nullopt;
}

Section LineBench::end()
{
    const std::unique_ptr<Open> ended = std::move(open_);
    ended->scope.reset();
    Section section{.name = ended->name, .trace = parseTranscript(ended->text)};
    if (auto* const counting = dynamic_cast<CountsLineErrors*>(&ended->carrier->mscComm()))
        section.errors = counting->lineErrors();
    section.modem = ended->modem;
    write_(sectionEndLines(section));
    return section;
}

std::optional<std::string> LineBench::fact(const std::string& name,
                                           const std::function<std::optional<std::string>()>& find)
{
    const std::optional<std::string> found = find();
    if (found)
        write_(factLine(name, *found));
    return found;
}

Reference<Carrier> ReportBench::begin(const std::string& name, const Reference<Carrier>&, const TraceLog::Head&)
{
    const auto found = std::ranges::find(sections_, name, &Section::name);
    if (found == sections_.end())
        throw SectionMissing(name);
    at_ = static_cast<std::size_t>(found - sections_.begin());
    carrier_ = std::make_shared<ReplayCarrier>(found->trace);
    library_ = std::make_unique<ReplayLibrary>(found->trace);
    machine_ = std::make_unique<ReplayPlatform>(platform(), *carrier_, *library_);
    watchful_ = std::make_unique<WatchfulPlatform>(*machine_, lookingAt(Reference<Carrier>(carrier_)));
    scope_ = std::make_unique<PlatformScope>(*watchful_);
    return Reference<Carrier>(carrier_);
}

Section ReportBench::end()
{
    scope_.reset();
    watchful_.reset();
    machine_.reset();
    for (const auto* differences : {&carrier_->differences(), &library_->differences()})
        differences_.insert(differences_.end(), differences->begin(), differences->end());
    library_.reset();
    carrier_.reset();
    return sections_[at_];
}

std::optional<std::string> ReportBench::fact(const std::string& name,
                                             const std::function<std::optional<std::string>()>&)
{
    const auto found = std::ranges::find(facts_, name, &Facts::value_type::first);
    return found == facts_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace kel
