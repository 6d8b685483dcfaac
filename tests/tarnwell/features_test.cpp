#include "tests/tarnwell/program_runner.h"

#include <gmock/gmock.h>

#include <sstream>

// What users write in text files: counters of their own, platforms, moments, groups.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kMachine = "machine.bundle";

constexpr const char* kSwap = "ALL_SWAP_CAPABILITY_COMMAND-LINE_VALUE=swap\n"
                              "ALL_SWAP_CAPABILITY_HELP-STRING_VALUE=pages swapped in\n"
                              "ALL_SWAP_CAPABILITY_GROUP_VALUE=paging\n"
                              "ALL_SWAP_IN_MSG_READ-WHEN=BEGIN,POLL,END\n"
                              "ALL_SWAP_IN_TEXT-FILE_PATH=/proc/vmstat\n"
                              "ALL_SWAP_IN_TEXT-FILE_FIELD=pswpin 1\n"
                              "ALL_SWAP_IN_TEXT-FILE_WIDTH=64\n"
                              "ALL_SWAP_IN_CONSTANT_METRIC-NAME=Pages swapped in\n"
                              "ALL_SWAP_IN_CONSTANT_METRIC-TYPE=SampledDelta\n"
                              "ALL_SWAP_IN_CONSTANT_CONTAINER-TAG=SWAP-IN\n"
                              "ALL_SWAP_IN_CONSTANT_QUANTITY=Pages;pages;Page rate;pages/s;1\n"
                              "ALL_SWAP_IN_CONSTANT_SOURCE=COUNTER\n"
                              "ALL_SWAP_IN_CONSTANT_ENTITY=SYSTEM\n";

constexpr const char* kTables = "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=swap\n"
                                "ALL_swap_TAG_TABLE_ORDER=SWAP-IN\n"
                                "swap_SWAP-IN_TOTAL-DELTA_TITLE_VALUE=Pages that came back\n"
                                "swap_SWAP-IN_AVERAGE-RATE-TOTAL_TABLE_VALUE=NO\n"
                                "swap_SWAP-IN_SAMPLE-COUNT_TABLE_VALUE=NO\n";

std::string vmstat(unsigned pages) {
    const std::string text = "nr_free_pages 100\npswpin " + std::to_string(pages) + "\npswpout 7\n";
    return "file /proc/vmstat " + std::to_string(text.size()) + "\n" + text + "\n";
}

class Features : public testing::Test {
protected:
    /// A recorded machine of the fixtures, whose counter of pages grows from 1000 to 1345.
    Features() {
        std::string text = readFile(dataFolder() / "machines" / "one_processor.bundle");
        const std::string first = "@1000000000\n";
        text.insert(text.find(first) + first.size(), vmstat(1000));
        text.insert(text.rfind("end\n"), vmstat(1345));
        writeFile(kMachine, text);
    }
    ProgramResult run(const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"--machine", kMachine};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(m_scratch, arguments);
    }
    ProgramResult check(const std::vector<std::string>& files) {
        std::vector<std::string> arguments = {"check-config"};
        arguments.insert(arguments.end(), files.begin(), files.end());
        return runProgram(m_scratch, arguments);
    }
    /// How many readings of each message a collection saved, as "IN=11 TOP=1".
    std::string savedReadings(const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"--save", "made.twc", "--overwrite"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProgramResult result = run(arguments);
        EXPECT_EQ(0, result.exitCode) << result.errors;
        const std::string lines = runProgram(m_scratch, {"export", "--csv", "made.twc"}).output;
        std::string text;
        for (const char* message : {"AT-INIT", "AT-BEGIN", "IN", "DETAIL", "AT-FINI"}) {
            const std::string word = std::string(",") + message + ",";
            unsigned count = 0;
            for (std::size_t at = lines.find(word); at != std::string::npos; at = lines.find(word, at + 1)) {
                ++count;
            }
            text += count == 0 ? ""
                               : (text.empty() ? "" : " ") + word.substr(1, word.size() - 2) + "=" +
                                     std::to_string(count);
        }
        return text;
    }

    ScratchFolder m_scratch;
};

TEST_F(Features, newCounterComesFromTextAlone) {
    writeFile("swap.cfg", kSwap);
    writeFile("tables.cfg", kTables);
    const ProgramResult checked = check({"swap.cfg", "tables.cfg"});
    EXPECT_EQ(0, checked.exitCode) << checked.errors;
    EXPECT_EQ("", checked.errors);

    const ProgramResult live = run({"--hardware-config", "swap.cfg", "--add-output-config", "tables.cfg",
                                    "--feature", "swap", "--save", "swap.twc"});
    EXPECT_EQ(0, live.exitCode) << live.errors;
    EXPECT_THAT(live.output, HasSubstr("swap\n====\n\nPages that came back\n\n"));
    EXPECT_THAT(live.output, HasSubstr("(pages)"));
    EXPECT_THAT(live.output, HasSubstr(" 345\n")) << live.output;

    fs::remove("swap.cfg");
    fs::remove("tables.cfg");
    EXPECT_EQ(live.output, runProgram(m_scratch, {"--input", "swap.twc"}).output);
    EXPECT_EQ(live.output, runProgram(m_scratch, {"--input", "swap.twc", "--feature", "paging"}).output);
    const std::string info = runProgram(m_scratch, {"info", "--json", "swap.twc"}).output;
    EXPECT_THAT(info, HasSubstr("\"name\": \"hardware/swap.cfg\""));
    EXPECT_THAT(info, HasSubstr("ALL_SWAP_IN_TEXT-FILE_FIELD=pswpin 1\\n"));
    EXPECT_THAT(info, Not(HasSubstr("ALL_CPU_"))) << "only what was used is saved";
}

TEST_F(Features, platformIsThatOfTheProcessor) {
    std::string text = kSwap;
    for (std::size_t at = text.find("ALL_"); at != std::string::npos; at = text.find("ALL_", at + 1)) {
        text.replace(at, 3, "ORCA");
    }
    writeFile("orca.cfg", text + "ORCA_MODEL_FMS_CONSTANT_VALUE=6.85.4\n");
    writeFile("other.cfg", text + "ORCA_MODEL_FMS_CONSTANT_VALUE=6.86.4\n");
    EXPECT_EQ("IN=11", savedReadings({"--hardware-config", "orca.cfg", "--feature", "swap"}));
    const ProgramResult other = run({"--hardware-config", "other.cfg", "--feature", "swap"});
    EXPECT_EQ(2, other.exitCode);
    EXPECT_THAT(other.errors, HasSubstr("unknown feature \"swap\""));
}

/// A bundle's entry of a file with any bytes.
std::string fileEntry(const std::string& path, const std::string& bytes) {
    return "file " + path + " " + std::to_string(bytes.size()) + "\n" + bytes + "\n";
}

TEST_F(Features, platformIsThatOfADeviceOrOfTelemetry) {
    std::string text = readFile(kMachine);
    const std::string first = "@1000000000\n";
    text.insert(text.find(first) + first.size(),
                "line /sys/bus/pci/devices/0000:00:1f.0/vendor 0x1ab1\n"
                "line /sys/bus/pci/devices/0000:00:1f.0/device 0x0011\n" +
                    fileEntry("/etc/tarnwell/telemetry-endpoints", "3 0x2c01 1 /telem/raw 8 8 1\n") +
                    fileEntry("/telem/others", "4 0x2c02 1 /telem/raw 0 16 2\n") +
                    fileEntry("/telem/raw", "first..." + std::string("\5\0\0\0\0\0\0\0", 8)));
    writeFile(kMachine, text);
    // Each platform has a capability of its own.
    const std::string device = "BELUGA_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1ab1,DEVICE=0x11\n"
                               "BELUGA_PAGES_CAPABILITY_COMMAND-LINE_VALUE=pages\n"
                               "BELUGA_PAGES_OUT_TEXT-FILE_PATH=/proc/vmstat\n"
                               "BELUGA_PAGES_OUT_TEXT-FILE_FIELD=pswpout 1\n";
    const std::string counter = "NARWHAL_POWER_CAPABILITY_COMMAND-LINE_VALUE=power\n"
                                "NARWHAL_POWER_CORE_MSG_READ-WHEN=BEGIN\n"
                                "NARWHAL_POWER_CORE_AGGR-TELEM_SAMPLE-ID=0\n"
                                "NARWHAL_POWER_CORE_AGGR-TELEM_GUID=";
    const auto telemetry = [&](const std::string& guid, const std::string& guids) {
        return counter + guid + "\nNARWHAL_MODEL_TAF_CONSTANT_VALUE=" + guids + "\n";
    };
    const std::string unknown = "WARNING: the hardware description has no platform for TAF GUID=0x2c01\n";
    const std::string out = "OUT,pages,SYSTEM,\"\",7\r\n";
    const std::string core = "CORE,power,SYSTEM,\"\",5\r\n";
    struct Case {
        std::string config;
        std::vector<std::string> options;
        int exitCode;
        std::string errors;   ///< before what ends the program
        std::string readings; ///< message, feature, entity, descriptor and value of each
    };
    for (const Case& c : {
             Case{device, {"--feature", "pages"}, 0, unknown, out},
             {"BELUGA_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1ab1,DEVICE=0x12\n",
              {"--feature", "pages"},
              2,
              unknown,
              {}},
             {telemetry("0x2c01", "GUID=0x2c01"), {"--feature", "power"}, 0, "", core},
             {telemetry("0x2c02", "GUID=0x2c02"), {"--feature", "power"}, 2, unknown, {}},
             {telemetry("0x2c02", "GUID=0x2c02"),
              {"--feature", "power", "--endpoints", "/telem/others"},
              0,
              "",
              "CORE,power,SYSTEM,\"\",3327648252361337190\r\n"},
             {telemetry("0x2c01", "GUID=0x2c01") + "ORCA_MODEL_FMS_CONSTANT_VALUE=7.1\n" +
                  "ORCA_MODEL_DEPRECATED-GUIDS_CONSTANT_VALUE=GUID=0x2c01\n",
              {"--feature", "power"},
              2,
              "WARNING: Deprecated GUID detected: 0x2c01\nPlease check the Release Notes for the Tarnwell "
              "version "
              "that supports this GUID.\n" +
                  unknown,
              {}},
             // Three platforms at once, each with what the others lack.
             {device + telemetry("0x2c01", "GUID=0x2c01,GUID=0x2c03") +
                  "ORCA_MODEL_FMS_CONSTANT_VALUE=6.85\n" + "ORCA_MODEL_TAF_CONSTANT_VALUE=GUID=0x2c04\n",
              {"--feature", "pages", "--feature", "power"},
              0,
              "WARNING: TAF GUID 0x2c04 missing.\nWARNING: TAF GUID 0x2c03 missing.\n",
              out + core},
             // What a platform and its descendant both have is read once, also under another description.
             {device + "BELUGA-MOBILE_MODEL_FMS_CONSTANT_VALUE=6.85\n",
              {"--feature", "pages"},
              0,
              unknown,
              out},
             {device +
                  "ORCA_MODEL_FMS_CONSTANT_VALUE=6.85\nORCA_PAGES_CAPABILITY_COMMAND-LINE_VALUE=pages\n"
                  "ORCA_PAGES_CAPABILITY_HELP-STRING_VALUE=other\nORCA_PAGES_IN_TEXT-FILE_PATH=/proc/vmstat\n"
                  "ORCA_PAGES_IN_TEXT-FILE_FIELD=pswpin 1\n",
              {"--feature", "pages"},
              0,
              unknown,
              "IN,pages,SYSTEM,\"\",1000\r\n" + out},
         }) {
        SCOPED_TRACE(c.config);
        writeFile("own.cfg", c.config);
        std::vector<std::string> arguments = {"--hardware-config", "own.cfg",    "--quiet", "--save",
                                              "made.twc",          "--overwrite"};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        const ProgramResult result = run(arguments);
        EXPECT_EQ(c.exitCode, result.exitCode) << result.errors;
        EXPECT_EQ(c.errors, result.errors.substr(0, result.errors.rfind("tarnwell: ")));
        if (c.exitCode != 0) {
            continue;
        }
        std::istringstream lines(runProgram(m_scratch, {"export", "--csv", "made.twc"}).output);
        std::string readings;
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line);) {
            readings += line.substr(line.find(',', line.find(',') + 1) + 1) + "\n";
        }
        EXPECT_EQ(c.readings, readings);
    }
    const std::string info = runProgram(m_scratch, {"info", "made.twc"}).output;
    EXPECT_THAT(info, HasSubstr("0x2c01")) << "the endpoints are recorded";
    EXPECT_EQ(2, run({"--endpoints", "telem"}).exitCode);
}

TEST_F(Features, messagesRunAtTheirMoments) {
    std::string more;
    for (const char* message : {"AT-INIT", "AT-BEGIN", "AT-FINI", "DETAIL"}) {
        more += "ALL_SWAP_" + std::string(message) + "_TEXT-FILE_PATH=/proc/vmstat\nALL_SWAP_" + message +
                "_TEXT-FILE_FIELD=pswpout 1\n";
    }
    writeFile("moments.cfg", kSwap + more +
                                 "ALL_SWAP_AT-BEGIN_MSG_READ-WHEN=BEGIN\n"
                                 "ALL_SWAP_AT-FINI_MSG_READ-WHEN=FINI\n"
                                 "ALL_SWAP_AT-FINI_MSG_READ-WHICH-CPU=0\n"
                                 "ALL_SWAP_IN_MSG_READ-WHEN-MAX-DETAIL=BEGIN,END\n"
                                 "ALL_SWAP_DETAIL_MSG_READ-WHEN-MAX-DETAIL=POLL\n");
    const std::vector<std::string> arguments = {"--hardware-config", "moments.cfg", "--feature", "swap"};
    EXPECT_EQ("AT-INIT=1 AT-BEGIN=1 IN=11 AT-FINI=1", savedReadings(arguments));
    std::vector<std::string> detailed = arguments;
    detailed.emplace_back("--max-detail");
    EXPECT_EQ("AT-INIT=1 AT-BEGIN=1 IN=2 DETAIL=9 AT-FINI=1", savedReadings(detailed));
}

TEST_F(Features, hiddenOnesAreCollectedWhenAskedForAndGroupsAsAWhole) {
    writeFile("hidden.cfg", std::string(kSwap) + "ALL_SWAP_CAPABILITY_HIDDEN_VALUE=TRUE\n"
                                                 "ALL_CPU_CAPABILITY_GROUP_VALUE=paging\n");
    EXPECT_THAT(run({"doctor", "--hardware-config", "hidden.cfg"}).output, Not(HasSubstr("swap")));
    EXPECT_THAT(run({"--hardware-config", "hidden.cfg"}).output, Not(HasSubstr("Pages swapped in")));
    const ProgramResult group = run({"--hardware-config", "hidden.cfg", "--feature", "paging"});
    EXPECT_THAT(group.output, HasSubstr("Pages swapped in"));
    EXPECT_THAT(group.output, HasSubstr("Processor time by mode"));
    EXPECT_THAT(group.output, Not(HasSubstr("System memory")));
}

TEST_F(Features, shippedDescriptionHasNoFaultAndSaysWhyThingsAreAbsent) {
    const ProgramResult shipped = check({});
    EXPECT_EQ(0, shipped.exitCode) << shipped.errors;
    EXPECT_EQ("", shipped.errors);
    const std::string bundle = (dataFolder() / "machines" / "no_idle_states.bundle").string();
    EXPECT_EQ(
        "Features of this machine:\n"
        "  idle             no   time in idle states, per logical processor\n"
        "                        why: the kernel offers no idle states "
        "(/sys/devices/system/cpu/cpu*/cpuidle)\n"
        "                        fix: use a kernel with cpuidle; a virtual machine must be given idle states "
        "by its host\n"
        "  cpu              yes  processor time by mode, per logical processor\n"
        "  network          yes  bytes and packets, per network interface\n"
        "  disk             no   bytes and operations, per block device\n"
        "                        why: /sys/block/vda/stat may not be read\n"
        "                        fix: run as root, or let this user read that file\n"
        "  interrupts       yes  interrupts per logical processor, and context switches\n"
        "  frequency        no   frequency, per logical processor\n"
        "                        why: neither cpufreq files (/sys/devices/system/cpu/cpu*/cpufreq) nor a "
        "frequency in /proc/cpuinfo\n"
        "                        fix: load the driver for the processor's frequency control; virtual "
        "machines usually have none\n"
        "  temp             no   temperatures of sensors and thermal zones\n"
        "                        why: no sensors in /sys/class/hwmon or /sys/class/thermal\n"
        "                        fix: load the drivers of the machine's sensors; virtual machines usually "
        "have none\n"
        "  memory           yes  system memory\n"
        "  idle-trace       no   changes between idle states, traced, per logical processor (only with "
        "--feature)\n"
        "                        why: no trace was recorded of this machine\n"
        "  frequency-trace  no   changes of frequency, traced, per logical processor (only with --feature)\n"
        "                        why: no trace was recorded of this machine\n"
        "  sched-events     no   events of the scheduler, counted by name, per logical processor (only with "
        "--feature)\n"
        "                        why: no trace was recorded of this machine\n"
        "  irq-events       no   interrupts, counted by name, per logical processor (only with --feature)\n"
        "                        why: no trace was recorded of this machine\n"
        "  timer-events     no   events of timers, counted by name, per logical processor (only with "
        "--feature)\n"
        "                        why: no trace was recorded of this machine\n"
        "Groups of features:\n"
        "  temperature  temp\n"
        "  trace        idle-trace, frequency-trace, sched-events, irq-events, timer-events\n",
        runProgram(m_scratch, {"doctor", "--machine", bundle}).output);
}

TEST_F(Features, mistakesAreAllNamedWithFileAndLine) {
    struct Case {
        const char* line; ///< in place of, or behind, the line that begins like it
        const char* said;
    };
    const std::vector<Case> cases = {
        {"ALL_SWAP_IN_TEXT-FILE_PATH=proc/vmstat",
         "swap.cfg:5: IN, operation IN: PATH \"proc/vmstat\": it must"},
        {"ALL_SWAP_IN_TEXT-FILE_FIELD=pswpin", "swap.cfg:6: IN, operation IN: FIELD \"pswpin\": the number"},
        {"ALL_SWAP_IN_CONSTANT_METRIC-TYPE=Sampled",
         "swap.cfg:9: message IN: METRIC-TYPE: expected SampledDelta"},
        {"ALL_SWAP_IN_CONSTANT_QUANTITY=pages",
         "swap.cfg:11: message IN: QUANTITY: \"pages\" is no built-in"},
        {"ALL_SWAP_IN_CONSTANT_METRIC-TYPE=SampledResidency",
         "swap.cfg:11: message IN: QUANTITY: a SampledResidency"},
        {"ALL_SWAP_IN_CONSTANT_SUORCE=COUNTER", "swap.cfg:14: message IN: unknown key SUORCE"},
        {"ALL_SWAP_IN_CONSTANT_INSTEAD-OF=OUT", "swap.cfg:14: message IN: INSTEAD-OF: the capability has no"},
        {"ALL_SWAP_IN_MSG_READ-WHICH-CPU=all", "swap.cfg:14: message IN: READ-WHICH-CPU"},
        {"ALL_SWAP_IN_TEXT-FILE_FEILD=pswpin 1",
         "swap.cfg:14: IN, operation IN: FEILD \"pswpin 1\": unknown key; there are PATH"},
        {"ALL_SWAP_IN_TEXT-FILES_PATH=/proc/vmstat", "(swap.cfg:14)"},
        {"ALL_SWAP_IN=1", "(swap.cfg:14)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::string text = kSwap;
        const std::string line = c.line;
        const std::size_t at = text.find(line.substr(0, line.find('=') + 1));
        if (at != std::string::npos) {
            text.replace(at, text.find('\n', at) - at, line);
        } else {
            text += line + "\n";
        }
        writeFile("swap.cfg", text);
        writeFile("more.cfg", "swap_SWAP-IN=2\nswap_SWAP-IN_TOTAL-DELTA_TITLE_VALUE=x\n");
        const ProgramResult live = run({"--hardware-config", "swap.cfg"});
        EXPECT_EQ(1, live.exitCode);
        EXPECT_EQ("", live.output);
        EXPECT_THAT(live.errors, HasSubstr(c.said));
        const ProgramResult checked = check({"swap.cfg", "more.cfg"});
        EXPECT_EQ(1, checked.exitCode);
        EXPECT_THAT(checked.errors, HasSubstr(c.said));
        EXPECT_THAT(checked.errors, HasSubstr("(more.cfg:1)")) << "one run names the faults of all files";
    }
}

TEST_F(Features, writtenMessagesSetWhatLaterOnesRead) {
    fs::create_directories("root/proc");
    writeFile("root/proc/limit", "100\n");
    writeFile("set.cfg", "ALL_LIMIT_CAPABILITY_COMMAND-LINE_VALUE=limit\n"
                         "ALL_LIMIT_LOW_TEXT-FILE_PATH=/proc/limit\n"
                         "ALL_LIMIT_LOW_TEXT-FILE_VALUE=60\n"
                         "ALL_LIMIT_LOW_MSG_WRITE-WHEN=INIT\n"
                         "ALL_LIMIT_IN_TEXT-FILE_PATH=/proc/limit\n"
                         "ALL_LIMIT_IN_MSG_READ-WHEN=BEGIN\n"
                         "ALL_LIMIT_BACK_TEXT-FILE_PATH=/proc/limit\n"
                         "ALL_LIMIT_BACK_TEXT-FILE_VALUE=90\n"
                         "ALL_LIMIT_BACK_MSG_WRITE-WHEN=FINI\n"
                         "ALL_LIMIT_LOST_TEXT-FILE_PATH=/proc/none\n"
                         "ALL_LIMIT_LOST_TEXT-FILE_VALUE=1\n"
                         "ALL_LIMIT_LOST_MSG_WRITE-WHEN=END\n"
                         "ALL_LIMIT_BAD_TEXT-FILE_PATH=/proc\n"
                         "ALL_LIMIT_BAD_TEXT-FILE_VALUE=1\n"
                         "ALL_LIMIT_BAD_MSG_WRITE-WHEN=BEGIN,END\n");
    const ProgramResult result =
        runProgram(m_scratch, {"--machine", "root", "--hardware-config", "set.cfg", "--feature", "limit",
                               "--time", "0.01", "--save", "set.twc"});
    EXPECT_EQ(3, result.exitCode) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Missing: limit: message BAD was not written (2 times)"));
    EXPECT_THAT(result.output,
                HasSubstr("Missing: limit: message LOST is off: nothing on this machine matches"));
    EXPECT_EQ("90\n", readFile("root/proc/limit"));
    const std::string lines = runProgram(m_scratch, {"export", "--csv", "set.twc"}).output;
    EXPECT_THAT(lines, HasSubstr(",IN,"));
    EXPECT_THAT(lines, HasSubstr(",60\r\n")) << lines;
    EXPECT_THAT(lines, Not(HasSubstr(",LOW,"))) << "what is written gives no readings";
}

TEST_F(Features, doctorListsGroupsAndCapturesCountersOfOnesOwn) {
    writeFile("swap.cfg", std::string(kSwap) + "ALL_CPU_CAPABILITY_GROUP_VALUE=paging\n");
    const ProgramResult doctor = run({"doctor", "--hardware-config", "swap.cfg", "--capture", "copy.bundle"});
    EXPECT_THAT(doctor.output, HasSubstr("\nGroups of features:\n  paging       cpu, swap\n"))
        << doctor.errors;
    const std::string odd =
        "ALL_ODD_CAPABILITY_COMMAND-LINE_VALUE=odd\nALL_ODD_A_TEXT-FILE_PATH=/odd/{net}/x\n";
    writeFile("odd.cfg", odd);
    fs::create_directories("root/odd/one");
    writeFile("root/odd/one/x", "5\n");
    runProgram(m_scratch, {"doctor", "--machine", "root", "--hardware-config", "odd.cfg", "--capture",
                           "odd.bundle", "--time", "0.01"});
    EXPECT_THAT(readFile("odd.bundle"), HasSubstr("\nline /odd/one/x 5\n"));
}

TEST_F(Features, whatNothingServesIsOffWithAReason) {
    writeFile("off.cfg", std::string(kSwap) + "ALL_SWAP_MOVED_MSG_READ-WHEN=TRACEPOINT=mm-vmscan\n"
                                              "ALL_SWAP_MOVED_TEXT-FILE_PATH=/proc/vmstat\n"
                                              "ALL_POWER_CAPABILITY_COMMAND-LINE_VALUE=power\n"
                                              "ALL_POWER_CORE_AGGR-TELEM_COUNTER-NAME=CORE\n"
                                              "ALL_POWER_CORE_MSG_READ-WHEN=POLL\n");
    EXPECT_EQ("IN=11", savedReadings({"--hardware-config", "off.cfg", "--feature", "swap"}));
    const ProgramResult asked = run({"--hardware-config", "off.cfg", "--feature", "power"});
    EXPECT_EQ(3, asked.exitCode);
    EXPECT_THAT(asked.errors, HasSubstr("power is not available: no telemetry endpoints are known"));
    writeFile("none.cfg",
              "ALL_NONE_CAPABILITY_COMMAND-LINE_VALUE=none\nALL_NONE_A_TEXT-FILE_PATH=/proc/none\n");
    EXPECT_THAT(
        run({"--hardware-config", "none.cfg", "--feature", "none"}).errors,
        HasSubstr("none is not available: nothing on this machine matches message A, PATH=/proc/none"));
    writeFile("plugin.cfg", std::string(kSwap) + "ALL_SWAP_IN_CONSTANT_PLUGIN=other\n");
    const ProgramResult other = run({"--hardware-config", "plugin.cfg", "--feature", "swap"});
    EXPECT_EQ(3, other.exitCode);
    EXPECT_THAT(other.output, HasSubstr("Missing: there is no metric plug-in \"other\""));
    EXPECT_THAT(run({"--hardware-config", "."}).errors, HasSubstr(". is a folder: name the files in it"));
}

} // namespace
