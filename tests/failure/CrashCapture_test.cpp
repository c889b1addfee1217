// SPDX-License-Identifier: MIT
#include "failure/ObjectLife.h"
#include "failure/guarded.h"
#include "failure/modvbCodeShieldSupport.h"
#include "platform/NamedObjects.h"
#include "tests/failure/FailureTest.h"
#include "tests/support/BuiltFiles.h"

#include <gmock/gmock.h>
#include <thread>

namespace kel::test {
namespace {

using testing::ElementsAre;

class RecordingLibrary : public ErrorLibraryObject {
public:
    explicit RecordingLibrary(std::vector<CrashReport>& reports) : reports_(reports) {}
    void ErrorHandler(const CrashReport& report) override
    {
        reports_.push_back(report);
        if (onReport)
            onReport();
    }
    Int32 Action() override
    {
        ++actionsRead;
        return 7;
    }

    inline static int actionsRead = 0;
    std::function<void()> onReport;

private:
    std::vector<CrashReport>& reports_;
};

class CrashCapture : public FailureTest {
protected:
    CrashCapture()
    {
        vbcsForgetInitialisation();
        capturedFailure() = {};
        RecordingLibrary::actionsRead = 0;
    }
    ~CrashCapture() override
    {
        registerErrorLibrary(kErrorLibraryClass, {});
        setDebuggerFactory({});
        vbcsForgetInitialisation();
    }

    void registerLibrary(std::function<void()> onReport = {})
    {
        registerErrorLibrary(kErrorLibraryClass, [this, onReport] {
            auto library = std::make_shared<RecordingLibrary>(reports);
            library->onReport = onReport;
            return library;
        });
    }

    static RuntimeFailure raised(const std::function<void()>& body)
    {
        try {
            body();
        } catch (const RuntimeFailure& failure) {
            return failure;
        }
        ADD_FAILURE() << "nothing was raised";
        return RuntimeFailure(0, "");
    }

    std::vector<CrashReport> reports;
};

const char* const kLastResort = "KELReader81U has encountered a problem. We are sorry for the inconvenience.\r\n\r\n";

TEST_F(CrashCapture, ShowsALastResortBoxAndRaisesTheFailureOnceMore)
{
    const RuntimeFailure original(FailureCode::SubscriptOutOfRange);
    const RuntimeFailure failure = raised([&] { captured("clsKELReader.HelpID", [&] { throw original; }); });
    EXPECT_EQ(failure.number(), 9);
    EXPECT_EQ(failure.text(), "Subscript out of range");
    EXPECT_EQ(failure.source(), "KELReader81U");
    EXPECT_EQ(failure.where().line(), original.where().line());
    EXPECT_THAT(boxes(),
                ElementsAre(ShownBox{std::string(kLastResort) +
                                         "Module: clsKELReader\r\nProcedure: HelpID\r\n"
                                         "Line Number: " +
                                         std::to_string(original.where().line()) + "\r\n\r\nSubscript out of range (9)",
                                     BoxIcon::None, BoxButtons::Ok, "Application Error"}));
    EXPECT_EQ(capturedFailure().vbcsErrorNumber, 9);
    EXPECT_EQ(capturedFailure().vbcsErrorDescription, "Subscript out of range");
    EXPECT_EQ(capturedFailure().vbcsErrorLine, static_cast<Int32>(original.where().line()));
    EXPECT_EQ(capturedFailure().vbcsErrorSource, "KELReader81U");
}

TEST_F(CrashCapture, GivesTheResultWhereNothingFails)
{
    EXPECT_EQ(captured("m.p", [] { return 5; }), 5);
    int number = 1;
    captured("m.p", [&]() -> int& { return number; }) = 2;
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(boxes().empty());
}

TEST_F(CrashCapture, TellsTheErrorLibraryOfEveryVariable)
{
    registerLibrary();
    const auto oError = registered();
    Int32 lSleepTime = 50;
    const MarkArray iSide1Arr;
    const std::string sReply_("F\0", 2);
    const kelRecognitionType eMode = kelRecognitionTypePage;
    const RuntimeFailure original(380, "Invalid property value", "MSComm", SourceLocation());
    const int procedure = __LINE__ + 2;
    raised([&] {
        captured("KELReader81 - basScantron.SendCommandST",
                 KEL_PARAMETERS(lSleepTime, eMode) + KEL_LOCALS(iSide1Arr, sReply_), [&] { throw original; });
    });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].number, 380);
    EXPECT_EQ(reports[0].component, "KELReader81U");
    EXPECT_EQ(reports[0].module, "basScantron");
    EXPECT_EQ(reports[0].procedure, "SendCommandST");
    EXPECT_EQ(reports[0].description, "Invalid property value");
    EXPECT_EQ(reports[0].line, procedure);
    EXPECT_EQ(reports[0].version, builtVersion());
    EXPECT_EQ(reports[0].variables, "<Variables>\r\n"
                                    "<LocalVariables>\r\n"
                                    "    <iSide1Arr>\r\n"
                                    "      {UnInitialised Array}\r\n"
                                    "    </iSide1Arr>\r\n"
                                    "    <sReply>F{Null}</sReply>\r\n"
                                    "</LocalVariables>\r\n"
                                    "<ModuleVariables>\r\n"
                                    "{None}</ModuleVariables>\r\n"
                                    "<GlobalVariables>\r\n"
                                    "    <oError>{RecordingErrorObject}</oError>\r\n"
                                    "    <bOpCancelled>False</bOpCancelled>\r\n"
                                    "    <vbcsComponentID>0</vbcsComponentID>\r\n"
                                    "    <vbcsHasInitialised>False</vbcsHasInitialised>\r\n"
                                    "    <vbcsErrorNumber>380</vbcsErrorNumber>\r\n"
                                    "    <vbcsErrorDescription>Invalid property value</vbcsErrorDescription>\r\n"
                                    "    <vbcsErrorLine>" +
                                        std::to_string(procedure) +
                                        "</vbcsErrorLine>\r\n"
                                        "    <vbcsErrorSource>MSComm</vbcsErrorSource>\r\n"
                                        "</GlobalVariables>\r\n"
                                        "</Variables>\r\n"
                                        "<Parameters>\r\n"
                                        "    <lSleepTime>50</lSleepTime>\r\n"
                                        "    <eMode>{Cannot dump external UDTs}</eMode>\r\n"
                                        "</Parameters>");
    EXPECT_EQ(RecordingLibrary::actionsRead, 1);
    EXPECT_TRUE(boxes().empty());
    EXPECT_TRUE(oError->reports.empty());
}

TEST_F(CrashCapture, SaysNoneWhereAProcedureHasNoVariables)
{
    registerLibrary();
    raised(
        [&] { captured("m.p", KEL_PARAMETERS() + KEL_LOCALS(), [] { throw RuntimeFailure(FailureCode::Overflow); }); });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_TRUE(reports[0].variables.starts_with("<Variables>\r\n<LocalVariables>\r\n{None}</LocalVariables>\r\n"));
    EXPECT_TRUE(reports[0].variables.ends_with("</Variables>\r\n<Parameters>\r\n{None}</Parameters>"));
}

TEST_F(CrashCapture, AsksAnObjectForItsOwnVariables)
{
    struct Module {
        std::string dumpMembers() const { return "    <kelWindows>x</kelWindows>\r\n"; }
    };
    registerLibrary();
    const Module module;
    raised([&] { captured("m.p", moduleOf(module), [] { throw RuntimeFailure(FailureCode::Overflow); }); });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(
        reports[0].variables.find("<ModuleVariables>\r\n    <kelWindows>x</kelWindows>\r\n</ModuleVariables>\r\n"),
        std::string::npos);
}

TEST_F(CrashCapture, LeavesOutAVariableThatCannotBeLookedAt)
{
    struct Unreadable {
        operator std::string_view() const { throw RuntimeFailure(FailureCode::TypeMismatch); }
    };
    registerLibrary();
    const Unreadable bad;
    const int good = 1;
    raised([&] { captured("m.p", KEL_PARAMETERS(bad, good), [] { throw RuntimeFailure(FailureCode::Overflow); }); });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_TRUE(reports[0].variables.ends_with("<Parameters>\r\n    <good>1</good>\r\n</Parameters>"));
}

TEST_F(CrashCapture, BuildsNothingWhileTheFirstTrapDealsWithAFailure)
{
    registerLibrary();
    const auto oError = registered();
    int looks = 0;
    const auto counting = localsFrom([&](VariableLines&) { ++looks; });
    guarded("KELReader81 - m.p", counting, [] { throw RuntimeFailure(FailureCode::Overflow); });
    EXPECT_EQ(looks, 0);
    EXPECT_TRUE(reports.empty());
    EXPECT_EQ(oError->reports.size(), 1U);
}

TEST_F(CrashCapture, FollowsWhatEscapesTheFirstTrapAndTheCallerReportsIt)
{
    registerLibrary();
    const auto oError = registered();
    bool wentOn = false;
    guarded("KELReader81 - outer.p", [&] {
        guarded(
            "KELReader81 - inner.q", [] { throw RuntimeFailure(FailureCode::Overflow); },
            [](const RuntimeFailure&) -> bool { throw RuntimeFailure(FailureCode::TypeMismatch); });
        wentOn = true;
    });
    EXPECT_FALSE(wentOn);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].module, "inner");
    EXPECT_EQ(reports[0].procedure, "q");
    EXPECT_EQ(reports[0].number, 13);
    ASSERT_EQ(oError->reports.size(), 1U);
    EXPECT_EQ(oError->reports[0].ErrorNumber, 13);
    EXPECT_TRUE(oError->reports[0].ErrorSource.starts_with("outer.p"));
}

TEST_F(CrashCapture, IsToldOfEveryProcedureOnTheWay)
{
    registerLibrary();
    raised([] {
        captured("outer.p",
                 [] { captured("inner.q", [] { throw RuntimeFailure(5, "x", "Host", SourceLocation()); }); });
    });
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].procedure, "q");
    EXPECT_EQ(reports[1].procedure, "p");
    EXPECT_EQ(reports[1].number, 5);
}

TEST_F(CrashCapture, IgnoresAnErrorLibraryThatFails)
{
    registerLibrary([] { throw RuntimeFailure(440, "library"); });
    EXPECT_EQ(raised([] { captured("m.p", [] { throw RuntimeFailure(FailureCode::Overflow); }); }).number(), 6);
    EXPECT_EQ(reports.size(), 1U);
    EXPECT_EQ(RecordingLibrary::actionsRead, 0);
    EXPECT_TRUE(boxes().empty());
    registerErrorLibrary(kErrorLibraryClass, []() -> std::shared_ptr<ErrorLibraryObject> { throw std::bad_alloc(); });
    EXPECT_EQ(raised([] { captured("m.p", [] { throw RuntimeFailure(FailureCode::Overflow); }); }).number(), 6);
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(CrashCapture, IgnoresABoxThatCannotBeShown)
{
    platform.screen_.onBox = [] { throw std::runtime_error("no screen"); };
    EXPECT_EQ(raised([] { captured("m.p", [] { throw RuntimeFailure(FailureCode::Overflow); }); }).number(), 6);
}

TEST_F(CrashCapture, RaisesItsOwnFailureWhateverTheLibraryDoesMeanwhile)
{
    registerLibrary([this] {
        if (reports.size() == 1)
            raised([] { captured("other.r", [] { throw RuntimeFailure(91, "other"); }); });
    });
    const RuntimeFailure failure = raised([] { captured("m.p", [] { throw RuntimeFailure(FailureCode::Overflow); }); });
    EXPECT_EQ(reports.size(), 2U);
    EXPECT_EQ(failure.number(), 6);
    EXPECT_EQ(failure.text(), "Overflow");
    EXPECT_EQ(capturedFailure().vbcsErrorNumber, 6);
}

TEST_F(CrashCapture, KeepsTheFailureOfEachThreadApart)
{
    registerLibrary();
    raised([] { captured("m.p", [] { throw RuntimeFailure(FailureCode::Overflow); }); });
    Int32 there = -1;
    std::thread([&] { there = capturedFailure().vbcsErrorNumber; }).join();
    EXPECT_EQ(there, 0);
    EXPECT_EQ(capturedFailure().vbcsErrorNumber, 6);
}

// --- Start-up and the debugger

const char* const kDebuggerKey = R"(Software\Innovasys\vbCodeShield\Debugger\)";

/// Plays the debugger: writes down what is sent.
class RecordingDebugger : public DebuggerIPC {
public:
    Int32 Send(Int32 lCode, const std::string& sText, const Variant& vData, Int32 lArg1, Int32 lArg2) override
    {
        sent.push_back(std::to_string(lCode) + " " + sText + " " + std::to_string(lArg1) + " " + std::to_string(lArg2));
        objects.push_back(std::get<std::int64_t>(vData));
        return 17;
    }
    Boolean HasDebugSession() override { return hasSession; }

    std::vector<std::string> sent;
    std::vector<std::int64_t> objects;
    Boolean hasSession = True;
};

class DebugSession : public CrashCapture {
protected:
    std::shared_ptr<RecordingDebugger> installed(const std::string& count)
    {
        platform.registry_.text(kelReaderRegistryKeyCurrentUser, kDebuggerKey, "Count", count);
        auto debugger = std::make_shared<RecordingDebugger>();
        setDebuggerFactory([this, debugger](IVBCSClient& asked) {
            client = &asked;
            return debugger;
        });
        return debugger;
    }

    IVBCSClient* client = nullptr;
};

TEST_F(DebugSession, StaysDormantWithoutTheKey)
{
    const auto debugger = std::make_shared<RecordingDebugger>();
    setDebuggerFactory([&](IVBCSClient&) { return debugger; });
    const ObjectLife object("clsKELReader,1");
    EXPECT_EQ(vbcsHasInitialised(), True);
    EXPECT_EQ(hasDebugSession(), False);
    EXPECT_EQ(vbcsSend(500, "x", EmptyValue{}, 0, 0), -10);
    EXPECT_TRUE(debugger->sent.empty());
}

TEST_F(DebugSession, StaysDormantForACountOfNothing)
{
    for (const char* count : {"0", "", "none", "0 of 1"}) {
        const auto debugger = installed(count);
        vbcsForgetInitialisation();
        vbcsInitialise();
        EXPECT_EQ(vbcsSend(1, "x", EmptyValue{}, 0, 0), -10) << count;
    }
    EXPECT_EQ(client, nullptr);
}

TEST_F(DebugSession, SendsWhatItIsGiven)
{
    const auto debugger = installed("1 installed");
    vbcsInitialise();
    EXPECT_EQ(hasDebugSession(), True);
    EXPECT_EQ(vbcsSend(3, "text", std::int64_t{4}, 5, 6), 17);
    EXPECT_THAT(debugger->sent, ElementsAre("3 text 5 6"));
}

TEST_F(DebugSession, IsConnectedWithoutASessionToo)
{
    const auto debugger = installed("2");
    debugger->hasSession = False;
    vbcsInitialise();
    {
        const ObjectLife object("clsKELReader,1");
    }
    EXPECT_TRUE(debugger->sent.empty());
    EXPECT_EQ(vbcsSend(3, "text", std::int64_t{4}, 5, 6), 17);
}

TEST_F(DebugSession, LearnsOfEachObjectButTheFirst)
{
    const auto debugger = installed("1");
    const ObjectLife first("clsKELReader,1");
    EXPECT_TRUE(debugger->sent.empty());
    {
        const ObjectLife second("frmComm,3");
        EXPECT_THAT(debugger->sent, ElementsAre("500 frmComm,3 2000 0"));
        EXPECT_EQ(debugger->objects.back(), reinterpret_cast<std::intptr_t>(&second));
    }
    EXPECT_THAT(debugger->sent, ElementsAre("500 frmComm,3 2000 0", "501 frmComm,3 2000 0"));
}

TEST_F(DebugSession, LearnsOfAnObjectsEndOnce)
{
    const auto debugger = installed("1");
    vbcsInitialise();
    {
        ObjectLife object("clsKELReaderProfile,1");
        const ObjectLife copy(object);
        object.ends();
    }
    EXPECT_THAT(debugger->sent, ElementsAre("500 clsKELReaderProfile,1 2000 0", "500 clsKELReaderProfile,1 2000 0",
                                            "501 clsKELReaderProfile,1 2000 0", "501 clsKELReaderProfile,1 2000 0"));
}

TEST_F(DebugSession, SurvivesADebuggerThatFails)
{
    installed("1");
    setDebuggerFactory([](IVBCSClient&) -> std::shared_ptr<DebuggerIPC> { throw std::runtime_error("no debugger"); });
    vbcsInitialise();
    EXPECT_EQ(vbcsHasInitialised(), True);
    EXPECT_EQ(vbcsSend(1, "", EmptyValue{}, 0, 0), -10);
}

TEST_F(DebugSession, AnswersTheDebuggersQuestions)
{
    platform.process_.commandLine = "\"/opt/my host\"  /L=English x";
    installed("1");
    vbcsInitialise();
    ASSERT_NE(client, nullptr);
    const auto answer = [&](Int32 lQuery) {
        Variant vValue;
        Int32 lStatus = 0;
        client->IVBCSClient_OnQuery(lQuery, vValue, lStatus);
        return std::to_string(lStatus) + " " + valueText(vValue);
    };
    EXPECT_EQ(answer(1), "1 KELReader81U");
    EXPECT_EQ(answer(2), "1 " + platform.process_.ComponentFile().string());
    EXPECT_EQ(answer(3), "1 " + builtVersion());
    EXPECT_EQ(answer(4), "1 /L=English x");
    EXPECT_EQ(answer(0), "-6 ");
    EXPECT_EQ(answer(5), "-6 ");
}

} // namespace
} // namespace kel::test
