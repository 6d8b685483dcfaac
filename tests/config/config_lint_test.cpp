#include "common/config/config_lint.h"

#include "common/config/input_msg.h"
#include "common/metadata/msg_metadata.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pwr;

namespace {

TEST(ConfigLintTest, findsWhatTheParserLetsPass) {
    ConfigLint lint;
    lint.checkText("one.cfg", "# comment\n\n  a line # = \nALL_C_M_CONSTANT_K=1\nALL_C_M_CONSTANT_L=\n"
                              "ALL_C_N_CONSTANT_K=1\nALL_C_O_MSG_SOURCE=M\nALL_C_O_CONSTANT_K=1\nlast line");
    std::string text =
        "ALL_C_M_FILE_K=1\nALL_C_CAPABILITY_HELP-STRING_VALUE=" + std::string(65536, 'h') + "\n";
    lint.checkText("two.cfg", text + "ALL_C_P_CONSTANT_K=" + std::string(65536, 'x') + "\r\n");
    std::string found;
    for (const ConfigFinding& finding : lint.getFindings()) {
        found += finding.file + ":" + std::to_string(finding.line) + ": " + finding.text + "\n";
    }
    EXPECT_EQ(
        "one.cfg:3: no statement, because there is no \"=\": the line does nothing\n"
        "one.cfg:5: key L has an empty value, which a saved collection cannot hold\n"
        "one.cfg:9: no statement, because there is no \"=\": the line does nothing\n"
        "two.cfg:3: a text of more than 65535 bytes, which a saved collection cannot hold\n"
        "one.cfg:4: message M: constants stand above what a collector carries out, so the message cannot be "
        "executed at once\n",
        found);
}

TEST(ConfigLintTest, countsTheKeysOfEachSavedOperation) {
    InputMsg group("G");
    auto* const work = new HWOperation("A", "FILE");
    auto* const constants = new CONSTANTOperation("A");
    auto* const others = new CONSTANTOperation("B");
    for (Operation* operation : {static_cast<Operation*>(work), static_cast<Operation*>(constants),
                                 static_cast<Operation*>(others)}) {
        ASSERT_EQ(0, group.addOperation(operation));
    }
    for (int i = 0; i < 255; ++i) {
        const std::string number = std::to_string(i);
        work->addKey("FIELD.part" + number, "1");
        work->addKey("PATH.part" + number, "1");
        constants->addKey("K" + number, "1");
    }
    others->addKey("K0", "2");
    EXPECT_TRUE(listUnsavable(*group.createMsgMetadata()).empty()) << "each part is saved by itself";
    others->addKey("L", "2");
    EXPECT_EQ(
        std::vector<std::string>{"more than 255 keys of one CONSTANT operation, which a saved collection "
                                 "cannot hold: L"},
        listUnsavable(*group.createMsgMetadata()));
}

} // namespace
