#include "common/metadata/handled_version.h"
#include "common/model/entity_handle.h"
#include "common/tokenizer.h"
#include "tests/metadata/example_record.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

using namespace pwr;
using namespace std::string_literals;
using tests::bytesOf;

constexpr pw_u32_t c_lastOld = packSavedVersion(2025, 2, 255);
const std::string c_noPlatforms = "WARNING: couldn't obtain the number of platform metadata structures!\n";
const std::string c_noPlatform = "WARNING: couldn't obtain platform metadata";
const std::string c_currentVersion = "\1\5\xe9\7";

std::string exampleBody() {
    return tests::exampleBytes().substr(tests::c_frame);
}

/// The example as a collection of the last version without platform objects holds it.
std::string oldBody(float busFrequency = 100.0F) {
    std::string body = exampleBody();
    body.resize(body.find("\2\0\1\0\3\0FMS"s));
    const auto insertBehind = [&body](const std::string& place, const auto&... values) {
        Serializer out(0);
        (out.write(values), ...);
        const std::vector<char>& bytes = out.get_buffer();
        body.insert(body.find(place) + place.size(), bytes.data(), bytes.size());
    };
    insertBehind("DOCK\0\0"s, pw_u16_t{1}, pw_u64_t{77}, 1, pw_u16_t{2}, pw_u16_t{4}, pw_u16_t{0}, -1);
    insertBehind("6.1\0\0\x16\x45"s, 400.0F, 2800.0F, 2400.5F);
    insertBehind("6.1", pw_u16_t{1}, 0, 1, 4, 3, 0, 4, -1, -1, -1, busFrequency);
    return body.replace(body.find("\0\0\0"s + c_currentVersion), 7, "\6\x8c\1\xff\2\xe9\7");
}

/// What a reader may miss, in order: "!" fails the record, "~" is in old collections only.
constexpr const char* c_items =
    "the clocks of the streams!|the app version!|the driver version!|the SCU version!|the platform name!|"
    "the host name!|the OS name!|the OS type!|the OS version!|~the CPU topology!|~the bus frequency!|"
    "the clock frequency!|~the LFM frequency!|~the HFM frequency!|~the base operating frequency!|"
    "begin and end of the collection!|the polling interval!|the immediate mode!|the command line!|"
    "# produced samples|# dropped samples|low overhead mode information|platform specifiers|"
    "~topology changes|HyperV enable information|VSM enable information|cpu native model IDs|"
    "Edram Cap information|iGfx Id information|driver build date information|program start/stop timeval|"
    ".exe build date information|continuous collection quantum information|clock sync info|"
    "Hypervisor Enforced Code Integrity enable information|non-numeric version number|"
    "build ref information|package type information|VTIO information|number of TAF endpoints";

/// Results and warnings of a body that is cut, from nothing to the whole of it.
using Fates = std::vector<std::pair<int, std::string>>;
Fates expectedFates(bool isOld) {
    Fates fates;
    for (std::string item : Tokenizer(c_items, "|").get_all_tokens()) {
        const bool isOnlyInOld = item.front() == '~';
        const bool isNeeded = item.back() == '!';
        if (isOld || !isOnlyInOld) {
            fates.emplace_back(isOld && !isNeeded ? 0 : -1, "WARNING: couldn't extract " +
                                                                item.substr(isOnlyInOld ? 1 : 0) +
                                                                (isNeeded ? "\n" : " -- older file?!\n") +
                                                                (isOld || isNeeded ? "" : c_noPlatforms));
        }
    }
    fates.emplace_back(-1, "WARNING: couldn't obtain TAF endpoint information!\n");
    if (!isOld) {
        for (const std::string& warning :
             {c_noPlatforms, c_noPlatform + " type!\n", c_noPlatform + " of type 1!\n",
              c_noPlatform + " type!\n", c_noPlatform + " of type 2!\n"}) {
            fates.emplace_back(-1, warning);
        }
    }
    fates.emplace_back(0, "");
    return fates;
}

struct SystemStreamTest : ::testing::Test {
    ~SystemStreamTest() override {
        setHandledVersion(c_currentSavedVersion);
        g_pluginEnvironment->setDefaultClockToTSCRatio(0.0F, 1.0F);
    }
    LogCapture log;
    tests::ReadableRecord record;
};

TEST_F(SystemStreamTest, isReadAndWrittenAsThePageSays) {
    const std::vector<char> page = recordExample("system", "system-record.md");
    Serializer in(page);
    const std::unique_ptr<Metadata> read(Metadata::deserialize(in, 0));
    const auto* const system = dynamic_cast<const SystemMetadata*>(read.get());
    ASSERT_NE(nullptr, system);
    EXPECT_EQ("", log.take());
    EXPECT_EQ(3, EntityHandle::getCPUThreadCount()) << "the entities are those of the record";
    EXPECT_EQ(0.0F, g_pluginEnvironment->getDefaultClockMHz()) << "the host knows the clocks";
    // What no text shows.
    EXPECT_TRUE(system->immediateMode && system->lowOverheadMode && system->hyperVEnabled &&
                !system->vsmEnabled && system->hvciEnabled && system->vtioEnabled);
    EXPECT_EQ(1763700006000000U, system->programStopTimeval);
    EXPECT_EQ(60U, system->continuousQuantum);
    EXPECT_EQ(0xFEDC1000U, pw_u64_t{system->tafEndpoints.at(20).address});
    const PCIDevice& device = system->pciDevices.at(1);
    EXPECT_EQ((std::array{1, 3, 31, 7, 0x1234, 0xFF}),
              (std::array<int, 6>{device.segment, device.bus, device.device, device.function, device.vendor,
                                  device.deviceId}));
    setHandledVersion(1);
    EXPECT_EQ(tests::exampleBytes(), bytesOf(*system));
    EXPECT_EQ(c_currentSavedVersion, getHandledVersion());
}

TEST_F(SystemStreamTest, anyCutIsNamedWhateverTheVersion) {
    std::string firstNew = exampleBody();
    firstNew.replace(firstNew.find(c_currentVersion), 2, "\1\3");
    const std::regex ofChanges("WARNING: [^\n]* for topology change!\n");
    for (const auto& [body, version] :
         {std::pair(exampleBody(), c_currentSavedVersion), std::pair(firstNew, packSavedVersion(2025, 3, 1)),
          std::pair(oldBody(), c_lastOld)}) {
        Fates fates;
        for (std::size_t size = 0; size <= body.size(); ++size) {
            const int result = record.readBody(body.substr(0, size));
            std::pair fate(result, std::regex_replace(log.take(), ofChanges, ""));
            if (fates.empty() || fates.back() != fate) {
                fates.push_back(std::move(fate));
            }
        }
        EXPECT_EQ(expectedFates(version == c_lastOld), fates) << version;
        EXPECT_EQ(version, getHandledVersion());
    }
}

TEST_F(SystemStreamTest, oldCollectionsGiveTheirProcessorAndClock) {
    ASSERT_EQ(0, record.readBody(oldBody()));
    CPUMetadata expected;
    expected.setFMS(6, 140, 1);
    const CPUMetadata& cpu = *record.getCPUMetadata();
    EXPECT_EQ(expected, cpu);
    EXPECT_EQ((std::array{100.0F, 400.0F, 2800.0F, 2400.5F}),
              (std::array{cpu.busFreq, cpu.lfmFreq, cpu.hfmFreq, cpu.baseOpFreq}));
    EXPECT_EQ(1U, cpu.getCPUTopology().getNumThreads());
    EXPECT_EQ(4U, cpu.getTopologyChanges().at(0).getCoreID());
    EXPECT_EQ("Display", record.pciDevices.at(0).name);
    EXPECT_EQ(2400.0F, g_pluginEnvironment->getDefaultClockMHz());
    EXPECT_EQ(24.0F, g_pluginEnvironment->getDefaultClockToTSCRatio());

    // The same object again, with no more than the command line: nothing of the first remains.
    const std::string lastNeeded = "\1\0005"s;
    ASSERT_EQ(0, record.readBody(oldBody().substr(0, oldBody().find(lastNeeded) + lastNeeded.size())));
    EXPECT_EQ(0U, record.producedSamples + record.tafEndpoints.size() + record.pciDevices.size() +
                      record.getCPUMetadata()->getTopologyChanges().size());

    ASSERT_EQ(0, record.readBody(oldBody(0.0F)));
    EXPECT_EQ(1.0F, g_pluginEnvironment->getDefaultClockToTSCRatio()) << "without bus frequency";
}

TEST_F(SystemStreamTest, oddContentsAreReadBackOrRefused) {
    using Type = PlatformType;
    struct Case {
        void (*change)(SystemMetadata&);
        int result;
    };
    for (const auto& [change, result] : std::initializer_list<Case>{
             {[](SystemMetadata& r) { r.sidMap[3] = ""; }, -1},
             {[](SystemMetadata& r) { r.platformName = ""; }, -1},
             {[](SystemMetadata& r) { r.osVersion = ""; }, -1},
             {[](SystemMetadata& r) { r.cmdLine.emplace_back(); }, -1},
             {[](SystemMetadata& r) { r.cmdLine.clear(); }, 0},
             {[](SystemMetadata& r) { r.buildRef = r.driverBuildDate = r.packageType = ""; }, 0},
             {[](SystemMetadata& r) { r.clockSyncs[0] = {}; }, 0},
             // Objects that are none, or of another kind than their type, are not written.
             {[](SystemMetadata& r) { r.platformMetadata[Type::GENERIC] = nullptr; }, 0},
             {[](SystemMetadata& r) { r.setPlatformMetadata(Type::CXH, new CPUMetadata); }, 0},
             {[](SystemMetadata& r) { r.setPlatformMetadata(Type::GENERIC, new CPUMetadata); }, 0}}) {
        tests::ExampleRecord changed;
        change(changed);
        const std::string bytes = bytesOf(changed);
        ASSERT_EQ(result, record.readBody(bytes.substr(tests::c_frame))) << log.take();
        if (result == 0) {
            EXPECT_EQ(bytes, bytesOf(record));
        }
    }
}

TEST_F(SystemStreamTest, doesNotTrustWhatItReads) {
    SystemMetadata empty;
    empty.platformName = empty.hostName = empty.osName = empty.osType = empty.osVersion = "x";
    const std::string sound = bytesOf(empty).substr(tests::c_frame);
    const auto object = [](char type, const std::string& name) { // without specifiers and values
        return std::string{type, '\0', '\0', '\0', static_cast<char>(name.size()), '\0'} + name +
               std::string(6, '\0');
    };
    const std::string older = " -- older file?!\n" + c_noPlatforms;
    struct Case {
        std::size_t cut; // so many bytes of a record without lists and objects
        std::string end; // and what stands there instead
        std::string warning;
    };
    for (const Case& c : std::initializer_list<Case>{
             {2, "\1\0\3\0"s, "WARNING: platform metadata of the unknown type 3!\n"},
             {2, "\xFF\xFF", c_noPlatform + " type!\n"},
             {2, "\2\0"s + object(0, "a") + "\1", c_noPlatform + " type!\n"},
             {2, "\1\0"s + object(2, "") + "\xFF\xFF", c_noPlatform + " of type 2!\n"},
             {4, "\xFF\xFF", c_noPlatforms},
             {6, "\xFF\xFF", "WARNING: couldn't obtain TAF endpoint information!\n"},
             {16, "\xFF\xFF", "WARNING: couldn't extract clock sync info" + older},
             {47, "\1\0"s + std::string(45, '\0'),
              "WARNING: couldn't extract cpu native model IDs" + older}}) {
        EXPECT_EQ(-1, record.readBody(sound.substr(0, sound.size() - c.cut) + c.end)) << c.warning;
        EXPECT_EQ(c.warning, log.take());
    }
    const std::string twoOfAType = "\2\0"s + object(0, "first") + object(0, "later");
    ASSERT_EQ(0, record.readBody(sound.substr(0, sound.size() - 2) + twoOfAType));
    EXPECT_EQ("later", record.getPlatformMetadata(PlatformType::GENERIC)->getDisplayName());
}

} // namespace
