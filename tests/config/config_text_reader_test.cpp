#include "common/config/config_text_reader.h"
#include "common/config/rule_runner.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace pwr;

namespace {

TEST(ConfigTextReaderTest, goesOnAfterAnException) {
    LogCapture log;
    std::string values;
    const auto handler = [&values](const Statement& statement, std::string& problem) {
        const std::string value(statement.fields[Statement::VALUE]);
        if (value == "throw") throw std::runtime_error("no such thing");
        if (value == "refuse") problem = "not this one";
        if (value == "silent" || value == "refuse") return 1;
        values += value;
        return 0;
    };
    EXPECT_EQ(-1,
              readConfigText("x.cfg",
                             "A_B_C_D_E=1\nA_B_C_D_E=throw\nA_B_C_D_E=refuse\nA_B_C_D_E=silent\nA_B_C_D_E=2",
                             handler));
    EXPECT_EQ("EXCEPTION CAUGHT: no such thing\n"
              "ERROR: ERROR parsing line A_B_C_D_E=throw (x.cfg:2)\n"
              "ERROR: ERROR parsing line A_B_C_D_E=refuse (x.cfg:3): not this one\n"
              "ERROR: ERROR parsing line A_B_C_D_E=silent (x.cfg:4)\n"
              "ERROR parsing config file x.cfg\n",
              log.text());
    EXPECT_EQ("12", values);
}

TEST(RuleTest, tracesFailuresWhenWarningsAreOff) {
    LogCapture log;
    g_pluginEnvironment->setVerbosity(PWLogLevel::FATAL);
    reportFailedRule("a-grammar", "aRule");
    EXPECT_EQ("", log.take());
    g_pluginEnvironment->addCondLogTagForDebugLogging("a-grammar");
    reportFailedRule("a-grammar", "aRule");
    EXPECT_EQ("WARNING: ERROR calling function \"aRule\"\n", log.take());
    g_pluginEnvironment->setVerbosity(PWLogLevel::WARNING);
    reportFailedRule("a-grammar", "aRule");
    EXPECT_EQ("WARNING: ERROR calling function \"aRule\"\n", log.take()) << "once, although the tag is on";
}

} // namespace
