#include "common/machine_bundle.h"
#include "tests/support/told_clock.h"

#include <gtest/gtest.h>

using namespace pwr;

namespace {

using Names = std::vector<std::string>;

// One line per answer, so that a case is a path and what is to be seen there.
std::string show(const MachineFiles& machine, const std::string& path) {
    Names names;
    std::string text;
    if (machine.list(path, names) == MachineStatus::OK) {
        for (const std::string& name : names) {
            text += (text.empty() ? "" : " ") + name;
        }
        return "folder: " + text;
    }
    const MachineStatus status = machine.read(path, text);
    return status == MachineStatus::OK ? text : toText(status);
}

const char* const TEXT = R"(tarnwell-machine 1
# a remark
@100
line /proc/uptime 12.5
file /proc/two 10
line one
2
file /proc/empty 0

line /a/cpu10/x ten
line /a/cpu9/x nine
line /odd%20name/100%25 yes
link /links/relative ../a/cpu9
link /links/absolute /a/cpu10/x
link /links/loop loop
link /links/nowhere ../b
link /class/eth0 ../../devices/eth0
line /class/eth0/mtu 1500
fail /secret denied
fail /asleep no-answer
fail /broken failed
@200
line /proc/uptime 13.5
gone /a/cpu9
line /secret open
@300
line /a/cpu9/x back
gone /proc/uptime
end
)";

class MachineBundleTest : public ::testing::Test {
protected:
    MachineBundleTest() : machine(MachineBundle::parse("test", TEXT, reason)) {}
    void SetUp() override { ASSERT_TRUE(machine) << reason; }

    std::string reason;
    tests::ToldClock clock{100};
    std::unique_ptr<MachineBundle> machine;
};

TEST_F(MachineBundleTest, answersLikeFiles) {
    struct Case {
        const char* path;
        const char* seen;
    };
    for (const Case& c : {
             Case{"/", "folder: a asleep broken class links odd name proc secret"},
             {"/proc/uptime", "12.5\n"},
             {"/proc/two", "line one\n2"},
             {"/proc/empty", ""},
             {"/proc//uptime", "12.5\n"},
             {"/proc/uptime/x", "missing"},
             {"/nothing", "missing"},
             {"/a", "folder: cpu9 cpu10"},
             {"/odd name/100%", "yes\n"},
             {"/links/relative", "folder: x"},
             {"/links/relative/x", "nine\n"},
             {"/links/absolute", "ten\n"},
             {"/links/loop", "missing"},
             {"/links/nowhere", "missing"},
             {"/a/../a/cpu9/x", "nine\n"},
             {"/../../proc/uptime", "12.5\n"},
             {"/class/eth0/mtu", "1500\n"},
             {"/secret", "denied"},
             {"/asleep", "no-answer"},
             {"/broken", "failed"},
         }) {
        EXPECT_EQ(c.seen, show(*machine, c.path)) << c.path;
    }
    std::string target;
    EXPECT_EQ(MachineStatus::OK, machine->readLink("/class/eth0", target));
    EXPECT_EQ("../../devices/eth0", target);
    EXPECT_EQ(MachineStatus::MISSING, machine->readLink("/proc/uptime", target));
    EXPECT_TRUE(machine->exists("/secret"));
    EXPECT_TRUE(machine->exists("/links/nowhere")) << "a link is there even when its target is not";
    EXPECT_FALSE(machine->exists("/links/other"));
}

TEST_F(MachineBundleTest, contentsAreThoseOfTheMoment) {
    MachineStatus status = MachineStatus::FAILED;
    const std::unique_ptr<MachineFile> uptime = machine->open("/proc/uptime", status);
    const std::unique_ptr<MachineFile> nine = machine->open("/a/cpu9/x", status);
    ASSERT_TRUE(uptime && nine);
    EXPECT_FALSE(machine->open("/secret", status));
    EXPECT_EQ(MachineStatus::DENIED, status);
    struct Case {
        pw_u64_t now;
        const char *uptime, *nine, *folder, *secret;
    };
    for (const Case& c : {
             Case{0, "12.5\n", "nine\n", "folder: cpu9 cpu10", "denied"},
             {199, "12.5\n", "nine\n", "folder: cpu9 cpu10", "denied"},
             {200, "13.5\n", "missing", "folder: cpu10", "open\n"},
             {299, "13.5\n", "missing", "folder: cpu10", "open\n"},
             {300, "missing", "back\n", "folder: cpu9 cpu10", "open\n"},
             {9999, "missing", "back\n", "folder: cpu9 cpu10", "open\n"},
         }) {
        clock.now = c.now;
        std::string text;
        const auto handleText = [&text](MachineFile& file) {
            const MachineStatus result = file.read(text);
            return result == MachineStatus::OK ? text : toText(result);
        };
        EXPECT_EQ(c.uptime, handleText(*uptime)) << c.now;
        EXPECT_EQ(c.nine, handleText(*nine)) << c.now;
        EXPECT_EQ(c.folder, show(*machine, "/a")) << c.now;
        EXPECT_EQ(c.secret, show(*machine, "/secret")) << c.now;
    }
    EXPECT_EQ((std::vector<std::uint64_t>{100, 200, 300}), machine->moments());
    std::uint64_t moment = 0;
    EXPECT_TRUE(machine->nextMoment(100, moment));
    EXPECT_EQ(200U, moment);
    EXPECT_FALSE(machine->nextMoment(300, moment));
}

TEST(MachineBundleErrors, nameFileLineAndWhat) {
    const std::string head = "tarnwell-machine 1\n@1\nline /x 1\n";
    const std::string deep = [] {
        std::string path;
        for (int i = 0; i < 65; ++i) {
            path += "/d";
        }
        return path;
    }();
    struct Case {
        std::string text;
        std::string message;
    };
    for (const Case& c : {
             Case{"", "b:0: not a machine bundle: the first line must be \"tarnwell-machine 1\""},
             {"tarnwell-machine 2\n",
              "b:1: not a machine bundle: the first line must be \"tarnwell-machine 1\""},
             {"tarnwell-machine 1\nend\n", "b:2: the bundle has no moment"},
             {"tarnwell-machine 1\nline /x 1\nend\n", "b:2: an entry stands before the first moment"},
             {head, "b:3: the bundle stops without the line \"end\""},
             {head + "end", "b:4: the last line has no line end"},
             {head + "end\nline /y 1\n", "b:5: text after the line \"end\""},
             {head + "\nend\n", "b:4: unknown entry \"\"; known are @, line, file, link, fail, gone, end"},
             {head + "text /y 1\nend\n",
              "b:4: unknown entry \"text\"; known are @, line, file, link, fail, gone, end"},
             {head + "@1\nend\n", "b:4: moment 1 is not later than the one before"},
             {head + "@x\nend\n", "b:4: \"@\" needs a number of nanoseconds, got \"x\""},
             {head + "@18446744073709551616\n",
              "b:4: \"@\" needs a number of nanoseconds, got \"18446744073709551616\""},
             {head + "line /x 2\n", "b:4: path /x has two entries in one moment"},
             {head + "line y 2\n", "b:4: a path must start with \"/\" and be at most 4096 bytes long"},
             {head + "line /" + std::string(5000, 'y') + " 2\n",
              "b:4: a path must start with \"/\" and be at most 4096 bytes long"},
             {head + "line /y/../z 2\n",
              "b:4: path /y/../z has an empty, \".\" or \"..\" component or more than 64"},
             {head + "line " + deep + " 2\n",
              "b:4: path " + deep + " has an empty, \".\" or \"..\" component or more than 64"},
             {head + "line /y%2 2\n", "b:4: \"%\" in a path needs two upper-case hexadecimal digits"},
             {head + "line /y%2g 2\n", "b:4: \"%\" in a path needs two upper-case hexadecimal digits"},
             {head + "file /y\n", "b:4: \"file\" needs a path and a number of bytes, got \"\""},
             {head + "file /y -1\n", "b:4: \"file\" needs a path and a number of bytes, got \"-1\""},
             {head + "file /y 18446744073709551615\nab\n",
              "b:4: content of 18446744073709551615 bytes, but only 3 bytes are left"},
             {head + "file /y 3\nab\n", "b:4: content of 3 bytes, but only 3 bytes are left"},
             {head + "file /y 1\nab\n", "b:4: content of 1 bytes is not followed by a line end"},
             {head + "file /y 2\na\n\nbad\nend\n",
              "b:7: unknown entry \"bad\"; known are @, line, file, link, fail, gone, end"},
             {head + "link /y\n", "b:4: \"link\" needs a path and a target"},
             {head + "fail /y missing\n",
              "b:4: \"fail\" needs one of denied, no-answer, failed, got \"missing\""},
             {head + "gone /y\n", "b:4: path /y cannot go: it was never there"},
             {head + "@2\ngone /x\n@3\ngone /x\n", "b:7: nothing is there that could go"},
             {head + "@2\ngone /x now\n", "b:5: \"gone\" needs only a path, got also \"now\""},
         }) {
        std::string reason;
        EXPECT_FALSE(MachineBundle::parse("b", c.text, reason)) << c.text;
        EXPECT_EQ(c.message, reason);
    }
}

// A capture of a recorded machine, replayed, must be seen exactly as the recorded one was.
TEST_F(MachineBundleTest, captureGivesBackWhatWasThere) {
    BundleWriter writer(*machine, {"/*", "/*/*", "/*/*/x", "/class/*/mtu"});
    for (const pw_u64_t moment : {100U, 200U, 300U}) {
        clock.now = moment;
        EXPECT_EQ(0, writer.capture(moment));
    }
    EXPECT_EQ(1, writer.capture(300)) << "time must go on";
    const auto copy = MachineBundle::parse("copy", writer.text(), reason);
    ASSERT_TRUE(copy) << reason << "\n" << writer.text();
    for (const pw_u64_t moment : {100U, 200U, 300U}) {
        clock.now = moment;
        for (const char* path : {"/", "/a", "/a/cpu9/x", "/a/cpu10/x", "/proc/uptime", "/proc/two",
                                 "/proc/empty", "/odd name/100%", "/class/eth0/mtu", "/secret", "/asleep"}) {
            EXPECT_EQ(show(*machine, path), show(*copy, path)) << path << " at " << moment;
        }
    }
    EXPECT_EQ(std::string::npos, writer.text().find("line /a/cpu10/x", writer.text().find("@200")))
        << "what did not change is written once";
}

TEST(MachineBundleBinary, captureKeepsEveryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    for (const std::string& content : {bytes, std::string("\0\n", 2), std::string("\r\0x", 3)}) {
        std::string reason;
        const std::string text =
            "tarnwell-machine 1\n@1\nfile /b " + std::to_string(content.size()) + "\n" + content + "\nend\n";
        const auto machine = MachineBundle::parse("b", text, reason);
        ASSERT_TRUE(machine) << reason;
        BundleWriter writer(*machine, {"/b"});
        writer.capture(1);
        const auto copy = MachineBundle::parse("copy", writer.text(), reason);
        ASSERT_TRUE(copy) << reason;
        MachineStatus status = MachineStatus::FAILED;
        const auto file = copy->open("/b", status);
        ASSERT_TRUE(file);
        std::string seen(content.size() - 1, ' ');
        EXPECT_EQ(MachineStatus::OK, file->readAt(1, seen));
        EXPECT_EQ(content.substr(1), seen);
        EXPECT_EQ(MachineStatus::MISSING, file->readAt(2, seen)) << "it ends before";
    }
}

} // namespace
