// SPDX-License-Identifier: MIT
#include "com/Server.h"

#include <atomic>

namespace kel::com {

namespace {

HINSTANCE ownModule = nullptr;
std::atomic<long> objects{0};
std::atomic<long> locks{0};

} // namespace

void moduleLoaded(HINSTANCE module) noexcept
{
    ownModule = module;
}

HINSTANCE module() noexcept
{
    return ownModule;
}

std::wstring modulePath()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(ownModule, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

void objectCreated() noexcept
{
    ++objects;
}

void objectDestroyed() noexcept
{
    --objects;
}

void lockServer(bool lock) noexcept
{
    locks += lock ? 1 : -1;
}

bool isServerInUse() noexcept
{
    return objects != 0 || locks != 0;
}

} // namespace kel::com
