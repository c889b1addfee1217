// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

// What the simulated library exports beside the functions of the maker's: how it is set up and asked. C functions, to
// be found by name in the library that is loaded; texts end with a zero.

extern "C" {

/// A side of a sheet: rows of the same number of columns, one byte a cell.
struct OmrSimSide {
    const std::uint8_t* marks;
    std::int32_t rows;
    std::int32_t columns;
};

struct OmrSimSheet {
    OmrSimSide side[2];
    const char* const* barcodes;
    std::int32_t barcodeCount;
};

/// "OMRSIM_Configure": sets the library up again from a state in JSON. 1 is success; 0 leaves everything as it was and
/// says why, in as much of the message's room as there is.
using OmrSimConfigure = std::int32_t(const char* state, char* message, std::int32_t size);

/// "OMRSIM_PutSheet": lays one more sheet under those in the feeder that no seed gives; quicker than JSON. 1 is
/// success, 0 a sheet of more than 200 rows.
using OmrSimPutSheet = std::int32_t(const OmrSimSheet* sheet);

/// "OMRSIM_Report": what has happened, in JSON. The result is the length of the whole text, of which as much is
/// written as fits.
using OmrSimReport = std::int32_t(char* text, std::int32_t size);

} // extern "C"
