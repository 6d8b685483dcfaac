#include "common/metadata/collector_metadata.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/handled_version.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/taf_metadata.h"
#include "common/pw_utils.h"
#include "tests/support/hex_text.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>

namespace {

using namespace pwr;
using Bytes = std::vector<char>;
using Registers = std::map<std::string, pw_u32_t>;

/// The bytes of an example of the page that describes the records.
Bytes example(const std::string& name) {
    std::ifstream page(pw_getenv("KR_TEST_DATA") + "/../docs/formats/records.md");
    std::string text;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        if (inside && line == "```") {
            break;
        }
        text += inside ? line + "\n" : "";
        inside = inside || line == "```hex " + name;
    }
    EXPECT_TRUE(inside) << name;
    return bytesOf(text);
}

std::unique_ptr<Metadata> read(const Bytes& bytes) {
    Serializer in(bytes);
    return std::unique_ptr<Metadata>(Metadata::deserialize(in, 0));
}

/// A record from the page, which must be written as it stands there.
template <class Record> std::unique_ptr<Record> readExample(const std::string& name) {
    const Bytes bytes = example(name);
    std::unique_ptr<Metadata> base = read(bytes);
    std::unique_ptr<Record> record(dynamic_cast<Record*>(base.get()));
    if (record == nullptr) {
        ADD_FAILURE() << name;
        return std::make_unique<Record>();
    }
    static_cast<void>(base.release());
    Serializer out(0);
    record->serialize(out);
    EXPECT_EQ(bytes, out.get_buffer()) << name;
    return record;
}

Bytes written(const PlatformMetadata& platform) {
    Serializer out(0);
    platform.serializePlatformMetadata(out);
    return out.get_buffer();
}

template <class Platform> void readPlatformExample(const std::string& name, Platform& platform) {
    Serializer in(example(name));
    EXPECT_EQ(0, platform.deserializePlatformMetadata(in)) << name;
    EXPECT_EQ(example(name), written(platform)) << name;
}

template <class Record> std::string textOf(const Record& record) {
    std::ostringstream out;
    out << std::hex << record;
    return out.str();
}

/// What becomes of the bytes when they are cut, and from which length on: ok or not, and what is logged.
using Fates = std::vector<std::pair<std::size_t, std::string>>;
template <class Read> Fates fates(const Bytes& bytes, const Read& readCut) {
    Fates all;
    LogCapture log;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const bool sound = readCut(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        const std::string fate = (sound ? "ok " : "no ") + log.take();
        if (all.empty() || all.back().second != fate) {
            all.emplace_back(size, fate);
        }
    }
    return all;
}
bool isRecord(const Bytes& bytes) {
    return read(bytes) != nullptr;
}

std::string miss(const std::string& item, const std::string& record) {
    return "no WARNING: ERROR reading " + item + " while deserializing " + record + " metadata message!\n";
}

const std::string c_noValues = "ok WARNING: Unable to read values size from operation metadata!\n";

TEST(RecordStreamTest, operationsAreAsThePageSays) {
    const auto record = readExample<OperationMetadata>("operation");
    EXPECT_EQ("busy", record->getName());
    EXPECT_EQ("TEXT-FILE", record->getOperation());
    EXPECT_EQ(8U, record->getSize());
    EXPECT_EQ("CPU", record->getOrgMsgTag());
    EXPECT_EQ((OperationMetadata::ValueList{{"PATH", "/proc/stat"}, {"FIELD", "cpu 1"}}),
              record->getValues());
    EXPECT_EQ("Operation Meta: Name = busy, Operation = TEXT-FILE, Size = 8, Org msg tag = CPU\n",
              textOf(*record));
    EXPECT_EQ("Operation Meta: Name = K, Operation = CONSTANT, Size = 0\n",
              textOf(CONSTANTOperationMetadata("K", {{"a", "b"}})));
    const std::string key = miss("key", "operation");
    const std::string value = miss("value", "operation");
    EXPECT_EQ((Fates{{0, "no "},
                     {25, c_noValues}, // behind the size
                     {26, key},
                     {27, miss("org msg tag", "operation")},
                     {30, c_noValues},
                     {31, key},
                     {37, value},
                     {49, key},
                     {56, value},
                     {63, "ok "}}),
              fates(example("operation"), isRecord));
}

TEST(RecordStreamTest, messagesAreAsThePageSays) {
    const auto record = readExample<MsgMetadata>("message");
    EXPECT_EQ(1U, record->getPluginID());
    EXPECT_EQ(2U, record->getMetricID());
    EXPECT_EQ(3U, record->getMsgID());
    ASSERT_EQ(1U, record->getMetaValues().size());
    EXPECT_EQ((OperationMetadata::ValueList{{"SOURCE", "COUNTER"}}), record->getMetaValues()[0]->getValues());
    EXPECT_EQ("Msg Metadata Plugin ID: 1\nMsg Metadata Metric ID: 2\nMsg Metadata MSG ID: 3\n"
              "Msg Metadata Switch name: cpu-load\nMsg Metadata group names: \tcpu, load\n"
              "Msg Metadata Msg name: CPU-TIME\nK = CONSTANT\nMsg Metadata triggers: END, POLL\n",
              textOf(*record));
    Fates cut = fates(example("message"), isRecord);
    EXPECT_EQ(Fates::value_type(example("message").size(), "ok "), cut.back());
    cut.pop_back();
    for (const auto& [size, fate] : cut) {
        EXPECT_EQ(0U, fate.find("no ")) << size;
    }
    EXPECT_EQ(Fates::value_type(0, "no "), cut.front()) << "a message's own misses are silent";
}

TEST(RecordStreamTest, metricsAndCollectorsAreAsThePageSays) {
    const auto metric = readExample<MetricMetadata>("metric");
    EXPECT_EQ("Metric Metadata plugin ID: 1\nMetric Metadata metric ID: 2\n"
              "\tMetric Metadata payload[0]: key = NAME, value = CPU time\n"
              "\tMetric Metadata payload[1]: key = TYPE, value = SampledDelta\n",
              textOf(*metric));
    const std::string metricKey = miss("key", "metric");
    const std::string metricValue = miss("value", "metric");
    EXPECT_EQ((Fates{{0, "no "},
                     {4, miss("plugin ID", "metric")},
                     {8, miss("metric ID", "metric")},
                     {12, miss("map size", "metric")},
                     {14, metricKey},
                     {20, metricValue},
                     {30, metricKey},
                     {36, metricValue},
                     {50, "ok "}}),
              fates(example("metric"), isRecord));
    const auto collector = readExample<CollectorMetadata>("collector");
    EXPECT_EQ("Collector Meta: Name = text_files\n"
              "\tCollector Metadata payload[0]: key = VERSION, value = 1.2\n",
              textOf(*collector));
    EXPECT_EQ((Fates{{0, "no "},
                     {4, miss("name", "collector")},
                     {16, miss("map size", "collector")},
                     {18, miss("key", "collector")},
                     {27, miss("value", "collector")},
                     {32, "ok "}}),
              fates(example("collector"), isRecord));
}

TEST(RecordStreamTest, theVersionDecidesWhereAnOperationEnds) {
    EXPECT_EQ(c_currentSavedVersion, getHandledVersion()) << "before any file";
    Bytes message = example("message");
    const std::string start(message.begin(), message.end());
    const std::size_t values = start.find(std::string("\x01\x06\0SOURCE", 9));
    Bytes oldMessage = message;
    oldMessage.erase(oldMessage.begin() + static_cast<std::ptrdiff_t>(values),
                     oldMessage.begin() + static_cast<std::ptrdiff_t>(values + 18));
    struct Case {
        pw_u32_t version;
        bool hasValues;
    };
    for (const Case& c : {Case{0, false}, Case{0x7E802FF, false}, Case{0x7E80300, true},
                          Case{packSavedVersion(2024, 10, 0), true}}) {
        setHandledVersion(c.version);
        const auto operation = read(example("operation"));
        ASSERT_NE(nullptr, operation);
        EXPECT_EQ(c.hasValues ? 2U : 0U,
                  dynamic_cast<const OperationMetadata&>(*operation).getValues().size());
        EXPECT_EQ(c.hasValues, read(message) != nullptr) << c.version;
        EXPECT_EQ(!c.hasValues, read(oldMessage) != nullptr) << c.version;
    }
    setHandledVersion(c_currentSavedVersion);
}

TEST(RecordStreamTest, refusesWhatIsNoRecordOrDoesNotBelongThere) {
    for (const char type : {'\0', '\6', '\xFF'}) {
        Bytes unknown = example("operation");
        unknown[0] = type;
        EXPECT_EQ(nullptr, read(unknown));
    }
    Bytes nested = example("message");
    const std::string text(nested.begin(), nested.end());
    const auto operation = static_cast<std::ptrdiff_t>(text.find(std::string("\5\0\0\0\1\0K", 7)));
    const Bytes whole = nested;
    nested.insert(nested.begin() + operation, whole.begin(), whole.end());
    EXPECT_EQ(nullptr, read(nested)) << "a message among the operations";
    Bytes manyOperations = whole;
    manyOperations[static_cast<std::size_t>(operation) - 1] = '\xFF';
    EXPECT_EQ(nullptr, read(manyOperations));
}

TEST(RecordStreamTest, anOperationsCountHasOneByte) {
    Serializer out(0);
    OperationMetadata("n", "o", 0, "", OperationMetadata::ValueList(300, {"k", "v"})).serialize(out);
    const Bytes bytes = out.get_buffer();
    EXPECT_EQ(44, bytes[4 + 3 + 3 + 4 + 2]);
    EXPECT_EQ(4U + 3 + 3 + 4 + 2 + 1 + 300 * 6, bytes.size());
    Serializer in(bytes);
    const std::unique_ptr<Metadata> record(Metadata::deserialize(in, 0));
    EXPECT_EQ(44U, dynamic_cast<const OperationMetadata&>(*record).getValues().size());
    std::string next;
    EXPECT_EQ(1U, in.read(next)) << "the other pairs are still there";
}

TEST(RecordStreamTest, platformObjectsAreAsThePageSays) {
    PlatformMetadata platform;
    readPlatformExample("platform", platform);
    EXPECT_EQ("BOARD", platform.getSpecifierType());
    EXPECT_EQ("Test board", platform.getDisplayName());
    EXPECT_EQ((std::vector<std::string>{"rev-b", ""}), platform.getSpecifierValues());
    EXPECT_EQ("1.07", platform.getMetadataValue("bios"));

    CPUMetadata cpu;
    readPlatformExample("processor", cpu);
    EXPECT_EQ((std::array{6, 85, 4}),
              (std::array<int, 3>{cpu.getFamily(), cpu.getModel(), cpu.getStepping()}));
    EXPECT_EQ((std::array{100.0F, 800.0F, 2400.0F, 2200.0F}),
              (std::array{cpu.busFreq, cpu.lfmFreq, cpu.hfmFreq, cpu.baseOpFreq}));
    EXPECT_EQ(7U, cpu.platformId);
    EXPECT_EQ(0x2b000181U, cpu.microcodeRevision);
    EXPECT_EQ(1U, cpu.getCPUTopology().getNumPackages());
    EXPECT_EQ((TopTree::HWQMapping{{0, 3}, {1, 4}}), cpu.getCPUTopology().getHWQMapping());
    ASSERT_EQ(1U, cpu.getTopologyChanges().size());
    EXPECT_EQ(0x123456789AU, cpu.getTopologyChanges()[0].getTimestamp());
    Bytes wide = example("processor");
    wide[13 + 1] = '\x66'; // high byte of the family, behind the base
    Serializer in(wide);
    EXPECT_EQ(0, cpu.deserializePlatformMetadata(in));
    EXPECT_EQ(6, cpu.getFamily());

    CXHMetadata chipset;
    readPlatformExample("chipset", chipset);
    EXPECT_EQ((Registers{{"LPM_ENABLE", 0xff}}), chipset.getLPMConfigurations());
    EXPECT_EQ((Registers{{"ENERGY_REPORT_UNIT", 0x3d}}), chipset.getEnergyReportingConfiguration());
    EXPECT_EQ(CXHMetadata::RegisterEntry(0x9999, 1), chipset.getRegisterEntries().at(2));
}

/// Reads a cut or changed platform object over one that holds something.
template <class Platform> bool isPlatform(const Bytes& bytes) {
    Platform platform;
    Serializer in(bytes);
    return platform.deserializePlatformMetadata(in) == 0;
}

TEST(RecordStreamTest, platformObjectsFailWithoutAnyOfTheirBytes) {
    EXPECT_EQ((Fates{{0, "no "}, {example("platform").size(), "ok "}}),
              fates(example("platform"), isPlatform<PlatformMetadata>));
    EXPECT_EQ((Fates{{0, "no "}, {example("chipset").size(), "ok "}}),
              fates(example("chipset"), isPlatform<CXHMetadata>));
    const std::size_t end = example("processor").size();
    const auto noChange = [](const char* item) {
        return std::string("no WARNING: couldn't extract ") + item + " for topology change!\n";
    };
    EXPECT_EQ((Fates{{0, "no "},
                     {end - 22, noChange("timestamp")},
                     {end - 14, noChange("type")},
                     {end - 10, noChange("cpu id")},
                     {end - 8, noChange("core id")},
                     {end - 6, noChange("pkg id")},
                     {end - 4, noChange("module id")},
                     {end, "ok "}}),
              fates(example("processor"), isPlatform<CPUMetadata>));
    Bytes brokenTree = example("processor");
    brokenTree[13 + 6 + 24 + 2 + 4] = 4; // a thread where the package should be
    brokenTree.resize(brokenTree.size() + 100);
    EXPECT_FALSE(isPlatform<CPUMetadata>(brokenTree)) << "what follows is no mapping and no changes";
    for (const char* counts : {"00 00 00 00 ff ff", "00 00 00 00 00 00 ff ff ff ff 00 00"}) {
        EXPECT_FALSE(isPlatform<PlatformMetadata>(bytesOf(counts)));
    }
}

TEST(RecordStreamTest, readingReplacesWhatPlatformObjectsHold) {
    const auto expectReplaced = [](auto filled, const auto& fresh, const char* name) {
        Serializer examples(example(name));
        ASSERT_EQ(0, filled->deserializePlatformMetadata(examples));
        const Bytes bytes = written(fresh);
        Serializer in(bytes);
        EXPECT_EQ(0, filled->deserializePlatformMetadata(in)) << "a default object is sound: " << name;
        EXPECT_EQ(bytes, written(*filled)) << name;
    };
    expectReplaced(std::make_unique<PlatformMetadata>(), PlatformMetadata(), "platform");
    expectReplaced(std::make_unique<TAFMetadata>(), TAFMetadata(), "platform");
    expectReplaced(std::make_unique<CPUMetadata>(), CPUMetadata(), "processor");
    expectReplaced(std::make_unique<CXHMetadata>(), CXHMetadata(), "chipset");
}

TEST(RecordStreamTest, metadataValuesAreCountedIn32Bits) {
    PlatformMetadata platform;
    for (const char* name : {"c", "a", "b"}) {
        platform.addMetadataValue(name, "");
    }
    EXPECT_EQ(bytesOf("00 00  00 00  00 00  03 00 00 00  01 00 61 00 00  01 00 62 00 00  01 00 63 00 00"),
              written(platform));
}

} // namespace
