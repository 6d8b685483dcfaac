// Platforms: descent, recognition, selection, and what a platform inherits.

#include "common/config/platform.h"
#include "common/config/taf_guids.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/metadata/taf_metadata.h"
#include "common/plugin/plugin_environment.h"
#include "tests/config/hardware_config_fixture.h"

#include <list>

using namespace pwr;

namespace {

class PlatformsTest : public HardwareConfigTest {
protected:
    std::string chosen(const char* type, const char* value) {
        std::string name = "untouched";
        const int result = parser().getPlatformName(name, {type, value});
        EXPECT_EQ(result == 0, !name.empty());
        return name;
    }
    std::string capabilities(const char* platforms) {
        std::vector<ConfigCap> found;
        parser().getCapabilitiesFor(found, platforms);
        std::string text;
        for (const ConfigCap& cap : found) {
            text += (text.empty() ? "" : " ") + cap.getConfigfilePrefix() + "=" + cap.getName() + "/" +
                    cap.getDescription() + "/" + (cap.isHidden() ? "hidden" : "") + "/" +
                    join(cap.getGroups());
        }
        return text;
    }
};

TEST_F(PlatformsTest, areLinkedInAnyOrder) {
    good("A-B-C_MODEL_X_CONSTANT_VALUE=1\nA-B_MODEL_X_CONSTANT_VALUE=2\nA_MODEL_X_CONSTANT_VALUE=3\n");
    std::string line;
    for (const Platform* at = parser().findPlatform("A-B-C"); at != nullptr; at = at->getParent()) {
        line += at->getName() + " ";
    }
    EXPECT_EQ("A-B-C A-B A ALL ", line);
    EXPECT_TRUE(parser().isPlatformPrefixSupported("ALL"));
    EXPECT_FALSE(parser().isPlatformPrefixSupported("B"));

    EXPECT_EQ(1, parser().parseText("x.cfg", "D-E_MODEL_X_CONSTANT_VALUE=1\nB-C-D_MODEL_X_CONSTANT_VALUE=1\n"
                                             "B-F_MODEL_X_CONSTANT_VALUE=1\n"));
    EXPECT_EQ("the following \"parent\" platforms have not been defined: B, B-C, D\n"
              "config file parser sanity checks did NOT pass -- config files are invalid!\n",
              m_log.take());
}

TEST_F(PlatformsTest, areChosenByTheBestSpecifier) {
    good("B_MODEL_FMS_CONSTANT_VALUE=6.85, 6.86.3\n"
         "A_MODEL_FMS_CONSTANT_VALUE=6.86\n"
         "C_MODEL_FMS_CONSTANT_VALUE=6.85.4\n"
         "Z_MODEL_FMS_CONSTANT_VALUE=6.85\n"
         "A_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1,DEVICE=0x2, VENDOR=0x3, DEVICE=0x4\n"
         "A_MODEL_CORES_CONSTANT_RANGE=5,0xA\n");
    EXPECT_EQ("C", chosen("FMS", "6.85.4")); // though B fits partly
    EXPECT_EQ("B", chosen("FMS", "6.85.5")); // before Z
    EXPECT_EQ("B", chosen("FMS", "6.86.3")); // though A fits partly
    EXPECT_EQ("A", chosen("PCI", "VENDOR=0x3,DEVICE=0x4"));
    EXPECT_EQ("A", chosen("CORES", "10"));
    EXPECT_EQ("", chosen("FMS", "7.1"));
}

TEST_F(PlatformsTest, knowTheirTelemetry) {
    good("A_MODEL_TAF_CONSTANT_VALUE=GUID=0xA1,GUID=0xA2\n"
         "A_MODEL_DEPRECATED-GUIDS_CONSTANT_VALUE=GUID=0xA2\n"
         "A_MODEL_DEPRECATED-GUIDS_CONSTANT_VALUE=GUID=0xA3\n");
    EXPECT_EQ((std::vector<pw_u32_t>{0xA1, 0xA2}), g_pluginEnvironment->getTAFPlatformGUIDs("A"));
    EXPECT_EQ((std::vector<pw_u32_t>{0xA2, 0xA3}), g_pluginEnvironment->getDeprecatedTAFGUIDs());
    EXPECT_EQ("A", chosen("TAF", "GUID=0xa1"));
    EXPECT_EQ("", m_log.take());
    good("B_MODEL_TAF_CONSTANT_VALUE=GUID=0xA3\n");
    for (const char* guid : {"a2", "a3"}) { // though another platform knows the second
        EXPECT_EQ("", chosen("TAF", ("GUID=0x" + std::string(guid)).c_str()));
        EXPECT_EQ("WARNING: Deprecated GUID detected: 0x" + std::string(guid) +
                      "\nPlease check the Release Notes for the Tarnwell version that supports this GUID.\n",
                  m_log.take());
    }
}

TEST_F(PlatformsTest, areSelectedByAString) {
    good("A_MODEL_X_CONSTANT_VALUE=1\nALL_C_CAPABILITY_COMMAND-LINE_VALUE=c\n");
    const std::string unknown = "ERROR: ERROR: no platform \"B\" defined in config file!\n";
    const auto invalid = [](const std::string& entry) {
        return "WARNING: invalid platform name entry " + entry + ": MUST be of form <TYPE>=<NAME>!\n";
    };
    const auto failed = [](const std::string& text) {
        return "ERROR: couldn't retrieve valid list of platforms from platform name string = " + text + "\n";
    };
    struct Case {
        std::string text;
        int result;
        std::string said;
    };
    for (const Case& c : {Case{" CPU=A , CXH=ALL", 0, ""},
                          {"A,CPU=A", 0, invalid("A")},
                          {"A", 1, invalid("A") + failed("A")},
                          {"CPU=", 1, invalid("CPU=") + failed("CPU=")},
                          {"", 1, failed("")},
                          {"CPU=A,CXH=B", 1, unknown + failed("CPU=A,CXH=B")}}) {
        std::vector<ConfigCap> caps(3);
        EXPECT_EQ(c.result, parser().getCapabilitiesFor(caps, c.text)) << c.text;
        EXPECT_EQ(c.result == 0 ? 1U : 0U, caps.size());
        EXPECT_EQ(c.said, m_log.take());
    }
    std::vector<InputMsg*> found(2);
    EXPECT_EQ(1, parser().getMessagesFor(found, "CPU=A", "NONE"));
    EXPECT_TRUE(found.empty());
    EXPECT_EQ("pwr::Platform::getMessagesFor called for prefix NONE on platform A\n"
              "combination of name A prefix NONE was NOT specified in config file!\n",
              m_log.take());
}

TEST_F(PlatformsTest, inheritCapabilities) {
    const std::string text = "A-B_EXT_INHERIT_MODE_VALUE=EXTEND\n" // children before parents
                             "A-B_EXT_P2_FILE_K=child\n"
                             "A-B_EXT_P3_FILE_K=child\n"
                             "A-B_EXT_CAPABILITY_GROUP_VALUE=more\n"
                             "A-B_EXT_CAPABILITY_HIDDEN_VALUE=FALSE\n"
                             "A-B_OVER_P9_FILE_K=child\n"
                             "A-B_OVER_CAPABILITY_COMMAND-LINE_VALUE=over-b\n"
                             "A-B_FAR_INHERIT_MODE_VALUE=EXTEND\n"
                             "A-B_FAR_P2_DEVICE_K=child\n"
                             "A_MODEL_X_CONSTANT_VALUE=1\n"
                             "A_EXT_CAPABILITY_COMMAND-LINE_VALUE=ext\n"
                             "A_EXT_CAPABILITY_HELP-STRING_VALUE=what it is\n"
                             "A_EXT_CAPABILITY_GROUP_VALUE=group\n"
                             "A_EXT_CAPABILITY_HIDDEN_VALUE=TRUE\n"
                             "A_EXT_P1_FILE_K=parent\n"
                             "A_EXT_P2_FILE_K=parent\n"
                             "ALL_OVER_CAPABILITY_COMMAND-LINE_VALUE=over\n"
                             "ALL_OVER_CAPABILITY_HELP-STRING_VALUE=text\n"
                             "ALL_OVER_P8_FILE_K=parent\n"
                             "ALL_FAR_CAPABILITY_COMMAND-LINE_VALUE=far\n"
                             "ALL_FAR_P1_FILE_K=parent\n"
                             "D_MODEL_X_CONSTANT_VALUE=2\n";
    good(text, "WARNING: Parent message (A_EXT_P2) clashes with child message (A-B_EXT_P2)\n"
               "Deleting platform A-B because the collectors are different!\n");
    EXPECT_EQ("P1:P1(INIT) P2:P2(INIT) P3:P3(INIT)", describe(messages("CPU=A-B", "EXT")));
    EXPECT_EQ("A-B_EXT_P2 A-B ext", messages("CPU=A-B", "EXT")[1]->getFullName() + " " +
                                        messages("CPU=A-B", "EXT")[1]->getPlatformName() + " " +
                                        messages("CPU=A-B", "EXT")[1]->getFeatureName());
    EXPECT_EQ("P1:P1(INIT) P2:P2(INIT)", describe(messages("CPU=A", "EXT")));
    EXPECT_EQ("P9:P9(INIT)", describe(messages("CPU=A-B", "OVER")));
    EXPECT_EQ("P1:P1(INIT)", describe(messages("CPU=A-B", "FAR")));
    EXPECT_EQ("OVER=over-b/text// FAR=far/// EXT=ext/what it is//group,more", capabilities("CPU=A-B"));
    EXPECT_EQ("OVER=over/text// FAR=far/// EXT=ext/what it is/hidden/group", capabilities("CPU=A"));

    // What two platforms both inherit stands once.
    EXPECT_EQ("OVER=over/text// FAR=far/// EXT=ext/what it is/hidden/group", capabilities("CPU=A,CXH=D"));
    EXPECT_EQ("P8:P8(INIT)", describe(messages("CPU=A,CXH=D", "OVER")));
    EXPECT_EQ("P9:P9(INIT) P8:P8(INIT)", describe(messages("CPU=A-B,CXH=D", "OVER")));
    EXPECT_EQ(messages("CPU=A", "EXT"), messages("CPU=A", "EXT"));
    EXPECT_EQ("P1:P1(INIT) P2:P2(INIT)", describe(messages("CXH=D,CPU=A", "EXT")));
    EXPECT_EQ("", m_log.take()) << "one of two platforms that has a capability is enough";
}

TEST_F(PlatformsTest, areExtendedByTheCollectorsThatAreInUse) {
    const std::string lines = "A_MODEL_X_CONSTANT_VALUE=1\nALL_C_CAPABILITY_COMMAND-LINE_VALUE=c\n"
                              "A_C_P_FILE_K=1\nA_C_Q_DEVICE_K=1\n"
                              "A-B_C_INHERIT_MODE_VALUE=EXTEND\nA-B_C_R_DEVICE_K=2\n"
                              "A-B-C_C_INHERIT_MODE_VALUE=EXTEND\nA-B-C_C_Q_FILE_K=3\nA-B-C_C_R_FILE_K=3\n"
                              "A-B-C-D_C_INHERIT_MODE_VALUE=EXTEND\nA-B-C-D_C_S_DEVICE_K=4\n"
                              "A-B-C-E_C_INHERIT_MODE_VALUE=OVERRIDE\nA-B-C-E_C_S_DEVICE_K=4\n";
    good(lines, "WARNING: Parent message (A_C_Q) clashes with child message (A-B-C_C_Q)\n"
                "WARNING: Parent message (A-B_C_R) clashes with child message (A-B-C_C_R)\n"
                "Deleting platform A-B-C-D because the collectors are different!\n");
    EXPECT_EQ("P:P(INIT) Q:Q(INIT) R:R(INIT)", describe(messages("CPU=A-B-C-D", "C")));
    EXPECT_EQ("A-B-C_C_Q", messages("CPU=A-B-C-D", "C")[1]->getFullName());
    EXPECT_EQ("S:S(INIT)", describe(messages("CPU=A-B-C-E", "C")));
}

TEST_F(PlatformsTest, areWarnedAboutWhenNothingCanComeOfThem) {
    good("A_MODEL_X_CONSTANT_RANGE=2,1\nB_C_M_FILE_K=1\nB-D_C_CAPABILITY_HIDDEN_VALUE=TRUE\n",
         "WARNING: model specifier X=2,1 of platform A matches nothing: its low end is above its high end\n"
         "WARNING: capability C of platform B has no COMMAND-LINE: it is called as its prefix\n"
         "WARNING: platform B-D has no model specifier: no machine is recognised as it\n"
         "WARNING: capability C of platform B-D has no messages and hides those of its parent: INHERIT MODE "
         "EXTEND "
         "keeps them\n"
         "WARNING: capability C of platform B-D has no COMMAND-LINE: it is called as its prefix\n");
}

TEST_F(PlatformsTest, areFoundForAMachine) {
    good("A_MODEL_FMS_CONSTANT_VALUE=6.85\n"
         "A_MODEL_TAF_CONSTANT_VALUE=GUID=0xA1\n"
         "B_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1,DEVICE=0x2\n"
         "T_MODEL_TAF_CONSTANT_VALUE=GUID=0xB1,GUID=0xB2\n");
    SystemMetadata system;
    std::list<std::string> names;
    CPUMetadata cpu;
    cpu.setFMS(6, 85, 4);
    EXPECT_EQ(0, cpu.getPlatformNames(&parser(), names, system));
    CXHMetadata chipset;
    EXPECT_EQ(1, chipset.getPlatformNames(&parser(), names, system));
    system.pciDevices.resize(2);
    system.pciDevices[1].vendor = 1;
    system.pciDevices[1].deviceId = 2;
    EXPECT_EQ(0, chipset.getPlatformNames(&parser(), names, system));
    EXPECT_FALSE(chipset.setSpoofedCXH("1:3"));
    EXPECT_TRUE(chipset.setSpoofedCXH("VENDOR=0x1,DEVICE=0x3"));
    EXPECT_EQ(1, chipset.getPlatformNames(&parser(), names, system));
    TAFMetadata telemetry;
    EXPECT_FALSE(telemetry.shouldPrintMessageOnNoMatch());
    EXPECT_FALSE(telemetry.setTAF("0xB1,b2"));
    EXPECT_FALSE(telemetry.setTAF(" ,"));
    EXPECT_TRUE(telemetry.setTAF("0xB1"));
    EXPECT_EQ(0, telemetry.getPlatformNames(&parser(), names, system));
    EXPECT_EQ((std::list<std::string>{"A", "B", "T"}), names);
    EXPECT_TRUE(telemetry.setTAF("0xB3"));
    names.clear();
    EXPECT_EQ(1, telemetry.getPlatformNames(&parser(), names, system));
    EXPECT_EQ("WARNING: invalid chipset value 1:3 received: MUST be in format VENDOR=0x<id>,DEVICE=0x<id>\n"
              "ERROR: Could not parse given emulated TAF GUID\n"
              "ERROR: Could not parse given emulated TAF GUID\n"
              "WARNING: TAF GUID 0xa1 missing.\n"
              "WARNING: TAF GUID 0xb2 missing.\n"
              "WARNING: the hardware description has no platform for TAF GUID=0xb3\n",
              m_log.take());
}

} // namespace
