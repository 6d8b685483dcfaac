#include "common/values/formatter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <locale>
#include <memory>
#include <string>
#include <vector>

#include "common/model/process.h"
#include "common/model/state.h"
#include "common/model/thread.h"
#include "common/values/data.h"
#include "tests/support/log_capture.h"

using namespace pwr;

namespace {

std::string format(const Formatter& formatter, const Data& value) {
    std::string text = "old";
    const std::unique_ptr<Formatter> clone(formatter.clone());
    std::string fromClone;
    const int result = formatter.format(text, value);
    EXPECT_EQ(result, clone->format(fromClone, value));
    EXPECT_EQ(text, fromClone);
    return result == 0 ? text : "failed:" + text;
}

std::string printed(double value, int precision) {
    const int size = std::snprintf(nullptr, 0, "%.*f", precision, value);
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::snprintf(text.data(), text.size(), "%.*f", precision, value);
    text.pop_back();
    return text;
}

struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
    char do_decimal_point() const override { return ';'; }
};

} // namespace

TEST(Formatter, integers) {
    const IntFormatter decimal(0, false), hex(0, true), wide(8, false), hexUnit("u", 7, true);
    const UIntFormatter uDecimal(0, false), uHex(0, true), mhz("MHz", 0, false), padded("MHz", 8, false);
    struct Case {
        const Formatter& formatter;
        Data value;
        const char* text;
    };
    for (const Case& c : std::vector<Case>{
             {decimal, Data(INT64_MIN), "-9223372036854775808"},
             {decimal, Data(0), "0"},
             {hex, Data(255), "0xff"},
             {hex, Data(0), "0"},
             {hex, Data(-1), "0xffffffffffffffff"},
             {hex, Data(INT64_MIN), "0x8000000000000000"},
             {hex, Data(0LL, -1LL), "0 -- 0xffffffffffffffff"},
             {wide, Data(-42), "     -42"},
             {wide, Data(1234567890), "1234567890"},
             {hexUnit, Data(255), "  0xffu"},
             {decimal, Data(Data::IntRange(INT64_MIN, INT64_MIN)),
              "-9223372036854775808 -- -9223372036854775808"},
             {uDecimal, Data(UINT64_MAX), "18446744073709551615"},
             {uHex, Data(UINT64_MAX), "0xffffffffffffffff"},
             {mhz, Data(800U), "800MHz"},
             {mhz, Data(800ULL, 900ULL), "800 -- 900MHz"},
             {padded, Data(800U), "  800MHz"},
             {uHex, Data(16ULL, 0ULL), "0x10 -- 0"},
         })
        EXPECT_EQ(c.text, format(c.formatter, c.value));
}

TEST(Formatter, reals) {
    const RealFormatter two(0, 2), wide(12, 1), watts("W", 0, 1), none(0, 0);
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        const Formatter& formatter;
        Data value;
        const char* text;
    };
    for (const Case& c :
         std::vector<Case>{{two, Data(2.0), "2.00"},
                           {two, Data(-0.001), "-0.00"},
                           {two, Data(0.125), "0.12"}, // a true half goes to even
                           {two, Data(0.375), "0.38"},
                           {two, Data(1.005), "1.00"}, // below the half, though times 100 it is one
                           {none, Data(2.5), "2"},
                           {none, Data(1e15), "1000000000000000"},
                           {wide, Data(1.5, 3.5), "  1.5 -- 3.5"},
                           {watts, Data(1.25, 3.0), "1.2 -- 3.0W"},
                           {two, Data(infinity), "inf"},
                           {two, Data(-infinity), "-inf"},
                           {two, Data(nan), "nan"}})
        EXPECT_EQ(c.text, format(c.formatter, c.value));
}

TEST(Formatter, realsArePrintedAsPrintfDoes) {
    std::vector<double> values = {0.0, 5e-324, 2.2250738585072014e-308, 1e22, 1.7976931348623157e308};
    // Halves and their neighbours in every decade, around the end of the exact product and beyond.
    for (double scale = 1e-6; scale < 1e18; scale *= 10)
        for (const double value :
             {1.0, 1.5, 2.5, 1.25, 1.005, 1.115, 1.0005, 9.995, 9.9995, 4.5035996273704960})
            values.insert(values.end(),
                          {value * scale, std::nextafter(value * scale, 0),
                           std::nextafter(value * scale, 1e300), value * scale + 0.5, value / scale});
    for (int half = 0; half < 4000; ++half)
        values.push_back(half * 0.0625);
    for (const double value : values)
        for (const int precision : {-1, 0, 1, 2, 3, 4, 9, 330, 600})
            for (const double sign : {1.0, -1.0})
                ASSERT_EQ(printed(sign * value, precision),
                          format(RealFormatter(0, precision), Data(sign * value)));
}

TEST(Formatter, textsAndHandles) {
    const StringFormatter plain(0), wide(4), negative(-4);
    EXPECT_EQ("as it is", format(plain, Data("as it is")));
    EXPECT_EQ("  ab", format(wide, Data("ab")));
    EXPECT_EQ("abcdef", format(wide, Data("abcdef")));
    EXPECT_EQ("ab", format(negative, Data("ab")));

    const Process* const process = Process::create(4711, "daemon");
    const HandleFormatter handle(6);
    EXPECT_EQ("  4711", format(handle, Data(*process)));
    EXPECT_EQ("    12", format(handle, Data(*Thread::create(12, process, "worker"))));
    EXPECT_EQ("    C6", format(handle, Data(*State::create(StateDescription("C6")))));
}

TEST(Formatter, whatCannotBeReadIsEmptyAndFails) {
    Data invalid(5);
    invalid.invalidate();
    LogCapture log;
    for (const Data& silent : {invalid, Data(DataType::INT), Data(DataType::INT_RANGE)})
        EXPECT_EQ("failed:", format(IntFormatter("u", 9, false), silent));
    EXPECT_EQ("", log.take());

    std::string text = "old";
    EXPECT_EQ(1, RealFormatter(5, 2).format(text, Data(5)));
    EXPECT_EQ("", text);
    EXPECT_EQ("WARNING: Attempt to retrieve a real value from a non-real type\n", log.take());
    EXPECT_EQ("failed:", format(UIntFormatter(5, false), Data(5)));
    EXPECT_EQ("failed:", format(IntFormatter(5, false), Data(5ULL, 6ULL)));
    EXPECT_EQ("failed:", format(StringFormatter(5), Data(5)));
    EXPECT_EQ("failed:", format(HandleFormatter(5), Data("name")));
    log.take();
    EXPECT_EQ(1, VoidFormatter().format(text, Data(5)));
    EXPECT_EQ("INVALID", text);
    EXPECT_EQ("WARNING: Data of type pwr::DataType::NONE can't be formatted\n", log.take());
}

TEST(Formatter, followsNoLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ("1234567.89", format(RealFormatter(0, 2), Data(1234567.89)));
    EXPECT_EQ("1234567.89000", format(RealFormatter(0, 5), Data(1234567.89)));
    EXPECT_EQ("1234567", format(IntFormatter(0, false), Data(1234567)));
    std::locale::global(before);
}
