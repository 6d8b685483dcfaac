#include "common/platform/file.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/metric_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/pw_utils.h"
#include "tests/support/log_capture.h"

#include <deque>
#include <filesystem>
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
