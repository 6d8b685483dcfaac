#include "common/config/config_lint.h"

#include <gtest/gtest.h>

#include <string>

using namespace pwr;

namespace {

TEST(ConfigLintTest, findsWhatTheParserLetsPass) {
    ConfigLint lint;
    lint.checkText("one.cfg", "# comment\n\n  a line # = \nALL_C_M_CONSTANT_K=1\nALL_C_M_CONSTANT_L=\n"
                              "ALL_C_N_CONSTANT_K=1\nALL_C_O_MSG_SOURCE=M\nALL_C_O_CONSTANT_K=1\nlast line");
    std::string text;
    for (int i = 0; i < 256; ++i) {
        text += "ALL_C_M_FILE_K" + std::to_string(i) + "=1\n";
    }
    text += "ALL_C_CAPABILITY_HELP-STRING_VALUE=" + std::string(65536, 'h') + "\n";
    lint.checkText("two.cfg", text + "ALL_C_P_CONSTANT_K=" + std::string(65536, 'x') + "\r\n");
    std::string found;
    for (const ConfigFinding& finding : lint.getFindings()) {
        found += finding.file + ":" + std::to_string(finding.line) + ": " + finding.text + "\n";
    }
    EXPECT_EQ(
        "one.cfg:3: no statement, because there is no \"=\": the line does nothing\n"
        "one.cfg:5: key L has an empty value, which a saved collection cannot hold\n"
        "one.cfg:9: no statement, because there is no \"=\": the line does nothing\n"
        "one.cfg:4: message M: constants stand above what a collector carries out, so the message cannot be "
        "executed at once\n"
        "two.cfg:256: message M has more than 255 keys of FILE, which a saved collection cannot hold\n"
        "two.cfg:258: a text of more than 65535 bytes, which a saved collection cannot hold\n",
        found);
    EXPECT_EQ(-1, lint.checkFile("no/such.cfg"));
}

} // namespace
