#include "common/plugin/environment_registries.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr pw_u32_t STATE_RUNNING = 1;

/// In these states every sample follows a reset, whether or not an event lies between two samples.
bool isResettingState(pw_u32_t state) {
    return state == 4 || state == 5;
}

} // namespace

void PluginEnvironment::addSystemStateEvent(pw_u64_t timestamp, pw_u32_t state) {
    registries_i().systemStateEvents[timestamp] = state;
}

const std::map<pw_u64_t, pw_u32_t>& PluginEnvironment::getSystemStateEvents() const {
    return registries_i().systemStateEvents;
}

void PluginEnvironment::removeLastSystemStateEvent() {
    auto& events = registries_i().systemStateEvents;
    if (!events.empty()) {
        events.erase(std::prev(events.end()));
    }
}

pw_u32_t PluginEnvironment::getCurrentSystemState(pw_u64_t timestamp) const {
    const auto& events = registries_i().systemStateEvents;
    const auto next = events.lower_bound(timestamp); // an event at the time itself does not count yet
    return next == events.begin() ? STATE_RUNNING : std::prev(next)->second;
}

bool PluginEnvironment::checkPendingSystemStateEvent(pw_u64_t from, pw_u64_t to) const {
    // One look-up and a comparison also serve a range that goes backwards, which holds nothing.
    const auto& events = registries_i().systemStateEvents;
    const auto first = events.lower_bound(from);
    return first != events.end() && first->first <= to;
}

bool PluginEnvironment::checkAndRecordReset(id_config_t id, pw_u64_t timestamp) {
    Registries& registries = registries_i();
    const auto [last, isFirstSample] = registries.lastSampleTimes.try_emplace(id, timestamp);
    if (isFirstSample) {
        return false;
    }
    const pw_u32_t state = getCurrentSystemState(timestamp);
    const bool reset = checkPendingSystemStateEvent(last->second, timestamp) || isResettingState(state);
    if (reset) {
        registries.resetEvents[{id, timestamp}] = state;
    }
    last->second = timestamp;
    return reset;
}

bool PluginEnvironment::checkResetOccurred() const {
    return !registries_i().resetEvents.empty();
}

pw_u32_t PluginEnvironment::isSystemReset(pw_u8_t plugin, pw_u8_t metric, pw_u8_t message,
                                          pw_u64_t timestamp) const {
    const auto& resets = registries_i().resetEvents;
    const auto found = resets.find({id_config_t{plugin, metric, message}, timestamp});
    return found == resets.end() ? 0 : found->second;
}

std::pair<pw_u64_t, pw_u64_t> PluginEnvironment::getLastResetEvent(pw_u64_t timestamp) const {
    const auto& events = registries_i().systemStateEvents;
    auto event = events.upper_bound(timestamp);
    if (event == events.end() && !events.empty()) {
        --event;
    }
    // The first event of all is never looked at: nothing tells what it returned from.
    for (; !events.empty() && event != events.begin(); --event) {
        if (event->second == STATE_RUNNING) {
            return {std::prev(event)->first, event->first};
        }
    }
    return {0, 0};
}

void PluginEnvironment::addTAFDevResetEvent(pw_u64_t timestamp, pw_u32_t device) {
    std::vector<pw_u32_t>& devices = registries_i().deviceResets[timestamp];
    if (std::find(devices.begin(), devices.end(), device) == devices.end()) {
        devices.push_back(device);
    }
}

const std::vector<pw_u32_t>* PluginEnvironment::getTAFDevResetsForMsg(const tw_driver_msg* message) const {
    if (message == nullptr) {
        return nullptr;
    }
    const auto& resets = registries_i().deviceResets;
    const auto found = resets.find(message->timestamp);
    return found == resets.end() ? nullptr : &found->second;
}
