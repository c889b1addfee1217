// SPDX-License-Identifier: MIT
// Faults within the library of the USB readers' maker: each becomes a report, and the host goes on. The library is the
// one of FaultyOmrApi.cpp, in the folder where this program is started.

#include "tests/windows/clients/Host.h"

#include <string>
#include <vector>

namespace {

struct Report {
    LONG number;
    LONG type;
    std::wstring text;
    std::wstring source;
};

class Faults : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        reader = newReader();
        ASSERT_TRUE(reader);
        object.property(L"Silent", silent);
        object.member(L"RaiseError", [this](const Call& c) {
            reports.push_back({c.argument(0).lVal, c.argument(1).lVal, c.argument(2).bstrVal, c.argument(3).bstrVal});
            c.give(Value(1));
            return S_OK;
        });
        EXPECT_TRUE(get(reader.get(), L"SetError", {Value(&object)}).truth());
        EXPECT_TRUE(get(reader.get(), L"LoadDefaults", {Value(kSR2300)}).truth());
    }
    void TearDown() override
    {
        get(reader.get(), L"SetError", {Value(static_cast<IDispatch*>(nullptr))});
        reader = {};
        HostTest::TearDown();
    }

    /// Starts a session with a fault; what the report of it says before the source.
    std::wstring reportOf(const std::string& fault)
    {
        reports.clear();
        SetEnvironmentVariableA("KEL_OMRAPI_FAULT", fault.c_str());
        EXPECT_FALSE(get(reader.get(), L"StartReader").truth());
        SetEnvironmentVariableA("KEL_OMRAPI_FAULT", nullptr);
        if (reports.size() != 1)
            return std::to_wstring(reports.size()) + L" reports";
        // The procedure's line stands in the report, since that of the statement is not known.
        EXPECT_TRUE(reports[0].source.starts_with(L"basSekonicSR.InitReaderSR")) << fault;
        EXPECT_TRUE(reports[0].source.find_last_of(L"123456789") != std::wstring::npos) << fault;
        EXPECT_EQ(reports[0].type, 0) << fault;
        return std::to_wstring(reports[0].number) + L" " + reports[0].text;
    }

    static constexpr int kSR2300 = 30;
    Ptr<_clsKELReader> reader;
    Value silent{false};
    HostObject object;
    std::vector<Report> reports;
};

struct Code {
    const char* code;
    const wchar_t* text;
};

constexpr Code kCodes[] = {
    {"80000001", L"Guard Page Violation"},
    {"80000002", L"Data Type Misalignment"},
    {"80000003", L"Breakpoint"},
    {"80000004", L"Single Step"},
    {"C0000005", L"Access Violation"},
    {"C0000006", L"In Page Error"},
    {"C0000008", L"Invalid Handle"},
    {"C000001D", L"Illegal Instruction"},
    {"C0000025", L"Non Continuable Exception"},
    {"C0000026", L"Invalid Disposition"},
    {"C000008C", L"Array Bounds Exceeded"},
    {"C000008D", L"Float Denormal Operand"},
    {"C000008E", L"Divide By Zero"},
    {"C000008F", L"Floating Point Inexact Result"},
    {"C0000090", L"Invalid Operation"},
    {"C0000091", L"Float Overflow"},
    {"C0000092", L"Float Stack Check"},
    {"C0000093", L"Float Underflow"},
    {"C0000094", L"Integer Divide By Zero"},
    {"C0000095", L"Integer Overflow"},
    {"C0000096", L"Privileged Instruction"},
    {"C00000FD", L"Stack Overflow"},
    {"C000013A", L"Control-C Exit"},
    {"E06D7363", L"Unknown (&HE06D7363)"},
    {"0EEDFADE", L"Unknown (&H0EEDFADE)"},
};

/// What the number of a report is made of.
LONG numberOf(const char* code)
{
    return static_cast<LONG>((std::strtoul(code, nullptr, 16) & 0x8EF) | 10000);
}

TEST_F(Faults, OfEachCodeBecomeReports)
{
    for (const Code& known : kCodes) {
        const std::wstring expected = std::to_wstring(numberOf(known.code)) + L" " + known.text;
        EXPECT_EQ(reportOf(known.code), expected) << known.code;
        EXPECT_EQ(reportOf(std::string("final ") + known.code), expected) << known.code;
    }
}

TEST_F(Faults, AreWhatTheInnermostRecordSays)
{
    EXPECT_EQ(reportOf("nested C0000094"), std::to_wstring(numberOf("C0000094")) + L" Integer Divide By Zero");
}

TEST_F(Faults, OfTheProcessorBecomeReports)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(reportOf("read"), std::to_wstring(numberOf("C0000005")) + L" Access Violation");
        EXPECT_EQ(reportOf("copy"), std::to_wstring(numberOf("C0000005")) + L" Access Violation");
        EXPECT_EQ(reportOf("jump"), std::to_wstring(numberOf("C0000005")) + L" Access Violation");
        EXPECT_EQ(reportOf("stack"), std::to_wstring(numberOf("C00000FD")) + L" Stack Overflow");
    }
}

TEST_F(Faults, ThatTheLibraryHandlesAreNobodyElses)
{
    SetEnvironmentVariableA("KEL_OMRAPI_FAULT", "own");
    EXPECT_FALSE(get(reader.get(), L"StartReader").truth());
    SetEnvironmentVariableA("KEL_OMRAPI_FAULT", nullptr);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].number, 476); // the library could not open the device
}

} // namespace
