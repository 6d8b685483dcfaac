#include "common/config/tw_configfile_parser.h"
#include "common/metadata/operation_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "common/pw_utils.h"
#include "common/telemetry/aggr_telem.h"
#include "common/telemetry/aggr_telem_operation.h"
#include "tests/support/log_capture.h"
#include "tests/support/telemetry_description.h"

#include <gtest/gtest.h>

namespace {

using namespace pwr;
using tests::document;
using tests::fieldXml;
using tests::sampleXml;
using tests::SpecificationFile;

constexpr pw_u32_t kGuid = 0x1a2b;
constexpr pw_u16_t kEndpoint = 7;

std::string disabled(const char* guid) {
    return std::string("WARNING: Metrics relying on the Telemetry Aggregation Facility driver are disabled "
                       "for TAF: ") +
           guid +
           ". The required XML configuration file is invalid, missing or the platform is not supported. "
           "Please see "
           "the Tarnwell User Guide and Release Notes for supported TAF platforms.\n";
}

TEST(AggrTelemIndex, FindsSamplesAndFields) {
    const SpecificationFile file(
        kGuid, document(sampleXml("Energy", "12",
                                  fieldXml("low", " 0 ", "31") + fieldXml("high", "0x20", "<![CDATA[63]]>")) +
                        "</TELEM:SampleGroup><x><TELEM:Aggregator><TELEM:SampleGroup>" +
                        sampleXml("State", "0xFFFF") +
                        "</TELEM:SampleGroup></TELEM:Aggregator></x><TELEM:SampleGroup>" +
                        sampleXml("Energy", "99", fieldXml("more", "1", "2"))));
    AggrTelemIndex& index = AggrTelemIndex::instance();
    const LogCapture log;
    ASSERT_EQ(index.load(kGuid), 0);
    EXPECT_EQ(log.text(), "");
    pw_u16_t id = 0;
    pw_u16_t lsb = 1;
    pw_u16_t msb = 1;
    EXPECT_TRUE(index.findSample(kGuid, "Energy", id));
    EXPECT_EQ(id, 12); // the first of a name counts
    EXPECT_TRUE(index.findSample(kGuid, "State", id));
    EXPECT_EQ(id, 0xFFFF);
    EXPECT_TRUE(index.findField(kGuid, "Energy", "high", lsb, msb));
    EXPECT_EQ(lsb, 32);
    EXPECT_EQ(msb, 63);
    EXPECT_FALSE(index.findField(kGuid, "Energy", "more", lsb, msb));
    EXPECT_FALSE(index.findField(kGuid, "State", "low", lsb, msb));
    EXPECT_FALSE(index.findSample(kGuid + 1, "Energy", id));
    pw_u32_t guid = 0;
    EXPECT_TRUE(index.findGuidOf("State", guid));
    EXPECT_EQ(guid, kGuid);
}

TEST(AggrTelemIndex, TellsBadFiles) {
    const std::string path = "xml_configs/telemetry_0x1a2b.xml";
    std::string deep;
    std::string closed;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
        closed += "</a>";
    }
    struct Case {
        const char* name;
        std::string text;
        int result;
        std::string message; ///< contained in the log
    };
    const Case cases[] = {
        {"no XML", "samples: 12", 1, "The format is invalid.\n" + disabled("0x1a2b")},
        {"empty", "", 1, "The format is invalid.\n"},
        {"cut short", document("").substr(0, 60), 1, "The format is invalid.\n"},
        {"deep nesting, closed", "<a>" + deep + closed + document("<b/>") + "</a>", 0, ""},
        {"deep nesting", deep, 1, "The format is invalid.\n"},
        {"entities", "<!DOCTYPE r [<!ENTITY a \"&a;&a;\">]>" + document(sampleXml("&a;", "1")), 0, ""},
        {"bad number", document(sampleXml("A", "70000") + sampleXml("B", "2", fieldXml("f", "x", "3"))), 0,
         "may not collect properly for TAF: 0x1a2b.\n"},
        {"huge attribute", document(sampleXml(std::string(1 << 20, 'n'), "-1")), 0,
         "needs a name and a sampleID"},
    };
    for (const Case& c : cases) {
        const SpecificationFile file(kGuid, c.text);
        const LogCapture log;
        EXPECT_EQ(AggrTelemIndex::instance().load(kGuid), c.result) << c.name;
        EXPECT_NE(log.text().find(c.message), std::string::npos) << c.name << ": " << log.text();
        EXPECT_LT(log.text().size(), 2000U) << c.name;
        pw_u16_t id = 0;
        EXPECT_FALSE(AggrTelemIndex::instance().findSample(kGuid, "A", id)) << c.name;
    }
    const LogCapture log;
    EXPECT_EQ(AggrTelemIndex::instance().load(0xABCDEF), 1);
    EXPECT_EQ(log.text(), "WARNING: XML file for GUID 0xabcdef not found!\n" + disabled("0xabcdef"));
}

TEST(AggrTelem, ResolvesOperations) {
    const SpecificationFile file(kGuid, document(sampleXml("Energy", "12", fieldXml("low", "4", "31")) +
                                                 sampleXml("Odd", "3", fieldXml("turned", "5", "3"))));
    _tw_aggregator_info endpoint{};
    endpoint.guid = kGuid;
    endpoint.endpoint_id = kEndpoint;
    g_pluginEnvironment->addLoadedTAF(endpoint);
    g_pluginEnvironment->addTAFPlatformGUID("PUNIT", kGuid);
    endpoint.guid = 0x1a2c;
    endpoint.endpoint_id = 9;
    g_pluginEnvironment->addLoadedTAF(endpoint);
    g_pluginEnvironment->addTAFPlatformGUID("OTHER-A", 0x1a2c);

    struct Case {
        const char* name;
        OperationMetadata::ValueList keys;
        int sample; ///< -1: fails
        int lsb;
        int msb;
        std::string message;
    };
    const Case cases[] = {
        {"by name", {{"GUID", "0x1a2b"}, {"COUNTER-NAME", "Energy"}}, 12, 0, 63, ""},
        {"by platform",
         {{"IP-NAME", "PUNIT"}, {"COUNTER-NAME", "Energy"}, {"COUNTER-FIELD-NAME", "low"}},
         12,
         4,
         31,
         ""},
        {"by the file that has it", {{"COUNTER-NAME", "Energy"}}, 12, 0, 63, ""},
        {"by endpoint", {{"ENDPOINT-ID", "7"}, {"SAMPLE-ID", "5"}}, 5, 0, 63, ""},
        {"file not needed",
         {{"GUID", "0x1a2b"},
          {"SAMPLE-ID", "5"},
          {"COUNTER-NAME", "x"},
          {"COUNTER-FIELD-NAME", "y"},
          {"BIT-RANGE", "0,7"}},
         5,
         0,
         7,
         ""},
        {"by id",
         {{"GUID", "6699"}, {"SAMPLE-ID", "5"}, {"BIT-RANGE", "8, 15"}, {"ENDPOINT-ID", "7"}},
         5,
         8,
         15,
         ""},
        {"neither",
         {{"GUID", "0x1a2b"}},
         -1,
         0,
         0,
         "ERROR: Either counter name or sample id are required to collect Telemetry Aggregation Facility "
         "metrics.\n"},
        {"nameless",
         {{"GUID", "0x1a2b"}, {"COUNTER-NAME", "GUID=0x1"}},
         -1,
         0,
         0,
         "WARNING: op: Unable to extract counter name from operation!\n"},
        {"unknown name",
         {{"GUID", "0x1a2b"}, {"COUNTER-NAME", "None"}},
         -1,
         0,
         0,
         "WARNING: Could not locate TAF counter 'None' in XML files\n"
         "WARNING: Unable to resolve SampleID for operation: op!\n"},
        {"no endpoint",
         {{"GUID", "0x99"}, {"SAMPLE-ID", "5"}},
         -1,
         0,
         0,
         "WARNING: Unable to resolve Endpoint ID for operation: op!\n"},
        {"unknown name and no endpoint",
         {{"GUID", "0x99"}, {"IP-NAME", "PUNIT"}, {"COUNTER-NAME", "None"}},
         -1,
         0,
         0,
         "WARNING: XML file for GUID 0x99 not found!\n" + disabled("0x99") +
             "WARNING: Unable to resolve Endpoint ID for operation: op!\n"},
        {"foreign endpoint",
         {{"GUID", "0x1a2b"}, {"SAMPLE-ID", "5"}, {"ENDPOINT-ID", "8"}},
         -1,
         0,
         0,
         "WARNING: Endpoint for message not found in loaded endpoints!\n"},
        {"turned range",
         {{"GUID", "0x1a2b"}, {"COUNTER-NAME", "Odd"}, {"COUNTER-FIELD-NAME", "turned"}},
         -1,
         0,
         0,
         "ERROR: MSB:3 is less than LSB:5 for op\n"},
        {"bad number",
         {{"GUID", "0x1a2b"}, {"SAMPLE-ID", "70000"}},
         -1,
         0,
         0,
         "WARNING: op: Malformed operation metadata!\n"},
        {"range beyond a sample",
         {{"GUID", "0x1a2b"}, {"SAMPLE-ID", "1"}, {"BIT-RANGE", "0,64"}},
         -1,
         0,
         0,
         "WARNING: op: Malformed operation metadata!\n"},
    };
    ASSERT_EQ(AggrTelemIndex::instance().load(kGuid), 0);
    for (const Case& c : cases) {
        const LogCapture log;
        AggrTelemCounterInfo info;
        info.sampleId = 4711;
        const OperationMetadata operation("op", "AGGR-TELEM", 8, "", c.keys);
        EXPECT_EQ(parseAggrTelemOperationMetadata("op", operation, info), c.sample < 0 ? 1 : 0) << c.name;
        EXPECT_EQ(log.text(), c.message) << c.name;
        EXPECT_EQ(info.sampleId, c.sample < 0 ? 4711 : c.sample) << c.name;
        if (c.sample >= 0) {
            EXPECT_EQ(info.guid, kGuid) << c.name;
            EXPECT_EQ(info.endpointId, kEndpoint) << c.name;
            EXPECT_EQ(info.lsb, c.lsb) << c.name;
            EXPECT_EQ(info.msb, c.msb) << c.name;
        }
    }
}

/// Answers each sample with its id in every byte; refuses sample 9.
class EchoCollector : public CollectorPlugin {
public:
    EchoCollector() : CollectorPlugin("echo") {}
    const char* getDescription() const override { return "samples that tell their own id"; }
    std::vector<std::string> getCollectorTypes() const override { return {"AGGR-TELEM"}; }
    int open(const MsgMetadata& /*message*/, MessageInstances& /*out*/) override { return 1; }
    int read(const MsgMetadata& /*message*/, CollectionData& /*out*/) override { return 1; }
    using CollectorPlugin::doImmediateRead;
    int doImmediateRead(Operation* operation, const std::string& /*argument*/) override {
        auto* const counter = dynamic_cast<AggrTelemOperation*>(operation);
        if (counter == nullptr || counter->getCounterInfo().sampleId == 9) {
            return -1;
        }
        counter->setSample(0x0101010101010101U * counter->getCounterInfo().sampleId);
        return 0;
    }
};

TEST(AggrTelemImmediate, ReadsThroughTheCollectorOfTheType) {
    const SpecificationFile file(kGuid, document(sampleXml("Energy", "18", fieldXml("low", "4", "11"))));
    _tw_aggregator_info endpoint{};
    endpoint.guid = kGuid;
    endpoint.endpoint_id = kEndpoint;
    g_pluginEnvironment->addLoadedTAF(endpoint);
    g_pluginEnvironment->addTAFPlatformGUID("PUNIT", kGuid);
    const LogCapture log;
    pw_u64_t value = 4711;
    EXPECT_EQ(AggrTelemImmediate("PUNIT", "Energy", "low").read(value), 1); // nobody serves the type
    EXPECT_EQ(value, 4711U);

    EchoCollector collector;
    ASSERT_EQ(TWConfigFileParser::instance()->registerCollectorType("AGGR-TELEM", &collector), 0);
    AggrTelemImmediate energy("PUNIT", "Energy", "low");
    EXPECT_EQ(energy.read(value), 0);
    EXPECT_EQ(value, 0x21U); // 0x1212 >> 4
    EXPECT_EQ(energy.getCounterMetadata().sampleId, 18);
    std::map<pw_u16_t, pw_u64_t> samples = {{1, 0}, {2, 0}};
    EXPECT_EQ(energy.read(samples), 0);
    EXPECT_EQ(samples[2], 0x0202020202020202U);
    samples = {{1, 5}, {9, 6}};
    EXPECT_EQ(energy.read(samples), 1);
    EXPECT_EQ(samples[1], 5U); // all or none

    ASSERT_EQ(TWConfigFileParser::instance()->parseText(
                  "t.cfg",
                  "ALL_ENERGY_ONE_AGGR-TELEM_IP-NAME=PUNIT\nALL_ENERGY_ONE_AGGR-TELEM_COUNTER-NAME=Energy\n"),
              0);
    AggrTelemCounterInfo info;
    EXPECT_EQ(TWConfigFileParser::instance()->getAggrTelemCounterInfo("Energy", info), 0);
    EXPECT_EQ(info.sampleId, 18);
    EXPECT_EQ(TWConfigFileParser::instance()->getAggrTelemCounterInfo("None", info), 1);
    TWConfigFileParser::destroy();
}

TEST(AggrTelem, CutsBitsAndNames) {
    AggrTelemCounterInfo info;
    EXPECT_EQ(info.bitsOf(0xFEDCBA9876543210), 0xFEDCBA9876543210U);
    info.lsb = 8;
    info.msb = 15;
    EXPECT_EQ(info.bitsOf(0xFEDCBA9876543210), 0x32U);
    for (const auto& [value, name] :
         {std::pair("GUID=0x1,COUNTER-NAME= Energy ,X=1", "Energy"), std::pair("Energy, more", "Energy"),
          std::pair("GUID=0x1", ""), std::pair("", "")}) {
        EXPECT_EQ(getCounterNameFromInitValue(value), name) << value;
    }
}

} // namespace
