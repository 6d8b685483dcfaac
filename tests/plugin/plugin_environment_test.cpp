#include "common/pw_utils.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>
#include <memory>

namespace pwr {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Span = std::pair<pw_u64_t, pw_u64_t>;

_tw_aggregator_info endpoint(pw_u32_t guid, pw_u16_t id, pw_u16_t type) {
    _tw_aggregator_info info{};
    info.guid = guid;
    info.endpoint_id = id;
    info.collection_type = type;
    return info;
}

TEST(PluginEnvironment, levels) {
    struct Case {
        int level;
        int stored;
        const char* prefix;
        bool error;
    };
    PluginEnvironment environment;
    EXPECT_EQ(PWLogLevel::ERROR, environment.getVerbosity());
    Logger error;
    Logger debug;
    environment.setErrorLogger(&error);
    environment.setDebugLogger(&debug);
    for (const Case& c :
         {Case{-1, -1, "INFO", false}, Case{0, 0, "FATAL", true}, Case{1, 1, "ERROR", true},
          Case{2, 2, "WARNING", false}, Case{3, 2, "DEBUG", false}, Case{4, 2, "INFO", false}}) {
        const auto level = static_cast<PWLogLevel>(c.level);
        environment.setVerbosity(level);
        EXPECT_EQ(c.stored, static_cast<int>(environment.getVerbosity()));
        EXPECT_STREQ(c.prefix, PluginEnvironment::getLoggerPrefix(level));
        EXPECT_EQ(c.error ? &error : &debug, environment.getLogger(level)) << c.level;
    }
}

TEST(PluginEnvironment, fileOutput) {
    PluginEnvironment environment;
    Logger preset;
    const std::string name = tw_temp_directory_path() + "/kr_environment_test.txt";
    const std::unique_ptr<Logger> first(environment.getFileOutputHandle(name.c_str()));
    const std::unique_ptr<Logger> second(environment.getFileOutputHandle(name.c_str()));
    EXPECT_NE(first.get(), second.get());
    EXPECT_TRUE(first->good());
    environment.setFileOutputHandle(&preset);
    EXPECT_EQ(&preset, environment.getFileOutputHandle("any"));
    EXPECT_EQ(nullptr, environment.getFileOutputHandle(nullptr));
    std::remove(name.c_str());
}

TEST(PluginEnvironment, initialValuesAndOneWayFlags) {
    PluginEnvironment environment;
    const auto bitsOf = [](void* handle) { return reinterpret_cast<std::uintptr_t>(handle); };
    EXPECT_EQ(UINTPTR_MAX, bitsOf(environment.getTarnwellDrvHandle()));
    EXPECT_EQ(UINTPTR_MAX, bitsOf(environment.getQmonDrvHandle()));
    EXPECT_EQ(1.0F, environment.getDefaultClockToTSCRatio());
    EXPECT_EQ(0.0F, environment.getDefaultClockMHz());
    environment.setQmonEnable();
    EXPECT_TRUE(environment.isQmonRegister());
    EXPECT_FALSE(environment.isQmonFeatureEnabled());
    environment.setQmonFeatureEnabled();
    EXPECT_TRUE(environment.isQmonRegister() && environment.isQmonFeatureEnabled());
    environment.insertMetricSwitch("Metric");
    EXPECT_TRUE(environment.hasMetricSwitch("Metric"));
    EXPECT_FALSE(environment.hasMetricSwitch("metric"));
    environment.queueMessage("first");
    environment.queueMessage(nullptr);
    environment.queueMessage("second");
    EXPECT_THAT(environment.getQueuedMessages(), ElementsAre("first", "second"));
}

TEST(PluginEnvironment, secondsAreTwoSinglePrecisionDivisions) {
    PluginEnvironment environment;
    environment.setDefaultClockToTSCRatio(19.2F, 1920.0F);
    EXPECT_EQ(19.2F, environment.getDefaultClockMHz());
    EXPECT_EQ(19.2F / 1920.0F, environment.getDefaultClockToTSCRatio());
    EXPECT_EQ(0x1.d4fb76p+12F, environment.getSecFromTimestamp(144071367499ULL));
    environment.setDefaultClockToTSCRatio(1000.0F, 1000.0F);
    EXPECT_EQ(0x1p63F / 1000.0F / 1e6F, environment.getSecFromTimestamp(1ULL << 63));
}

TEST(PluginEnvironment, directoryIsTheLibrarys) {
    PluginEnvironment environment;
    EXPECT_EQ("", environment.getTarnwellDirectory());
    environment.setTarnwellDirectory();
    const std::string& directory = environment.getTarnwellDirectory();
    ASSERT_FALSE(directory.empty());
    EXPECT_EQ(PathOps::getPathSeparator(), directory.back());
    EXPECT_TRUE(tw_dirExists(directory + "test_plugins")) << directory;
}

TEST(PluginEnvironment, resetsOfSamples) {
    PluginEnvironment environment;
    const id_config_t id{1, 2, 3};
    environment.addSystemStateEvent(100, 3);
    EXPECT_FALSE(environment.checkAndRecordReset(id, 100)); // the first sample never is
    EXPECT_FALSE(environment.checkResetOccurred());
    EXPECT_TRUE(environment.checkAndRecordReset(id, 150)); // an event at the sample before counts
    EXPECT_EQ(3U, environment.isSystemReset(1, 2, 3, 150));
    EXPECT_FALSE(environment.checkAndRecordReset(id, 200));
    EXPECT_EQ(0U, environment.isSystemReset(1, 2, 3, 200));
    EXPECT_EQ(0U, environment.isSystemReset(1, 2, 4, 150));

    environment.addSystemStateEvent(300, 5);
    EXPECT_TRUE(environment.checkAndRecordReset(id, 300)); // in the interval, but its state not in force
    EXPECT_EQ(3U, environment.isSystemReset(1, 2, 3, 300));
    EXPECT_TRUE(environment.checkAndRecordReset(id, 400));
    EXPECT_TRUE(environment.checkAndRecordReset(id, 500)); // state 5 lasts
    EXPECT_EQ(5U, environment.isSystemReset(1, 2, 3, 500));
    environment.addSystemStateEvent(550, 1);
    EXPECT_TRUE(environment.checkAndRecordReset(id, 600));
    EXPECT_FALSE(environment.checkAndRecordReset(id, 700));
    EXPECT_FALSE(environment.checkAndRecordReset(id, 50)); // backwards: an empty interval, and recorded
    EXPECT_TRUE(environment.checkAndRecordReset(id, 120));
    EXPECT_FALSE(environment.checkAndRecordReset({1, 2, 9}, 560));
}

TEST(PluginEnvironment, unknownStateCountsAsRunningBeforeTheFirstEvent) {
    PluginEnvironment environment;
    environment.removeLastSystemStateEvent();
    environment.addSystemStateEvent(200, 0);
    environment.checkAndRecordReset({1, 1, 1}, 100);
    EXPECT_TRUE(environment.checkAndRecordReset({1, 1, 1}, 200));
    EXPECT_EQ(1U, environment.isSystemReset(1, 1, 1, 200));
    EXPECT_TRUE(environment.checkAndRecordReset({1, 1, 1}, 300));
    EXPECT_EQ(0U, environment.isSystemReset(1, 1, 1, 300)); // recorded with state 0, which reads as none
    environment.addSystemStateEvent(200, 4);
    environment.removeLastSystemStateEvent();
    EXPECT_THAT(environment.getSystemStateEvents(), IsEmpty());
}

TEST(PluginEnvironment, lastResetEvent) {
    struct Case {
        std::map<pw_u64_t, pw_u32_t> events;
        pw_u64_t time;
        Span expected;
    };
    const std::map<pw_u64_t, pw_u32_t> twice = {{10, 1}, {20, 4}, {30, 1}, {40, 5}, {50, 1}};
    const Case cases[] = {
        {{}, 5, {0, 0}},
        {{{10, 1}}, 5, {0, 0}},
        {{{10, 1}}, 50, {0, 0}},
        {twice, 5, {0, 0}},
        {twice, 10, {0, 0}},
        {twice, 20, {20, 30}}, // the first later event starts it
        {twice, 30, {20, 30}},
        {twice, 40, {40, 50}},
        {twice, 50, {40, 50}},
        {twice, 99, {40, 50}},
        {{{10, 4}, {20, 1}}, 99, {10, 20}},
        {{{10, 1}, {20, 4}, {30, 5}}, 99, {0, 0}}, // the walk ends at the first event
    };
    for (const Case& c : cases) {
        PluginEnvironment environment;
        for (const auto& [time, state] : c.events) {
            environment.addSystemStateEvent(time, state);
        }
        EXPECT_EQ(c.expected, environment.getLastResetEvent(c.time)) << c.events.size() << " at " << c.time;
    }
}

TEST(PluginEnvironment, deviceResets) {
    PluginEnvironment environment;
    environment.addTAFDevResetEvent(5, 9);
    environment.addTAFDevResetEvent(5, 7);
    environment.addTAFDevResetEvent(5, 9);
    tw_driver_msg message{};
    message.timestamp = 5;
    ASSERT_NE(nullptr, environment.getTAFDevResetsForMsg(&message));
    EXPECT_THAT(*environment.getTAFDevResetsForMsg(&message), ElementsAre(9U, 7U));
    message.timestamp = 6;
    EXPECT_EQ(nullptr, environment.getTAFDevResetsForMsg(&message));
}

TEST(PluginEnvironment, loadedEndpoints) {
    PluginEnvironment environment;
    // As the driver hands them over: of 22 bytes, so that every second one is aligned for 2 bytes only.
    const _tw_aggregator_info loaded[] = {endpoint(0xA, 1, 3), endpoint(0xA, 2, 4),
                                          endpoint(0xB, 1, 5)}; // the last takes over endpoint 1
    for (const _tw_aggregator_info& info : loaded) {
        environment.addLoadedTAF(info);
    }
    EXPECT_THAT(environment.getLoadedTAFGUIDs(), ElementsAre(0xAU, 0xBU));
    EXPECT_EQ(2U, environment.getLoadedTAFEndpoints(0xA).size());
    EXPECT_THAT(environment.getLoadedTAFEndpoints(0xC), IsEmpty());
    EXPECT_EQ(5, environment.getLoadedTAFEndpoint(1).collection_type);
    EXPECT_EQ(0U, environment.getLoadedTAFEndpoint(3).guid);
    EXPECT_EQ(3, environment.getLoadedTAFCollectionType(0xA));
    EXPECT_EQ(0, environment.getLoadedTAFCollectionType(0xC));
    EXPECT_EQ(0xBU, environment.getTAFPlatformGUID(pw_u16_t{1}));
    EXPECT_EQ(0U, environment.getTAFPlatformGUID(pw_u16_t{3}));
    EXPECT_EQ(2U, environment.getLoadedAggrTelemInfo().size()); // the look-ups have entered nothing
    EXPECT_EQ(0U, PluginEnvironment::getTAFPlatformGUID(nullptr));
}

TEST(PluginEnvironment, platformsOfEndpoints) {
    PluginEnvironment environment;
    environment.addTAFPlatformGUID("NEW ORCA-MOBILE", 1);
    environment.addTAFPlatformGUID("ORCA-SERVER", 2);
    environment.addTAFPlatformGUID("HERON", 3);
    environment.addTAFPlatformGUID("HERON", 3);
    EXPECT_THAT(environment.getTAFPlatformGUIDs("ORCA"),
                ElementsAre(1U)); // anywhere in the name, first name first
    EXPECT_THAT(environment.getTAFPlatformGUIDs("ORCA-SERVER"), ElementsAre(2U));
    EXPECT_THAT(environment.getTAFPlatformGUIDs("HERON"), ElementsAre(3U, 3U));
    EXPECT_THAT(environment.getTAFPlatformGUIDs("HER"), IsEmpty());
    EXPECT_EQ("HERON", environment.getTAFPlatformName(3));
    EXPECT_EQ("", environment.getTAFPlatformName(99));
    environment.setTAFEmulatedGUID(3, 33);
    EXPECT_EQ(33U, environment.getTAFEmulatedGUID(3));
    EXPECT_EQ(0U, environment.getTAFEmulatedGUID(33));
    environment.setDeprecatedTAFGUIDs("b", {5, 4});
    environment.setDeprecatedTAFGUIDs("a", {9});
    environment.setDeprecatedTAFGUIDs("b", {6, 4});
    EXPECT_THAT(environment.getDeprecatedTAFGUIDs(), ElementsAre(9U, 6U, 4U));
}

} // namespace
} // namespace pwr
