#include "common/saved/catalog.h"

#include "common/metadata/handled_version.h"
#include "common/metadata/metadata.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

namespace pwr::saved {

namespace {

/// Decodes into a place of a map, which goes again when the payload is no such thing.
template <class KEY, class T>
bool decodeInto(std::map<KEY, T>& map, const std::type_identity_t<KEY>& key, std::span<const char> payload) {
    T value;
    if (!decode(payload, value)) {
        return false;
    }
    map.try_emplace(key, std::move(value));
    return true;
}

void tell(DamageLog& damage, const BlockHeader& header, pw_u64_t offset) {
    damage.add(offset, c_blockHeaderSize + header.length, nameOf(header.kind), "a record cannot be read");
}

} // namespace

bool Catalog::lacks(BlockKind kind, pw_u16_t ordinal) const {
    if (kind == BlockKind::CLOCKS) {
        return std::ranges::none_of(m_moments,
                                    [&](const auto& moment) { return moment.first.second == ordinal; });
    }
    BlockHeader header;
    header.kind = kind;
    header.ordinal = ordinal;
    return needs(header);
}

bool Catalog::needs(const BlockHeader& header) const {
    const pw_u16_t ordinal = header.ordinal;
    switch (header.kind) {
    case BlockKind::SYSTEM: return !m_system || ordinal > m_system->header.ordinal;
    case BlockKind::DECLARATIONS: return !m_declarations.contains(ordinal);
    case BlockKind::INSTANCES: return !m_instances.contains(ordinal);
    case BlockKind::CONFIGURATION: return !m_configurations.contains(ordinal);
    case BlockKind::CLOCKS: return !m_moments.contains({header.firstTick, ordinal});
    case BlockKind::NOTES: return !m_notes.contains(header.sequence);
    case BlockKind::END: return !end;
    case BlockKind::SAMPLES:
    case BlockKind::INDEX:
    case BlockKind::REFERENCE: break;
    }
    return false;
}

bool Catalog::add(const Block& block) {
    const BlockHeader& header = block.header;
    const std::vector<char>& payload = block.payload();
    if (!needs(header)) {
        return true;
    }
    switch (header.kind) {
    case BlockKind::SYSTEM: m_system = Raw{header, block.offset, payload}; return true;
    case BlockKind::DECLARATIONS:
        m_declarations.try_emplace(header.ordinal, Raw{header, block.offset, payload});
        return true;
    case BlockKind::INSTANCES: {
        InstancesBlock added;
        added.isPreamble = header.isPreamble();
        if (!decode(payload, added.messages)) {
            return false;
        }
        m_instances.try_emplace(header.ordinal, std::move(added));
        return true;
    }
    case BlockKind::CONFIGURATION: return decodeInto(m_configurations, header.ordinal, payload);
    case BlockKind::CLOCKS: return decodeInto(m_moments, {header.firstTick, header.ordinal}, payload);
    case BlockKind::NOTES: return decodeInto(m_notes, header.sequence, payload);
    case BlockKind::END: {
        FileTotals totals;
        if (!decode(payload, totals)) {
            return false;
        }
        end = totals;
        return true;
    }
    case BlockKind::SAMPLES:
    case BlockKind::INDEX:
    case BlockKind::REFERENCE: break;
    }
    return true;
}

void Catalog::make(DamageLog& damage) {
    // Until this file's own version is read, and for good when it is lost: not that of the file before.
    setHandledVersion(c_currentSavedVersion);
    makeSystem_i(damage);
    makeDeclarations_i(damage);
    makeLists_i();
}

void Catalog::makeSystem_i(DamageLog& damage) {
    if (!m_system) {
        return;
    }
    Serializer in(m_system->payload);
    pw_u32_t type = 0;
    constexpr auto expected = static_cast<pw_u32_t>(Metadata::__metadata_data_type::SYSTEM);
    std::unique_ptr<Metadata> record;
    if (in.read(type) != 0 && type == expected) {
        in.rewind_read(sizeof(type));
        record.reset(Metadata::deserialize(in, 0));
    }
    system.reset(dynamic_cast<SystemMetadata*>(record.get()));
    if (!system) {
        tell(damage, m_system->header, m_system->offset);
        return;
    }
    static_cast<void>(record.release());
    isSystemFinal = !m_system->header.isPreamble();
}

void Catalog::makeDeclarations_i(DamageLog& damage) {
    for (const auto& [ordinal, raw] : m_declarations) {
        std::vector<std::unique_ptr<Metadata>> some;
        if (!decode(raw.payload, some)) {
            tell(damage, raw.header, raw.offset);
            continue;
        }
        declarations.insert(declarations.end(), std::move_iterator(some.begin()),
                            std::move_iterator(some.end()));
    }
}

void Catalog::makeLists_i() {
    for (const auto& [ordinal, block] : m_instances) {
        if (!block.isPreamble || ordinal != m_preambleInstances) {
            break;
        }
        ++m_preambleInstances;
        instances.insert(instances.end(), block.messages.begin(), block.messages.end());
    }
    for (const auto& [ordinal, configuration] : m_configurations) {
        configurations.push_back(configuration);
    }
    for (const auto& [place, moment] : m_moments) {
        clocks.insert(clocks.end(), moment.clocks.begin(), moment.clocks.end());
    }
    for (const auto& [sequence, lines] : m_notes) {
        notes.insert(notes.end(), lines.begin(), lines.end());
    }
}

const std::vector<SavedInstances>* Catalog::instancesOf(pw_u16_t ordinal) const {
    const auto found = m_instances.find(ordinal);
    return found == m_instances.end() ? nullptr : &found->second.messages;
}

} // namespace pwr::saved
