#pragma once

#include "common/metadata/system_metadata.h"
#include "common/saved/collection_reader.h"
#include "tarnwell/saved_messages.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwell {

/// Makes lines of raw values: tick of the default clock, seconds since the begin, message, feature, entity,
/// descriptor, and the value in the type that the message's metric declares. Names are quoted once for each instance.
class SampleLines {
public:
    enum class Form : std::uint8_t { CSV, JSON };

    SampleLines(Form form, const pwr::saved::CollectionReader& reader, const pwr::SystemMetadata& system);

    /// Empty for JSON, whose lines name their fields.
    std::string header() const;
    /// Further instances of a message, or its first ones.
    void add(const SavedMessages::Message& message);
    /// Appends a line for each value. Nothing for a message without instances: nobody knows whose values they are.
    void append(const CollectionData& reading, std::string& lines) const;

private:
    enum class Raw : std::uint8_t { UINT, INT, REAL, TEXT };
    struct Source {
        Raw type = Raw::UINT;
        std::string message; ///< quoted, as everything that follows
        std::string feature;
        std::vector<std::string> instances; ///< entity and descriptor
    };

    Raw rawTypeOf_i(const pwr::MsgMetadata& message) const;
    std::string quoted_i(std::string_view text) const;
    void appendField_i(const char* name, std::string_view value, std::string& line) const;
    std::string namesOf_i(const MessageInstances::Instance& instance) const;
    std::string valueOf_i(const CollectionData& reading, std::size_t at, Raw type) const;

    Form m_form;
    std::uint64_t m_begin;
    double m_ticksPerSecond;
    std::map<std::pair<unsigned, unsigned>, Raw> m_metrics; ///< by collector and metric number
    std::map<id_config_t, Source> m_sources;
};

} // namespace tarnwell
