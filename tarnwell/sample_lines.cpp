#include "tarnwell/sample_lines.h"

#include "common/metadata/metric_metadata.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "tarnwell/json_text.h"
#include "tarnwell/saved_clock.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>

namespace tarnwell {
namespace {

constexpr const char* kMissingInJson = "null";

template <class Number> std::string numberText(Number value) {
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

std::string secondsText(double value) {
    constexpr int kNanoseconds = 9;
    std::array<char, 340> text{}; // the longest number of the type, in full
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, kNanoseconds)
            .ptr;
    return {text.data(), end};
}

/// RFC 4180. An empty text has quotes, which tells it from a value that is missing.
std::string quotedForCsv(std::string_view text) {
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string out = "\"";
    for (const char character : text) {
        out.append(character == '"' ? 2 : 1, character);
    }
    return out + '"';
}

} // namespace

SampleLines::SampleLines(Form form, const pwr::saved::CollectionReader& reader,
                         const pwr::SystemMetadata& system)
    : m_form(form), m_begin(system.startTSC), m_ticksPerSecond(ticksPerSecondOf(system)) {
    static const std::map<std::string, Raw> kTypes = {
        {"UINT", Raw::UINT}, {"INT", Raw::INT}, {"REAL", Raw::REAL}, {"STRING", Raw::TEXT}};
    for (const auto& declaration : reader.declarations()) {
        const auto* metric = dynamic_cast<const pwr::MetricMetadata*>(declaration.get());
        if (metric == nullptr) {
            continue;
        }
        std::map<std::string, std::string> values(metric->getValues().begin(), metric->getValues().end());
        // A counter is unsigned whatever is made of it later; a level is read as what it is worth, unless told.
        const std::string& told = values["RAW-TYPE"];
        const auto type =
            kTypes.find(told.empty() && values["SOURCE"] != "COUNTER" ? values["VALUE-TYPE"] : told);
        m_metrics[{metric->getPluginID(), metric->getMetricID()}] =
            type == kTypes.end() ? Raw::UINT : type->second;
    }
}

std::string SampleLines::header() const {
    return m_form == Form::CSV ? "tick,seconds,message,feature,entity,descriptor,value\r\n" : "";
}

void SampleLines::add(const SavedMessages::Message& message) {
    const pwr::MsgMetadata& metadata = *message.metadata;
    Source& source =
        m_sources[{static_cast<pw_u8_t>(metadata.getPluginID()), static_cast<pw_u8_t>(metadata.getMetricID()),
                   static_cast<pw_u8_t>(metadata.getMsgID())}];
    source.type = rawTypeOf_i(metadata);
    source.message = quoted_i(metadata.getMsgName());
    source.feature = quoted_i(metadata.getCapName());
    for (const MessageInstances::Instance& instance : message.instances.instances) {
        source.instances.push_back(namesOf_i(instance));
    }
}

SampleLines::Raw SampleLines::rawTypeOf_i(const pwr::MsgMetadata& message) const {
    const auto metric = m_metrics.find({message.getPluginID(), message.getMetricID()});
    return metric == m_metrics.end() ? Raw::UINT : metric->second;
}

std::string SampleLines::namesOf_i(const MessageInstances::Instance& instance) const {
    std::string names;
    const pwr::EntityHandle* entity = instance.entity;
    std::string entityName = entity == nullptr ? std::string() : entity->getQualifiedName();
    if (entityName.empty() && entity != nullptr) {
        entityName = entity->getName(); // the system itself has no name below itself
    }
    appendField_i("entity", quoted_i(entityName), names);
    appendField_i("descriptor",
                  quoted_i(instance.descriptor == nullptr ? "" : instance.descriptor->getName()), names);
    return names;
}

void SampleLines::append(const CollectionData& reading, std::string& lines) const {
    const tw_driver_msg& header = reading.header();
    const auto source = m_sources.find(header.id);
    if (source == m_sources.end()) {
        return;
    }
    // Ticks before the begin are a negative time, not a huge one.
    const bool isLater = header.timestamp >= m_begin;
    const auto apart = static_cast<double>(isLater ? header.timestamp - m_begin : m_begin - header.timestamp);
    const double time = m_ticksPerSecond > 0 ? apart / m_ticksPerSecond : 0;
    std::string front;
    appendField_i("tick", numberText(header.timestamp), front);
    appendField_i("seconds", secondsText(isLater ? time : -time), front);
    appendField_i("message", source->second.message, front);
    appendField_i("feature", source->second.feature, front);
    for (std::size_t i = 0; i < reading.size(); ++i) {
        const std::size_t index = header.first_instance + i;
        if (index >= source->second.instances.size()) {
            return;
        }
        lines += m_form == Form::JSON ? "{" : "";
        lines += front;
        lines += source->second.instances[index];
        appendField_i("value", valueOf_i(reading, i, source->second.type), lines);
        lines.pop_back();
        lines += m_form == Form::JSON ? "}\n" : "\r\n";
    }
}

std::string SampleLines::quoted_i(std::string_view text) const {
    return m_form == Form::CSV ? quotedForCsv(text) : quotedForJson(text);
}

/// Ends with a separator, which the last field of a line gives up.
void SampleLines::appendField_i(const char* name, std::string_view value, std::string& line) const {
    if (m_form == Form::JSON) {
        line += quotedForJson(name) + ":";
    }
    line += value;
    line += ',';
}

std::string SampleLines::valueOf_i(const CollectionData& reading, std::size_t at, Raw type) const {
    const bool isJson = m_form == Form::JSON;
    if (!reading.isPresent(at)) {
        return isJson ? kMissingInJson : "";
    }
    if (reading.isText(at)) {
        return quoted_i(reading.getText(at));
    }
    const std::uint64_t bits = reading.getBits(at);
    switch (type) {
    case Raw::INT: return numberText(std::bit_cast<std::int64_t>(bits));
    case Raw::REAL: {
        const auto real = std::bit_cast<double>(bits);
        const std::string text = numberText(real);
        // JSON knows no infinity.
        return isJson && !std::isfinite(real) ? quotedForJson(text) : text;
    }
    default: return numberText(bits);
    }
}

} // namespace tarnwell
