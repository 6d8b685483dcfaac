#include "common/config/statement.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using namespace pwr;

namespace {

// Each statement as "line:F1|F2|F3|F4|F5|value", each bad line as "line!text: problem".
std::string readAll(std::string_view text) {
    StatementReader reader(text);
    Statement statement;
    std::string all;
    for (auto read = reader.next(statement); read != StatementReader::Result::END;
         read = reader.next(statement)) {
        all += std::to_string(statement.lineNumber);
        if (read == StatementReader::Result::MALFORMED) {
            all += "!" + std::string(statement.text) + ": " + reader.getProblem() + "\n";
            continue;
        }
        const char* lead = ":";
        for (const std::string_view field : statement.fields) {
            all += lead + std::string(field);
            lead = "|";
        }
        all += "\n";
    }
    return all;
}

TEST(StatementReaderTest, splitsLines) {
    struct Case {
        const char* text;
        const char* expected;
    };
    for (const Case& line : {
             Case{"", ""},
             Case{"P_C_M_A_S=v", "1:P|C|M|A|S|v\n"},
             Case{"\xEF\xBB\xBFP_C_M_A_S=v\r\n \t\r\n# only _=_ a comment\nno statement\nP_C_M_A_S=w",
                  "1:P|C|M|A|S|v\n5:P|C|M|A|S|w\n"},
             Case{" \tP_C_M_A_S=  v \t\r\n", "1:P|C|M|A|S|  v\n"},
             Case{"P_C_M_A_S_T=a_b=c,d # cut\n", "1:P|C|M|A|S_T|a_b=c,d\n"},
             Case{"P_C_M_A_S=a#b=c", "1:P|C|M|A|S|a\n"},
             Case{"P_C_M_A_S=", "1:P|C|M|A|S|\n"},
             Case{"P_C_M_S=a_b", "1!P_C_M_S=a_b: fewer than four \"_\" before the first \"=\"; "
                                 "F1_F2_F3_F4_F5=VALUE expected\n"},
             Case{" P_C=1_M_A_S=v # c\nP_C_M_A_S=w",
                  "1!P_C=1_M_A_S=v: fewer than four \"_\" before the first \"=\"; F1_F2_F3_F4_F5=VALUE "
                  "expected\n2:P|C|M|A|S|w\n"},
             Case{"P__M_A_S=v",
                  "1!P__M_A_S=v: a field before the first \"=\" is empty; F1_F2_F3_F4_F5=VALUE expected\n"},
             Case{"P_C_M_A_=v",
                  "1!P_C_M_A_=v: a field before the first \"=\" is empty; F1_F2_F3_F4_F5=VALUE expected\n"},
         }) {
        SCOPED_TRACE(line.text);
        EXPECT_EQ(line.expected, readAll(line.text));
    }
    EXPECT_EQ("1!" + std::string("\0_=", 3) +
                  ": fewer than four \"_\" before the first \"=\"; F1_F2_F3_F4_F5=VALUE expected\n",
              readAll(std::string_view("\0_=\n", 4)));
}

TEST(ListItemsTest, trimsItemsAndPassesEmptyOnesOver) {
    std::string all;
    ListItems items(" a ,b c,, \t,d\r");
    for (std::string_view item; items.next(item);) {
        all += "<" + std::string(item) + ">";
    }
    EXPECT_EQ("<a><b c><d>", all);
    std::string_view item;
    EXPECT_FALSE(ListItems(" , ").next(item));
}

} // namespace
