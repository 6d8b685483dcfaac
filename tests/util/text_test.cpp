#include "common/pw_utils.h"
#include "common/tokenizer.h"

#include <gmock/gmock.h>

namespace pwr {
namespace {

using testing::ElementsAre;

TEST(Tokenizer, splitsAtSets) {
    struct Case {
        const char* text;
        const char* delimiters;
        std::vector<std::string> tokens;
    };
    for (const Case& c :
         {Case{"a,,b ,", ", ", {"a", "b"}}, Case{",a", ",", {"a"}}, Case{"a b", ",", {"a b"}},
          Case{",,", ",", {}}, Case{"", ",", {}}, Case{"a,b", "", {}}, Case{"a,b", nullptr, {}}}) {
        Tokenizer tokenizer(c.text, c.delimiters);
        EXPECT_EQ(c.tokens, tokenizer.get_all_tokens()) << c.text;
        EXPECT_EQ(c.tokens.size(), tokenizer.get_num_tokens());
        for (const std::string& token : c.tokens) {
            EXPECT_EQ(token, tokenizer.str_get_next_token());
        }
        EXPECT_EQ(nullptr, tokenizer.get_next_token());
        EXPECT_EQ("", tokenizer.str_get_next_token());
    }
}

TEST(Tokenizer, otherDelimitersGoOnBehindTheLastToken) {
    Tokenizer tokenizer("key=a,b=c", "=");
    EXPECT_STREQ("key", tokenizer.get_next_token());
    EXPECT_STREQ("=a", tokenizer.get_next_token(","));
    EXPECT_STREQ(",b", tokenizer.get_next_token());
    EXPECT_THAT(tokenizer.get_all_tokens(","), ElementsAre("key=a", "b=c"));
    EXPECT_EQ(3U, tokenizer.get_num_tokens());

    const std::string text = " x y";
    std::size_t position = 0;
    EXPECT_EQ("x", getNextToken(text, position, " "));
    EXPECT_EQ(2U, position);
    EXPECT_EQ("y", getNextToken(text, position, " "));
    EXPECT_EQ("", getNextToken(text, position, " "));
}

TEST(Numbers, isNumber) {
    for (const char* text : {"12", "-12", "0x1f", "0XAB", "1.2.3", ".", "-.", "007", "0x.", "0"}) {
        EXPECT_TRUE(isNumber(text)) << text;
    }
    for (const char* text : {"", "-", "-0x1f", "0x", "1e5", "0x1g", "+1", " 1", "1 ", "--1", "1f", "\xb2"}) {
        EXPECT_FALSE(isNumber(text)) << text;
    }
}

TEST(Numbers, extractedWholeOrNotAtAll) {
    struct Case {
        const char* text;
        int result;
        int value; // 77 stays where nothing is read
    };
    for (const Case& c : {Case{"12", 0, 12}, Case{"-12", 0, -12}, Case{"0x1f", 0, 31}, Case{"0X1F", 0, 31},
                          Case{"010", 0, 10}, Case{"2147483647", 0, 2147483647}, Case{"2147483648", -1, 77},
                          Case{"0x80000000", -1, 77}, Case{"1.5", -1, 77}, Case{"", -1, 77},
                          Case{"0x", -1, 77}, Case{"0x-1", -1, 77}, Case{"+1", -1, 77}, Case{" 1", -1, 77},
                          Case{"1 ", -1, 77}, Case{"mobile", -1, 77}}) {
        int value = 77;
        EXPECT_EQ(c.result, extract_number_i(c.text, value)) << c.text;
        EXPECT_EQ(c.value, value) << c.text;
    }
    pw_u64_t big = 0;
    EXPECT_EQ(0, extract_number_i("18446744073709551615", big));
    EXPECT_EQ(~pw_u64_t{0}, big);
    EXPECT_EQ(-1, extract_number_i("-1", big));
    pw_u8_t small = 0;
    EXPECT_EQ(-1, extract_number_i("256", small));
}

TEST(Texts, lettersAndTitles) {
    EXPECT_EQ("AB-1\xc3\xa4", getUpperCaseString("aB-1\xc3\xa4"));
    EXPECT_EQ("ab-1\xc3\xa4", getLowerCaseString("aB-1\xc3\xa4"));
    EXPECT_EQ("Core Idle (Package-Wide)", convertToTitle("CORE_idle (package-wide)"));
    EXPECT_EQ("The Disk's 2nd", convertToTitle("the DISK's 2ND"));
    EXPECT_TRUE(StringOps::containsAny("a=b", "=;"));
    EXPECT_FALSE(StringOps::containsAny("a b", "=;"));
    EXPECT_TRUE(StringOps::containsAny("package idle", std::vector<std::string>{"core", "idle"}));
    EXPECT_FALSE(StringOps::containsAny("package", std::vector<std::string>{}));
}

} // namespace
} // namespace pwr
