#include "common/plugin/plugin_environment.h"
#include "tests/metadata/example_record.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

namespace {

using namespace pwr;

std::string textOf(const SystemMetadata& system) {
    std::ostringstream text;
    text << std::hex << std::showbase << system << 16;
    return text.str();
}

std::string headersOf(const SystemMetadata& system, bool isDetailed) {
    return system.getVersionHeader(isDetailed) + system.getCollectionHeader() + system.getSystemHWHeader();
}

const std::string c_rule = std::string(80, '-') + "\n";

TEST(SystemTextsTest, showAllThatARecordHolds) {
    SystemMetadata example;
    tests::fillExample(example);
    EXPECT_EQ("FMS: 6.140.1\nApp version: 2025.5.1\nApp build date: 2025-10-02\nDriver version: 2025.4.0\n"
              "Driver build date: 2025-09-01\nSCU version: 7\nPlatform name: Heron\nHost name: lab3\n"
              "OS name: Linux\nOS type: x86_64\nOS version: 6.1\nBus freq (MHz): 100\n"
              "TWA clock freq (MHz): 2400\nLFM freq (MHz): 400\nHFM freq (MHz): 2800\n"
              "Base operating freq (MHz): 2400.5\nStart TSC: 1000\nStop TSC: 12000001000\n"
              "Start Timeval: 1763700000250000\nStop Timeval: 1763700005250000\n"
              "Polling interval (msecs): 100\nCollection command line: --time 5\n"
              "Collected samples : 250, dropped samples: 3\n\tsid[2] => uuid[clk-tsc]\n"
              "Platform specifiers: \n\tBOARD => rev 2\n\tDOCK => \n"
              "TAF Endpoint to GUID Mappings: \n\tEndpoint: 4 => GUID: 0x1a2b\n"
              "\tEndpoint: 20 => GUID: 0x1a2b\n"
              "Topology changes: \nTop Change:\n\ttsc = 77\n\ttype = OFFLINE\n\tlogicalProcID = 2\n"
              "\tcoreID = 4\n\tmoduleID = 1\n\tpkgID = 0\n"
              "Synchronized clocks: \n\tClock[0]:\n\t\tClock UUID: clk-qpc\n\t\tClock Name: QPC\n"
              "\t\tClock Freq (MHz): 10\n\t\tClock Value: 555\n\t\tDefault Clock UUID: clk-tsc\n"
              "\t\tDefault Clock Name: TSC\n\t\tDefault Clock Freq (MHz): 2400\n"
              "\t\tDefault Clock Value: 1000\nPackage Type: BGA\n"
              "PCI Devices: \n\tDisplay\n\t1234:00ff\n0x10",
              textOf(example))
        << "and the caller's base is as it was";

    EXPECT_EQ(c_rule + "tarnwell 2025.5.1\nBuild b17, built 2025-10-02\n" +
                  "Driver 2025.4.0, built 2025-09-01\n" + c_rule +
                  "Command line options: --time 5\n\nProgram Started: 2025-11-21 04:39:59 UTC\n"
                  "Data Collection Started: 2025-11-21 04:40:00 UTC \nTSC Clock Frequency (MHz): 2400 \n"
                  "CPU Base Operating Frequency (MHz): 2400.5\nCollection duration (sec): 5.000000\n"
                  "Collection begin timestamp: 1000\nCollection end timestamp: 12000001000\n"
                  "\nSystem Name: lab3\nOperating System: Linux x86_64 [6.1]\nCPU: Heron 8\n"
                  "CPU ID (family.model.stepping): 6.140.1\nPlatform ID: 0b101\n"
                  "Integrated GPU Device ID: 0x9a49\nTAF: 0x1a2b\nPCI: Display, 1234:00ff\n"
                  "CXH: Heron hub\nEDRAM Present: Yes\n"
                  "Supported S0ix State(s) for SOC die: S0i2.0, S0i2.1 \n"
                  "Total # of packages: 1 \nTotal # of modules: 1 \nTotal # of cores: 2 \n"
                  "Total # of logical processors: 3\nCPU native model:\n"
                  "Core efficiency 0x20 = 0x000001 (1 core)\nCore performance 0x40 = 0x000001 (1 core)\n",
              headersOf(example, true));
}

TEST(SystemTextsTest, showThatNothingIsKnown) {
    const std::string hardware = "\nSystem Name: NA\nOperating System: NA [NA]\nCPU: NA\n"
                                 "Integrated GPU Device: NA\nTAF: NA\nPCI: NA\nCXH: NA\n";
    SystemMetadata nothing;
    g_pluginEnvironment->setDefaultClock(nullptr);
    EXPECT_EQ(c_rule + "tarnwell 2025.5.1\n" + c_rule +
                  "Command line options: \n\nProgram Started: NA\nData Collection Started: NA \n"
                  "Default Clock Frequency (MHz): NA \nCPU Base Operating Frequency (MHz): NA\n"
                  "Collection duration (sec): NA\nCollection begin timestamp: 0\n"
                  "Collection end timestamp: 0\n" +
                  hardware + "EDRAM Present: Unsupported\n",
              headersOf(nothing, true));
    const TWNanoClock clock;
    g_pluginEnvironment->setDefaultClock(const_cast<TWNanoClock*>(&clock));
    EXPECT_NE(std::string::npos, nothing.getCollectionHeader().find("\n" + clock.getName() + " Clock Freq"));
    g_pluginEnvironment->setDefaultClock(nullptr);
}

TEST(SystemTextsTest, countEveryNodeOfATopology) {
    SystemMetadata system;
    auto* const cpu = new CPUMetadata;
    system.setPlatformMetadata(PlatformType::CPU, cpu);
    // The tree's maps hold the first threads of the packages' cores 0 under one key.
    cpu->getCPUTopology().addNode(0, 0, -1, 0);
    cpu->getCPUTopology().addNode(0, 0, -1, 1);
    const std::string header = system.getSystemHWHeader();
    EXPECT_EQ("EDRAM Present: No \nTotal # of packages: 2 \nTotal # of modules: 0 \nTotal # of cores: 2 \n"
              "Total # of logical processors: 2\n",
              header.substr(header.find("EDRAM")));
}

TEST(SystemTextsTest, timesAndDurations) {
    struct Time {
        pw_u64_t timeval;
        const char* text;
    };
    for (const Time& t : {Time{0, "NA"}, Time{1, "1970-01-01 00:00:00 UTC"},
                          Time{1709251199999999, "2024-02-29 23:59:59 UTC"},
                          Time{253402300799999999, "9999-12-31 23:59:59 UTC"}, Time{253402300800000000, "NA"},
                          Time{~pw_u64_t{0}, "NA"}}) {
        EXPECT_EQ(t.text, SystemMetadata::formatTimevalAsString(t.timeval));
    }
    struct Duration {
        pw_u64_t startTimeval, stopTimeval, startTSC, stopTSC;
        float frequency;
        double seconds;
    };
    for (const Duration& d :
         {Duration{5, 2500005, 0, 0, 0, 2.5}, Duration{2, 1, 10, 3000010, 2, 1.5},
          Duration{0, 9, 10, 3000010, 2, 1.5}, Duration{2, 1, 10, 9, 2, 0}, Duration{0, 0, 0, 9, 0, 0}}) {
        SystemMetadata system;
        std::tie(system.startTimeval, system.stopTimeval, system.startTSC, system.stopTSC,
                 system.twaClockFreq) =
            std::tie(d.startTimeval, d.stopTimeval, d.startTSC, d.stopTSC, d.frequency);
        EXPECT_EQ(d.seconds, system.getCollectionDurationSec());
    }
}

} // namespace
