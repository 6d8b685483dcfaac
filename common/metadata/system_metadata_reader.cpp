#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/handled_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "common/metadata/system_metadata_text.h"
#include "common/model/data_handle_provider.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"

#include <cmath>
#include <memory>
#include <utility>

namespace pwr {

namespace {

/// From this version on the processor is described by a platform object at the end of the record; before,
/// its facts are scattered over the record.
constexpr pw_u32_t c_platformObjectsSince = packSavedVersion(2025, 3, 1);

static_assert(c_platformObjectsSince == 132711169);

std::unique_ptr<PlatformMetadata> makePlatformObject(pw_u16_t type) {
    switch (static_cast<PlatformType>(type)) {
    case PlatformType::GENERIC: return std::make_unique<PlatformMetadata>();
    case PlatformType::CPU: return std::make_unique<CPUMetadata>();
    case PlatformType::CXH: return std::make_unique<CXHMetadata>();
    }
    return nullptr;
}

bool isFrequency(float megahertz) {
    return std::isfinite(megahertz) && megahertz > 0.0F;
}

/// Reads one system record, step by step along the table of its items.
class SystemRecordReader {
public:
    SystemRecordReader(Serializer& in, SystemMetadata& system) : m_in(in), m_system(system) {}

    int read();

private:
    using Step = bool (SystemRecordReader::*)();

    /// How an item is read (false: it is not there) and what is said of a miss, which either fails the
    /// record or ends the items that only newer collections have. Some items went with version 2025.3.1.
    struct Item {
        Step read;
        const char* warning;
        bool isNeeded;
        bool isOnlyInOld;
    };
    static constexpr Item needed_i(Step read, const char* warning) { return {read, warning, true, false}; }
    static constexpr Item neededInOld_i(Step read, const char* warning) {
        return {read, warning, true, true};
    }
    static constexpr Item optional_i(Step read, const char* warning) { return {read, warning, false, false}; }
    static constexpr Item optionalInOld_i(Step read, const char* warning) {
        return {read, warning, false, true};
    }
    static const Item c_items[];

    // A field in its plain form; a text must not be empty then.
    template <auto Field> bool value_i() { return m_in.read(m_system.*Field) != 0; }
    template <auto Field> bool oldCpuValue_i() { return m_in.read((*m_oldCpu).*Field) != 0; }
    template <auto Field> bool text_i() { return m_in.read_text(m_system.*Field); }

    bool element_i(std::pair<std::string, std::string>& specifier);
    bool element_i(TWClockSync& clock);
    bool element_i(PCIDevice& device);
    template <class Container> bool sequence_i(Container& target);

    bool legacyBytes_i();
    bool appVersion_i();
    bool oldTopology_i();
    bool times_i();
    bool cmdLine_i();
    bool platformSpecifiers_i() { return sequence_i(m_system.platformSpecifiers); }
    bool oldTopologyChanges_i();
    bool nativeModels_i();
    bool programTimes_i();
    bool clockSyncs_i() { return sequence_i(m_system.clockSyncs); }
    bool endpointCount_i() { return m_in.read(m_endpointCount) != 0; }
    bool endpoints_i();
    bool pciDevices_i() { return sequence_i(m_system.pciDevices); }

    bool platformObject_i();
    int platformObjects_i(bool isFound);
    void adoptOldCpu_i();

    Serializer& m_in;
    SystemMetadata& m_system;
    std::unique_ptr<CPUMetadata> m_oldCpu = std::make_unique<CPUMetadata>();
    bool m_hasPlatformObjects = true;
    stream::Count m_endpointCount = 0;
};

using Fields = SystemMetadata;
using Reader = SystemRecordReader;

// The record in its order. The quoted texts are what users of old collections know.
const SystemRecordReader::Item SystemRecordReader::c_items[] = {
    needed_i(&Reader::value_i<&Fields::sidMap>, "WARNING: couldn't extract the clocks of the streams!\n"),
    needed_i(&Reader::legacyBytes_i, nullptr),
    needed_i(&Reader::appVersion_i, "WARNING: couldn't extract the app version!\n"),
    needed_i(&Reader::value_i<&Fields::driverVersion>, "WARNING: couldn't extract the driver version!\n"),
    needed_i(&Reader::value_i<&Fields::scuVersion>, "WARNING: couldn't extract the SCU version!\n"),
    needed_i(&Reader::value_i<&Fields::platformName>, "WARNING: couldn't extract the platform name!\n"),
    needed_i(&Reader::value_i<&Fields::hostName>, "WARNING: couldn't extract the host name!\n"),
    needed_i(&Reader::value_i<&Fields::osName>, "WARNING: couldn't extract the OS name!\n"),
    needed_i(&Reader::value_i<&Fields::osType>, "WARNING: couldn't extract the OS type!\n"),
    needed_i(&Reader::value_i<&Fields::osVersion>, "WARNING: couldn't extract the OS version!\n"),
    neededInOld_i(&Reader::oldTopology_i, "WARNING: couldn't extract the CPU topology!\n"),
    neededInOld_i(&Reader::oldCpuValue_i<&CPUMetadata::busFreq>,
                  "WARNING: couldn't extract the bus frequency!\n"),
    needed_i(&Reader::value_i<&Fields::twaClockFreq>, "WARNING: couldn't extract the clock frequency!\n"),
    neededInOld_i(&Reader::oldCpuValue_i<&CPUMetadata::lfmFreq>,
                  "WARNING: couldn't extract the LFM frequency!\n"),
    neededInOld_i(&Reader::oldCpuValue_i<&CPUMetadata::hfmFreq>,
                  "WARNING: couldn't extract the HFM frequency!\n"),
    neededInOld_i(&Reader::oldCpuValue_i<&CPUMetadata::baseOpFreq>,
                  "WARNING: couldn't extract the base operating frequency!\n"),
    needed_i(&Reader::times_i, "WARNING: couldn't extract begin and end of the collection!\n"),
    needed_i(&Reader::value_i<&Fields::pollingInterval>, "WARNING: couldn't extract the polling interval!\n"),
    needed_i(&Reader::value_i<&Fields::immediateMode>, "WARNING: couldn't extract the immediate mode!\n"),
    needed_i(&Reader::cmdLine_i, "WARNING: couldn't extract the command line!\n"),
    optional_i(&Reader::value_i<&Fields::producedSamples>,
               "WARNING: couldn't extract # produced samples -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::droppedSamples>,
               "WARNING: couldn't extract # dropped samples -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::lowOverheadMode>,
               "WARNING: couldn't extract low overhead mode information -- older file?!\n"),
    optional_i(&Reader::platformSpecifiers_i,
               "WARNING: couldn't extract platform specifiers -- older file?!\n"),
    optionalInOld_i(&Reader::oldTopologyChanges_i,
                    "WARNING: couldn't extract topology changes -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::hyperVEnabled>,
               "WARNING: couldn't extract HyperV enable information -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::vsmEnabled>,
               "WARNING: couldn't extract VSM enable information -- older file?!\n"),
    optional_i(&Reader::nativeModels_i, "WARNING: couldn't extract cpu native model IDs -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::edramCapable>,
               "WARNING: couldn't extract Edram Cap information -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::igfxId>,
               "WARNING: couldn't extract iGfx Id information -- older file?!\n"),
    optional_i(&Reader::text_i<&Fields::driverBuildDate>,
               "WARNING: couldn't extract driver build date information -- older file?!\n"),
    optional_i(&Reader::programTimes_i,
               "WARNING: couldn't extract program start/stop timeval -- older file?!\n"),
    optional_i(&Reader::text_i<&Fields::appBuildDate>,
               "WARNING: couldn't extract .exe build date information -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::continuousQuantum>,
               "WARNING: couldn't extract continuous collection quantum information -- older file?!\n"),
    optional_i(&Reader::clockSyncs_i, "WARNING: couldn't extract clock sync info -- older file?!\n"),
    optional_i(
        &Reader::value_i<&Fields::hvciEnabled>,
        "WARNING: couldn't extract Hypervisor Enforced Code Integrity enable information -- older file?!\n"),
    optional_i(&Reader::text_i<&Fields::nonNumericVersion>,
               "WARNING: couldn't extract non-numeric version number -- older file?!\n"),
    optional_i(&Reader::text_i<&Fields::buildRef>,
               "WARNING: couldn't extract build ref information -- older file?!\n"),
    optional_i(&Reader::text_i<&Fields::packageType>,
               "WARNING: couldn't extract package type information -- older file?!\n"),
    optional_i(&Reader::value_i<&Fields::vtioEnabled>,
               "WARNING: couldn't extract VTIO information -- older file?!\n"),
    optional_i(&Reader::endpointCount_i,
               "WARNING: couldn't extract number of TAF endpoints -- older file?!\n"),
    needed_i(&Reader::endpoints_i, "WARNING: couldn't obtain TAF endpoint information!\n"),
    optional_i(&Reader::pciDevices_i, nullptr),
};

int SystemRecordReader::read() {
    bool isWhole = true;
    for (const Item& item : c_items) {
        if ((item.isOnlyInOld && m_hasPlatformObjects) || (this->*item.read)()) {
            continue;
        }
        if (item.warning != nullptr) {
            logWarning("%s", item.warning);
        }
        if (item.isNeeded) {
            return -1;
        }
        isWhole = false;
        break;
    }
    if (!m_hasPlatformObjects) {
        adoptOldCpu_i();
        return 0;
    }
    // Behind an item that is not there the position means nothing.
    return platformObjects_i(isWhole);
}

// What an element of a list looks like. Its texts may be empty.

bool SystemRecordReader::element_i(std::pair<std::string, std::string>& specifier) {
    return m_in.read_text(specifier.first) && m_in.read_text(specifier.second);
}

bool SystemRecordReader::element_i(TWClockSync& clock) {
    return m_in.read_text(clock.clockUUID) && m_in.read_text(clock.clockName) &&
           m_in.read(clock.clockFrequency) != 0 && m_in.read(clock.clockValue) != 0 &&
           m_in.read_text(clock.defaultClockUUID) && m_in.read_text(clock.defaultClockName) &&
           m_in.read(clock.defaultClockFrequency) != 0 && m_in.read(clock.defaultClockValue) != 0;
}

bool SystemRecordReader::element_i(PCIDevice& device) {
    return m_in.read(device.segment) != 0 && m_in.read(device.bus) != 0 && m_in.read(device.device) != 0 &&
           m_in.read(device.function) != 0 && m_in.read(device.vendor) != 0 &&
           m_in.read(device.deviceId) != 0 && m_in.read_text(device.name);
}

/// A list as a whole; on a miss the target stays as it is.
template <class Container> bool SystemRecordReader::sequence_i(Container& target) {
    stream::Count count = 0;
    if (m_in.read(count) == 0) {
        return false;
    }
    Container read;
    for (; count > 0; --count) {
        typename Container::value_type element{};
        if (!element_i(element)) {
            return false;
        }
        read.push_back(std::move(element));
    }
    target = std::move(read);
    return true;
}

bool SystemRecordReader::legacyBytes_i() {
    pw_u8_t family = 0;
    pw_u8_t model = 0;
    pw_u8_t stepping = 0;
    m_in.read(family);
    m_in.read(model);
    m_in.read(stepping);
    m_oldCpu->setFMS(family, model, stepping);
    return true;
}

bool SystemRecordReader::appVersion_i() {
    if (!value_i<&SystemMetadata::appVersion>()) {
        return false;
    }
    setHandledVersion(m_system.appVersion);
    m_hasPlatformObjects = m_system.appVersion >= c_platformObjectsSince;
    return true;
}

bool SystemRecordReader::oldTopology_i() {
    return m_oldCpu->getCPUTopology().deserializeTreeDeprecated(m_in) == 0;
}

bool SystemRecordReader::times_i() {
    return value_i<&SystemMetadata::startTSC>() && value_i<&SystemMetadata::stopTSC>() &&
           value_i<&SystemMetadata::startTimeval>() && value_i<&SystemMetadata::stopTimeval>();
}

bool SystemRecordReader::cmdLine_i() {
    if (!value_i<&SystemMetadata::cmdLine>()) {
        return false;
    }
    if (isLogEnabled(PWLogLevel::INFO)) {
        logMessage(PWLogLevel::INFO, "OK: read command line: %s\n",
                   system_text::joined(m_system.cmdLine, " ").c_str());
    }
    return true;
}

bool SystemRecordReader::oldTopologyChanges_i() {
    stream::Count count = 0;
    if (m_in.read(count) == 0) {
        return false;
    }
    for (; count > 0; --count) {
        TopologyChange change;
        if (change.deserialize(m_in) != 0) {
            return false;
        }
        m_oldCpu->addTopologyChange(change);
    }
    return true;
}

/// Only the count's place is left; entries would have a form that nobody knows.
bool SystemRecordReader::nativeModels_i() {
    stream::Count count = 0;
    return m_in.read(count) != 0 && count == 0;
}

bool SystemRecordReader::programTimes_i() {
    return value_i<&SystemMetadata::programStartTimeval>() && value_i<&SystemMetadata::programStopTimeval>();
}

bool SystemRecordReader::endpoints_i() {
    for (; m_endpointCount > 0; --m_endpointCount) {
        pw_u16_t endpoint = 0;
        _tw_aggregator_info info{};
        if (m_in.read(endpoint) == 0 || m_in.read_from(&info, sizeof info) == 0) {
            return false;
        }
        m_system.tafEndpoints.insert_or_assign(endpoint, info);
    }
    return true;
}

bool SystemRecordReader::platformObject_i() {
    pw_u16_t type = 0;
    if (m_in.read(type) == 0) {
        logWarning("WARNING: couldn't obtain platform metadata type!\n");
        return false;
    }
    std::unique_ptr<PlatformMetadata> object = makePlatformObject(type);
    if (object == nullptr) {
        logWarning("WARNING: platform metadata of the unknown type %u!\n", static_cast<unsigned>(type));
        return false;
    }
    if (object->deserializePlatformMetadata(m_in) != 0) {
        logWarning("WARNING: couldn't obtain platform metadata of type %u!\n", static_cast<unsigned>(type));
        return false;
    }
    m_system.setPlatformMetadata(static_cast<PlatformType>(type), object.release());
    return true;
}

int SystemRecordReader::platformObjects_i(bool isFound) {
    stream::Count count = 0;
    if (!isFound || m_in.read(count) == 0) {
        logWarning("WARNING: couldn't obtain the number of platform metadata structures!\n");
        return -1;
    }
    for (; count > 0; --count) {
        if (!platformObject_i()) {
            return -1;
        }
    }
    return 0;
}

/// Newer collections come with a host that knows the clocks; for these the record is all there is.
void SystemRecordReader::adoptOldCpu_i() {
    const float clock = m_system.twaClockFreq;
    if (isFrequency(clock)) {
        const float bus = m_oldCpu->busFreq;
        g_pluginEnvironment->setDefaultClockToTSCRatio(clock, isFrequency(bus) ? bus : clock);
    }
    m_system.setPlatformMetadata(PlatformType::CPU, m_oldCpu.release());
}

} // namespace

int SystemMetadata::deserialize_i(Serializer& in, unsigned) {
    *this = SystemMetadata();
    if (SystemRecordReader(in, *this).read() != 0) {
        return -1;
    }
    // Warns by itself when the record has no sound processor part; the record is read all the same.
    DataHandleProvider::resetTopology(*this);
    return 0;
}

bool SystemMetadata::survivesSaving() const {
    Serializer saved(0);
    serialize_i(saved);
    const std::vector<char>& bytes = saved.get_buffer();
    Serializer in(bytes);
    SystemMetadata copy;
    if (SystemRecordReader(in, copy).read() != 0) {
        return false;
    }
    Serializer again(bytes.size());
    copy.serialize_i(again);
    return again.get_buffer() == bytes;
}

} // namespace pwr
