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
    const IntFormatter decimal(0, false), hex(0, true), wide(8, false);
    const UIntFormatter uHex(0, true), mhz("MHz", 8, false);
    EXPECT_EQ("-9223372036854775808", format(decimal, Data(INT64_MIN)));
    EXPECT_EQ("-9223372036854775808 -- 0", format(decimal, Data(INT64_MIN, std::int64_t{0})));
    EXPECT_EQ("0xff", format(hex, Data(255)));
    EXPECT_EQ("0", format(hex, Data(0)));
    EXPECT_EQ("0xffffffffffffffff", format(hex, Data(-1)));
    EXPECT_EQ("0 -- 0x8000000000000000", format(hex, Data(std::int64_t{0}, INT64_MIN)));
    EXPECT_EQ("     -42", format(wide, Data(-42)));
    EXPECT_EQ("1234567890", format(wide, Data(1234567890)));
    EXPECT_EQ("  0xffu", format(IntFormatter("u", 7, true), Data(255)));
    EXPECT_EQ("0xffffffffffffffff", format(uHex, Data(UINT64_MAX)));
    EXPECT_EQ("0x10 -- 0", format(uHex, Data(16U, 0U)));
    EXPECT_EQ("18446744073709551615", format(UIntFormatter(0, false), Data(UINT64_MAX)));
    EXPECT_EQ("  800MHz", format(mhz, Data(800U)));
    EXPECT_EQ("800 -- 900MHz", format(mhz, Data(800U, 900U)));
}

TEST(Formatter, reals) {
    const RealFormatter two(0, 2);
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ("2.00", format(two, Data(2.0)));
    EXPECT_EQ("-0.00", format(two, Data(-0.001)));
    EXPECT_EQ("0.12", format(two, Data(0.125))); // a true half goes to even
    EXPECT_EQ("0.38", format(two, Data(0.375)));
    EXPECT_EQ("1.00", format(two, Data(1.005))); // below the half, though times 100 it is one
    EXPECT_EQ("1000000000000000", format(RealFormatter(0, 0), Data(1e15)));
    EXPECT_EQ("  1.5 -- 3.5", format(RealFormatter(12, 1), Data(1.5, 3.5)));
    EXPECT_EQ("1.2 -- 3.0W", format(RealFormatter("W", 0, 1), Data(1.25, 3.0)));
    EXPECT_EQ("-inf -- inf", format(two, Data(-infinity, infinity)));
    EXPECT_EQ("nan", format(two, Data(std::numeric_limits<double>::quiet_NaN())));
}

TEST(Formatter, realsArePrintedAsPrintfDoes) {
    std::vector<double> values = {0.0, 5e-324, 2.2250738585072014e-308, 1e22, 1.7976931348623157e308};
    // Halves and their neighbours in every decade, around the end of the exact product and beyond.
    for (int decade = -6; decade < 18; ++decade) {
        const double scale = std::pow(10.0, decade);
        for (const double value :
             {1.0, 1.5, 2.5, 1.25, 1.005, 1.115, 1.0005, 9.995, 9.9995, 4.5035996273704960})
            values.insert(values.end(),
                          {value * scale, std::nextafter(value * scale, 0),
                           std::nextafter(value * scale, 1e300), value * scale + 0.5, value / scale});
    }
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
