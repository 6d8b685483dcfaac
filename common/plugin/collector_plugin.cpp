#include "common/plugin/collector_plugin.h"

CollectorPlugin::CollectorPlugin(const std::string& name) : Plugin(name) {}

CollectorPlugin::~CollectorPlugin() = default;

int CollectorPlugin::declare(std::vector<std::unique_ptr<pwr::Metadata>>& /*declarations*/) {
    return 0;
}

int CollectorPlugin::drain(const pwr::MsgMetadata& /*message*/, std::uint64_t /*untilTick*/,
                           std::vector<CollectionData>& /*out*/) {
    return 0;
}

void CollectorPlugin::close(const pwr::MsgMetadata& /*message*/) {}

pwr::TWClockSource* CollectorPlugin::getClockSource() const {
    return nullptr;
}
