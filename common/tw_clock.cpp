#include "common/tw_clock.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/clock.h"
#include "common/plugin/plugin_environment.h"

#include <memory>

namespace pwr {

namespace {

constexpr const char* TSC_UUID = "5138ffc0-517d-11e5-b970-0800200c9a66";

/// The record's frequency is that of the default clock, so it is the counter's only where that is it.
float timeStampFrequency(const SystemMetadata& system) {
    const TWClockSource* const clock = g_pluginEnvironment->getDefaultClock();
    if (clock != nullptr && clock->getUUID() == TSC_UUID) {
        return system.twaClockFreq;
    }
    const float ratio = g_pluginEnvironment->getDefaultClockToTSCRatio();
    return ratio > 0.0F ? g_pluginEnvironment->getDefaultClockMHz() / ratio : 0.0F;
}

} // namespace

TWClockSource::TWClockSource(const std::string& uuid, const std::string& name, const std::string& description)
    : m_uuid(uuid), m_name(name), m_description(description) {}

TWClockSource::~TWClockSource() = default;

TWQPCClock::TWQPCClock()
    : TWClockSource("d3ad8390-29cc-11e6-bdf4-0800200c9a66", "QPC", "A QPC based clock source") {}

float TWQPCClock::getFrequency() const {
    return static_cast<float>(static_cast<double>(platform::performanceFrequency()) / 1e6);
}

pw_u64_t TWQPCClock::getTimestamp() const {
    return platform::performanceCounter();
}

TWNanoClock::TWNanoClock()
    : TWClockSource("8ad42930-517d-11e5-b970-0800200c9a66", "NANO",
                    "A clock_gettime based clock source returning time in nanoseconds since the Epoch") {}

float TWNanoClock::getFrequency() const {
    return 1000.0F;
}

pw_u64_t TWNanoClock::getTimestamp() const {
    return platform::realtimeNanoseconds();
}

TWTSCClock::TWTSCClock() : TWClockSource(TSC_UUID, "TSC", "A TSC based clock source") {}

float TWTSCClock::getFrequency() const {
    return m_frequency;
}

pw_u64_t TWTSCClock::getTimestamp() const {
    return platform::timeStampCounter();
}

void TWTSCClock::setFrequency(float frequencyMHz) {
    m_frequency = frequencyMHz;
}

void getTWSystemClockSources(const SystemMetadata& system, std::vector<TWClockSource*>& clocks) {
    auto timeStampClock = std::make_unique<TWTSCClock>();
    timeStampClock->setFrequency(timeStampFrequency(system));
    auto counter = std::make_unique<TWQPCClock>();
    auto nano = std::make_unique<TWNanoClock>();
    clocks.reserve(clocks.size() + 3); // so that nothing below can throw and leak
    clocks.push_back(counter.release());
    clocks.push_back(nano.release());
    clocks.push_back(timeStampClock.release());
}

void freeTWSystemClockSources(std::vector<TWClockSource*>& clocks) {
    for (const TWClockSource* const clock : clocks) {
        delete clock;
    }
}

pw_u64_t getTWATimestamp() {
    const TWClockSource* const clock = g_pluginEnvironment->getDefaultClock();
    return clock == nullptr ? 0 : clock->getTimestamp();
}

const std::string& getTWAClockUUID() {
    static const std::string none;
    const TWClockSource* const clock = g_pluginEnvironment->getDefaultClock();
    return clock == nullptr ? none : clock->getUUID();
}

bool wasClockSynchronized(const std::string& uuid, const std::deque<TWClockSync>& syncs, TWClockSync& out) {
    for (const TWClockSync& sync : syncs) {
        out = sync;
        if (sync.clockUUID == uuid) {
            return true;
        }
    }
    return false;
}

pw_u64_t convertTimestamp(const TWClockSync& sync, pw_u64_t timestamp) {
    constexpr double twoTo64 = 18446744073709551616.0;
    // Unsigned: a time before the common moment is a huge distance, not a negative one.
    const auto distance = static_cast<double>(timestamp - sync.clockValue);
    const double scaled =
        static_cast<double>(sync.defaultClockFrequency) / static_cast<double>(sync.clockFrequency) * distance;
    const bool fits = scaled >= 0.0 && scaled < twoTo64; // also false for NaN
    return sync.defaultClockValue + (fits ? static_cast<pw_u64_t>(scaled) : 0);
}

} // namespace pwr
