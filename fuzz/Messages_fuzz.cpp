// SPDX-License-Identifier: MIT
#include "formats/Json.h"
#include "fuzz/Input.h"
#include "stream/EntryMessage.h"

#include <cstddef>

using namespace kel;

// What comes out of a stream: any program may have put it there. What is taken says the same when it is sent on.

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    try {
        const Entry entry = entryIn({reinterpret_cast<const char*>(data), size});
        demand(!entry.identity.empty(), "an entry has an identity");
        const StreamMessage message = messageOf(entry, "k");
        demand(messageOf(entryIn(message.content), "k").content == message.content, "a message is sent on as it came");
    } catch (const JsonRefusal&) {
    }
    return 0;
}
