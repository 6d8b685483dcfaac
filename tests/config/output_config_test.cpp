#include "common/config/writer_interface_configfile_parser.h"
#include "common/pw_utils.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <string>

using namespace pwr;

namespace {

const char* const FEATURES_WITHOUT_CONTAINERS =
    "\nWARNING: Output Config: Ordering requested for the following features, but corresponding metric "
    "container "
    "ordering entries (ALL_<FEATURE-SWITCH-TAG>_TAG_TABLE_ORDER) missing:\n";
const char* const TABLES_WITHOUT_ORDER =
    "\nWARNING: Output Config: Metric container table entries present for the following feature, but feature "
    "ordering not explicitly requested. Missing feature switch tags in "
    "'ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=<FEATURE-SWITCH-TAG>,...'. (This may be acceptable for metrics that "
    "don't "
    "need to be in specific order):\n";

class OutputConfigTest : public ::testing::Test {
protected:
    OutputConfigTest() { WriterInterfaceConfigFileParser::destroy(); }
    ~OutputConfigTest() override { WriterInterfaceConfigFileParser::destroy(); }

    static WriterInterfaceConfigFileParser& parser() { return *WriterInterfaceConfigFileParser::instance(); }

    // What parsing a text without consistency warnings says and answers.
    void good(const std::string& text) {
        EXPECT_EQ(0, parser().parseText("good.cfg", ORDERED + text));
        EXPECT_EQ("", m_log.take());
    }
    void bad(const std::string& line, const std::string& message) {
        SCOPED_TRACE(line);
        EXPECT_EQ(1, parser().parseText("conf/bad.cfg", std::string(ORDERED) + "\n" + line));
        EXPECT_EQ(message + "ERROR parsing config file conf/bad.cfg\n", m_log.take());
    }
    // "title|pre|post|displayed transposed suppressed", "<none>" when the table is not found.
    std::string table(const char* feature, const char* container, const char* name) {
        TableInfo info;
        if (!parser().getTableInfoFor(info, feature, container, name)) return "<none>";
        std::string title = "-", before = "-", after = "-";
        info.getTableTitle(title);
        info.getPreTableNote(before);
        info.getPostTableNote(after);
        return title + "|" + before + "|" + after + "|" + (info.isTableDisplayed() ? "1" : "0") +
               (info.isTableTransposed() ? "1" : "0") + (info.suppressTotal() ? "1" : "0");
    }
    template <class... Argument>
    static std::string names(bool (WriterInterfaceConfigFileParser::*query)(std::deque<std::string>&,
                                                                            Argument...) const,
                             const char* of) {
        std::deque<std::string> found{"untouched"};
        if constexpr (sizeof...(Argument) == 0) {
            EXPECT_EQ("", std::string(of));
            (parser().*query)(found);
        } else {
            (parser().*query)(found, of);
        }
        std::string all;
        for (const std::string& name : found) {
            all += "<" + name + ">";
        }
        return all;
    }

    static constexpr const char* ORDERED = "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=f\nALL_f_TAG_TABLE_ORDER=c\n";

    LogCapture m_log;
};

using Parser = WriterInterfaceConfigFileParser;

TEST_F(OutputConfigTest, isOnlyMadeOnRequest) {
    EXPECT_EQ(nullptr, Parser::current());
    const Parser* const made = Parser::instance();
    EXPECT_EQ(made, Parser::current());
    good("f_c_t_TITLE_VALUE=a");
    Parser::destroy();
    EXPECT_EQ(nullptr, Parser::current());
    EXPECT_EQ("<untouched>", names(&Parser::getFeatureOrder, ""));
}

TEST_F(OutputConfigTest, readsTableSettings) {
    good("f_c_plain_TITLE_VALUE=A = b_c\n"
         "f_c_notes_PRE-TABLE-TEXT_VALUE=before # cut\nf_c_notes_POST-TABLE-TEXT_VALUE=\n"
         "f_c_on_TABLE_VALUE=YES\nf_c_on_TRANSPOSE_VALUE=YES\nf_c_on_SUPPRESS-TOTAL_VALUE=YES\n"
         "f_c_off_TABLE_VALUE=NO\nf_c_off_TRANSPOSE_VALUE=yes\nf_c_off_SUPPRESS-TOTAL_VALUE=\n"
         "f_c_lower_TABLE_VALUE=yes\nf_c_other_ATTRIBUTES_VALUE=x\n");
    struct Case {
        const char* name;
        const char* expected;
    };
    for (const Case& expected :
         {Case{"plain", "A = b_c|-|-|100"}, Case{"notes", "-|before||100"}, Case{"on", "-|-|-|111"},
          Case{"off", "-|-|-|000"}, Case{"lower", "-|-|-|000"}, Case{"other", "-|-|-|100"},
          Case{"x", "<none>"}}) {
        EXPECT_EQ(expected.expected, table("f", "c", expected.name)) << expected.name;
    }
    EXPECT_EQ("", m_log.text()) << "a table that an existing pair does not have is no reason to warn";
    EXPECT_EQ("<plain><notes><on><off><lower><other>", names(&Parser::getTableOrderForMetric, "f_c"));
}

TEST_F(OutputConfigTest, completesASpecificTableByTheGeneralOne) {
    good("ALL_c_t_TITLE_VALUE=general\nALL_c_t_TABLE_VALUE=NO\nf_c_t_TITLE_VALUE=own\nALL_c_u_TITLE_VALUE="
         "u\n");
    EXPECT_EQ("own|-|-|000", table("f", "c", "t"));
    EXPECT_EQ("general|-|-|000", table("other", "c", "t"));
    EXPECT_EQ("u|-|-|100", table("f", "c", "u"));
    EXPECT_EQ("<ALL_c><f_c>", names(&Parser::getAllFeaturePrefixes, ""));
    EXPECT_EQ("", m_log.text());

    EXPECT_EQ("<none>", table("f", "d", "t"));
    EXPECT_EQ("WARNING: Output config table entries not present for the feature-switch-tag and "
              "metric-container-tag "
              "combo: 'f_d'. Add table entries specific to Metric container type.\n",
              m_log.take());
    TableInfo info;
    info.setKeyValuePair("TITLE", "old");
    EXPECT_FALSE(parser().getTableInfoFor(info, "f", "c", "x"));
    std::string title;
    EXPECT_FALSE(info.getTableTitle(title)) << "defaults, not what the object held before";
}

TEST_F(OutputConfigTest, keepsTheFirstOfTwoValues) {
    EXPECT_EQ(0, parser().parseText("a.cfg", std::string(ORDERED) +
                                                 "f_c_t_TITLE_VALUE=first\nf_c_t_TITLE_VALUE=second\n"
                                                 "f_c_t_TITLE_OTHER=third"));
    const std::string warning = "WARNING: Config table info (TITLE) entry already present for metric table t "
                                "for metric container c\n";
    EXPECT_EQ(warning + warning, m_log.text());
    EXPECT_EQ("first|-|-|100", table("f", "c", "t"));
}

TEST_F(OutputConfigTest, keepsTheOrdersAsGiven) {
    EXPECT_EQ(0, parser().parseText("a.cfg", "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=z , a,z,m\n"
                                             "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=b,a\n"
                                             "ALL_z_TAG_TABLE_ORDER=\tSECOND, FIRST\n"));
    EXPECT_EQ("<z><a><m><b>", names(&Parser::getFeatureOrder, ""));
    EXPECT_EQ("<SECOND><FIRST>", names(&Parser::getMetricOrderForFeature, "z"));
    EXPECT_EQ("<untouched>", names(&Parser::getMetricOrderForFeature, "a"));
    EXPECT_EQ("<untouched>", names(&Parser::getTableOrderForMetric, "z_FIRST"));
    EXPECT_EQ(FEATURES_WITHOUT_CONTAINERS + std::string("a, m, b, \n\n"), m_log.text());
}

TEST_F(OutputConfigTest, warnsOfTablesWithoutOrder) {
    EXPECT_EQ(0, parser().parseText("a.cfg", "g_c_t_A_V=1\nALL_c_t_A_V=1\nf_c_t_A_V=1\ng_d_t_A_V=1\n"
                                             "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=ALL\n"));
    EXPECT_EQ(TABLES_WITHOUT_ORDER + std::string("g, f, \n\n"), m_log.text());
}

TEST_F(OutputConfigTest, refusesBadLinesByPlaceAndReason) {
    const auto rule = [](const char* name) {
        return "WARNING: ERROR calling function \"" + std::string(name) + "\"\n";
    };
    bad(" f_c_TITLE=x # y",
        "ERROR: ERROR parsing line f_c_TITLE=x (bad.cfg:4): fewer than four \"_\" before the first "
        "\"=\"; F1_F2_F3_F4_F5=VALUE expected\n");
    bad("%n_c=%s", "ERROR: ERROR parsing line %n_c=%s (bad.cfg:4): fewer than four \"_\" before the first "
                   "\"=\"; F1_F2_F3_F4_F5=VALUE expected\n");
    bad("f_OUTPUT-ORDER_TAG_FEATURE_ORDER=x",
        rule("featureOrderRule") + "ERROR: ERROR parsing line f_OUTPUT-ORDER_TAG_FEATURE_ORDER=x "
                                   "(bad.cfg:4): field 1 must be \"ALL\"\n");
    bad("ALL_OUTPUT-ORDER_TAG_FEATURES_ORDER=x",
        rule("featureOrderRule") +
            "ERROR: ERROR parsing line ALL_OUTPUT-ORDER_TAG_FEATURES_ORDER=x (bad.cfg:4): field 4 "
            "must be \"FEATURE\"\n");
    bad("ALL_f_TAG_TABLE_ORDERS=x",
        rule("metricOrderRule") + rule("metricRule") +
            "ERROR: ERROR parsing line ALL_f_TAG_TABLE_ORDERS=x (bad.cfg:4): field 5 must be \"ORDER\"\n");
    EXPECT_EQ("<f>", names(&Parser::getFeatureOrder, ""));
}

TEST_F(OutputConfigTest, readsAllFilesWhateverOneHolds) {
    const std::string folder = tw_temp_directory_path() + PathOps::getPathSeparator();
    const std::string part = folder + "kr_output_config_part.cfg";
    std::FILE* const file = openFileHandle(part, "wb");
    ASSERT_NE(nullptr, file);
    std::fputs("bad=1\r\nf_c_t_TITLE_VALUE=kept\r\nbad=2\r\n", file);
    std::fputs(ORDERED, file);
    std::fclose(file);

    const std::string missing = folder + "kr_output_config_missing.cfg";
    EXPECT_EQ(1, parser().parse({missing, part, folder}));
    const std::string problem =
        "): fewer than four \"_\" before the first \"=\"; F1_F2_F3_F4_F5=VALUE expected\n";
    EXPECT_EQ("Error opening config file " + missing +
                  "\nERROR: ERROR parsing line bad=1 (kr_output_config_part.cfg:1" + problem +
                  "ERROR: ERROR parsing line bad=2 (kr_output_config_part.cfg:3" + problem +
                  "ERROR parsing config file " + part + "\nError opening config file " + folder + "\n",
              m_log.text());
    EXPECT_EQ("kept|-|-|100", table("f", "c", "t"));
    EXPECT_EQ(0, parser().parse({}));
    std::remove(part.c_str());
}

} // namespace
