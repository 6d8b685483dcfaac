#include "common/metadata/collector_metadata.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/handled_version.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/taf_metadata.h"
#include "tests/support/log_capture.h"
#include "tests/support/record_page.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

using namespace pwr;
using Bytes = std::vector<char>;
using Registers = std::map<std::string, pw_u32_t>;

std::unique_ptr<Metadata> read(const Bytes& bytes) {
    Serializer in(bytes);
    return std::unique_ptr<Metadata>(Metadata::deserialize(in, 0));
}

/// A record from the page, which must be written as it stands there, and must look as told.
template <class Record>
std::unique_ptr<Metadata> readExample(const std::string& name, const std::string& expectedText) {
    const Bytes bytes = recordExample(name);
    std::unique_ptr<Metadata> record = read(bytes);
    if (dynamic_cast<const Record*>(record.get()) == nullptr) {
        ADD_FAILURE() << name;
        return std::make_unique<Record>();
    }
    Serializer out(0);
    record->serialize(out);
    EXPECT_EQ(bytes, out.get_buffer()) << name;
    std::ostringstream text;
    text << std::hex << dynamic_cast<const Record&>(*record);
    EXPECT_EQ(expectedText, text.str());
    return record;
}

bool isRecord(const Bytes& bytes) {
    return read(bytes) != nullptr;
}

/// What becomes of an example when it is cut, and from which length on: ok or not, and what is logged; of the usual
/// warning only the item.
std::string fates(const std::string& name, const std::function<bool(const Bytes&)>& isSound = isRecord) {
    const std::string before = "WARNING: ERROR reading ";
    const std::string after = " while deserializing " + name + " metadata message!\n";
    const Bytes bytes = recordExample(name);
    std::string all;
    std::string last;
    LogCapture log;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        std::string fate = isSound(cutTo(bytes, size)) ? "ok" : "no";
        std::string logged = log.take();
        if (logged.starts_with(before) && logged.ends_with(after)) {
            logged = logged.substr(before.size(), logged.size() - before.size() - after.size());
        }
        fate += (logged.empty() ? "" : " ") + logged;
        if (fate != last) {
            all += std::to_string(size) + " " + fate + "; ";
            last = fate;
        }
    }
    return all;
}

/// An example that nothing but all of it is sound, and nothing logged.
std::string allOrNothing(const std::string& name) {
    return "0 no; " + std::to_string(recordExample(name).size()) + " ok; ";
}

TEST(RecordStreamTest, operationsAreAsThePageSays) {
    const auto record = readExample<OperationMetadata>(
        "operation", "Operation Meta: Name = busy, Operation = TEXT-FILE, Size = 8, Org msg tag = CPU\n");
    EXPECT_EQ((OperationMetadata::ValueList{{"PATH", "/proc/stat"}, {"FIELD", "cpu 1"}}),
              dynamic_cast<const OperationMetadata&>(*record).getValues());
    const std::string noValues = " ok WARNING: Unable to read values size from operation metadata!\n; ";
    EXPECT_EQ("0 no; 25" + noValues + "26 no key; 27 no org msg tag; 30" + noValues +
                  "31 no key; 37 no value; 49 no key; 56 no value; 63 ok; ",
              fates("operation"))
        << "whole behind the size and behind the tag";
}

TEST(RecordStreamTest, messagesAreAsThePageSays) {
    const auto record = readExample<MsgMetadata>(
        "message", "Msg Metadata Plugin ID: 1\nMsg Metadata Metric ID: 2\nMsg Metadata MSG ID: 3\n"
                   "Msg Metadata Switch name: cpu-load\nMsg Metadata group names: \tcpu, load\n"
                   "Msg Metadata Msg name: CPU-TIME\nK = CONSTANT\nMsg Metadata triggers: END, POLL\n");
    const auto& message = dynamic_cast<const MsgMetadata&>(*record);
    ASSERT_EQ(1U, message.getMetaValues().size());
    EXPECT_EQ((OperationMetadata::ValueList{{"SOURCE", "COUNTER"}}), message.getMetaValues()[0]->getValues());
    const std::string cut = fates("message");
    EXPECT_TRUE(cut.starts_with("0 no; ")) << "a message's own misses are silent";
    EXPECT_EQ(std::to_string(recordExample("message").size()) + " ok; ", cut.substr(cut.find(" ok") - 3));
}

TEST(RecordStreamTest, metricsAndCollectorsAreAsThePageSays) {
    readExample<MetricMetadata>("metric", "Metric Metadata plugin ID: 1\nMetric Metadata metric ID: 2\n"
                                          "\tMetric Metadata payload[0]: key = NAME, value = CPU time\n"
                                          "\tMetric Metadata payload[1]: key = TYPE, value = SampledDelta\n");
    EXPECT_EQ("0 no; 4 no plugin ID; 8 no metric ID; 12 no map size; 14 no key; 20 no value; 30 no key; "
              "36 no value; 50 ok; ",
              fates("metric"));
    readExample<CollectorMetadata>("collector",
                                   "Collector Meta: Name = text_files\n"
                                   "\tCollector Metadata payload[0]: key = VERSION, value = 1.2\n");
    EXPECT_EQ("0 no; 4 no name; 16 no map size; 18 no key; 27 no value; 32 ok; ", fates("collector"));
}

TEST(RecordStreamTest, theVersionDecidesWhereAnOperationEnds) {
    EXPECT_EQ(c_currentSavedVersion, getHandledVersion()) << "before any file";
    const Bytes message = recordExample("message");
    std::string old(message.begin(), message.end());
    old.erase(old.find(std::string("\x01\x06\0SOURCE", 9)), 1 + 8 + 9);
    struct Case {
        pw_u32_t version;
        bool hasValues;
    };
    for (const Case& c : {Case{0, false}, Case{0x7E802FF, false}, Case{0x7E80300, true},
                          Case{packSavedVersion(2024, 10, 0), true}}) {
        setHandledVersion(c.version);
        const auto operation = read(recordExample("operation"));
        EXPECT_EQ(c.hasValues, !dynamic_cast<const OperationMetadata&>(*operation).getValues().empty());
        EXPECT_EQ(c.hasValues, isRecord(message)) << c.version;
        EXPECT_EQ(!c.hasValues, isRecord(Bytes(old.begin(), old.end()))) << c.version;
    }
    setHandledVersion(c_currentSavedVersion);
}

TEST(RecordStreamTest, refusesWhatIsNoRecordOrDoesNotBelongThere) {
    for (const char type : {'\0', '\6', '\xFF'}) {
        Bytes unknown = recordExample("operation");
        unknown[0] = type;
        EXPECT_FALSE(isRecord(unknown));
    }
    const Bytes message = recordExample("message");
    const auto operation = std::string(message.begin(), message.end()).find(std::string("\5\0\0\0\1\0K", 7));
    Bytes changed = message;
    changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(operation), message.begin(), message.end());
    EXPECT_FALSE(isRecord(changed)) << "a message among the operations";
    changed = message;
    changed[operation - 1] = '\xFF';
    EXPECT_FALSE(isRecord(changed)) << "more operations than there are";
}

TEST(RecordStreamTest, anOperationsCountHasOneByte) {
    Serializer out(0);
    OperationMetadata("n", "o", 0, "", OperationMetadata::ValueList(300, {"k", "v"})).serialize(out);
    const Bytes bytes = out.get_buffer();
    constexpr std::size_t c_start = 4 + 3 + 3 + 4 + 2;
    EXPECT_EQ(44, bytes[c_start]);
    EXPECT_EQ(c_start + 1 + std::size_t{300} * 6, bytes.size());
    EXPECT_EQ(44U, dynamic_cast<const OperationMetadata&>(*read(bytes)).getValues().size());
}

Bytes written(const PlatformMetadata& platform) {
    Serializer out(0);
    platform.serializePlatformMetadata(out);
    return out.get_buffer();
}

template <class Platform> bool isPlatform(const Bytes& bytes) {
    Platform platform;
    Serializer in(bytes);
    return platform.deserializePlatformMetadata(in) == 0;
}

/// Reads an example that must be written as it stands there; then a default one, which leaves nothing of it.
template <class Platform>
void expectAsThePageSays(const std::string& name, const std::function<void(const Platform&)>& expectFields) {
    Platform platform;
    Serializer in(recordExample(name));
    EXPECT_EQ(0, platform.deserializePlatformMetadata(in)) << name;
    EXPECT_EQ(recordExample(name), written(platform)) << name;
    expectFields(platform);
    const Bytes fresh = written(Platform());
    Serializer again(fresh);
    EXPECT_EQ(0, platform.deserializePlatformMetadata(again)) << name;
    EXPECT_EQ(fresh, written(platform)) << name;
}

TEST(RecordStreamTest, platformsAndChipsetsAreAsThePageSays) {
    const auto expectBoard = [](const PlatformMetadata& platform) {
        EXPECT_EQ("BOARD Test board", platform.getSpecifierType() + " " + platform.getDisplayName());
        EXPECT_EQ((std::vector<std::string>{"rev-b", ""}), platform.getSpecifierValues());
        EXPECT_EQ("1.07", platform.getMetadataValue("bios"));
    };
    expectAsThePageSays<PlatformMetadata>("platform", expectBoard);
    expectAsThePageSays<TAFMetadata>("platform", expectBoard);
    expectAsThePageSays<CXHMetadata>("chipset", [](const CXHMetadata& chipset) {
        EXPECT_EQ((Registers{{"LPM_ENABLE", 0xff}}), chipset.getLPMConfigurations());
        EXPECT_EQ((Registers{{"ENERGY_REPORT_UNIT", 0x3d}}), chipset.getEnergyReportingConfiguration());
        EXPECT_EQ(CXHMetadata::RegisterEntry(0x9999, 1), chipset.getRegisterEntries().at(2));
    });
    EXPECT_EQ(allOrNothing("platform"), fates("platform", isPlatform<PlatformMetadata>));
    EXPECT_EQ(allOrNothing("chipset"), fates("chipset", isPlatform<CXHMetadata>));
    EXPECT_FALSE(isPlatform<PlatformMetadata>({0, 0, 0, 0, 0, 0, -1, -1, -1, -1, 0, 0}));
    PlatformMetadata three;
    for (const char* name : {"c", "a", "b"}) {
        three.addMetadataValue(name, "");
    }
    EXPECT_EQ((Bytes{0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 1, 0, 'a', 0, 0, 1, 0, 'b', 0, 0, 1, 0, 'c', 0, 0}),
              written(three));
}

TEST(RecordStreamTest, processorsAreAsThePageSays) {
    expectAsThePageSays<CPUMetadata>("processor", [](const CPUMetadata& cpu) {
        EXPECT_EQ((std::array{6, 85, 4}),
                  (std::array<int, 3>{cpu.getFamily(), cpu.getModel(), cpu.getStepping()}));
        EXPECT_EQ((std::array{100.0F, 800.0F, 2400.0F, 2200.0F}),
                  (std::array{cpu.busFreq, cpu.lfmFreq, cpu.hfmFreq, cpu.baseOpFreq}));
        EXPECT_EQ((std::array{7U, 0x2b000181U}), (std::array{cpu.platformId, cpu.microcodeRevision}));
        EXPECT_EQ(1U, cpu.getCPUTopology().getNumPackages());
        EXPECT_EQ((TopTree::HWQMapping{{0, 3}, {1, 4}}), cpu.getCPUTopology().getHWQMapping());
        ASSERT_EQ(1U, cpu.getTopologyChanges().size());
        EXPECT_EQ("OFFLINE", cpu.getTopologyChanges()[0].getActionName());
    });
    const std::size_t end = recordExample("processor").size();
    std::string cut = "0 no; ";
    for (const auto& [left, item] : std::map<std::size_t, std::string, std::greater<>>{{22, "timestamp"},
                                                                                       {14, "type"},
                                                                                       {10, "cpu id"},
                                                                                       {8, "core id"},
                                                                                       {6, "pkg id"},
                                                                                       {4, "module id"}}) {
        cut += std::to_string(end - left) + " no WARNING: couldn't extract " + item +
               " for topology change!\n; ";
    }
    EXPECT_EQ(cut + std::to_string(end) + " ok; ", fates("processor", isPlatform<CPUMetadata>));

    constexpr std::size_t c_base = 13;
    Bytes changed = recordExample("processor");
    changed[c_base + 1] = '\x66'; // high byte of the family
    CPUMetadata cpu;
    Serializer in(changed);
    EXPECT_EQ(0, cpu.deserializePlatformMetadata(in));
    EXPECT_EQ(6, cpu.getFamily());
    changed[c_base + 6 + 24 + 2 + 4] = 4; // a thread where the package should be
    changed.resize(changed.size() + 100);
    EXPECT_FALSE(isPlatform<CPUMetadata>(changed)) << "what follows is no mapping and no changes";
}

} // namespace
