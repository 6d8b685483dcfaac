#include "common/metadata/handled_version.h"
#include "common/model/entity_handle.h"
#include "tests/metadata/example_record.h"
#include "tests/support/log_capture.h"
#include "tests/support/record_page.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace pwr;
using tests::Bytes;
using tests::bytesOf;
using tests::ReadableRecord;

const char* const c_noPlatforms = "WARNING: couldn't obtain the number of platform metadata structures!\n";

/// The body of the example as a collection of some version holds it, item by item: what a reader says of
/// a body that ends inside an item, and whether it goes on.
class OldBody {
public:
    struct Item {
        std::size_t begin;
        bool isNeeded;
        std::string warning;
    };

    explicit OldBody(pw_u32_t version, float busFrequency = 100.0F)
        : m_isOld(version < packSavedVersion(2025, 3, 1)) {
        SystemMetadata r;
        tests::fillExample(r);
        need("couldn't extract the clocks of the streams!", r.sidMap);
        need("couldn't extract the app version!", pw_u8_t{6}, pw_u8_t{140}, pw_u8_t{1}, version);
        need("couldn't extract the driver version!", r.driverVersion);
        need("couldn't extract the SCU version!", r.scuVersion);
        need("couldn't extract the platform name!", r.platformName);
        need("couldn't extract the host name!", r.hostName);
        need("couldn't extract the OS name!", r.osName);
        need("couldn't extract the OS type!", r.osType);
        need("couldn't extract the OS version!", r.osVersion);
        if (m_isOld) {
            need("couldn't extract the CPU topology!", pw_u16_t{1}, 0, 1, 4, 3, 0, 4, -1, -1, -1);
            need("couldn't extract the bus frequency!", busFrequency);
        }
        need("couldn't extract the clock frequency!", r.twaClockFreq);
        if (m_isOld) {
            need("couldn't extract the LFM frequency!", 400.0F);
            need("couldn't extract the HFM frequency!", 2800.0F);
            need("couldn't extract the base operating frequency!", 2400.5F);
        }
        need("couldn't extract begin and end of the collection!", r.startTSC, r.stopTSC, r.startTimeval,
             r.stopTimeval);
        need("couldn't extract the polling interval!", r.pollingInterval);
        need("couldn't extract the immediate mode!", r.immediateMode);
        need("couldn't extract the command line!", r.cmdLine);
        m_endOfNeeded = bytes().size();
        may("# produced samples", r.producedSamples);
        may("# dropped samples", r.droppedSamples);
        may("low overhead mode information", r.lowOverheadMode);
        may("platform specifiers", r.platformSpecifiers);
        if (m_isOld) {
            may("topology changes", pw_u16_t{1}, pw_u64_t{77}, 1, pw_u16_t{2}, pw_u16_t{4}, pw_u16_t{0}, -1);
        }
        may("HyperV enable information", r.hyperVEnabled);
        may("VSM enable information", r.vsmEnabled);
        may("cpu native model IDs", pw_u16_t{0});
        may("Edram Cap information", r.edramCapable);
        may("iGfx Id information", r.igfxId);
        may("driver build date information", r.driverBuildDate);
        may("program start/stop timeval", r.programStartTimeval, r.programStopTimeval);
        may(".exe build date information", r.appBuildDate);
        may("continuous collection quantum information", r.continuousQuantum);
        const TWClockSync& c = r.clockSyncs[0];
        may("clock sync info", pw_u16_t{1}, c.clockUUID, c.clockName, c.clockFrequency, c.clockValue,
            c.defaultClockUUID, c.defaultClockName, c.defaultClockFrequency, c.defaultClockValue);
        may("Hypervisor Enforced Code Integrity enable information", r.hvciEnabled);
        may("non-numeric version number", r.nonNumericVersion);
        may("build ref information", r.buildRef);
        may("package type information", r.packageType);
        may("VTIO information", r.vtioEnabled);
        may("number of TAF endpoints", pw_u16_t{1});
        need("couldn't obtain TAF endpoint information!", pw_u16_t{20}, 1ULL, 0x1A2B, 64, pw_u16_t{20},
             pw_u16_t{8}, pw_u16_t{1});
        item(false, "", pw_u16_t{1}, pw_u16_t{0}, pw_u8_t{0}, pw_u8_t{2}, pw_u8_t{0}, 0x9A491234,
             std::string("Display"));
        if (!m_isOld) {
            item(true, c_noPlatforms, pw_u16_t{2});
            object(*r.getCPUMetadata(), 1);
            object(*r.getPlatformMetadata(PlatformType::CXH), 2);
        }
    }

    const Bytes& bytes() { return m_out.get_buffer(); }
    std::size_t endOfNeeded() const { return m_endOfNeeded; }
    /// What reading that many bytes ends in.
    std::pair<int, std::string> expected(std::size_t size) {
        if (size == bytes().size()) {
            return {0, ""};
        }
        std::size_t cut = m_items.size() - 1;
        while (m_items[cut].begin > size) {
            --cut;
        }
        const Item& item = m_items[cut];
        if (item.isNeeded) {
            return {-1, item.warning};
        }
        return {m_isOld ? 0 : -1, item.warning + (m_isOld ? "" : c_noPlatforms)};
    }

private:
    template <class... Values> void item(bool isNeeded, const std::string& warning, const Values&... values) {
        m_items.push_back({bytes().size(), isNeeded, warning});
        (m_out.write(values), ...);
    }
    template <class... Values> void need(const std::string& warning, const Values&... values) {
        item(true, "WARNING: " + warning + "\n", values...);
    }
    template <class... Values> void may(const std::string& what, const Values&... values) {
        item(false, "WARNING: couldn't extract " + what + " -- older file?!\n", values...);
    }
    void object(const PlatformMetadata& object, pw_u16_t type) {
        need("couldn't obtain platform metadata type!", type);
        need("couldn't obtain platform metadata of type " + std::to_string(type) + "!");
        object.serializePlatformMetadata(m_out);
    }

    bool m_isOld;
    Serializer m_out{0};
    std::vector<Item> m_items;
    std::size_t m_endOfNeeded = 0;
};

/// What was logged, without what the changes of a topology say of themselves.
std::string withoutChanges(const std::string& log) {
    std::istringstream lines(log);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        kept += line.find("for topology change!") == std::string::npos ? line + "\n" : "";
    }
    return kept;
}

struct SystemStreamTest : ::testing::Test {
    ~SystemStreamTest() override {
        setHandledVersion(c_currentSavedVersion);
        g_pluginEnvironment->setDefaultClockToTSCRatio(0.0F, 1.0F);
    }
    LogCapture log;
    ReadableRecord record;
};

TEST_F(SystemStreamTest, isWrittenAndReadAsThePageSays) {
    const Bytes page = recordExample("system", "system-record.md");
    SystemMetadata example;
    tests::fillExample(example);
    setHandledVersion(1);
    EXPECT_EQ(page, bytesOf(example));
    EXPECT_EQ(c_currentSavedVersion, getHandledVersion());

    Serializer in(page);
    const std::unique_ptr<Metadata> read(Metadata::deserialize(in, 0));
    const auto* const system = dynamic_cast<const SystemMetadata*>(read.get());
    ASSERT_NE(nullptr, system);
    EXPECT_EQ(page, bytesOf(*system)); // so every item was read into its own field
    EXPECT_EQ("", log.take());
    EXPECT_EQ(3, EntityHandle::getCPUThreadCount()) << "the entities are those of the record";
    EXPECT_EQ(0.0F, g_pluginEnvironment->getDefaultClockMHz()) << "the host knows the clocks";
}

TEST_F(SystemStreamTest, anyCutIsNamedWhateverTheVersion) {
    for (const pw_u32_t version :
         {c_currentSavedVersion, packSavedVersion(2025, 3, 1), packSavedVersion(2025, 2, 255)}) {
        OldBody body(version);
        for (std::size_t size = 0; size <= body.bytes().size(); ++size) {
            const auto [result, warning] = body.expected(size);
            ASSERT_EQ(result, record.readBody(cutTo(body.bytes(), size))) << version << " cut to " << size;
            ASSERT_EQ(warning, withoutChanges(log.take())) << version << " cut to " << size;
        }
        EXPECT_EQ(version, getHandledVersion());
    }
}

TEST_F(SystemStreamTest, oldCollectionsGiveTheirProcessorAndClock) {
    OldBody body(packSavedVersion(2025, 2, 9));
    ASSERT_EQ(0, record.readBody(body.bytes()));
    CPUMetadata expected;
    expected.setFMS(6, 140, 1);
    const CPUMetadata& cpu = *record.getCPUMetadata();
    EXPECT_EQ(expected, cpu);
    EXPECT_EQ((std::vector<float>{100.0F, 400.0F, 2800.0F, 2400.5F}),
              (std::vector<float>{cpu.busFreq, cpu.lfmFreq, cpu.hfmFreq, cpu.baseOpFreq}));
    EXPECT_EQ(1U, cpu.getCPUTopology().getNumThreads());
    EXPECT_EQ(4U, cpu.getTopologyChanges().at(0).getCoreID());
    EXPECT_EQ("Display", record.pciDevices.at(0).name);
    EXPECT_EQ(2400.0F, g_pluginEnvironment->getDefaultClockMHz());
    EXPECT_EQ(24.0F, g_pluginEnvironment->getDefaultClockToTSCRatio());

    // The same object again, with less: nothing of the first remains.
    ASSERT_EQ(0, record.readBody(cutTo(body.bytes(), body.endOfNeeded())));
    EXPECT_EQ(0U, record.producedSamples + record.tafEndpoints.size() + record.pciDevices.size() +
                      record.getCPUMetadata()->getTopologyChanges().size());

    ASSERT_EQ(0, record.readBody(OldBody(packSavedVersion(2025, 2, 9), 0.0F).bytes()));
    EXPECT_EQ(1.0F, g_pluginEnvironment->getDefaultClockToTSCRatio()) << "without bus frequency";
}

TEST_F(SystemStreamTest, oddContentsAreReadBackOrRefused) {
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
             {[](SystemMetadata& r) { r.platformSpecifiers.emplace_back(); }, 0},
             // Objects that are none, or of another kind than their type, are not written.
             {[](SystemMetadata& r) { r.platformMetadata[PlatformType::GENERIC] = nullptr; }, 0},
             {[](SystemMetadata& r) { r.setPlatformMetadata(PlatformType::CXH, new CPUMetadata); }, 0},
             {[](SystemMetadata& r) { r.setPlatformMetadata(PlatformType::GENERIC, new CPUMetadata); }, 0}}) {
        SystemMetadata changed;
        tests::fillExample(changed);
        change(changed);
        const Bytes bytes = bytesOf(changed);
        ASSERT_EQ(result, record.readBody({bytes.begin() + 4, bytes.end()})) << log.take();
        if (result == 0) {
            EXPECT_EQ(bytes, bytesOf(record));
        }
    }
}

TEST_F(SystemStreamTest, doesNotTrustWhatItReads) {
    SystemMetadata empty;
    empty.platformName = empty.hostName = empty.osName = empty.osType = empty.osVersion = "x";
    const Bytes framed = bytesOf(empty);
    const Bytes sound(framed.begin() + 4, framed.end());
    const auto withEnd = [&sound](std::size_t cut, const std::string& end) {
        Bytes bytes = cutTo(sound, sound.size() - cut);
        bytes.insert(bytes.end(), end.begin(), end.end());
        return bytes;
    };
    const auto object = [](char type, const std::string& name) { // without specifiers and values
        const std::string start{type, '\0', '\0', '\0', static_cast<char>(name.size()), '\0'};
        return start + name + std::string(6, '\0');
    };
    const std::string one("\1\0", 2);
    const std::string two("\2\0", 2);
    const std::string older = std::string(" -- older file?!\n") + c_noPlatforms;
    const std::string platform = "WARNING: couldn't obtain platform metadata";
    struct Case {
        std::size_t cut; // so many bytes of a record without lists and objects
        std::string end; // and what stands there instead
        std::string warning;
    };
    for (const Case& c : std::initializer_list<Case>{
             {2, one + std::string("\3\0", 2), "WARNING: platform metadata of the unknown type 3!\n"},
             {2, "\xFF\xFF", platform + " type!\n"},
             {2, two + object(0, "a") + "\1", platform + " type!\n"},
             {2, one + object(2, "") + "\xFF\xFF", platform + " of type 2!\n"},
             {4, "\xFF\xFF", c_noPlatforms},
             {6, "\xFF\xFF", "WARNING: couldn't obtain TAF endpoint information!\n"},
             {16, "\xFF\xFF", "WARNING: couldn't extract clock sync info" + older},
             {47, one + std::string(45, '\0'), "WARNING: couldn't extract cpu native model IDs" + older}}) {
        EXPECT_EQ(-1, record.readBody(withEnd(c.cut, c.end))) << c.warning;
        EXPECT_EQ(c.warning, log.take());
    }
    ASSERT_EQ(0, record.readBody(withEnd(2, two + object(0, "first") + object(0, "later"))));
    EXPECT_EQ("later", record.getPlatformMetadata(PlatformType::GENERIC)->getDisplayName());
}

} // namespace
