#include "common/plugin/collector_plugin.h"

#include "common/plugin/logger.h"

namespace {

int refuse(const Plugin& collector, const char* what) {
    pwr::logWarning("WARNING: collector %s offers no immediate %s!\n", collector.getName().c_str(), what);
    return -1;
}

} // namespace

CollectorPlugin::CollectorPlugin(const std::string& name) : Plugin(name) {}

CollectorPlugin::~CollectorPlugin() = default;

int CollectorPlugin::declare(std::vector<std::unique_ptr<pwr::Metadata>>& /*declarations*/) {
    return 0;
}

int CollectorPlugin::drain(const pwr::MsgMetadata& /*message*/, std::uint64_t /*untilTick*/,
                           std::vector<CollectionData>& /*out*/) {
    return 0;
}

bool CollectorPlugin::recordsByItself() const {
    return false;
}

void CollectorPlugin::close(const pwr::MsgMetadata& /*message*/) {}

std::vector<std::string> CollectorPlugin::takeNotes() {
    return {};
}

pwr::TWClockSource* CollectorPlugin::getClockSource() const {
    return nullptr;
}

int CollectorPlugin::doImmediateRead(pwr::Operation* /*operation*/, const std::string& /*argument*/) {
    return refuse(*this, "read");
}

int CollectorPlugin::doImmediateWrite(pwr::Operation* /*operation*/, const std::string& /*argument*/) {
    return refuse(*this, "write");
}

int CollectorPlugin::doImmediateRead(const pwr::InputMsg* /*message*/,
                                     const std::vector<std::pair<std::string, std::string>>& /*values*/) {
    return refuse(*this, "read");
}

int CollectorPlugin::doImmediateWrite(const pwr::InputMsg* /*message*/) {
    return refuse(*this, "write");
}

MessageAvailability CollectorPlugin::probe(const pwr::MsgMetadata& /*message*/) {
    return {};
}

MessageAvailability CollectorPlugin::probeWrite(const pwr::MsgMetadata& /*message*/) {
    return {};
}

std::vector<std::string> CollectorPlugin::getFiles(const pwr::MsgMetadata& /*message*/) const {
    return {};
}
