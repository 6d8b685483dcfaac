#pragma once

#include "common/saved/block_reader.h"
#include "common/saved/index.h"
#include "common/saved/payloads.h"

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace pwr {
class Metadata;
class SystemMetadata;
} // namespace pwr

namespace pwr::saved {

/// What a file says besides its readings, gathered from intact blocks in any order. Of a block and its copies the first
/// intact one counts.
class Catalog {
public:
    /// Whether a block of this kind and number would tell something new.
    bool needs(const BlockHeader& header) const;
    /// Whether the copy of a block with this number would.
    bool lacks(BlockKind kind, pw_u16_t ordinal) const;
    bool hasSystem() const { return m_system.has_value(); }
    /// False when the payload is not what its kind demands.
    bool add(const Block& block);
    /// Makes the records and lists of what was gathered so far. What is no record is told to the log.
    void make(DamageLog& damage);

    /// Instances that came while collecting; null when they are not known.
    const std::vector<SavedInstances>* instancesOf(pw_u16_t ordinal) const;
    /// How many blocks of instances a reader knows before the first reading.
    pw_u16_t preambleInstances() const { return m_preambleInstances; }
    using Moments = std::map<std::pair<pw_u64_t, pw_u16_t>, Moment>; ///< by tick, then number
    const Moments& moments() const { return m_moments; }

    std::unique_ptr<SystemMetadata> system;
    bool isSystemFinal = false; ///< the record was written at the collection's end
    std::optional<FileTotals> end;
    std::vector<std::unique_ptr<Metadata>> declarations;
    std::vector<SavedInstances> instances;
    std::vector<Configuration> configurations;
    std::vector<TWClockSync> clocks;
    std::vector<std::string> notes;

private:
    struct InstancesBlock {
        bool isPreamble = false;
        std::vector<SavedInstances> messages;
    };

    /// Bytes that are made into records later: reading the system's record sets the format of the others, and gives
    /// the process its topology.
    struct Raw {
        BlockHeader header;
        pw_u64_t offset = 0;
        std::vector<char> payload;
    };

    void makeSystem_i(DamageLog& damage);
    void makeDeclarations_i(DamageLog& damage);
    void makeLists_i();

    std::optional<Raw> m_system; ///< a later record replaces an earlier one
    std::map<pw_u16_t, Raw> m_declarations;
    std::map<pw_u16_t, InstancesBlock> m_instances;
    std::map<pw_u16_t, Configuration> m_configurations;
    Moments m_moments;
    std::map<pw_u32_t, std::vector<std::string>> m_notes; ///< by sequence
    pw_u16_t m_preambleInstances = 0;
};

} // namespace pwr::saved
