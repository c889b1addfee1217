// SPDX-License-Identifier: MIT
#include "failure/ObjectLife.h"

#include "failure/WithoutHost.h"
#include "failure/modvbCodeShieldSupport.h"

#include <cstdint>

namespace kel {

namespace {

constexpr Int32 kObjectBegins = 500;
constexpr Int32 kObjectEnds = 501;
constexpr Int32 kObjectEvent = 2000;

void tellDebugger(Int32 lCode, const char* nameAndKind, const ObjectLife* object)
{
    if (hasDebugSession() && !WithoutHost::isHere())
        vbcsSend(lCode, nameAndKind, static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(object)), kObjectEvent,
                 0);
}

} // namespace

ObjectLife::ObjectLife(const char* nameAndKind) : nameAndKind_(nameAndKind)
{
    begins();
}

ObjectLife::ObjectLife(const ObjectLife& other) : nameAndKind_(other.nameAndKind_)
{
    begins();
}

ObjectLife::~ObjectLife()
{
    ends();
}

void ObjectLife::begins()
{
    tellDebugger(kObjectBegins, nameAndKind_, this);
    if (!vbcsHasInitialised())
        vbcsInitialise();
}

void ObjectLife::ends()
{
    if (nameAndKind_)
        tellDebugger(kObjectEnds, nameAndKind_, this);
    nameAndKind_ = nullptr;
}

} // namespace kel
