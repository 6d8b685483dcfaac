// The first byte chooses a kind of record, the others are its stream. Whatever could be read must be
// written and read again as the same bytes.

#include "common/metadata/collector_metadata.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/handled_version.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "fuzz/seed_writer.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace {

using namespace pwr;
using Bytes = std::vector<char>;

constexpr pw_u32_t c_firstVersionWithValues = packSavedVersion(2024, 3, 0);

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

Bytes written(const Metadata& record) {
    Serializer out(0);
    record.serialize(out);
    return out.get_buffer();
}

std::unique_ptr<Metadata> read(const Bytes& bytes) {
    Serializer in(bytes);
    return std::unique_ptr<Metadata>(Metadata::deserialize(in, 0));
}

void print(const Metadata& record) {
    std::ostringstream out;
    switch (record.getType()) {
    case Metadata::__metadata_data_type::SYSTEM: out << dynamic_cast<const SystemMetadata&>(record); break;
    case Metadata::__metadata_data_type::MSG: out << dynamic_cast<const MsgMetadata&>(record); break;
    case Metadata::__metadata_data_type::METRIC: out << dynamic_cast<const MetricMetadata&>(record); break;
    case Metadata::__metadata_data_type::COLLECTOR:
        out << dynamic_cast<const CollectorMetadata&>(record);
        break;
    case Metadata::__metadata_data_type::OPERATION:
        out << dynamic_cast<const OperationMetadata&>(record);
        break;
    }
}

/// A record with its kind in front, from a file of some version.
void tryFramed(const Bytes& bytes, pw_u32_t version) {
    setHandledVersion(version);
    const std::unique_ptr<Metadata> record = read(bytes);
    if (record == nullptr) {
        return;
    }
    // What is written has the form of the current version, whatever it was read from.
    setHandledVersion(c_currentSavedVersion);
    if (auto* const system = dynamic_cast<SystemMetadata*>(record.get())) {
        system->appVersion = c_currentSavedVersion;
    }
    print(*record);
    const Bytes once = written(*record);
    const std::unique_ptr<Metadata> again = read(once);
    require(again != nullptr && again->getType() == record->getType());
    require(once == written(*again));
}

Bytes written(const PlatformMetadata& platform) {
    Serializer out(0);
    platform.serializePlatformMetadata(out);
    return out.get_buffer();
}

/// Also into an object that holds something already, of which nothing may stay.
template <class Platform> void tryPlatform(const Bytes& bytes) {
    Platform platform;
    Serializer in(bytes);
    const bool sound = platform.deserializePlatformMetadata(in) == 0;
    const Bytes once = written(platform);
    if (sound) {
        Serializer again(once);
        require(platform.deserializePlatformMetadata(again) == 0);
        require(once == written(platform));
    }
}

void tryChange(const Bytes& bytes) {
    TopologyChange change;
    Serializer in(bytes);
    if (change.deserialize(in) == 0) {
        Serializer out(0);
        change.serialize(out);
        require(out.get_buffer() == Bytes(bytes.begin(), bytes.begin() + 22));
    }
}

void fillCpu(CPUMetadata& cpu) {
    cpu.setDisplayName("a processor");
    cpu.addSpecifierValue("6.85");
    cpu.addMetadataValue("brand", "none");
    cpu.buildTopology("0 0 0 7 1 -1 1 0 0 7 1 -1 0 1 1 8 -1 3", 0);
    cpu.buildHWQFeedbackMapping("0 1 2 3");
    cpu.addTopologyChange(TopologyChange({1000, 1, 1, 0, 0}, 0));
}

void writeSeeds(const SeedWriter& seeds) {
    const OperationMetadata operation("busy", "TEXT-FILE", 8, "TAG",
                                      {{"PATH", "/proc/stat"}, {"FIELD", "cpu"}});
    MsgMetadata message(1, 2, 3, "cpu-load", "TIME");
    message.addCapGroup("cpu");
    message.addTrigger("POLL");
    message.addTracepointName("switch");
    message.addMetaValue(operation);
    message.addMetaValue(CONSTANTOperationMetadata("K", {{"SOURCE", "COUNTER"}}));
    SystemMetadata system;
    system.platformName = system.hostName = system.osName = system.osType = system.osVersion = "name";
    system.sidMap = {{1, "uuid"}};
    system.cmdLine = {"-f", "cpu"};
    system.platformSpecifiers = {{"FMS", "6.85"}};
    system.tafEndpoints[3] = {1, 2, 3, 4, 5, 6};
    system.pciDevices.push_back({0, 1, 2, 3, 4, 5, "device"});
    auto cpu = std::make_unique<CPUMetadata>();
    fillCpu(*cpu);
    CXHMetadata chipset;
    chipset.addRegisterEntry(0x100, 1);
    Serializer change(0);
    cpu->getTopologyChanges().front().serialize(change);

    seeds.write("operation", 0, written(operation));
    seeds.write("message", 0, written(message));
    seeds.write("metric", 0, written(MetricMetadata(1, 2, {{"NAME", "time"}})));
    seeds.write("collector", 0, written(CollectorMetadata("files", {{"VERSION", "1"}})));
    seeds.write("platform", 2, written(PlatformMetadata("BOARD")));
    seeds.write("processor", 3, written(*cpu));
    seeds.write("chipset", 4, written(chipset));
    seeds.write("change", 5, change.get_buffer());
    system.setPlatformMetadata(PlatformType::CPU, cpu.release());
    seeds.write("system", 0, written(system));
    seeds.write("old_message", 1, written(MsgMetadata(1, 2, 3, "cap", "name")));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    if (const char* const folder = SeedWriter::folderOf(*argc, *argv)) {
        writeSeeds(SeedWriter(folder));
        std::exit(0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const Bytes bytes(data + 1, data + size);
    switch (data[0] % 6) {
    case 0: tryFramed(bytes, c_currentSavedVersion); break;
    case 1: tryFramed(bytes, c_firstVersionWithValues - 1); break;
    case 2: tryPlatform<PlatformMetadata>(bytes); break;
    case 3: tryPlatform<CPUMetadata>(bytes); break;
    case 4: tryPlatform<CXHMetadata>(bytes); break;
    default: tryChange(bytes); break;
    }
    return 0;
}
