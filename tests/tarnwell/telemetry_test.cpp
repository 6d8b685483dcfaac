#include "tests/support/telemetry_text.h"
#include "tests/tarnwell/program_runner.h"

#include <gmock/gmock.h>

// From the description of a telemetry GUID to the table of its counter, and what becomes of a description that is bad.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;
using testing::HasSubstr;
using tests::document;
using tests::fieldXml;
using tests::sampleXml;

constexpr const char* kMachine = "machine.bundle";
constexpr const char* kTable = "/etc/our/endpoints";

constexpr const char* kCounters = "ALL_POWER_CAPABILITY_COMMAND-LINE_VALUE=power\n"
                                  "ALL_POWER_CORE_MSG_READ-WHEN=POLL\n"
                                  "ALL_POWER_CORE_AGGR-TELEM_GUID=0x2c0f\n"
                                  "ALL_POWER_CORE_AGGR-TELEM_COUNTER-NAME=CORE\n"
                                  "ALL_POWER_CORE_AGGR-TELEM_COUNTER-FIELD-NAME=now\n"
                                  "ALL_POWER_CORE_AGGR-TELEM_DATA-FORMAT=U4.2\n"
                                  "ALL_POWER_CORE_CONSTANT_METRIC-NAME=Core\n"
                                  "ALL_POWER_CORE_CONSTANT_CONTAINER-TAG=CORE\n"
                                  "ALL_POWER_CORE_CONSTANT_METRIC-TYPE=SampledValue\n"
                                  "ALL_POWER_CORE_CONSTANT_QUANTITY=Watts;W\n"
                                  "ALL_POWER_CORE_CONSTANT_VALUE-TYPE=REAL\n"
                                  "ALL_OTHER_CAPABILITY_COMMAND-LINE_VALUE=other\n"
                                  "ALL_OTHER_CORE_MSG_READ-WHEN=POLL\n"
                                  "ALL_OTHER_CORE_AGGR-TELEM_GUID=0x2c0f\n"
                                  "ALL_OTHER_CORE_AGGR-TELEM_SAMPLE-ID=0\n"
                                  "ALL_OTHER_CORE_CONSTANT_METRIC-NAME=Other\n"
                                  "ALL_OTHER_CORE_CONSTANT_CONTAINER-TAG=OTHER\n"
                                  "ALL_OTHER_CORE_CONSTANT_METRIC-TYPE=SampledValue\n"
                                  "ALL_OTHER_CORE_CONSTANT_QUANTITY=Pieces;p\n";

std::string fileEntry(const std::string& path, const std::string& text) {
    return "file " + path + " " + std::to_string(text.size()) + "\n" + text + "\n";
}

class Telemetry : public testing::Test {
protected:
    Telemetry() : m_folder(installedLibraryFolder() / "xml_configs") {
        std::string text = readFile(dataFolder() / "machines" / "one_processor.bundle");
        const std::string first = "@1000000000\n";
        text.insert(text.find(first) + first.size(), fileEntry(kTable, "3 0x2c0f 1 /telem/a 8 8 1\n") +
                                                         fileEntry("/telem/a", "12345678zPPPPPP\x7f"));
        writeFile(kMachine, text);
        writeFile("telem.cfg", kCounters);
        fs::create_directories(m_folder);
    }
    ~Telemetry() override { fs::remove_all(description()); }

    fs::path description() const { return m_folder / "telemetry_0x2c0f.xml"; }
    ProgramResult run(const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"--machine",         kMachine,    "--endpoints", kTable,
                                              "--hardware-config", "telem.cfg", "--no-save"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(m_scratch, arguments);
    }

    ScratchFolder m_scratch;
    fs::path m_folder;
};

TEST_F(Telemetry, descriptionBecomesATable) {
    writeFile(description(), document(sampleXml("CORE", "0", fieldXml("now", "1", "6"))));
    const ProgramResult result = run({"--feature", "power"});
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("15.25")) << "bits 1 to 6 of 'z', in quarters";
}

TEST_F(Telemetry, badDescriptionTurnsItsCountersOffAndNothingElse) {
    std::string deep;
    for (int i = 0; i < 200000; ++i) {
        deep += "<TELC:sample>";
    }
    std::string laughs = "<!DOCTYPE r [<!ENTITY a0 \"CORE\">";
    for (int i = 1; i < 40; ++i) {
        const std::string inner = "&a" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY a" + std::to_string(i) + " \"" + inner + inner + "\">";
    }
    const std::string field = fieldXml("now", "1", "6");
    const std::string huge(4 << 20, 'n');
    struct Case {
        const char* name;
        std::string text;
        const char* said;
    };
    for (const Case& c : {
             Case{"missing", "", "XML file for GUID 0x2c0f not found!"},
             {"no XML", "CORE = 0", "The format is invalid."},
             {"cut short", document(sampleXml("CORE", "0", field)).substr(0, 150), "The format is invalid."},
             {"deep nesting", deep, "The format is invalid."},
             {"entities", laughs + "]>" + document(sampleXml("&a39;", "0", field)),
              "Could not locate TAF counter 'CORE'"},
             {"huge name", document(sampleXml(huge, huge, field)),
              "may not collect properly for TAF: 0x2c0f."},
             {"number", document(sampleXml("CORE", "65536", field)), "needs a name and a sampleID"},
             {"bit", document(sampleXml("CORE", "0", fieldXml("now", "1", "64"))),
              "Malformed operation metadata!"},
             {"turned", document(sampleXml("CORE", "0", fieldXml("now", "6", "1"))),
              "ERROR: MSB:1 is less than LSB:6"},
         }) {
        SCOPED_TRACE(c.name);
        fs::remove(description());
        if (!c.text.empty()) {
            writeFile(description(), c.text);
        }
        const ProgramResult result = run({"--feature", "power", "--feature", "other", "--feature", "cpu"});
        EXPECT_EQ(3, result.exitCode);
        EXPECT_THAT(result.errors, HasSubstr(c.said));
        EXPECT_THAT(result.errors, HasSubstr("power is not available: "));
        EXPECT_LT(result.errors.size(), 3000U);
        EXPECT_THAT(result.output, HasSubstr("Other"));
        EXPECT_THAT(result.output, HasSubstr("Processor"));
    }
}

} // namespace
