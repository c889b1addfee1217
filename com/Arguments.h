#pragma once

#include "com/OleVariant.h"
#include "com/TypeInformation.h"

#include <oaidl.h>

#include <vector>

namespace kel::com {

/// The arguments of a call through IDispatch in the form in which the type library wants them.
///
/// Script hosts pass variants that refer to variants, arrays of variants where the interface has arrays of 16-bit
/// numbers, and values where it has references. Each argument is brought into its declared form; what the call changes
/// by reference goes back to where the host's argument refers to, in the type that the host has there.
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

    std::vector<VARIANT> variants_; // as IDispatch has them: the last argument first; they own nothing
    std::vector<Argument> arguments_;
    DISPPARAMS prepared_{};
};

/// An array of some form as a new array of 16-bit numbers: one of variants or other numbers, or a script's own array,
/// which is an object. 13 "Type mismatch" if it is none.
[[nodiscard]] OleVariant asNumberArray(const VARIANT& given);

} // namespace kel::com
