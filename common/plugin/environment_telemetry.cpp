#include "common/plugin/environment_registries.h"

namespace {

/// The value under a key, or a default one; never inserts.
template <typename Map, typename Key> typename Map::mapped_type valueOf(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type{} : found->second;
}

} // namespace

void PluginEnvironment::addLoadedTAF(const _tw_aggregator_info& info) {
    Registries& registries = registries_i();
    const pw_u32_t guid = info.guid; // a copy: in the packed record it may not be aligned for a reference
    registries.endpointsByGUID[guid].push_back(info);
    registries.loadedGUIDs.insert(guid);
    registries.guidByEndpointId[info.endpoint_id] = guid;
    registries.endpointById[info.endpoint_id] = info;
}

std::set<pw_u32_t> PluginEnvironment::getLoadedTAFGUIDs() const {
    return registries_i().loadedGUIDs;
}

std::vector<_tw_aggregator_info> PluginEnvironment::getLoadedTAFEndpoints(pw_u32_t guid) const {
    return valueOf(registries_i().endpointsByGUID, guid);
}

_tw_aggregator_info PluginEnvironment::getLoadedTAFEndpoint(pw_u16_t endpointId) const {
    return valueOf(registries_i().endpointById, endpointId);
}

pw_u16_t PluginEnvironment::getLoadedTAFCollectionType(pw_u32_t guid) const {
    const auto& endpoints = registries_i().endpointsByGUID;
    const auto found = endpoints.find(guid);
    return found == endpoints.end() ? pw_u16_t{0} : found->second.front().collection_type;
}

std::map<pw_u16_t, _tw_aggregator_info> PluginEnvironment::getLoadedAggrTelemInfo() const {
    return registries_i().endpointById;
}

void PluginEnvironment::addTAFPlatformGUID(const std::string& platform, pw_u32_t guid) {
    registries_i().platformGUIDs[platform].push_back(guid);
    registries_i().platformNameByGUID[guid] = platform;
}

std::vector<pw_u32_t> PluginEnvironment::getTAFPlatformGUIDs(const std::string& platform) const {
    const auto& platforms = registries_i().platformGUIDs;
    const auto found = platforms.find(platform);
    if (found != platforms.end() && !found->second.empty()) {
        return found->second;
    }
    // A generic name stands for its variants, and those may carry it in the middle of theirs.
    for (const auto& [name, guids] : platforms) {
        if (name.find(platform + "-") != std::string::npos) {
            return guids;
        }
    }
    return {};
}

pw_u32_t PluginEnvironment::getTAFPlatformGUID(pw_u16_t endpointId) const {
    return valueOf(registries_i().guidByEndpointId, endpointId);
}

pw_u32_t PluginEnvironment::getTAFPlatformGUID(const _tw_aggregator_info* info) {
    return info == nullptr ? 0 : info->guid;
}

std::string PluginEnvironment::getTAFPlatformName(pw_u32_t guid) {
    return registries_i().platformNameByGUID[guid];
}

void PluginEnvironment::setTAFEmulatedGUID(pw_u32_t guid, pw_u32_t emulatedGuid) {
    registries_i().emulatedGUIDs[guid] = emulatedGuid;
}

pw_u32_t PluginEnvironment::getTAFEmulatedGUID(pw_u32_t guid) const {
    return valueOf(registries_i().emulatedGUIDs, guid);
}

void PluginEnvironment::setDeprecatedTAFGUIDs(const std::string& name, const std::vector<pw_u32_t>& guids) {
    registries_i().deprecatedGUIDs[name] = guids;
}

std::vector<pw_u32_t> PluginEnvironment::getDeprecatedTAFGUIDs() const {
    std::vector<pw_u32_t> joined;
    for (const auto& [name, guids] : registries_i().deprecatedGUIDs) {
        joined.insert(joined.end(), guids.begin(), guids.end());
    }
    return joined;
}
