#pragma once

#include "common/plugin/plugin_environment.h"

/// The parts of the environment that hold memory. Private to the environment's own sources.
struct PluginEnvironment::Registries {
    std::set<std::string> metricSwitches;
    std::string tarnwellDirectory;
    std::string resultFilePrefix;
    std::map<pw_u64_t, pw_u32_t> systemStateEvents;
    std::map<std::pair<id_config_t, pw_u64_t>, pw_u32_t> resetEvents;
    std::map<id_config_t, pw_u64_t> lastSampleTimes;
    std::set<std::string> condLogTags;
    std::deque<std::string> queuedMessages;
    std::set<pw_u32_t> loadedGUIDs;
    std::map<pw_u32_t, std::vector<_tw_aggregator_info>> endpointsByGUID;
    std::map<pw_u16_t, _tw_aggregator_info> endpointById;
    std::map<std::string, std::vector<pw_u32_t>> platformGUIDs;
    std::map<pw_u16_t, pw_u32_t> guidByEndpointId;
    std::map<pw_u32_t, std::string> platformNameByGUID;
    std::map<pw_u32_t, pw_u32_t> emulatedGUIDs;
    std::map<pw_u64_t, std::vector<pw_u32_t>> deviceResets;
    std::map<std::string, std::vector<pw_u32_t>> deprecatedGUIDs;
};
