// SPDX-License-Identifier: MIT
#include "store/ReaderSetup.h"

#include "store/SheetStore.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <unistd.h>

namespace kel {

Setup setupOf(host::Reader& reader)
{
    const host::Form& form = reader.form();
    return {.model = reader.object().ReaderType(),
            .threshold = reader.object().RecognitionThreshold(),
            .form = form.source.empty() ? host::sizesText(form) : form.source};
}

std::string batchName(std::chrono::system_clock::time_point begin)
{
    return storeTime(begin).substr(0, sizeof "2024-01-31T12:00:00" - 1) + "Z";
}

std::string stationName()
{
    std::array<char, 65> host{};
    if (::gethostname(host.data(), host.size() - 1) != 0 || host[0] == '\0')
        return "station";
    std::string name = host.data();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)) && c != '-'; }, '_');
    return name;
}

} // namespace kel
