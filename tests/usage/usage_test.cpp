#include "common/pw_utils.h"
#include "common/usage/usage_text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using namespace pwr::usage;
using Attribute = Option::Attribute;

/// What only derived classes see.
class OpenOption : public Option {
public:
    using Option::formatSubOption;
    using Option::formatWhitespace;
    using Option::getNameColumnFormat;
    using Option::getTabString;
    using Option::getWindowsConsoleWidth;
    using Option::Option;
    using Option::stripChars;
};

TEST(Option, textIsNamesBesideTheWrappedDescription) {
    struct Case {
        OpenOption option;
        unsigned width;
        const char* text;
    };
    const Case cases[] = {
        {{"--a", "one two", TabLevel::LEVEL_1, "<n>", false}, 60, "    --a <n>             one two\n"},
        {{"--a", "", TabLevel::LEVEL_0}, 60, "--a\n"},
        {{"--a", "waits 100 ms each", TabLevel::LEVEL_0}, 40, "--a             waits 100 ms each\n"},
        {{"--a", "it waits for 100 ms", TabLevel::LEVEL_0}, 33, "--a          it waits for 100 ms\n"},
        {{"--a", "it waits for 100 ms", TabLevel::LEVEL_0},
         31,
         "--a         it waits for\n            100 ms\n"},
        {{"--a", "1  2\tms\n3 s", TabLevel::LEVEL_0}, 10, "--a\n    1 2\n    ms\n    3 s\n"},
        {{"--a", "\u00E4\u00E4\u00E4 b", TabLevel::LEVEL_0}, 13, "--a  \u00E4\u00E4\u00E4 b\n"},
        {{"--long-name", "one", TabLevel::LEVEL_0}, 30, "--long-name\n            one\n"},
        {{"sub", "a-word-that-is-too-wide x", TabLevel::LEVEL_2, "<v>", false},
         40,
         "        sub=<v>\n                a-word-that-is-too-wide\n                x\n"},
        {{"--a", "b c", TabLevel::LEVEL_1}, 1, "    --a\nb\nc\n"},
        {{{{Attribute::NAME, "--a"}, {Attribute::ALIAS, "-a"}, {Attribute::DESCRIPTION, "b"}},
          {"x", "y", "z"}},
         40,
         "    --a, -a     b\n                  Valid args:\n                    x, y, z\n"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.text, c.option.getFormattedDescription(c.width)) << c.width;
    }
}

TEST(Option, partsOfTheText) {
    const OpenOption option({{Attribute::NAME, "--max-detail"}, {Attribute::ALIAS, "-m"}}, {});
    EXPECT_EQ("    --max-detail, -m", option.getNameColumnFormat());
    EXPECT_EQ("max-detail", option.getNormalizedName());
    EXPECT_EQ("", OpenOption("x", "", TabLevel::LEVEL_0).getTabString());
    EXPECT_EQ("            ", OpenOption("x", "", TabLevel::LEVEL_3).getTabString());
    EXPECT_EQ("gbe-int=<ms>", OpenOption("gbe-int", "", TabLevel::LEVEL_0, "<ms>").formatSubOption());
    EXPECT_EQ("a-b", OpenOption::stripChars("<-a-b->", "<->"));
    EXPECT_EQ("", OpenOption::stripChars("--", "-"));
    std::ostringstream blanks;
    option.formatWhitespace(blanks);
    EXPECT_EQ(std::string::npos, blanks.str().find_first_not_of(' '));
    EXPECT_GT(OpenOption::getWindowsConsoleWidth(), 0U);
}

TEST(Option, jsonHoldsOnlyWhatIsSet) {
    const std::map<Attribute, std::string> all = {
        {Attribute::NAME, "1"},        {Attribute::DESCRIPTION, "2"}, {Attribute::ABBREVIATION, "3"},
        {Attribute::NORMAL_NAME, "4"}, {Attribute::ARG, "5"},         {Attribute::ARG_DEFAULT, "6"},
        {Attribute::ARG_UNITS, "7"},   {Attribute::ARG_TYPE, "8"},    {Attribute::NOTES, "9"},
        {Attribute::ALIAS, "10"}};
    nlohmann::json json;
    Option whole(all, {"a"});
    whole.appendValidArgs({"b"});
    whole.formatJson(json);
    EXPECT_EQ(
        R"({"abbreviation":"3","alias":"10","arg":"5","arg_default":"6","arg_type":"8","arg_units":"7",)"
        R"("description":"2","name":"1","normal name":"4","notes":"9","valid args":["a","b"]})",
        json.dump());
    nlohmann::json little;
    Option("--x", "d", TabLevel::LEVEL_1).formatJson(little);
    EXPECT_EQ(R"({"description":"d","name":"--x"})", little.dump());
}

/// Compares with a file; UPDATE_CASES=1 writes it instead, and the difference is for the reviewer.
void expectGolden(const std::string& name, const std::string& text) {
    const auto path = std::filesystem::path(pwr::pw_getenv("KR_TEST_DATA")) / "usage" / "golden" / name;
    if (!pwr::pw_getenv("UPDATE_CASES").empty()) {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), text) << name;
}

TEST(UsageText, isTheExpectedTextAndJson) {
    UsageText usage;
    for (const unsigned width : {60U, 80U, 132U}) {
        usage.setWidth(width);
        std::ostringstream out;
        out << usage;
        expectGolden("usage_" + std::to_string(width) + ".txt", out.str());
        std::istringstream lines(out.str());
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), width) << line;
            EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
        }
    }
    nlohmann::json json;
    usage.formatJson(json);
    expectGolden("options.json", json.dump(2) + "\n");
}

TEST(UsageText, machineAndHostChangeTheirPartOfIt) {
    UsageText usage;
    usage.updateCxhDeviceInfo("ONE, TWO\r\nTHREE,,\n");
    usage.updateTcssIpInfo("");
    usage.addOption(Section::GENERAL, Option("--mine", "of the host", TabLevel::LEVEL_1));
    usage.addOption(Section::GENERAL, Option("--secret", "", TabLevel::LEVEL_1, true));
    const auto valid = [&](const char* feature, const std::string& name) {
        for (const Option& option : usage.getIndividualFeatureOptions().at(feature)) {
            if (option.getName() == name) {
                return option.getValidArgs();
            }
        }
        return std::vector<std::string>{"no such option"};
    };
    EXPECT_EQ((std::vector<std::string>{"ONE", "TWO", "THREE"}), valid("cxh", "cxh-ip-lat-limit"));
    EXPECT_EQ(std::vector<std::string>(), valid("tcss", "tcss-pm-dbg"));
    std::ostringstream out;
    out << usage;
    EXPECT_NE(std::string::npos, out.str().find("--mine"));
    EXPECT_EQ(std::string::npos, out.str().find("--secret"));
    nlohmann::json json;
    usage.formatJson(json);
    EXPECT_NE(std::string::npos, json.dump().find("--secret"));
    UsageText::appendArgsJson(json, usage.getOptions(Section::GENERAL));
    EXPECT_EQ("--secret", json["options"].back()["name"]);
}

} // namespace
