// SPDX-License-Identifier: MIT
#pragma once

#include "host/Request.h"
#include "station/JsonFaults.h"
#include "station/WebServer.h"
#include "stream/StreamLink.h"

#include <filesystem>

namespace kel {

// What can be wrong with a part of a station's file although each value is of its kind. All of it is told.

/// A file that is to be made is in a folder that exists.
void checkFolder(const std::filesystem::path& file, const JsonPlace& place, JsonFaults& faults);

/// The sheets, faults and settings of a simulated reader.
void checkSimulation(const host::Request& request, kelReaderType model, const JsonPlace& place, JsonFaults& faults);

void checkStream(const StreamAddress& stream, const JsonPlace& place, JsonFaults& faults);
void checkPage(const WebPlan& page, const JsonPlace& place, JsonFaults& faults);

} // namespace kel
