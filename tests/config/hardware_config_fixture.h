#pragma once

#include "common/config/config_cap.h"
#include "common/config/input_msg.h"
#include "common/config/tw_configfile_parser.h"
#include "common/plugin/plugin_environment.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pwr {

/// A parser of its own for each test, in which the collector type FILE has the category FAST and DEVICE none.
class HardwareConfigTest : public ::testing::Test {
protected:
    HardwareConfigTest() {
        TWConfigFileParser::destroy();
        parser().registerCollectorType("FILE", nullptr, {"FAST"});
        parser().registerCollectorType("DEVICE", nullptr);
    }
    ~HardwareConfigTest() override { TWConfigFileParser::destroy(); }

    static TWConfigFileParser& parser() { return *TWConfigFileParser::instance(); }

    void good(const std::string& text, const std::string& warnings = "") {
        EXPECT_EQ(0, parser().parseText("good.cfg", text)) << text;
        EXPECT_EQ(warnings, m_log.take()) << text;
    }
    /// The last line of the text is bad, and all that is said about it.
    void bad(const std::string& text, const std::string& before, const std::string& problem) {
        EXPECT_NE(0, parser().parseText("conf/bad.cfg", text)) << text;
        const std::size_t lastLine = text.rfind('\n') + 1;
        std::size_t number = 1;
        for (const char character : text) {
            number += character == '\n' ? 1 : 0;
        }
        const std::string expected = before + "ERROR: ERROR parsing line " + text.substr(lastLine) +
                                     " (bad.cfg:" + std::to_string(number) + "): " + problem +
                                     "\nERROR parsing config file conf/bad.cfg\n";
        // Rules and what is merely suspicious are warnings.
        std::string said;
        const std::string all = m_log.take();
        for (std::size_t at = 0; at < all.size();) {
            const std::size_t end = all.find('\n', at) + 1;
            const std::string line = all.substr(at, end - at);
            at = end;
            if (line.find("WARNING: ERROR calling function") != 0 &&
                line.find("has no operations") == std::string::npos &&
                line.find("has no COMMAND-LINE") == std::string::npos &&
                line.find("has no model specifier") == std::string::npos) {
                said += line;
            }
        }
        EXPECT_EQ(expected, said);
    }

    std::vector<InputMsg*> messages(const std::string& platforms, const std::string& prefix,
                                    bool maxDetail = false) {
        std::vector<InputMsg*> found;
        parser().getMessagesFor(found, platforms, prefix, maxDetail);
        return found;
    }
    /// The first message of the capability C on the root platform.
    InputMsg& message() {
        const std::vector<InputMsg*> found = messages("X=ALL", "C");
        static InputMsg none("none");
        return found.empty() ? none : *found.front();
    }
    /// "name:operation+operation(trigger,trigger)" of each message.
    static std::string describe(const std::vector<InputMsg*>& found) {
        std::string text;
        for (const InputMsg* message : found) {
            text += (text.empty() ? "" : " ") + message->getName() + ":";
            for (const Operation* operation : *message) {
                text += (text.back() == ':' ? "" : "+") + operation->getName();
            }
            text += "(" + join(message->getTriggers()) + ")";
        }
        return text;
    }
    static std::string join(const PWSet& names) {
        std::string text;
        for (const std::string& name : names) {
            text += (text.empty() ? "" : ",") + name;
        }
        return text;
    }

private:
    /// What statements enter into the environment goes when the test does.
    struct OwnEnvironment {
        OwnEnvironment() : shared(g_pluginEnvironment) { g_pluginEnvironment = &own; }
        ~OwnEnvironment() { g_pluginEnvironment = shared; }
        PluginEnvironment own;
        PluginEnvironment* shared;
    };
    OwnEnvironment m_environment;

protected:
    LogCapture m_log;
};

} // namespace pwr
