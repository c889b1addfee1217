// SPDX-License-Identifier: MIT
#include "station/StationFile.h"

#include "host/Ports.h"
#include "reader/clsKELReader.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "store/Pauses.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

TEST(Pauses, GrowToTheLongestAndBeginAnew)
{
    Pauses pauses(1s, 5s);
    std::array<Pauses::Time, 5> taken{};
    for (Pauses::Time& pause : taken)
        pause = pauses.next();
    EXPECT_THAT(taken, ElementsAre(1s, 2s, 4s, 5s, 5s));
    pauses.reset();
    EXPECT_EQ(pauses.next(), 1s);
}

class AStationFile : public testing::Test {
protected:
    [[nodiscard]] StationFile read(const std::string& text) const
    {
        return readStationFile(folder_.write("station.json", text));
    }

    SimulatedPlatform machine_; // with ports and settings of its own
    const PlatformScope scope_{machine_};
    TemporaryFolder folder_;
};

TEST_F(AStationFile, SaysWhatTheReadersAre)
{
    folder_.write("form.json", R"({"side1Rows": [63], "side1Cols": [48]})");
    const StationFile file = read(R"({"station": "hall", "store": "hall.db", "batch": "monday",
        "retry": {"first": 0.5, "longest": 4},
        "readers": [
            {"name": "left", "model": 13, "device": "/dev/ttyUSB0", "form": "form.json",
             "set": {"SleepTime": 7, "Printer.Enabled": true}, "rejectBlank": true, "print1": "{sheet}",
             "printDistance": 12},
            {"name": "right", "model": "GradeMaster", "port": 2, "batch": "tuesday"}]})");
    EXPECT_THAT(file.faults, IsEmpty());
    EXPECT_EQ(file.plan.station, "hall");
    EXPECT_EQ(file.plan.store, folder_.path() / "hall.db");
    EXPECT_EQ(file.plan.socket, folder_.path() / "hall.db-socket");
    EXPECT_EQ(file.plan.firstPause, 500ms);
    EXPECT_EQ(file.plan.longestPause, 4s);
    ASSERT_THAT(file.plan.readers, SizeIs(2));
    const ReaderPlan& left = file.plan.readers[0];
    EXPECT_EQ(left.batch, "monday");
    EXPECT_EQ(left.request.device, "/dev/ttyUSB0");
    EXPECT_EQ(left.request.form.side1Rows, std::vector<Int16>{63});
    EXPECT_THAT(left.request.assignments, ElementsAre("SleepTime=7", "Printer.Enabled=true"));
    EXPECT_TRUE(left.request.rejectBlank);
    EXPECT_EQ(left.request.print.print1, "{sheet}");
    EXPECT_EQ(left.request.print.distance, 12);
    EXPECT_EQ(file.plan.readers[1].batch, "tuesday");
    EXPECT_EQ(file.plan.readers[1].request.port, 2);
}

TEST_F(AStationFile, SaysWhereTheSheetsGo)
{
    for (const char* name : {"ca.pem", "cert.pem", "key.pem", "hall.creds"})
        std::filesystem::permissions(
            folder_.write(name, "-----BEGIN NATS USER JWT-----\nx\n-----BEGIN USER NKEY SEED-----\nx\n"),
            std::filesystem::perms(0640));
    const auto text = [](const std::string& stream) {
        return R"({"store": "hall.db", "stream": )" + stream +
               R"(, "readers": [{"name": "left", "model": 13, "device": "/dev/x"}]})";
    };
    const std::string secure = text(R"({"servers": ["tls://a:4222", "b"], "name": "HALLS", "subject": "north.halls",
        "replicas": 3, "authority": "ca.pem", "certificate": "cert.pem", "key": "key.pem",
        "credentials": "hall.creds"})");
    // A file that names secrets is one.
    EXPECT_THAT(read(secure).faults,
                ElementsAre(HasSubstr("stream cannot be used: The file " + folder_.file("station.json") +
                                      " is secret, but every user may read it")));
    std::filesystem::permissions(folder_.file("station.json"), std::filesystem::perms(0640));
    const StationFile file = readStationFile(folder_.file("station.json"));
    EXPECT_THAT(file.faults, IsEmpty());
    ASSERT_TRUE(file.plan.stream);
    EXPECT_THAT(file.plan.stream->servers, ElementsAre("tls://a:4222", "b"));
    EXPECT_EQ(file.plan.stream->stream, "HALLS");
    EXPECT_EQ(file.plan.stream->subject, "north.halls");
    EXPECT_EQ(file.plan.stream->replicas, 3);
    EXPECT_EQ(file.plan.stream->authority, folder_.path() / "ca.pem");
    EXPECT_EQ(file.plan.stream->certificate, folder_.path() / "cert.pem");
    EXPECT_EQ(file.plan.stream->key, folder_.path() / "key.pem");
    EXPECT_EQ(file.plan.stream->credentials, folder_.path() / "hall.creds");

    std::filesystem::permissions(folder_.file("key.pem"), std::filesystem::perms(0644));
    EXPECT_THAT(readStationFile(folder_.file("station.json")).faults,
                ElementsAre(HasSubstr("key.pem is secret, but every user may read it")));
    std::filesystem::remove(folder_.file("station.json"));
    EXPECT_THAT(read(text(R"({"servers": ["nats://me:secret@a:4222"]})")).faults,
                ElementsAre(HasSubstr("is secret, but every user may read it")));
    EXPECT_THAT(read(text(R"({"servers": []})")).faults, ElementsAre(HasSubstr("The stream has no server")));
    EXPECT_THAT(read(text(R"({"servers": ["http://a"]})")).faults,
                ElementsAre(HasSubstr("'http://a' is not a server")));
    EXPECT_THAT(read(text(R"({"servers": ["a"], "name": "a.b"})")).faults,
                ElementsAre(HasSubstr("cannot be the name of a stream")));
    EXPECT_THAT(read(text(R"({"servers": ["a"], "subject": "a.*"})")).faults,
                ElementsAre(HasSubstr("cannot begin a subject")));
    EXPECT_THAT(read(text(R"({"servers": ["a"], "credentials": "none"})")).faults,
                ElementsAre(HasSubstr("none cannot be read"), HasSubstr("is secret, but every user may read it")));
    EXPECT_THAT(read(text(R"({"servers": ["a"], "certificate": "cert.pem"})")).faults,
                ElementsAre(HasSubstr("it needs both")));
    EXPECT_THAT(read(text(R"({"servers": ["a"], "replicas": 7})")).faults, ElementsAre(HasSubstr("stream.replicas")));
    EXPECT_THAT(read(text(R"({"server": "a"})")).faults,
                ElementsAre(HasSubstr("the nearest is servers"), HasSubstr("The stream has no server")));
}

TEST_F(AStationFile, NeedsNoReadersToSendWhatAStoreHolds)
{
    const std::string without = "the file names no readers; a station without readers needs a \"stream\", to which it "
                                "sends what its store holds.";
    EXPECT_THAT(read(R"({"store": "hall.db"})").faults, ElementsAre(without));
    EXPECT_THAT(read(R"({"store": "hall.db", "readers": []})").faults, ElementsAre(without));
    EXPECT_THAT(read(R"({"store": "hall.db", "stream": {"servers": ["a"]}, "readers": []})").faults,
                ElementsAre("store does not exist; a station without readers sends what a store holds."));
    folder_.write("hall.db", "");
    for (const char* readers : {R"(, "readers": [])", ""}) {
        const StationFile file =
            read(R"({"store": "hall.db", "stream": {"servers": ["a"]})" + std::string(readers) + "}");
        EXPECT_THAT(file.faults, IsEmpty());
        EXPECT_THAT(file.plan.readers, IsEmpty());
    }
}

TEST_F(AStationFile, IsToldAllThatIsWrongAtOnce)
{
    const StationFile file = read(R"({"station": "hall x", "stor": "hall.db", "retry": {"first": 2, "longest": 1},
        "readers": [
            {"name": "left", "model": 99, "simulate": {"count": -3, "seed": "x"}, "set": {"SleepTim": 1, "Port": "x"}},
            {"name": "a", "model": 13, "device": "/dev/nothing", "port": 17},
            {"name": "b", "model": 13, "device": "/dev/nothing", "port": 1},
            {"name": "b", "model": 13}, 7,
            {"name": "c", "model": 13, "port": 2}, {"name": "d", "model": 13, "port": 2},
            {"model": 13, "form": "none.json"},
            {"name": "e", "model": 13, "trace": "none/trace", "simulate": {"sheets": "none.json"}},
            {"name": "f", "model": 13, "name": "g", "simulate": {"faults": ["jam@sheet=2", "bogus=1", "x"],
             "settings": ["a"]}},
            {"name": "h", "model": 13, "device": "/dev/null"},
            {"name": "i", "model": 13, "device": "/dev/../dev/null"}]})");
    EXPECT_THAT(
        file.faults,
        ElementsAre(
            "readers[9].name is there twice; remove one of them.", HasSubstr("station has to be 1 to 64 letters"),
            "the file has an unknown key \"stor\"; the nearest is store.",
            HasSubstr("readers[0].model: There is no model '99'"),
            HasSubstr("readers[0].simulate.count has to be a whole number"),
            HasSubstr("readers[0].simulate.seed has to be a whole number"),
            HasSubstr("readers[0].set.SleepTim: The reader has no property 'SleepTim'"),
            HasSubstr("readers[0].set.Port: 'x' does not fit Port"),
            HasSubstr("readers[1].port has to be a whole number from 1 to 16"),
            HasSubstr("readers[1] names more than one of \"port\", \"device\" and \"simulate\""),
            HasSubstr("readers[2] names more than one of \"port\", \"device\" and \"simulate\""),
            HasSubstr("readers[3] does not say where it is"),
            "readers[3].name is \"b\", which another reader has, too.", "readers[4] has to be an object, not a number.",
            "readers[6].port is port 2, which the reader \"c\" has, too (readers[5].port).",
            HasSubstr("readers[7].form: The form file "), "readers[7] has no \"name\".",
            HasSubstr("readers[7] does not say where it is"), HasSubstr("readers[8].trace is to be in the folder "),
            HasSubstr("readers[8].simulate.sheets: The sheet file "), HasSubstr("readers[9].simulate.faults[1]: "),
            HasSubstr("readers[9].simulate.faults[2]: "), HasSubstr("readers[9].simulate.settings[0]: "),
            "readers[11].device is /dev/../dev/null, which the reader \"h\" has, too (readers[10].device, /dev/null).",
            "the file names no \"store\".", "retry.first is longer than \"longest\"."));
}

TEST_F(AStationFile, IsToldOfALineThatTwoReadersHaveByDifferentNames)
{
    const std::string device = folder_.write("ttyS5", "");
    const std::string link = folder_.file("by-id");
    std::filesystem::create_symlink("ttyS5", link);
    ASSERT_TRUE(host::mapPort(3, device));
    ASSERT_TRUE(host::mapPort(4, link));
    const StationFile file = read(R"({"store": "x", "readers": [
        {"name": "A", "model": 13, "port": 3},
        {"name": "B", "model": 13, "device": ")" +
                                  device + R"("},
        {"name": "C", "model": 13, "device": ")" +
                                  link + R"("},
        {"name": "D", "model": 13, "port": 4},
        {"name": "E", "model": 13, "port": 5}]})");
    const std::string first = ", which the reader \"A\" has, too (readers[0].port, port 3 (" + device + ")).";
    EXPECT_THAT(file.faults,
                ElementsAre("readers[1].device is " + device + first, "readers[2].device is " + link + first,
                            "readers[3].port is port 4 (" + link + ")" + first));
}

TEST_F(AStationFile, IsToldOfAPortThatIsNamedInSettingsAlone)
{
    clsKELReader saved;
    saved.ReaderType(kelReaderTypeScantronScanMark2500);
    saved.Port(3);
    ASSERT_TRUE(saved.SaveSettings(kelReaderRegistryKeyCurrentUser, "Software\\Hall"));
    EXPECT_THAT(read(R"({"store": "x", "readers": [
        {"name": "A", "model": 13, "port": 3}, {"name": "B", "settings": "HKCU\\Software\\Hall"}]})")
                    .faults,
                ElementsAre("readers[1] is port 3, which the reader \"A\" has, too (readers[0].port)."));
}

TEST_F(AStationFile, IsToldAllThatIsWrongWithItsStreamItsPageAndItsFolders)
{
    const StationFile file = read(R"({"store": "none/hall.db", "socket": "none/socket",
        "retry": {"first": "x", "longest": 0},
        "stream": {"servers": ["a", "http://b", 7], "name": "a.b", "subject": "a.*", "authority": "no.pem",
                   "credentials": "no.creds", "replicas": 9},
        "page": {"port": "x", "passwords": "people", "certificate": "no.pem", "key": "no.key"},
        "readers": [{"name": "left", "model": 13, "port": 1}]})");
    EXPECT_THAT(file.faults,
                ElementsAre(HasSubstr("retry.first has to be a number of seconds"),
                            HasSubstr("retry.longest has to be 0.01 to 86400 seconds"),
                            HasSubstr("stream.servers[2] has to be a text"), HasSubstr("stream.replicas has to be"),
                            HasSubstr("stream.servers[1] cannot be used: The text 'http://b'"),
                            HasSubstr("stream.name cannot be used: "), HasSubstr("stream.subject cannot be used: "),
                            HasSubstr("stream.authority cannot be used: "),
                            HasSubstr("stream.credentials cannot be used: "),
                            HasSubstr("stream cannot be used: The file "), HasSubstr("page.port has to be"),
                            HasSubstr("page: "), HasSubstr("page: "), HasSubstr("store is to be in the folder "),
                            HasSubstr("socket is to be in the folder ")));
}

TEST_F(AStationFile, SaysWhereItsPageAndItsMetricsAre)
{
    const std::string readers = R"(, "readers": [{"name": "left", "model": 13, "port": 1}]})";
    const StationFile file = read(R"({"store": "hall.db", "page": {"port": 8181}, "metrics": {"port": 0})" + readers);
    EXPECT_THAT(file.faults, IsEmpty());
    ASSERT_TRUE(file.plan.page && file.plan.metrics);
    EXPECT_EQ(file.plan.page->port, 8181);
    EXPECT_EQ(file.plan.page->address, "127.0.0.1");
    EXPECT_EQ(file.plan.metrics->port, 0);
    EXPECT_THAT(read(R"({"store": "x", "page": {"address": "localhost", "certificate": "a", "port": 70000},
                         "metrics": {"address": "0.0.0.0"})" +
                     readers)
                    .faults,
                ElementsAre(HasSubstr("page.address has to be an IP address"),
                            HasSubstr("page.port has to be a whole number from 0 to 65535"),
                            "page has one of \"certificate\" and \"key\"; it needs both.",
                            HasSubstr("metrics has an unknown key \"address\""), "metrics has no \"port\"."));
    EXPECT_THAT(read(R"({"store": "x", "page": {"port": 8181}, "metrics": {"port": 8181})" + readers).faults,
                ElementsAre("metrics.port is the port of the page; give it another one."));
    for (const char* address : {"0.0.0.0", "192.168.1.2", "::", "fe80::1"})
        EXPECT_THAT(
            read(R"({"store": "x", "page": {"port": 1, "address": ")" + std::string(address) + "\"}" + readers).faults,
            ElementsAre(testing::StartsWith("page can be reached from other machines at ")))
            << address;
    for (const char* address : {"127.0.0.1", "127.1.2.3", "::1"})
        EXPECT_THAT(
            read(R"({"store": "x", "page": {"port": 1, "address": ")" + std::string(address) + "\"}" + readers).faults,
            IsEmpty())
            << address;
}

TEST_F(AStationFile, ThatIsNoneIsOneSentence)
{
    EXPECT_THAT(read("{").faults, ElementsAre(HasSubstr("the file is not JSON: ")));
    EXPECT_THAT(read("[]").faults, ElementsAre("the file has to be an object, not an array."));
    EXPECT_THAT(readStationFile(folder_.file("none")).faults, ElementsAre(HasSubstr("The station file ")));
}

TEST_F(AStationFile, HasASchemaWithTheSameWords)
{
    const nlohmann::json schema = nlohmann::json::parse(std::ifstream(testData() + "/../station/station.schema.json"));
    const auto keysOf = [](const nlohmann::json& properties) {
        std::vector<std::string> keys;
        for (const auto& [key, value] : properties.items())
            keys.push_back(key);
        return keys;
    };
    EXPECT_THAT(stationKeys(), UnorderedElementsAreArray(keysOf(schema["properties"])));
    EXPECT_THAT(stationReaderKeys(), UnorderedElementsAreArray(keysOf(schema["$defs"]["reader"]["properties"])));
}

} // namespace
} // namespace kel::test
