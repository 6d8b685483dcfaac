// The statements of the hardware description, each with what is said about a bad one.

#include "common/config/operation_kinds.h"
#include "common/config/platform.h"
#include "common/plugin/plugin_environment.h"
#include "tests/config/hardware_config_fixture.h"

using namespace pwr;

namespace {

constexpr const char* CAP = "ALL_C_CAPABILITY_COMMAND-LINE_VALUE=c\n";

TEST_F(HardwareConfigTest, namesWhatIsWrongInAModelStatement) {
    const std::string pci = "ERROR: Invalid syntax for \"PCI\" model specifier\n";
    const std::string noPci = "Invalid version and/or device passed to PCI specifier; "
                              "VENDOR=0x...,DEVICE=0x... expected (rule pciValue)";
    const std::string taf = "ERROR: Invalid syntax for \"TAF\" GUID specifier\n";
    const std::string noTaf =
        "Invalid version and/or device passed to TAF specifier; GUID=0x... expected (rule ";
    const std::string range = "ERROR: range specifier MUST be a number!\n";
    const std::string noRange = "LOW,HIGH expected, two whole numbers of 32 bits (rule modelRangeSub)";
    const auto fms = [](const std::string& item) {
        return "EXCEPTION CAUGHT: ERROR: " + item + " is NOT a valid FMS specifier!\n";
    };
    const std::string noFms = "FAMILY.MODEL or FAMILY.MODEL.STEPPING expected, each from 0 to 255, decimal "
                              "or 0x... (rule fmsValue)";
    bad("ALL_MODEL_FMS_CONSTANT_VALUE=6.85",
        "ERROR: \"ALL\" is NOT allowed to have \"FMS\" as a model specifier!\n",
        "the root of all platforms is no processor (rule modelFMSRule)");
    bad("A_MODEL_FMS_CONSTANT_VALUE=6.85, 6", fms("6"), noFms);
    bad("A_MODEL_FMS_CONSTANT_VALUE=6.-", fms("6.-"), noFms);
    bad("A_MODEL_FMS_CONSTANT_VALUE=6.256", fms("6.256"), noFms);
    bad("A_MODEL_FMS_CONSTANT_VALUE=", fms(""), noFms);
    bad("A_MODEL_FMS_CONSTANT_RANGE=6.85", "", "field 5 must be \"VALUE\" (rule modelFMSRule)");
    bad("A_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1", pci, noPci);
    bad("A_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1,DEVICE=0x2,VENDOR=0x3", pci, noPci);
    bad("A_MODEL_PCI_CONSTANT_VALUE=DEVICE=0x1,VENDOR=0x2", pci, noPci);
    bad("A_MODEL_TAF_CONSTANT_VALUE= ,", "ERROR: No GUIDs specified for \"TAF\" GUID specifier\n",
        "GUID=0x... expected (rule TAFValue)");
    bad("A_MODEL_TAF_CONSTANT_VALUE=GUID=0x1,0x2", taf, noTaf + "TAFValue)");
    bad("A_MODEL_DEPRECATED-GUIDS_CONSTANT_VALUE=GUID=zero", taf, noTaf + "TAFDeprecatedGUIDs)");
    bad("A_MODEL_CORES_MSG_VALUE=1", "", "field 4 must be \"CONSTANT\" (rule modelSpec)");
    bad("A_MODEL_CORES_CONSTANT_KEY=1", "", "field 5 must be one of \"VALUE\", \"RANGE\" (rule modelSpec)");
    bad("A_MODEL_CORES_CONSTANT_RANGE=1", range, noRange);
    bad("A_MODEL_CORES_CONSTANT_RANGE=1,1.5", range, noRange);
    bad("A_MODEL_CORES_CONSTANT_RANGE=1,2,3", range, noRange);
    bad("A--B_MODEL_CORES_CONSTANT_VALUE=1", "",
        "a part of the platform name is empty: \"-\" joins parts, and what stands before the last one names "
        "the "
        "parent (rule platformHead)");
    for (const char* name : {"A,B", "A ", "A\t"}) {
        bad(std::string(name) + "_MODEL_CORES_CONSTANT_VALUE=1", "",
            "a platform name with blanks around it or a comma cannot be asked for (rule platformHead)");
    }
    bad("A_B_C=D_E_F=1", "", "fewer than four \"_\" before the first \"=\"; F1_F2_F3_F4_F5=VALUE expected");
}

TEST_F(HardwareConfigTest, namesWhatIsWrongInACapabilityStatement) {
    bad("ALL_C_CAPABILITY_COMMANDLINE_VALUE=c", "",
        "field 4 must be one of \"HELP-STRING\", \"COMMAND-LINE\", \"HIDDEN\", \"GROUP\" (rule capSub)");
    bad("ALL_C_CAPABILITY_HIDDEN_TEXT=TRUE", "WARNING: invalid token TEXT; expected \"VALUE\"\n",
        "field 5 must be \"VALUE\" (rule capValue)");
    bad("ALL_C_CAPABILITY_HIDDEN_VALUE=true",
        "WARNING: invalid value true passed to \"HIDDEN\" attribute; must be one of \"TRUE\" or \"FALSE\"\n",
        "\"TRUE\" or \"FALSE\" expected (rule capSubHidden)");
    bad("ALL_C_CAPABILITY_COMMAND-LINE_VALUE=", "", "a name expected (rule capSubCmdline)");
    bad("ALL_C_CAPABILITY_GROUP_VALUE=,", "", "the name of a group expected (rule capSubGroup)");
    bad("ALL_C_INHERIT_KIND_VALUE=EXTEND", "", "field 4 must be one of \"MODE\" (rule inheritSub)");
    bad("ALL_C_INHERIT_MODE_VALUE=extend",
        "ERROR: Invalid \"inherit\" value extend -- MUST be one of \"OVERRIDE\" or \"EXTEND\"\n",
        "\"OVERRIDE\" or \"EXTEND\" expected (rule inheritValue)");
}

TEST_F(HardwareConfigTest, namesWhatIsWrongInAMessageStatement) {
    OperationKinds::add("SPARSE", [](const std::string&, const std::string&) { return nullptr; });
    const std::string setUp = std::string(CAP) + "ALL_C_M_CONSTANT_K=v\n";
    const std::string head = "Trying to add Trigger ";
    const std::string mixed =
        " to message M which already has an \"INIT\" or \"REQUIREMENTS\" Trigger; \"INIT\" and "
        "\"REQUIREMENTS\" messages cannot be mixed with other messages!\n";
    const std::string late = " to message M which already has other triggers; \"INIT\", \"FINI\" and "
                             "\"REQUIREMENTS\" messages CANNOT be mixed with other messages!\n";
    struct Case {
        const char* lines;
        std::string before;
        std::string problem;
    };
    const Case cases[] = {
        {"ALL_C_M_MSG_WHEN=POLL", "",
         "field 5 must be one of \"GROUP\", \"ID\", \"SOURCE\", \"READ-WHEN\", \"WRITE-WHEN\", "
         "\"READ-WHEN-MAX-DETAIL\", \"WRITE-WHEN-MAX-DETAIL\", \"READ-WHICH-CPU\", \"WRITE-WHICH-CPU\" (rule "
         "msgSub)"},
        {"ALL_C_M_MSG_ID=1.5", "", "a whole number expected (rule msgIDValue)"},
        {"ALL_C_M_MSG_READ-WHEN=", "", "a trigger expected (rule triggers)"},
        {"ALL_C_M_MSG_READ-WHEN=POLL,poll", "",
         "\"poll\" is no trigger; INIT, BEGIN, POLL, END, FINI, REQUIREMENTS, TRACEPOINT=NAME or "
         "NOTIFIER=NAME "
         "expected (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=TRACEPOINT", "", "\"TRACEPOINT\" needs \"=\" and names (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=TRACEPOINT=,POLL", "", "a list of names is empty (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=NOTIFIER=", "", "a list of names is empty (rule triggers)"},
        {"ALL_C_M_MSG_READ-WHEN=INIT,POLL", head + "POLL" + mixed,
         "message M cannot have the trigger POLL as well (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=FINI,TRACEPOINT=t", head + "TRACEPOINT" + mixed,
         "message M cannot have the trigger TRACEPOINT as well (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=INIT,FINI", head + "FINI" + mixed,
         "message M cannot have the trigger FINI as well (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=POLL\nALL_C_M_MSG_READ-WHEN=REQUIREMENTS", head + "REQUIREMENTS" + late,
         "message M cannot have the trigger REQUIREMENTS as well (rule trigger)"},
        {"ALL_C_M_MSG_READ-WHEN=POLL\nALL_C_M_MSG_WRITE-WHEN-MAX-DETAIL=POLL", "",
         "message M cannot have the trigger POLL as well (rule trigger)"},
        {"ALL_C_M_CONSTANT_K=w", "ERROR: key K already set!\n",
         "key K is set already (rule constantAnyValue)"},
        {"ALL_C_M_NONE_K=w", "ERROR: unknown collector type NONE\n",
         "field 4 must be \"MSG\", \"CONSTANT\" or a collector type: AGGR-TELEM, DEVICE, FILE, SPARSE (rule "
         "hwMechRule)"},
        {"ALL_C_M_:FAST_K=w", "ERROR: unknown collector type \n",
         "field 4 must be \"MSG\", \"CONSTANT\" or a collector type: AGGR-TELEM, DEVICE, FILE, SPARSE (rule "
         "hwMechRule)"},
        {"ALL_C_M_FILE:SLOW_K=w", "ERROR: unknown hardware category SLOW\n",
         "a category of the collector type expected behind \":\" (rule hwCatRule)"},
        {"ALL_C_M_FILE:_K=w", "", "a hardware category must follow \":\" (rule hwMechRule)"},
        {"ALL_C_M_FILE_K=w\nALL_C_M_FILE:FAST_K=x", "WARNING: Couldn't add key K, value x to operation M\n",
         "key K is set already or not one of the operation's (rule directValue)"},
        {"ALL_C_M_FILE_K=w\nALL_C_M_DEVICE_K=x",
         "Cannot add operation M to message M because the collectors are different!\n"
         "ERROR creating packet with key = K\n",
         "message M takes no operation of this type (rule hwMechRule)"},
        {"ALL_C_M_SPARSE_K=x", "ERROR creating packet with key = K\n",
         "message M takes no operation of this type (rule hwMechRule)"},
    };
    for (const Case& c : cases) {
        TWConfigFileParser::destroy();
        parser().registerCollectorType("FILE", nullptr, {"FAST"});
        parser().registerCollectorType("DEVICE", nullptr);
        bad(setUp + c.lines, c.before, c.problem);
    }
}

TEST_F(HardwareConfigTest, refusesToMultiplyWithoutEnd) {
    std::string text = CAP;
    std::string members;
    for (int i = 0; i < 1000; ++i) {
        const std::string name = "M" + std::to_string(i);
        text += "ALL_C_" + name + "_FILE_K=1\n";
        members += name + ",";
    }
    text += "ALL_C_G_MSG_GROUP=" + members;
    for (int i = 0; i < 125; ++i) {
        text += "\nALL_C_S" + std::to_string(i) + "_MSG_SOURCE=G";
    }
    bad(text, "", "groups and sources copy more than 250000 keys and operations in all (rule msgSourceRule)");
}

TEST_F(HardwareConfigTest, reportsAllErrorsOfAllFilesAndTheChainOfRules) {
    EXPECT_EQ(1, parser().parse({"no/such.cfg", "nor/this.cfg"}));
    EXPECT_EQ("Error opening config file no/such.cfg\nError opening config file nor/this.cfg\n",
              m_log.take());
    EXPECT_EQ(1, parser().parseText("x.cfg", "ALL_C_CAPABILITY_HIDDEN_VALUE=1\nA_B=1\n"));
    EXPECT_EQ(
        "WARNING: invalid value 1 passed to \"HIDDEN\" attribute; must be one of \"TRUE\" or \"FALSE\"\n"
        "WARNING: ERROR calling function \"capSubHidden\"\n"
        "WARNING: ERROR calling function \"capSub\"\n"
        "WARNING: ERROR calling function \"capRule\"\n"
        "WARNING: ERROR calling function \"metricRule\"\n"
        "WARNING: ERROR calling function \"platformSub\"\n"
        "ERROR: ERROR parsing line ALL_C_CAPABILITY_HIDDEN_VALUE=1 (x.cfg:1): \"TRUE\" or \"FALSE\" expected "
        "(rule capSubHidden)\n"
        "ERROR: ERROR parsing line A_B=1 (x.cfg:2): fewer than four \"_\" before the first \"=\"; "
        "F1_F2_F3_F4_F5=VALUE expected\n"
        "ERROR parsing config file x.cfg\n"
        "WARNING: capability C of platform ALL has no COMMAND-LINE: it is called as its prefix\n",
        m_log.take());
}

TEST_F(HardwareConfigTest, readsMessages) {
    good(std::string(CAP) +
         "ALL_C_M_MSG_ID=0x10\n"
         "ALL_C_M_MSG_READ-WHICH-CPU=0-3\n"
         "ALL_C_M_MSG_READ-WHEN=BEGIN, TRACEPOINT=irq,wake up,POLL,NOTIFIER=power # why\r\n"
         "ALL_C_M_MSG_READ-WHEN=POLL\n"
         "ALL_C_M_FILE:FAST_PATH= /a_b=c\n"
         "ALL_C_M_FILE_WIDTH=12\n"
         "ALL_C_M_CONSTANT_UNIT=\n"
         "ALL_C_M_CONSTANT_A=1");
    const InputMsg& read = message();
    EXPECT_EQ("ALL_C_M 16 0-3",
              read.getFullName() + " " + std::to_string(read.getMsgID()) + " " + read.getCPUString());
    EXPECT_EQ("BEGIN,NOTIFIER,POLL,TRACEPOINT irq,wake up power", join(read.getTriggers()) + " " +
                                                                      join(read.getTracepointNames()) + " " +
                                                                      join(read.getNotifierNames()));
    ASSERT_EQ(2U, read.getOperationCount());
    const auto& work = dynamic_cast<const HWOperation&>(**read.begin());
    EXPECT_EQ(" /a_b=c", *work.getValue("PATH"));
    EXPECT_EQ(PWSet{"FAST"}, work.getCategories());
    EXPECT_EQ(2U, work.createMetadata()->getSize());
    const auto& constants = dynamic_cast<const CONSTANTOperation&>(**(read.begin() + 1));
    EXPECT_EQ((OrderedPairs::Pairs{{"UNIT", ""}, {"A", "1"}}),
              OrderedPairs::Pairs(constants.begin(), constants.end()));
}

TEST_F(HardwareConfigTest, tellsHowPlatformsAndTriggersCameAbout) {
    g_pluginEnvironment->addCondLogTagForDebugLogging("config-parser");
    EXPECT_EQ(0, parser().parseText("x.cfg", "A-B_MODEL_CORES_CONSTANT_VALUE=4\n"
                                             "A_MODEL_FMS_CONSTANT_VALUE=6.85\n"
                                             "ALL_C_CAPABILITY_COMMAND-LINE_VALUE=c\n"
                                             "ALL_C_M_MSG_READ-WHEN=TRACEPOINT=t,NOTIFIER=n\n"
                                             "ALL_C_M_FILE_K=1\n"
                                             "ALL_C_N_FILE_K=1\n"));
    std::string name;
    EXPECT_EQ(0, parser().getPlatformName(name, {"FMS", "6.85.4"}));
    EXPECT_EQ(0, parser().getPlatformName(name, {"CORES", "0x4"}));
    std::vector<ConfigCap> caps;
    EXPECT_EQ(0, parser().getCapabilitiesFor(caps, "CPU=A"));
    EXPECT_EQ("found orphaned platform \"A-B\" with parent \"A\"\n"
              "platform \"A\" has orphaned children!\n"
              "assigning previously orphaned child \"A-B\" as a child of \"A\"\n"
              "OK, got or created cap with config file prefix = C\n"
              "OK, adding tracepoint name = t to msg M\n"
              "OK, adding notifier name = n to msg M\n"
              "DEBUG: found IMPLICIT INIT for message: N\n"
              "Found partial match for specifier: FMS=6.85.4 in Platform specifier FMS=6.85\n"
              "Found exact match for specifier: CORES=0x4 in Platform specifier CORES=4\n"
              "pwr::Parser::getAllPlatforms_i looking at token CPU=A\n",
              m_log.take());
}

TEST_F(HardwareConfigTest, givesUntriggeredWorkTheTriggerInit) {
    good(std::string(CAP) + "ALL_C_M_FILE_K=1\n"
                            "ALL_C_EMPTY_MSG_ID=1\n"
                            "ALL_C_DETAIL_MSG_READ-WHEN-MAX-DETAIL=TRACEPOINT=t\n"
                            "ALL_C_DETAIL_FILE_K=1\n"
                            "ALL_C_BOTH_MSG_READ-WHEN=BEGIN\n"
                            "ALL_C_BOTH_MSG_READ-WHEN-MAX-DETAIL=POLL\n"
                            "ALL_C_BOTH_FILE_K=1\n"
                            "ALL_C_MEMBER_FILE_K=1\n"
                            "ALL_C_GROUP_MSG_GROUP=MEMBER\n",
         "WARNING: message ALL_C_EMPTY has no operations\n");
    EXPECT_EQ("M:M(INIT) EMPTY:() BOTH:BOTH(BEGIN) GROUP:MEMBER(INIT)", describe(messages("X=ALL", "C")));
    EXPECT_EQ("M:M(INIT) EMPTY:() DETAIL:DETAIL(TRACEPOINT) BOTH:BOTH(POLL) GROUP:MEMBER(INIT)",
              describe(messages("X=ALL", "C", true)));
    EXPECT_EQ(PWSet{"t"}, messages("X=ALL", "C", true)[2]->getTracepointNames());
    good("ALL_C_M_MSG_WRITE-WHEN=POLL\nALL_C_EMPTY_FILE_K=1\n"); // as if one file had said it all
    EXPECT_EQ("M:M(POLL) EMPTY:EMPTY(INIT) BOTH:BOTH(BEGIN) GROUP:MEMBER(INIT)",
              describe(messages("X=ALL", "C")));
}

} // namespace
