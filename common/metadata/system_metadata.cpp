#include "common/metadata/system_metadata.h"

#include "common/metadata/cpu_metadata.h"

namespace pwr {

SystemMetadata::SystemMetadata() : Metadata(__metadata_data_type::SYSTEM) {}

SystemMetadata::~SystemMetadata() = default;

SystemMetadata::SystemMetadata(SystemMetadata&&) noexcept = default;

SystemMetadata& SystemMetadata::operator=(SystemMetadata&&) noexcept = default;

void SystemMetadata::setPlatformMetadata(PlatformType type, PlatformMetadata* object) {
    if (object == nullptr) {
        platformMetadata.erase(type);
    } else if (auto& place = platformMetadata[type]; place.get() != object) {
        place.reset(object);
    }
}

PlatformMetadata* SystemMetadata::getPlatformMetadata(PlatformType type) {
    const auto found = platformMetadata.find(type);
    return found == platformMetadata.end() ? nullptr : found->second.get();
}

const PlatformMetadata* SystemMetadata::getPlatformMetadata(PlatformType type) const {
    const auto found = platformMetadata.find(type);
    return found == platformMetadata.end() ? nullptr : found->second.get();
}

CPUMetadata* SystemMetadata::getCPUMetadata() {
    return dynamic_cast<CPUMetadata*>(getPlatformMetadata(PlatformType::CPU));
}

const CPUMetadata* SystemMetadata::getCPUMetadata() const {
    return dynamic_cast<const CPUMetadata*>(getPlatformMetadata(PlatformType::CPU));
}

} // namespace pwr
