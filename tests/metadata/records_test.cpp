#include "common/metadata/cpu_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace pwr;

TEST(CPUMetadataTest, takesAnotherFMSFromText) {
    const std::string format = "MUST be in format <family>.<model>[.<stepping>]\n"
                               "WARNING: where [.<stepping>] is optional and defaults to 0\n";
    const auto refusedFormat = [&format](const std::string& text) {
        return "WARNING: invalid FMS value " + text + " received: " + format;
    };
    const auto refusedToken = [](const std::string& token) {
        return "WARNING: invalid FMS token " + token + " -- MUST be a number!\n";
    };
    struct Case {
        const char* text;
        std::array<int, 3> fms;
        std::string warning;
    };
    for (const Case& c :
         {Case{"6.85", {6, 85, 0}, ""}, Case{"6.0x55.4", {6, 85, 4}, ""}, Case{".6..85.", {6, 85, 0}, ""},
          Case{"010.0x1ff.256", {10, 255, 0}, ""}, Case{"6.0X55", {6, 0, 0}, ""},
          Case{"6.-1", {6, 255, 0}, ""}, Case{"1.99999999999999999999999999", {1, 0xff, 0}, ""},
          Case{"6", {1, 2, 3}, refusedFormat("6")}, Case{"", {1, 2, 3}, refusedFormat("")},
          Case{"6.85.4.1", {1, 2, 3}, refusedFormat("6.85.4.1")}, Case{"6.x5", {1, 2, 3}, refusedToken("x5")},
          Case{"a.b", {1, 2, 3}, refusedToken("a")}, Case{"6.85.-0x4", {1, 2, 3}, refusedToken("-0x4")}}) {
        LogCapture log;
        CPUMetadata cpu;
        cpu.setFMS(1, 2, 3);
        EXPECT_EQ(c.warning.empty(), cpu.setSpoofedFMS(c.text)) << c.text;
        EXPECT_EQ(c.warning, log.take());
        EXPECT_EQ(c.fms, (std::array<int, 3>{cpu.getFamily(), cpu.getModel(), cpu.getStepping()})) << c.text;
    }
}

TEST(CPUMetadataTest, isOrderedByFamilyThenModelThenStepping) {
    CPUMetadata low;
    CPUMetadata high;
    low.setFMS(6, 85, 200);
    high.setFMS(6, 86, 1);
    high.busFreq = 100.0F;
    EXPECT_TRUE(low < high && low <= high && !(low == high) && !(high < low) && !(high <= low));
    low.setFMS(6, 86, 1);
    EXPECT_TRUE(low == high && low <= high && !(low < high));
}

TEST(PlatformMetadataTest, lookUpsInsertNothingAndErasingBeyondTheEndDoesNothing) {
    PlatformMetadata platform("PCI");
    platform.addMetadataValue("name", "old");
    platform.addMetadataValue("name", "new");
    EXPECT_EQ("new", platform.getMetadataValue("name"));
    EXPECT_EQ("", platform.getMetadataValue("other"));
    EXPECT_EQ(1U, platform.getMetadataValues().size());
    platform.addSpecifierValue("a");
    platform.addSpecifierValue("b");
    platform.eraseSpecifierValue(2);
    platform.eraseSpecifierValue(0);
    EXPECT_EQ(std::vector<std::string>{"b"}, platform.getSpecifierValues());
}

struct Counted : PlatformMetadata {
    explicit Counted(int& alive) : m_alive(alive) { ++m_alive; }
    ~Counted() override { --m_alive; }
    int& m_alive;
};

TEST(SystemMetadataTest, ownsItsPlatformObjects) {
    int alive = 0;
    {
        SystemMetadata system;
        EXPECT_EQ(nullptr, system.getCPUMetadata());
        auto* const first = new Counted(alive);
        system.setPlatformMetadata(PlatformType::CPU, first);
        system.setPlatformMetadata(PlatformType::CPU, first);
        EXPECT_EQ(1, alive);
        EXPECT_EQ(nullptr, system.getCPUMetadata()) << "not a processor's object";
        auto* const cpu = new CPUMetadata;
        system.setPlatformMetadata(PlatformType::CPU, cpu);
        EXPECT_EQ(0, alive);
        EXPECT_EQ(cpu, system.getCPUMetadata());
        system.setPlatformMetadata(PlatformType::GENERIC, new Counted(alive));
        system.setPlatformMetadata(PlatformType::CPU, nullptr);
        EXPECT_EQ(1U, system.platformMetadata.size());
    }
    EXPECT_EQ(0, alive);
}

TEST(MsgMetadataTest, keepsItsOperationsWhenMoved) {
    MsgMetadata message(1, 2, 3, "cpu-idle", "CORE-C6");
    message.addMetaValue(OperationMetadata("C6", "TEXT-FILE", 8, "TAG", {{"PATH", "/x"}}));
    message.addMetaValue(std::make_unique<CONSTANTOperationMetadata>(
        "CONSTANTS", OperationMetadata::ValueList{{"SOURCE", "COUNTER"}, {"A", "B"}}));
    message.addMetaValue(nullptr);
    const MsgMetadata moved = std::move(message);
    ASSERT_EQ(2U, moved.getMetaValues().size());
    EXPECT_EQ("TEXT-FILE", moved.getMetaValues()[0]->getOperation());
    const auto* const constants = dynamic_cast<const CONSTANTOperationMetadata*>(moved.getMetaValues()[1]);
    ASSERT_NE(nullptr, constants);
    EXPECT_EQ("CONSTANT", constants->getOperation());
    EXPECT_EQ(0U, constants->getSize());
    EXPECT_EQ("SOURCE", constants->begin()->first) << "order of declaration, not of keys";
}

} // namespace
