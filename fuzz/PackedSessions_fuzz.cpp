// SPDX-License-Identifier: MIT
// Whole sessions with the EZData and Chatsworth readers, which judge their replies within the dialogue, and the port
// search.

#include "fuzz/Session.h"

#include <cstddef>

using namespace kel;

namespace {

constexpr kelReaderType kPackedSessionsModels[] = {
    kelReaderTypeNCSEZData,         kelReaderTypeChatsworthACF100, kelReaderTypeChatsworthOMR1100,
    kelReaderTypeChatsworthOMR2000, kelReaderTypeChatsworthACF200, kelReaderTypeChatsworthALSAccelScanOMR,
    kelReaderTypeChatsworthACP200};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    fuzzSerialSession(kPackedSessionsModels, Input(data, size));
    return 0;
}
