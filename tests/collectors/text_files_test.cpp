#include "tests/collectors/collector_fixture.h"

#include <gmock/gmock.h>

namespace {

using namespace pwr;

constexpr std::uint64_t MS = 1000000;

class TextFilesTest : public tests::CollectorFixture {
protected:
    // What a FIELD gives in the file /f: the values, or why the message does not open.
    std::string field(const std::string& field, const std::string& type = "UINT", const Keys& more = {}) {
        Keys operation{{"PATH", "/f"}, {"RAW-TYPE", type}};
        if (!field.empty()) {
            operation.emplace_back("FIELD", field);
        }
        operation.insert(operation.end(), more.begin(), more.end());
        m_message = makeMessage(operation, {{"ENTITY", "SYSTEM"}, {"SOURCE", "COUNTER"}}, 7);
        if (plugin().open(*m_message, m_instances) != 0) {
            return m_instances.reason;
        }
        std::string text = read(*m_message);
        for (std::size_t at = text.find("SYSTEM"); at != std::string::npos; at = text.find("SYSTEM")) {
            text.erase(at, 7);
        }
        return text;
    }
    void loadFile(const std::string& content) { loadEntries(fileEntry("/f", content)); }
    // The processors of a pattern, by the names that the topology gave them.
    std::string ofProcessors(const Keys& operation) {
        m_message = makeMessage(operation, {{"ENTITY", "{cpu}"}, {"SOURCE", "COUNTER"}}, 8);
        return plugin().open(*m_message, m_instances) == 0 ? read(*m_message) : m_instances.reason;
    }

    std::unique_ptr<MsgMetadata> m_message;
};

const char* const NOTHING = "message MSG: nothing on this machine matches";

TEST_F(TextFilesTest, fieldsOfAFile) {
    loadFile("  12 34\t56\n"
             "total 7 8 9\n"
             "total 70\n"
             "name: Some long text \n"
             "negative -5 3.5 1e3 0x10 99999999999999999999 5kB\n"
             "\n"
             "key : 42\n"
             "long key\t: 4.25\n"
             "last 1");
    struct Case {
        const char *field, *type, *seen;
    };
    const std::string real = std::to_string(std::bit_cast<std::uint64_t>(3.5));
    const std::string minus = std::to_string(std::bit_cast<std::uint64_t>(std::int64_t{-5}));
    for (const Case& c : {
             Case{"", "UINT", "12"},
             {"2", "UINT", "34"},
             {"4", "UINT", "-"},
             {"total 1", "UINT", "7"},
             {"total 3", "UINT", "9"},
             {"total 4", "UINT", NOTHING},
             {"tot 1", "UINT", NOTHING},
             {"name: 2", "STRING", "'long'"},
             {"negative 1", "INT", minus.c_str()},
             {"negative 1", "UINT", "-"},
             {"negative 2", "REAL", real.c_str()},
             {"negative 2", "UINT", "-"},
             {"negative 4", "UINT", "-"},
             {"negative 5", "UINT", "-"},
             {"negative 6", "UINT", "-"},
             {"last 1", "UINT", "1"},
             {"[key 42] long key", "REAL", "4616471093031469056"},
             {"[key 43] long key", "REAL", NOTHING},
         }) {
        EXPECT_EQ(c.seen, field(c.field, c.type)) << c.field << " as " << c.type;
    }
}

TEST_F(TextFilesTest, textIsTheWholeFirstLine) {
    loadFile(" on demand \nsecond\n");
    EXPECT_EQ("'on demand'", field("", "STRING"));
    EXPECT_EQ(tw_driver_msg_flag::TEXT, m_data.header().flags & tw_driver_msg_flag::TEXT);
}

TEST_F(TextFilesTest, badDeclarationsSayWhatIsWrong) {
    loadFile("1\n");
    const std::string lead = "MSG, operation op: ";
    struct Case {
        Keys keys;
        std::string message;
    };
    for (const Case& c : {
             Case{{{"PATH", "f"}}, "PATH \"f\": it must start with \"/\""},
             {{{"PATH", "/{moon}"}}, "PATH \"/{moon}\": unknown variable {moon}"},
             {{{"PATH", "/{name}{number}"}},
              "PATH \"/{name}{number}\": {name} and {number} need a text between them"},
             {{{"PATH", "/{cpu"}}, "PATH \"/{cpu\": \"{\" without \"}\""},
             {{{"PATH", "/f"}, {"FIELD", "total"}},
              "FIELD \"total\": the number of a word, from 1, is missing"},
             {{{"PATH", "/f"}, {"FIELD", "total 0"}},
              "FIELD \"total 0\": the number of a word, from 1, is missing"},
             {{{"PATH", "/f"}, {"FIELD", "[key] x"}}, "FIELD \"[key] x\": expected \"[KEY VALUE] KEY\""},
             {{{"PATH", "/f"}, {"FIELD", "[key 1"}}, "FIELD \"[key 1\": expected \"[KEY VALUE] KEY\""},
             {{{"PATH", "/f"}, {"FIELD", "{sun} 1"}}, "FIELD \"{sun} 1\": unknown variable {sun}"},
             {{{"PATH", "/f"}, {"RAW-TYPE", "FLOAT"}},
              "RAW-TYPE \"FLOAT\": expected UINT, INT, REAL or STRING"},
             {{{"PATH", "/f"}, {"WIDTH", "65"}}, "WIDTH \"65\": expected a number of bits from 1 to 64"},
             {{{"PATH", "/f"}, {"ENTITY", "{x}"}}, "ENTITY \"{x}\": unknown variable {x}"},
             {{{"PATH", "/f"}, {"FIELD", "{cpu} 1"}, {"DESCRIPTOR", "d{net}"}},
              "DESCRIPTOR \"d{net}\": neither PATH nor FIELD has {net}"},
             {{{"PATH", "/f"}, {"FEILD", "2"}},
              "FEILD \"2\": unknown key; there are PATH, FIELD, WIDTH, RAW-TYPE, ENTITY, ENTITY-FILE, "
              "DESCRIPTOR, "
              "DESCRIPTOR-FILE"},
         }) {
        const auto message = makeMessage(c.keys, {}, 1);
        EXPECT_EQ(1, plugin().open(*message, m_instances));
        EXPECT_EQ(lead + c.message, m_instances.reason);
        EXPECT_TRUE(m_instances.instances.empty());
    }
}

TEST_F(TextFilesTest, processorsAreThoseOfTheTopology) {
    loadEntries("line /sys/devices/system/cpu/online 0-1\n"
                "line /c/cpu10/n 10\nline /c/cpu1/n 1\nline /c/cpu0/n 0\nline /c/cpufreq/n 5\n" +
                fileEntry("/proc/interrupts", "       CPU1  CPU0\n"
                                              "  0:     1     2   timer\n"
                                              "LOC: 4294967295 4294967290 local\n"
                                              "ERR:     9\n"
                                              "BAD:   x 1\n"
                                              "  7:    10    20   device 5 6\n") +
                fileEntry("/list", "processor : 0\nMHz : 100\n\nprocessor : 1\nMHz:300\nMHz : 400\n"));
    EXPECT_EQ("Thread_0=0 Thread_1=1", ofProcessors({{"PATH", "/c/cpu{cpu}/n"}}));
    EXPECT_EQ("Thread_1=10 Thread_0=16",
              ofProcessors({{"PATH", "/proc/interrupts"}, {"FIELD", "sum CPU{cpu}"}, {"WIDTH", "32"}}))
        << "each counter wraps at 32 bits, so the sum does";
    EXPECT_EQ("Thread_0=100 Thread_1=300",
              ofProcessors({{"PATH", "/list"}, {"FIELD", "[processor {cpu}] MHz"}}));
    EXPECT_EQ("the topology knows none of the processors found", [this] {
        setTopology("7 0 0 0 -1 -1\n");
        return ofProcessors({{"PATH", "/c/cpu{cpu}/n"}});
    }());
}

TEST_F(TextFilesTest, namesComeFromFilesAndStayApart) {
    loadEntries("line /s/hwmon2/name chip\nline /s/hwmon2/temp1_input 1\nline /s/hwmon2/temp1_label Core\n"
                "line /s/hwmon2/temp2_input 2\nline /s/hwmon2/temp2_label Core\n"
                "line /s/hwmon10/name chip\nline /s/hwmon10/temp1_input 3\n"
                "line /s/hwmon11/name\nline /s/hwmon11/temp1_input 4\n"
                "fail /s/hwmon12/temp1_input no-answer\nfail /s/hwmon13/temp1_input denied\n");
    const auto message = makeMessage({{"PATH", "/s/hwmon{sensor}/temp{channel}_input"}},
                                     {{"ENTITY", "hwmon{sensor}"},
                                      {"ENTITY-FILE", "/s/hwmon{sensor}/name"},
                                      {"DESCRIPTOR", "temp{channel}"},
                                      {"DESCRIPTOR-FILE", "/s/hwmon{sensor}/temp{channel}_label"}},
                                     1);
    ASSERT_EQ(0, plugin().open(*message, m_instances)) << m_instances.reason;
    EXPECT_EQ("chip/Core=1 chip/Core #2=2 chip #2/temp1=3 hwmon11/temp1=4 hwmon12/temp1=-", read(*message));
}

TEST_F(TextFilesTest, whatMayNotBeReadIsAReasonWithAFix) {
    loadEntries("fail /a/x denied\n");
    const auto message = makeMessage({{"PATH", "/a/x"}}, {}, 1);
    EXPECT_EQ(1, plugin().open(*message, m_instances));
    EXPECT_EQ("/a/x may not be read", m_instances.reason);
    EXPECT_EQ("run as root, or let this user read that file", m_instances.fix);
    EXPECT_EQ(1, plugin().read(*message, m_data)) << "a message that was not opened";
}

TEST_F(TextFilesTest, unusedDevicesAreLeftOut) {
    loadEntries(
        "line /b/loop0/stat 0 0\nline /b/loop1/stat 0 3\nline /b/sda/stat 0 0\nline /b/ram0/stat 0 0\n");
    const auto message = makeMessage({{"PATH", "/b/{block}/stat"}, {"FIELD", "2"}},
                                     {{"ENTITY", "{block}"}, {"SKIP-UNUSED", "ram*,loop*"}}, 1);
    ASSERT_EQ(0, plugin().open(*message, m_instances)) << m_instances.reason;
    EXPECT_EQ("loop1=3 sda=0", read(*message));
}

TEST_F(TextFilesTest, availabilityIsToldWithoutOpening) {
    loadRecorded("no_idle_states");
    for (const auto& [message, seen] : std::vector<std::pair<std::string, std::string>>{
             {"IDLE-TIME", "absent"},
             {"CPU-TIME", "available"},
             {"DISK-BYTES",
              "absent: /sys/block/vda/stat may not be read (run as root, or let this user read that file)"},
             {"FREQUENCY", "absent"},
             {"FREQUENCY-REPORTED", "absent"},
         }) {
        ASSERT_NE(nullptr, shipped(message)) << m_log.text();
        EXPECT_EQ(seen, availability(*shipped(message))) << message;
    }
    const auto wrong = makeMessage({{"PATH", "f"}}, {}, 1);
    EXPECT_EQ("invalid: MSG, operation op: PATH \"f\": it must start with \"/\"", availability(*wrong));
    EXPECT_EQ("nothing read", read(*shipped("CPU-TIME"))) << "nothing was opened";
}

TEST_F(TextFilesTest, frequencyIsThatOfTheFile) {
    loadRecorded("two_packages");
    const MsgMetadata* message = openShipped("FREQUENCY");
    ASSERT_NE(nullptr, message);
    EXPECT_EQ("Thread_0=1000000 Thread_1=1100000", read(*message));
}

TEST_F(TextFilesTest, zoneThatIsASensorTooAppearsOnce) {
    loadRecorded("two_packages");
    const MsgMetadata* sensors = openShipped("TEMPERATURE-SENSORS");
    ASSERT_NE(nullptr, sensors);
    EXPECT_EQ("coretemp/Package id 0=45000 coretemp/Core 0=43000 coretemp/Core 1=44000 "
              "coretemp #2/Package id 1=50000 coretemp #2/Core 0=48000 coretemp #2/Core 1=49000 "
              "nvme/temp1=36850 nvme/temp2=-",
              read(*sensors));
    const MsgMetadata* zones = openShipped("TEMPERATURE-ZONES");
    ASSERT_NE(nullptr, zones);
    EXPECT_EQ("x86_pkg_temp=45000", read(*zones));
}

TEST_F(TextFilesTest, offlineProcessorIsMissingNotStandingStill) {
    setTopology("0 0 0 0 -1 -1\n1 0 0 0 -1 -1\n2 0 4 0 -1 -1\n4 0 8 0 -1 -1\n5 0 9 0 -1 -1\n");
    m_clock.now = 1000 * MS;
    loadRecorded("hybrid_offline");
    const MsgMetadata* frequency = openShipped("FREQUENCY");
    ASSERT_NE(nullptr, frequency);
    const std::string online =
        "Thread_0=1800000 Thread_1=1800000 Thread_2=1800000 Thread_4=1200000 Thread_5=";
    EXPECT_EQ(online + "1200000", read(*frequency));
    EXPECT_EQ(1000 * MS, m_data.header().timestamp);
    m_clock.now = 1300 * MS;
    EXPECT_EQ(online + "-", read(*frequency));
    m_clock.now = 1600 * MS;
    EXPECT_EQ(online + "1200000", read(*frequency)) << "its file is another one now";

    const MsgMetadata* idle = openShipped("IDLE-TIME");
    ASSERT_NE(nullptr, idle);
    const auto lastThree = [&] {
        const std::string text = read(*idle);
        return text.substr(text.find("Thread_5"));
    };
    m_clock.now = 1200 * MS;
    EXPECT_EQ("Thread_5/POLL=0 Thread_5/C1=61000 Thread_5/C6S=140000", lastThree());
    m_clock.now = 1500 * MS;
    EXPECT_EQ("Thread_5/POLL=- Thread_5/C1=- Thread_5/C6S=-", lastThree()) << "though the files are there";
    plugin().close(*idle);
    EXPECT_EQ("nothing read", read(*idle));
}

TEST_F(TextFilesTest, writingGoesToAllFilesThatMatch) {
    namespace fs = std::filesystem;
    const fs::path root = fs::temp_directory_path() / "kr_text_files_written";
    const auto content = [&root](const char* file) {
        std::ifstream stream(root / file);
        return std::string{std::istreambuf_iterator<char>(stream), {}};
    };
    for (const char* file : {"cpu0/limit", "cpu1/limit", "cpu2/other"}) {
        fs::create_directories((root / file).parent_path());
        std::ofstream(root / file) << "100000\n";
    }
    load("text_files", root.string());
    InputMsg message("SET");
    auto* operation = new HWOperation("SET", "TEXT-FILE");
    operation->addKey("PATH", "/cpu{cpu}/limit");
    ASSERT_EQ(0, message.addOperation(operation));
    EXPECT_EQ("invalid: SET, operation SET: VALUE \"\": what to write is missing",
              textOf(plugin().probeWrite(*message.createMsgMetadata())));
    EXPECT_EQ(-1, plugin().doImmediateWrite(&message));
    EXPECT_EQ(0, plugin().doImmediateWrite(operation, "7"));
    EXPECT_EQ("7\n7\n100000\n", content("cpu0/limit") + content("cpu1/limit") + content("cpu2/other"));
    operation->addKey("VALUE", "800");
    EXPECT_EQ("available", textOf(plugin().probeWrite(*message.createMsgMetadata())));
    m_log.take();
    EXPECT_EQ(0, plugin().doImmediateWrite(&message));
    EXPECT_EQ("800\n", content("cpu0/limit"));
    EXPECT_EQ("", m_log.take());
    fs::remove(root / "cpu0/limit");
    fs::create_directory(root / "cpu0/limit");
    EXPECT_EQ(-1, plugin().doImmediateWrite(&message));
    EXPECT_THAT(m_log.take(), testing::StartsWith("ERROR: /cpu0/limit "));
    EXPECT_EQ(-1, plugin().doImmediateWrite(&message));
    EXPECT_EQ("", m_log.take()) << "said already";
    fs::remove_all(root);
}

TEST_F(TextFilesTest, recordedMachinesAreNotWritten) {
    loadFile("1\n");
    HWOperation operation("SET", "TEXT-FILE");
    operation.addKey("PATH", "/f");
    EXPECT_EQ(-1, plugin().doImmediateWrite(&operation, "2"));
    EXPECT_THAT(m_log.take(), testing::HasSubstr("/f may not be written"));
}

TEST_F(TextFilesTest, keysThatTheFileHasTwiceHideNoLaterOnes) {
    loadFile("a 1\na 2\nb 3\n");
    MsgMetadata message(1, 1, 1, "feature", "MSG");
    for (const char* key : {"a 1", "b 1"}) {
        message.addMetaValue(OperationMetadata(key, "TEXT-FILE", 8, "",
                                               Keys{{"PATH", "/f"}, {"FIELD", key}, {"DESCRIPTOR", key}}));
    }
    EXPECT_EQ("SYSTEM/a 1=1 SYSTEM/b 1=3", openAndRead(message));
}

TEST_F(TextFilesTest, machineThatIsNotThereKeepsThePluginOut) {
    PluginLoader loader;
    loader.setOption("machine", "/no/such/machine");
    EXPECT_EQ(1, tests::loadModule(loader, "text_files"));
    EXPECT_EQ("ERROR: /no/such/machine: no such machine folder or bundle\n", m_log.take());
}

} // namespace
