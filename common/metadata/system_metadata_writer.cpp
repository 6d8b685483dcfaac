#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/handled_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "common/plugin/logger.h"

#include <utility>
#include <vector>

namespace pwr {

namespace {

template <class Container> void writeCount(Serializer& out, const Container& container) {
    out.write(static_cast<stream::Count>(container.size()));
}

void writeClocks(Serializer& out, const SystemMetadata& system) {
    writeCount(out, system.clockSyncs);
    for (const TWClockSync& clock : system.clockSyncs) {
        out.write(clock.clockUUID, clock.clockName, clock.clockFrequency, clock.clockValue,
                  clock.defaultClockUUID, clock.defaultClockName, clock.defaultClockFrequency,
                  clock.defaultClockValue);
    }
}

void writeEndpoints(Serializer& out, const SystemMetadata& system) {
    writeCount(out, system.tafEndpoints);
    for (const auto& [endpoint, info] : system.tafEndpoints) {
        out.write(endpoint);
        out.write_to(&info, sizeof info);
    }
}

void writeDevices(Serializer& out, const SystemMetadata& system) {
    writeCount(out, system.pciDevices);
    for (const PCIDevice& device : system.pciDevices) {
        out.write(device.segment, device.bus, device.device, device.function, device.vendor, device.deviceId,
                  device.name);
    }
}

/// Whether an object is what a reader makes from its type; it would read the bytes of another wrongly.
bool fitsItsType(PlatformType type, const PlatformMetadata* object) {
    switch (type) {
    case PlatformType::GENERIC: return object != nullptr;
    case PlatformType::CPU: return dynamic_cast<const CPUMetadata*>(object) != nullptr;
    case PlatformType::CXH: return dynamic_cast<const CXHMetadata*>(object) != nullptr;
    }
    return false;
}

void writePlatformObjects(Serializer& out, const SystemMetadata& system) {
    std::vector<std::pair<PlatformType, const PlatformMetadata*>> objects;
    for (const auto& [type, object] : system.platformMetadata) {
        if (fitsItsType(type, object.get())) {
            objects.emplace_back(type, object.get());
        } else if (object != nullptr) {
            logWarning("WARNING: a platform object of another kind than its type %u is not saved!\n",
                       static_cast<unsigned>(type));
        }
    }
    writeCount(out, objects);
    for (const auto& [type, object] : objects) {
        out.write(static_cast<pw_u16_t>(type));
        if (type == PlatformType::GENERIC) {
            // Read back as the base class, whatever it is here.
            object->PlatformMetadata::serializePlatformMetadata(out);
        } else {
            object->serializePlatformMetadata(out);
        }
    }
}

} // namespace

void SystemMetadata::serialize_i(Serializer& out) const {
    // Readers of other versions expect these two, so they stay.
    constexpr pw_u8_t legacyByte = 0;
    constexpr stream::Count nativeModels = 0;

    setHandledVersion(appVersion);
    out.write(sidMap, legacyByte, legacyByte, legacyByte, appVersion, driverVersion, scuVersion);
    out.write(platformName, hostName, osName, osType, osVersion);
    out.write(twaClockFreq, startTSC, stopTSC, startTimeval, stopTimeval, pollingInterval, immediateMode);
    out.write(cmdLine, producedSamples, droppedSamples, lowOverheadMode, platformSpecifiers);
    out.write(hyperVEnabled, vsmEnabled, nativeModels, edramCapable, igfxId);
    out.write(driverBuildDate, programStartTimeval, programStopTimeval, appBuildDate, continuousQuantum);
    writeClocks(out, *this);
    out.write(hvciEnabled, nonNumericVersion, buildRef, packageType, vtioEnabled);
    writeEndpoints(out, *this);
    writeDevices(out, *this);
    writePlatformObjects(out, *this);
}

} // namespace pwr
