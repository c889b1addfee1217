#include "store/ReaderSetup.h"

#include "store/SheetStore.h"

#include <array>
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

std::string hostName()
{
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0)
        return "station";
    return name.data();
}

} // namespace kel
