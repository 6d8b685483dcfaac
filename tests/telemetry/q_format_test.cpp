#include "common/telemetry/q_format.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

namespace {

using namespace pwr;

TEST(QFormat, ReadsSignAndBits) {
    struct Case {
        const char* text;
        char sign;
        int x;
        int y;
        bool isValid;
    };
    const Case cases[] = {
        {"U8.8", 'U', 8, 8, true},    {"S7.8", 'S', 7, 8, true},   {"U0.255", 'U', 0, 255, true},
        {"X8.8", 'U', 0, 0, false},   {"U8", 'U', 0, 0, false},    {"U.8", 'U', 0, 0, false},
        {"U8.", 'U', 0, 0, false},    {"U-1.8", 'U', 0, 0, false}, {"U300.8", 'U', 0, 0, false},
        {"U8.8.8", 'U', 0, 0, false}, {"", 'U', 0, 0, false},      {"u8.8", 'U', 0, 0, false},
    };
    for (const Case& c : cases) {
        const LogCapture log;
        const tw_qformat format = retrieveQFormat(c.text);
        EXPECT_EQ(format.sign, c.sign) << c.text;
        EXPECT_EQ(format.x, c.x) << c.text;
        EXPECT_EQ(format.y, c.y) << c.text;
        const std::string error = std::string("ERROR: Invalid DATA-FORMAT entry. ") + c.text +
                                  " is invalid. Format expected as UX.Y or SX.Y";
        EXPECT_EQ(log.text(), c.isValid ? "" : error) << c.text;
    }
}

TEST(QFormat, ConvertsRawValues) {
    struct Case {
        pw_u64_t raw;
        tw_qformat format;
        double value;
    };
    const Case cases[] = {
        {77, {'U', 8, 0}, 77.0},
        {77, {'U', 0, 8}, 77.0 / 256},
        {0xFFFFFFFFFFFFFFFF, {'U', 64, 0}, 18446744073709551616.0},
        {0x180, {'S', 7, 8}, 1.5},
        {0x10000 + 0xFE80, {'S', 7, 8}, -1.5}, // the sign is bit 16
        {0x10000, {'S', 7, 8}, 0.0},           // nothing below the sign bit
        {0x20180, {'S', 7, 8}, 513.5},         // bits above a clear sign bit count
        {1, {'S', 63, 0}, 0.0},                // bit 64 is bit 0, and nothing is below it
        {0x8000000000000001, {'S', 62, 0}, -9223372036854775807.0},
        {3, {'X', 8, 8}, 3.0},
    };
    for (const Case& c : cases) {
        const LogCapture log;
        EXPECT_EQ(convertToFloatPoint(c.raw, c.format), c.value) << c.raw;
        EXPECT_EQ(log.text(),
                  c.format.sign != 'X'
                      ? ""
                      : "ERROR: Invalid DATA-FORMAT entry. X8.8 is invalid. Format expected as UX.Y or SX.Y");
    }
}

} // namespace
