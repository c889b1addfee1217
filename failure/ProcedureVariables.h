// SPDX-License-Identifier: MIT
#pragma once

#include "failure/TellsVariables.h"
#include "failure/ToVariant.h"
#include "failure/VariantDump.h"

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// A procedure's parameters and locals, by their names and by reference; nothing is done with them unless a dump is
/// built. `KEL_PARAMETERS(oReader, lSleepTime) + KEL_LOCALS(iHigh, iLow)`
#define KEL_PARAMETERS(...)                                                                                            \
    ::kel::parametersFrom(                                                                                             \
        [&](::kel::VariableLines& kelLines) { kelLines.add(#__VA_ARGS__ __VA_OPT__(, ) __VA_ARGS__); })
#define KEL_LOCALS(...)                                                                                                \
    ::kel::localsFrom([&](::kel::VariableLines& kelLines) { kelLines.add(#__VA_ARGS__ __VA_OPT__(, ) __VA_ARGS__); })

namespace kel {

class VariableLines;

/// An object that holds variables of a procedure, and shows them itself (failure/TellsVariables.h).
template <class T>
concept TellsVariables = requires(const T& object, VariableLines& lines)
{
    object.tellVariables(lines);
};

/// The lines of some variables. A variable that cannot be looked at is left out.
class VariableLines {
public:
    /// `names` are the variables' names as they stand in the code, separated by commas; the underscore at the end of a
    /// member's name does not show.
    template <class... Values>
    void add(std::string_view names, const Values&... values)
    {
        static_cast<void>(names);
        (addNext(
             names,
             [](VariableLines& lines, const std::string& sName, const void* value) {
                 lines.addOne(sName, *static_cast<const Values*>(value));
             },
             &values),
         ...);
    }

    [[nodiscard]] const std::string& text() const { return text_; }

private:
    using AddOne = void (*)(VariableLines& lines, const std::string& sName, const void* value);

    void addNext(std::string_view& names, AddOne addOne, const void* value);

    template <class Value>
    void addOne(const std::string& sName, const Value& value)
    {
        if constexpr (TellsVariables<Value>)
            value.tellVariables(*this);
        else
            text_ += dumpOfValue(sName, toVariant(value));
    }

    std::string text_;
};

/// The three texts that a dump shows of a procedure's variables. What has no variables reads "{None}".
struct ProcedureDump {
    static constexpr const char* kNone = "{None}";
    std::string parameters = kNone;
    std::string locals = kNone;
    std::string module = kNone;
};

/// Pieces of what a procedure states of its variables; they are added up. One with `kIsOfAnObject` makes it a procedure
/// of an object, as opposed to one of a module.
template <class Tell>
class StatedParameters {
public:
    static constexpr bool kIsOfAnObject = false;
    explicit StatedParameters(Tell tell) : tell_(std::move(tell)) {}
    void tell(ProcedureDump& dump) const
    {
        VariableLines lines;
        tell_(lines);
        if (!lines.text().empty())
            dump.parameters = lines.text();
    }

private:
    Tell tell_;
};

template <class Tell>
class StatedLocals {
public:
    static constexpr bool kIsOfAnObject = false;
    explicit StatedLocals(Tell tell) : tell_(std::move(tell)) {}
    void tell(ProcedureDump& dump) const
    {
        VariableLines lines;
        tell_(lines);
        if (!lines.text().empty())
            dump.locals = lines.text();
    }

private:
    Tell tell_;
};

/// The object whose procedure it is; its `dumpMembers` gives the lines of its variables.
template <class Object>
class StatedModule {
public:
    static constexpr bool kIsOfAnObject = true;
    explicit StatedModule(const Object& object) : object_(object) {}
    void tell(ProcedureDump& dump) const { dump.module = object_.dumpMembers(); }

private:
    const Object& object_;
};

template <class First, class Second>
class StatedBoth {
public:
    static constexpr bool kIsOfAnObject = First::kIsOfAnObject || Second::kIsOfAnObject;
    StatedBoth(First first, Second second) : first_(std::move(first)), second_(std::move(second)) {}
    void tell(ProcedureDump& dump) const
    {
        first_.tell(dump);
        second_.tell(dump);
    }

private:
    First first_;
    Second second_;
};

/// A procedure without variables.
struct NothingStated {
    static constexpr bool kIsOfAnObject = false;
    void tell(ProcedureDump&) const {}
};

template <class T>
concept StatedVariables = requires(const T& stated, ProcedureDump& dump)
{
    stated.tell(dump);
    requires std::is_same_v<decltype(T::kIsOfAnObject), const bool>;
};

template <class Tell>
[[nodiscard]] StatedParameters<Tell> parametersFrom(Tell tell)
{
    return StatedParameters<Tell>(std::move(tell));
}
template <class Tell>
[[nodiscard]] StatedLocals<Tell> localsFrom(Tell tell)
{
    return StatedLocals<Tell>(std::move(tell));
}
template <class Object>
[[nodiscard]] StatedModule<Object> moduleOf(const Object& object)
{
    return StatedModule<Object>(object);
}
template <StatedVariables First, StatedVariables Second>
[[nodiscard]] StatedBoth<First, Second> operator+(First first, Second second)
{
    return {std::move(first), std::move(second)};
}

} // namespace kel
