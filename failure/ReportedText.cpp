// SPDX-License-Identifier: MIT
#include "failure/ReportedText.h"

#include <utility>

namespace kel {

namespace {

thread_local Int32 onItsWay = 0;

} // namespace

ReportedText::ReportedText(TextNumber text) noexcept : before_(std::exchange(onItsWay, text.value())) {}

ReportedText::~ReportedText()
{
    onItsWay = before_;
}

Int32 ReportedText::number() noexcept
{
    return onItsWay;
}

} // namespace kel
