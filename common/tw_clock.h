#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <deque>
#include <string>
#include <vector>

namespace pwr {

class SystemMetadata;

/// A source of timestamps, told apart from others by its UUID. The environment's default clock is the
/// time base of a collection; the readings of others are converted into it.
/// Threads: reading a clock is safe on any thread.
class KRCOMMON_API TWClockSource {
public:
    TWClockSource(const std::string& uuid, const std::string& name, const std::string& description);
    virtual ~TWClockSource();

    /// In MHz; 0 while it is not known.
    virtual float getFrequency() const = 0;
    virtual pw_u64_t getTimestamp() const = 0;

    const std::string& getUUID() const { return m_uuid; }
    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }

private:
    std::string m_uuid;
    std::string m_name;
    std::string m_description;
};

/// The platform's monotonic performance counter.
class KRCOMMON_API TWQPCClock : public TWClockSource {
public:
    TWQPCClock();
    float getFrequency() const override;
    pw_u64_t getTimestamp() const override;
};

/// Nanoseconds since 1970-01-01 UTC. Not monotonic: it follows corrections of the wall clock.
class KRCOMMON_API TWNanoClock : public TWClockSource {
public:
    TWNanoClock();
    float getFrequency() const override;
    pw_u64_t getTimestamp() const override;
};

/// The processor's time-stamp counter. Its frequency cannot be read from the processor: whoever knows
/// it sets it. Processors without the counter give the performance counter.
class KRCOMMON_API TWTSCClock : public TWClockSource {
public:
    TWTSCClock();
    float getFrequency() const override;
    pw_u64_t getTimestamp() const override;
    void setFrequency(float frequencyMHz);

private:
    float m_frequency = 0.0F;
};

/// How a clock relates to the default clock: both read at the same moment, frequencies in MHz.
struct TWClockSync {
    std::string clockUUID;
    std::string clockName;
    float clockFrequency;
    pw_u64_t clockValue;
    std::string defaultClockUUID;
    std::string defaultClockName;
    float defaultClockFrequency;
    pw_u64_t defaultClockValue;
};

/// Appends new clocks in the order QPC, NANO, TSC; the caller owns them. The TSC clock gets its
/// frequency from the record when the default clock is the TSC itself, else from the environment's
/// default frequency and ratio.
KRCOMMON_API void getTWSystemClockSources(const SystemMetadata& system, std::vector<TWClockSource*>& clocks);

/// Deletes the clocks and leaves the vector as it is, with pointers that must not be used any more.
KRCOMMON_API void freeTWSystemClockSources(std::vector<TWClockSource*>& clocks);

/// The default clock's reading; 0 without a default clock.
KRCOMMON_API pw_u64_t getTWATimestamp();

/// The default clock's UUID; "" without a default clock.
KRCOMMON_API const std::string& getTWAClockUUID();

/// Finds the first record of a clock. On false `out` holds the last record looked at and must not be
/// used.
KRCOMMON_API bool wasClockSynchronized(const std::string& uuid, const std::deque<TWClockSync>& syncs,
                                       TWClockSync& out);

/// A reading of the synchronised clock in the default clock's time base: the ticks since the common
/// moment scaled by the ratio of the frequencies, added to the default clock's reading there.
/// A time before that moment counts as a huge unsigned distance. Where the result does not fit into
/// 64 bits, or the clock's frequency is 0, it is the default clock's reading at the common moment.
KRCOMMON_API pw_u64_t convertTimestamp(const TWClockSync& sync, pw_u64_t timestamp);

} // namespace pwr
