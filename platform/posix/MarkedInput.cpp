// SPDX-License-Identifier: MIT
#include "platform/posix/MarkedInput.h"

namespace kel {

namespace {

constexpr char kEscape = '\xFF';

} // namespace

std::size_t MarkedInput::decode(char* bytes, std::size_t count) noexcept
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const char byte = bytes[i];
        switch (state_) {
        case State::Plain:
            if (byte == kEscape)
                state_ = State::Escape;
            else
                bytes[kept++] = byte;
            break;
        case State::Escape:
            if (byte == '\0') {
                state_ = State::Wrong;
                break;
            }
            // A terminal that was set while the mark was under way may have left out the second half.
            bytes[kept++] = kEscape;
            if (byte != kEscape)
                bytes[kept++] = byte;
            state_ = State::Plain;
            break;
        case State::Wrong:
            bytes[kept++] = '?';
            ++replaced_;
            state_ = State::Plain;
            break;
        }
    }
    return kept;
}

} // namespace kel
