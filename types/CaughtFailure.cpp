// SPDX-License-Identifier: MIT
#include "types/CaughtFailure.h"

#include <exception>
#include <new>

namespace kel {

RuntimeFailure caughtFailure()
{
    try {
        throw;
    } catch (const RuntimeFailure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return RuntimeFailure(FailureCode::OutOfMemory);
    } catch (const std::exception& exception) {
        return {FailureCode::InternalError, exception.what()};
    }
}

} // namespace kel
