#pragma once

#include "platform/ReceivedInput.h"

namespace kel {

/// The input side of an open line that is a descriptor.
class LineInput final : public ReceivedInput {
public:
    /// The handle must not block; `name` is for failures.
    LineInput(int handle, std::string name);

    [[nodiscard]] int handle() const noexcept { return handle_; }

private:
    [[nodiscard]] std::size_t read(char* into, std::size_t room) override;

    int handle_;
};

} // namespace kel
