// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/Input.h"
#include "types/Enumerations.h"

#include <span>

namespace kel {

class SimulatedPlatform;

/// A session of a host that has any settings and any form with a reader that says anything, in the virtual time of
/// `machine`. The front of the input says which model it is, what the host has set and what it does; the line or the
/// library is the caller's. The sheets are read one by one or as a batch.
///
/// Whatever comes, the session ends, the line is closed after it, what fails says why, failures of statements are of
/// the few kinds that a damaged reply may cause, and a sheet that counts has marks within its bounds.
void fuzzSession(SimulatedPlatform& machine, std::span<const kelReaderType> models, Input& input);

/// The same with a serial reader that says what the rest of the input holds: a piece whenever the host has sent
/// something. The first byte of a piece has its length in its lower five bits (31: in the two bytes after it), and in
/// the upper three how it comes:
///
///     0  at once         2  late    4  slowly, byte by byte    6  after a time-out
///     1  at once, with more after it, unasked: the next piece comes by itself
///     3, 5  late and slowly, with more after it               7  at once; then the reader is unplugged
void fuzzSerialSession(std::span<const kelReaderType> models, Input input);

} // namespace kel
