#pragma once

#include "common/plugin/collection_data.h"

#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class MetricPlugin;

namespace pwr {
class Metadata;
class MsgMetadata;
class SystemMetadata;
} // namespace pwr

namespace tarnwell {

class HostEnvironment;
struct Settings;

/// A message as metric plug-ins are told of it.
struct AnnouncedMessage {
    const pwr::MsgMetadata* message;
    const MessageInstances* instances;
};

/// Turns readings into the report. A live collection and a saved one go through here alike, so both print the same.
/// Of a slice only its readings come to the metric plug-ins, which see it as a collection of its own: it begins and
/// ends where the slice does. What a message reads only once stands for all of the collection and is left in.
/// Without a report it does nothing.
class Computation {
public:
    Computation(HostEnvironment& environment, const std::vector<MetricPlugin*>& metrics,
                const Settings& settings);
    Computation(const Computation&) = delete;
    Computation& operator=(const Computation&) = delete;
    ~Computation();

    /// Hands the declarations and the instances to the metric plug-ins, which refer to them from then on.
    void announce(const std::vector<const pwr::Metadata*>& declarations,
                  const std::vector<AnnouncedMessage>& messages, const pwr::SystemMetadata& system);
    /// Instances that came while collecting.
    void announceMore(const AnnouncedMessage& addition);
    void process(const CollectionData& reading);

    /// Sends the system record, all tables and the notes through the stream, and has the writers write. 0; or 1
    /// when a writer could not.
    int report(const pwr::SystemMetadata& system, const std::vector<std::string>& notes);

    /// Whether a slice was asked for that no reading is in.
    bool isSliceEmpty() const { return m_sliced != nullptr && m_inSlice == 0; }

private:
    void noteSingle_i(const AnnouncedMessage& message);
    void beginSlice_i();
    bool isOutside_i(const CollectionData& reading);
    void pass_i(const CollectionData& reading);
    std::string sliceNote_i() const;

    HostEnvironment& m_environment;
    const std::vector<MetricPlugin*>& m_metrics;
    const Settings& m_settings;
    const pwr::SystemMetadata* m_system = nullptr; ///< of the whole collection
    std::unique_ptr<pwr::SystemMetadata> m_sliced; ///< the same with the times of the slice; null without one
    std::bitset<256> m_isSingle;                   ///< by message number: read once in a collection
    std::uint64_t m_sliceEnd = UINT64_MAX;
    bool m_hasBegun = false;
    std::uint64_t m_inSlice = 0;
    std::uint64_t m_outside = 0;
};

} // namespace tarnwell
