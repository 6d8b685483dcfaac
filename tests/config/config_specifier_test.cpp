#include "common/config/config_specifier.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

TEST(ConfigSpecifierTest, matchesValuesOfItsOwnType) {
    const FMSConfigSpecifier exact(6, 85, 4);
    const FMSConfigSpecifier anyStepping(6, 85, 0);
    const PCIConfigSpecifier device(0x1A, 0xFFFFFFFF);
    const TAFConfigSpecifier guids({0x10, 0x20});
    const ValueConfigSpecifier number("CORES", "0x10");
    const ValueConfigSpecifier text("FORM", "1.2.3");
    const RangeConfigSpecifier range("CORES", 5, 10);
    struct Case {
        const ConfigSpecifier& specifier;
        const char* type;
        const char* value;
        int level;
    };
    for (const Case& c : {
             Case{exact, "FMS", "6.85.4", 2},
             {exact, "FMS", "0x6.0X55.0x04", 2},
             {exact, "FMS", "6.85", 1},
             {exact, "FMS", "6.85.0", 1},
             {exact, "FMS", "6.85.5", 0},
             {exact, "FMS", "7.85.4", 0},
             {exact, "fms", "6.85.4", 0},
             {exact, "FMS", "", 0},
             {exact, "FMS", "6.85.4.1", 0},
             {exact, "FMS", "6", 0},
             {exact, "FMS", "262.85.4", 0},
             {exact, "FMS", "6.-85.4", 0},
             {exact, "FMS", "6.0x.4", 0},
             {exact, "FMS", "6.85.", 0},
             {anyStepping, "FMS", "6.85.9", 1},
             {anyStepping, "FMS", "6.85", 2},
             {device, "PCI", "VENDOR=0x1a,DEVICE=0xffffffff", 2},
             {device, "PCI", "VENDOR=0x1a, DEVICE=0xffffffff", 2},
             {device, "PCI", "VENDOR=0x1a,DEVICE=0x1", 0},
             {device, "PCI", "VENDOR=0x1a", 0},
             {device, "PCI", "VENDOR=0x1a,DEVICE=0x100000000", 0},
             {guids, "TAF", "GUID=0x20", 2},
             {guids, "TAF", "GUID=0x30", 0},
             {guids, "TAF", "GUID=20", 0},
             {guids, "TAF", "0x20", 0},
             {number, "CORES", "16", 2},
             {number, "CORES", "17", 0},
             {number, "CORES", "sixteen", 0},
             {number, "FORM", "16", 0},
             {ValueConfigSpecifier("F", "mobile"), "F", "0", 0},
             {ValueConfigSpecifier("F", "-1"), "F", "4294967295", 0},
             {text, "FORM", "1.2.3", 2},
             {text, "FORM", "1.2.4", 0},
             {range, "CORES", "5", 2},
             {range, "CORES", "0xA", 2},
             {range, "CORES", "11", 0},
             {range, "CORES", "-6", 0},
             {range, "SIZE", "no number", 0},
         }) {
        LogCapture log;
        EXPECT_EQ(c.level, c.specifier.match(c.type, c.value)) << c.specifier.toString() << " " << c.value;
        EXPECT_EQ("", log.text());
    }
    LogCapture log;
    EXPECT_EQ(0, range.match("CORES", "no number"));
    EXPECT_EQ("ERROR: range specifier MUST be a number!\n", log.text());
}

TEST(ConfigSpecifierTest, prints) {
    EXPECT_EQ("FMS=6.85.4", FMSConfigSpecifier(6, 85, 4).toString());
    EXPECT_EQ("FMS=6.85", FMSConfigSpecifier(6, 85, 0).toString());
    EXPECT_EQ("VENDOR=0x1a,DEVICE=0xffffffff", PCIConfigSpecifier(0x1A, 0xFFFFFFFF).toString());
    EXPECT_EQ("GUID=0x10,GUID=0x20", TAFConfigSpecifier({0x10, 0x20}).toString());
    EXPECT_EQ("FORM=mobile", ValueConfigSpecifier("FORM", "mobile").toString());
    EXPECT_EQ("CORES=5,10", RangeConfigSpecifier("CORES", 5, 10).toString());
}

} // namespace
