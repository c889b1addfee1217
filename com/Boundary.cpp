// SPDX-License-Identifier: MIT
#include "com/Boundary.h"

#include "com/ComPtr.h"
#include "com/Text.h"
#include "types/CaughtFailure.h"

#include <array>
#include <new>

namespace kel::com {

namespace {

constexpr std::int32_t kLowestNumber = 1;
constexpr std::int32_t kHighestNumber = 0xFFFF;
constexpr wchar_t kSource[] = L"KELReader81U";

/// The hosts' numbers for failures that Automation reports with codes of its own.
struct KnownCode {
    HRESULT code;
    std::int32_t number;
    const char* text;
};

constexpr std::array kKnownCodes{
    KnownCode{DISP_E_UNKNOWNNAME, 438, "Object doesn't support this property or method"},
    KnownCode{DISP_E_MEMBERNOTFOUND, 438, "Object doesn't support this property or method"},
    KnownCode{DISP_E_TYPEMISMATCH, 13, "Type mismatch"},
    KnownCode{DISP_E_BADVARTYPE, 13, "Type mismatch"},
    KnownCode{DISP_E_OVERFLOW, 6, "Overflow"},
    KnownCode{DISP_E_BADINDEX, 9, "Subscript out of range"},
    KnownCode{DISP_E_DIVBYZERO, 11, "Division by zero"},
    KnownCode{DISP_E_ARRAYISLOCKED, 10, "This array is fixed or temporarily locked"},
    KnownCode{DISP_E_NONAMEDARGS, 446, "Object doesn't support named arguments"},
    KnownCode{DISP_E_UNKNOWNLCID, 447, "Object doesn't support current locale setting"},
    KnownCode{DISP_E_PARAMNOTFOUND, 448, "Named argument not found"},
    KnownCode{DISP_E_PARAMNOTOPTIONAL, 449, "Argument not optional"},
    KnownCode{DISP_E_BADPARAMCOUNT, 450, "Wrong number of arguments or invalid property assignment"},
    KnownCode{E_OUTOFMEMORY, 7, "Out of memory"},
    KnownCode{E_INVALIDARG, 5, "Invalid procedure call or argument"},
    KnownCode{E_NOTIMPL, 445, "Object doesn't support this action"},
    KnownCode{E_NOINTERFACE, 430, "Class does not support Automation or does not support expected interface"},
    KnownCode{E_ACCESSDENIED, 70, "Permission denied"},
    KnownCode{RPC_E_DISCONNECTED, 462, "The remote server machine does not exist or is unavailable"},
    KnownCode{RPC_E_SERVER_DIED, 462, "The remote server machine does not exist or is unavailable"},
};

/// The number of a code that holds one: 0x800A0009.
bool holdsNumber(HRESULT code)
{
    return HRESULT_FACILITY(code) == FACILITY_CONTROL && HRESULT_CODE(code) != 0;
}

std::string textOfNumber(std::int32_t number)
{
    for (const KnownCode& known : kKnownCodes) {
        if (known.number == number)
            return known.text;
    }
    return failureText(static_cast<FailureCode>(number));
}

RuntimeFailure failureOfCode(HRESULT code, std::string text, const SourceLocation& where)
{
    if (holdsNumber(code)) {
        const std::int32_t number = HRESULT_CODE(code);
        return {number, text.empty() ? textOfNumber(number) : std::move(text), where};
    }
    for (const KnownCode& known : kKnownCodes) {
        if (known.code == code)
            return {known.number, text.empty() ? known.text : std::move(text), where};
    }
    return {code, text.empty() ? failureText(FailureCode::AutomationError) : std::move(text), where};
}

void tellFailure(REFIID iid, std::string_view text) noexcept
try {
    ComPtr<ICreateErrorInfo> information;
    if (FAILED(CreateErrorInfo(information.out())))
        return;
    const OwnedText description(newText(text));
    information->SetGUID(iid);
    information->SetSource(const_cast<LPOLESTR>(kSource));
    information->SetDescription(description.get());
    if (const auto error = queryFor<IErrorInfo>(information.get(), IID_IErrorInfo))
        SetErrorInfo(0, error.get());
} catch (...) {
    // The code has to do without a text.
}

void clear(EXCEPINFO& exception) noexcept
{
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    exception = {};
}

} // namespace

HRESULT resultCode(const RuntimeFailure& failure) noexcept
{
    if (failure.number() >= kLowestNumber && failure.number() <= kHighestNumber)
        return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, failure.number());
    return failure.number() < 0 ? failure.number() : E_FAIL;
}

HRESULT caughtResult(REFIID iid) noexcept
{
    try {
        throw;
    } catch (const ComFailure& failure) {
        return failure.code();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception&) {
        const RuntimeFailure failure = caughtFailure();
        tellFailure(iid, failure.text());
        return resultCode(failure);
    } catch (...) {
        return E_UNEXPECTED;
    }
}

RuntimeFailure failureOfCall(HRESULT code, EXCEPINFO& exception, const SourceLocation& where)
{
    if (code != DISP_E_EXCEPTION)
        return failureOfCode(code, {}, where);

    if (exception.pfnDeferredFillIn)
        exception.pfnDeferredFillIn(&exception);
    std::string text = textOf(exception.bstrDescription);
    const HRESULT told = exception.scode;
    const std::int32_t number = exception.wCode;
    clear(exception);
    if (told == 0)
        return {number, text.empty() ? textOfNumber(number) : std::move(text), where};
    return failureOfCode(told, std::move(text), where);
}

} // namespace kel::com
