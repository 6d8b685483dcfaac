#include "common/config/tw_configfile_parser.h"
#include "common/platform/file.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/metric_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/pw_utils.h"
#include "tests/support/log_capture.h"

#include <deque>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace pwr {
namespace {

class PluginLoaderTest : public testing::Test {
protected:
    PluginLoaderTest() {
        g_pluginEnvironment->setTarnwellDirectory();
        g_pluginEnvironment->getQueuedMessages().clear();
    }
    static std::string folder() { return g_pluginEnvironment->getTarnwellDirectory() + "test_plugins"; }
    static std::string errorOf(const PluginLoader& loader, std::size_t index) {
        return loader.getFiles().at(index).error;
    }
};

TEST_F(PluginLoaderTest, eachFileIsAPluginOrAReason) {
    PluginLoader loader;
    EXPECT_EQ(1, loader.loadFolder(folder()));
    ASSERT_EQ(7U, loader.getFiles().size());

    const PluginFile& good = loader.getFiles()[0];
    EXPECT_EQ("", good.error);
    EXPECT_EQ("good", good.name);
    EXPECT_EQ(KRCOMMON_VERSION, good.libraryVersion);
    EXPECT_EQ(KR_PLUGIN_COLLECTOR, good.kind);

    const std::string ours = std::to_string(KR_PLUGIN_INTERFACE_VERSION);
    const std::string theirs = std::to_string(KR_PLUGIN_INTERFACE_VERSION + 1);
    EXPECT_EQ("plug-in 2_other_interface: built for interface " + theirs + ", this is " + ours +
                  ": rebuild it",
              errorOf(loader, 1));
    EXPECT_EQ("plug-in thrower: throws in create(): no such luck", errorOf(loader, 2));
    EXPECT_EQ("plug-in 4_no_symbol: no plug-in: it has no symbol krPluginInfo", errorOf(loader, 3));
    EXPECT_THAT(errorOf(loader, 4), testing::StartsWith("plug-in 5_no_module: "));
    EXPECT_EQ("plug-in refuser: initialize() failed with 7", errorOf(loader, 5));
    EXPECT_THAT(errorOf(loader, 6), testing::AllOf(testing::HasSubstr("built as other-0, this is "),
                                                   testing::EndsWith(": rebuild it")));
    for (const PluginFile& file : loader.getFiles()) {
        EXPECT_EQ(file.error.empty(), file.plugin != nullptr) << file.path;
    }
    EXPECT_THAT(loader.getPlugins<CollectorPlugin>(), testing::ElementsAre(good.plugin.get()));
    EXPECT_THAT(loader.getPlugins<MetricPlugin>(), testing::IsEmpty());
}

TEST_F(PluginLoaderTest, manifestsMakeTypesKnownWithoutTheirModules) {
    LogCapture log;
    PluginLoader loader;
    loader.loadFolder(folder());
    const PluginManifest& absent = loader.getManifests().at("absent");
    EXPECT_EQ(KR_PLUGIN_COLLECTOR, absent.kind);
    EXPECT_FALSE(absent.isForThisSystem());
    TWConfigFileParser& parser = *TWConfigFileParser::instance();
    EXPECT_EQ(0, parser.parseText("test", "ALL_CAP_MSG1_SOMEWHERE:NEAR_KEY=1\n")) << log.text();
    EXPECT_EQ(1, parser.parseText("test", "ALL_CAP_MSG2_SOMEWHERE:FAR_KEY=1\n"));
    EXPECT_EQ(nullptr, parser.getCollector("SOMEWHERE")) << "nobody serves it";
    TWConfigFileParser::destroy();
}

TEST_F(PluginLoaderTest, badManifestsAreTold) {
    PluginManifest manifest;
    for (const auto& [text, told] : std::vector<std::pair<std::string, std::string>>{
             {"type=A\n", "m.manifest: the key kind is missing"},
             {"kind=reader\n", "m.manifest:1: \"kind=reader\": expected collector, metric or writer"},
             {"# word\nkind=metric\ntype=A_B\n",
              "m.manifest:3: \"type=A_B\": expected a word without \"_\" and \"=\""},
             {"kind=metric\ncolor=red\n",
              "m.manifest:2: \"color=red\": expected the key kind, library, systems or type"},
         }) {
        std::string error;
        EXPECT_EQ(1, manifest.parse("m", text, error));
        EXPECT_EQ(told, error);
    }
}

TEST_F(PluginLoaderTest, moduleMustBeWhatItsManifestSays) {
    LogCapture log;
    const std::string manifest = folder() + "/1_good.manifest";
    for (const auto& [text, told] : std::vector<std::pair<std::string, std::string>>{
             {"kind=writer\n", "its manifest names another kind of plug-in"},
             {"kind=collector\ntype=THINGS\n",
              "it serves the collector types none, its manifest names THINGS: "
              "install both from one release"},
             {"kind=collector\n", ""},
         }) {
        std::ofstream(manifest) << text;
        PluginLoader loader;
        loader.loadFolder(folder());
        EXPECT_EQ(told.empty() ? "" : "plug-in good: " + told, errorOf(loader, 0));
    }
    std::filesystem::remove(manifest);
    TWConfigFileParser::destroy();
}

TEST_F(PluginLoaderTest, endsInReverseOrder) {
    LogCapture log;
    PluginLoader loader;
    loader.loadFolder(folder());
    loader.setOption("good", "fail at the end");
    loader.loadFile(loader.getFiles()[0].path); // a second object of the same module
    std::deque<std::string>& events = g_pluginEnvironment->getQueuedMessages();
    events.clear();
    loader.unload();
    EXPECT_THAT(events,
                testing::ElementsAre("good shut down", "good destroyed", "good shut down", "good destroyed"));
    EXPECT_TRUE(loader.getFiles().empty());
    EXPECT_EQ("WARNING: plug-in good: shutdown() failed with 5\n", log.text());
}

TEST_F(PluginLoaderTest, bareNameIsAFileOfTheCurrentFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    PluginLoader loader;
    loader.loadFolder(folder());
    const std::string name = PathOps::getFilenameFromPath(loader.getFiles()[0].path);
    std::filesystem::current_path(platform::nativePath(folder()));
    EXPECT_EQ(0, loader.loadFile(name));
    std::filesystem::current_path(before);
}

TEST_F(PluginLoaderTest, refusedPluginIsDestroyedButNotShutDown) {
    PluginLoader loader;
    loader.loadFolder(folder());
    EXPECT_THAT(g_pluginEnvironment->getQueuedMessages(),
                testing::ElementsAre("good made", "good initialized", "thrower made", "thrower destroyed",
                                     "refuser made", "refuser destroyed"));
}

TEST_F(PluginLoaderTest, missingFolderAndFile) {
    PluginLoader loader;
    EXPECT_EQ(1, loader.loadFolder(folder() + "/nowhere"));
    EXPECT_TRUE(loader.getFiles().empty());
    EXPECT_EQ(1, loader.loadFile(folder() + "/nowhere/gone.so"));
    EXPECT_THAT(errorOf(loader, 0), testing::StartsWith("plug-in gone: "));
}

} // namespace
} // namespace pwr
