#include "tests/collectors/collector_fixture.h"

#include "common/config/input_msg.h"
#include "common/config/tw_configfile_parser.h"
#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/metric_metadata.h"
#include "common/plugin/metric_plugin.h"
#include "common/telemetry/aggr_telem_operation.h"
#include "common/telemetry/endpoint_table.h"
#include "tests/support/table_text.h"
#include "tests/support/telemetry_description.h"

namespace {

using namespace pwr;

constexpr pw_u32_t kGuid = 0x2c01;
constexpr std::uint64_t kSecond = 1000000000;
const char* const kTable = "# the machine's endpoints\n"
                           "3 0x2c01 1 /telem/a 0x10 40 4 # four samples\r\n"
                           "4 0x2c02 1 /telem/b 0 8 1\n"
                           "5 0x2c03 1 /telem/gone 0 8 1\n"
                           "6 0x2c04 1 /telem/denied 0 8 1\n";

class AggregatorTest : public tests::CollectorFixture {
protected:
    AggregatorTest()
        : m_description(kGuid, tests::document(tests::sampleXml("Energy", "0") +
                                               tests::sampleXml("State", "2",
                                                                tests::fieldXml("low", "4", "11") +
                                                                    tests::fieldXml("bad", "5", "3")))) {}
    ~AggregatorTest() override { TWConfigFileParser::destroy(); }

    /// Endpoint a with its samples, at the first moment and a second later.
    void loadMachine() {
        const std::vector<std::uint64_t> head{1, 2};
        loadEntries(fileEntry(TELEMETRY_ENDPOINT_TABLE, kTable) +
                        fileEntry("/telem/a", binary({1, 2, 1000, 0xFFFFFFFFFFFFFFFE, 0xFE50, 0x0A000000})) +
                        fileEntry("/telem/b", "short") + "fail /telem/denied denied\n@1000001000\n" +
                        fileEntry("/telem/a", binary({1, 2, 3048, 6, 0x1280, 0x0D000000})),
                    "aggregator");
    }
    std::string readKeys(const Keys& operation, const Keys& constants = {}) {
        return openAndRead(*makeMessage(operation, constants, 7));
    }

    tests::SpecificationFile m_description;
};

TEST_F(AggregatorTest, countersAreCutAndTyped) {
    loadMachine();
    const auto real = [](double value) {
        return "SYSTEM=" + std::to_string(std::bit_cast<std::uint64_t>(value));
    };
    struct Case {
        Keys operation, constants;
        std::string seen;
    };
    for (const Case& c : {
             Case{{{"GUID", "0x2c01"}, {"COUNTER-NAME", "Energy"}}, {}, "SYSTEM=1000"},
             {{{"COUNTER-NAME", "State"}}, {}, "SYSTEM=65104"}, // the machine's descriptions tell the GUID
             {{{"COUNTER-NAME", "State"}, {"COUNTER-FIELD-NAME", "low"}}, {}, "SYSTEM=229"},
             {{{"ENDPOINT-ID", "3"}, {"GUID", "0x2c01"}, {"SAMPLE-ID", "3"}, {"BIT-RANGE", "24,31"}},
              {{"ENTITY", "Endpoint {endpoint}"}, {"DESCRIPTOR", "d"}},
              "Endpoint 3/d=10"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "1"}}, {{"RAW-TYPE", "INT"}}, "SYSTEM=18446744073709551614"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "2"}, {"BIT-RANGE", "4,7"}},
              {{"VALUE-TYPE", "INT"}},
              "SYSTEM=5"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "2"}, {"BIT-RANGE", "8,15"}},
              {{"VALUE-TYPE", "INT"}},
              "SYSTEM=18446744073709551614"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "1"}},
              {{"SOURCE", "COUNTER"}, {"WIDTH", "32"}},
              "SYSTEM=4294967294"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "2"}, {"DATA-FORMAT", "U8.8"}},
              {{"RAW-TYPE", "REAL"}},
              real(254.3125)},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "2"}, {"BIT-RANGE", "0,15"}, {"DATA-FORMAT", "S10.4"}},
              {{"VALUE-TYPE", "REAL"}},
              real(-27.0)},
         }) {
        EXPECT_EQ(c.seen, readKeys(c.operation, c.constants)) << m_log.take();
    }
}

TEST_F(AggregatorTest, whatIsWrongHasAReason) {
    loadMachine();
    g_pluginEnvironment->setDeprecatedTAFGUIDs("OLD", {0x2c02});
    const std::string lead = "MSG, operation op: ";
    const Keys whole{{"GUID", "0x2c01"}, {"COUNTER-NAME", "Energy"}};
    struct Case {
        Keys operation, constants;
        std::string reason;
    };
    for (const Case& c : {
             Case{{{"GUID", "0x2c04"}, {"COUNTER-NAME", "x"}},
                  {},
                  "the counters of telemetry GUID 0x2c04 are not described | install a valid "
                  "xml_configs/telemetry_0x2c04.xml beside the library"},
             {{{"GUID", "0x2c01"}, {"COUNTER-NAME", "State"}, {"COUNTER-FIELD-NAME", "bad"}},
              {},
              lead + "its counter is not found; the warnings say why | correct the operation's keys, or list "
                     "the "
                     "endpoint that it means"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "4"}},
              {},
              lead + "sample 4 is beyond the 4 of endpoint 3 | "},
             {{{"GUID", "0x2c02"}, {"SAMPLE-ID", "0"}},
              {},
              "telemetry GUID 0x2c02 is deprecated | the Release Notes say which version supports this GUID"},
             {{{"GUID", "0x2c03"}, {"SAMPLE-ID", "0"}},
              {},
              std::string("/telem/gone does not have the samples that ") + TELEMETRY_ENDPOINT_TABLE +
                  " tells of | correct the endpoint's file, offset and size in " + TELEMETRY_ENDPOINT_TABLE},
             {{{"GUID", "0x2c04"}, {"SAMPLE-ID", "0"}},
              {},
              "/telem/denied may not be read | run as root, or let this user read that file"},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "0"}, {"DATA-FORMAT", "U8.8"}},
              {{"SOURCE", "COUNTER"}},
              lead + "DATA-FORMAT \"U8.8\": such values need RAW-TYPE=REAL; a COUNTER is scaled by SCALE "
                     "instead | "},
             {{{"GUID", "0x2c01"}, {"SAMPLE-ID", "0"}, {"BIT-RANGE", "0,31"}},
              {{"SOURCE", "COUNTER"}},
              lead + "WIDTH \"\": the counter has 32 bits, and its width must say so | "},
             {whole, {{"RAW-TYPE", "STRING"}}, lead + "RAW-TYPE \"STRING\": a counter is no text | "},
             {whole, {{"ENTITY", "{cpu}"}}, lead + "ENTITY \"{cpu}\": only {endpoint} is known here | "},
         }) {
        EXPECT_EQ(c.reason, readKeys(c.operation, c.constants)) << m_log.take();
        EXPECT_TRUE(m_instances.instances.empty());
    }
    g_pluginEnvironment->setDeprecatedTAFGUIDs("OLD", {});
    EXPECT_EQ("SYSTEM=1000", readKeys(whole)) << "the others go on";
}

TEST_F(AggregatorTest, endpointTableSaysWhereItIsWrong) {
    std::vector<std::string> problems;
    const auto endpoints =
        readEndpointTable("t",
                          "\n1 2 3 /f 4 8 1\n1 2 3 /g 4 8 1\n2 2 3 /f 4 8\n70000 2 3 /f 4 8 1\n"
                          "2 x 3 /f 4 8 1\n2 2 3 f 4 8 1\n2 2 3 /f 4 15 2\n"
                          "2 2 3 /f 0xfffffffffffffff8 8 1",
                          problems);
    ASSERT_EQ(1U, endpoints.size());
    EXPECT_EQ("/f", endpoints[0].file);
    const std::vector<std::string> expected{
        "t:3: endpoint 1 stands in an earlier line already",
        "t:4: expected 7 words: id, GUID, collection type, file, offset, size, number of samples; got 6",
        "t:5: the endpoint's id must be a number from 0 to 65535, got \"70000\"",
        "t:6: the GUID must be a number from 0 to 4294967295, got \"x\"",
        "t:7: the file must start with \"/\", got \"f\"",
        "t:8: 2 samples of 8 bytes do not fit into 15 bytes",
        "t:9: the offset 0xfffffffffffffff8 is beyond the end of any file"};
    EXPECT_EQ(expected, problems);
}

TEST_F(AggregatorTest, machineWithoutEndpointsSaysSo) {
    loadEntries("line /etc/hostname x\n", "aggregator");
    EXPECT_EQ("no telemetry endpoints are known: /etc/tarnwell/telemetry-endpoints is not there | list the "
              "machine's "
              "endpoints in that file",
              readKeys({{"SAMPLE-ID", "0"}}));
    EXPECT_EQ("", m_log.text()) << "most machines have none";
}

TEST_F(AggregatorTest, immediateReadsGoThroughTheCollector) {
    loadMachine();
    TWConfigFileParser& parser = *TWConfigFileParser::instance();
    ASSERT_EQ(0, parser.registerCollectorType("AGGR-TELEM", &plugin()));
    g_pluginEnvironment->addTAFPlatformGUID("PUNIT", kGuid);
    pw_u64_t value = 0;
    EXPECT_EQ(0, AggrTelemImmediate("PUNIT", "State", "low").read(value)) << m_log.text();
    EXPECT_EQ(229U, value);
    std::map<pw_u16_t, pw_u64_t> samples{{0, 0}, {3, 0}};
    EXPECT_EQ(0, AggrTelemImmediate("PUNIT", "State", "").read(samples));
    EXPECT_EQ(1000U, samples[0]);
    EXPECT_EQ(0x0A000000U, samples[3]);

    ASSERT_EQ(0, parser.parseText("t",
                                  "ALL_E_M_AGGR-TELEM_GUID=0x2c01\nALL_E_M_AGGR-TELEM_SAMPLE-ID={id}\n"
                                  "ALL_E_M_CONSTANT_METRIC-NAME=M\nALL_E_CAPABILITY_COMMAND-LINE_VALUE=e\n"));
    std::vector<InputMsg*> messages;
    ASSERT_EQ(0, parser.getMessagesFor(messages, "X=ALL", "E"));
    EXPECT_EQ(-1, messages.at(0)->execute({})) << "the placeholder is no number";
    EXPECT_EQ(0, messages.at(0)->execute({{"id", "3"}})) << m_log.text();
    EXPECT_EQ(0x0A000000U, dynamic_cast<AggrTelemOperation&>(**messages.at(0)->begin()).getSample());
    m_log.take();
    EXPECT_EQ(-1, messages.at(0)->execute({{"id", "4"}}));
    EXPECT_EQ("ERROR: M: sample 4 is beyond the 4 of endpoint 3\n", m_log.take());
}

TEST_F(AggregatorTest, descriptionBecomesATableOfARecordedMachine) {
    loadMachine();
    m_clock.now = kSecond;
    TWConfigFileParser& parser = *TWConfigFileParser::instance();
    ASSERT_EQ(0,
              parser.parseText("t", "ALL_E_CAPABILITY_COMMAND-LINE_VALUE=e\n"
                                    "ALL_E_M_AGGR-TELEM_GUID=0x2c01\nALL_E_M_AGGR-TELEM_COUNTER-NAME=Energy\n"
                                    "ALL_E_M_MSG_READ-WHEN=BEGIN,END\n"
                                    "ALL_E_M_CONSTANT_METRIC-NAME=Energy\nALL_E_M_CONSTANT_CONTAINER-TAG=E\n"
                                    "ALL_E_M_CONSTANT_METRIC-TYPE=SampledDelta\n"
                                    "ALL_E_M_CONSTANT_QUANTITY=Pulses;p\nALL_E_M_CONSTANT_SOURCE=COUNTER\n"
                                    "ALL_E_M_CONSTANT_SCALE=0.5\n"));
    std::vector<InputMsg*> messages;
    ASSERT_EQ(0, parser.getMessagesFor(messages, "X=ALL", "E"));
    const auto message = messages.at(0)->createMsgMetadata();
    message->setIDs(1, 1, 1);

    WriterInterfaceConfigFileParser::instance();
    tests::TableCapture capture;
    PluginLoader loader;
    ASSERT_EQ(0, tests::loadModule(loader, "generic"));
    MetricPlugin& metric = *loader.getPlugins<MetricPlugin>().front();
    SystemMetadata system;
    system.startTSC = kSecond;
    system.twaClockFreq = 1000.0F;
    ASSERT_EQ(0, plugin().open(*message, m_instances)) << m_instances.reason;
    metric.processMetadata(*message);
    metric.processMetadata(MetricMetadata(1, 1, message->getMetaValues().back()->getValues()));
    metric.processInstances(*message, m_instances);
    metric.initializeCollection(system);
    for (const std::uint64_t tick : {kSecond, kSecond + 2000}) {
        m_clock.now = tick;
        read(*message);
        m_data.header().id = {1, 1, 1};
        metric.processMessage(m_data);
    }
    metric.finalizeCollection(m_clock.now);
    loader.unload();
    ASSERT_FALSE(capture.tables().empty()) << m_log.text();
    EXPECT_EQ("Energy Summary: Total\nEntity | Total (p)\nSYSTEM | 1024.00\n", capture.tables().back().text())
        << "(3048 - 1000) / 2";
    WriterInterfaceConfigFileParser::destroy();
}

} // namespace
