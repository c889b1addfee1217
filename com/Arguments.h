// SPDX-License-Identifier: MIT
#pragma once

#include "com/OleVariant.h"
#include "com/TypeInformation.h"

#include <oaidl.h>

#include <vector>

namespace kel::com {

/// The arguments of a call through IDispatch in the form in which the type library wants them.
///
/// Script hosts pass variants that refer to variants, and values where the interface has references. Each argument is
/// brought into its declared form; what the call changes by reference goes back to where the host's argument refers to,
/// in the type that the host has there. An array passes as it is, whatever its elements are and even if they are an
/// object's: the member itself checks it, and reports what is wrong with it.
class Arguments {
public:
    Arguments(const Member& member, const DISPPARAMS& given);
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    [[nodiscard]] DISPPARAMS& prepared() noexcept { return prepared_; }

    /// After a call that has succeeded.
    void handBack();

private:
    struct Argument {
        VARIANT* given = nullptr; // the host's own
        OleVariant value;         // what a reference refers to
        bool handBack = false;
    };

    void prepare(VARIANT& prepared, Argument& argument, const Parameter& parameter);
    static void prepareArray(VARIANT& prepared, Argument& argument, VARIANT& given);

    std::vector<VARIANT> variants_; // as IDispatch has them: the last argument first; they own nothing
    std::vector<Argument> arguments_;
    DISPPARAMS prepared_{};
};

} // namespace kel::com
