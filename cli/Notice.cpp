// SPDX-License-Identifier: MIT
#include "cli/Notice.h"

#include <iostream>
#include <mutex>

namespace kel {

void notice(const std::string& sentence)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::cerr << "kelreader: " << sentence << std::endl;
}

} // namespace kel
