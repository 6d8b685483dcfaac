#include "tarnwell/info_document.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <map>
#include <vector>

namespace tarnwell {
namespace {

using Json = nlohmann::ordered_json;
using Row = std::vector<std::string>;

/// How a value of the document is told to people. What says "unknown" in its kind (an empty text, a frequency of 0)
/// gives no text, and its line is left out.
enum class Style : std::uint8_t { PLAIN, MHZ, MILLISECONDS, SECONDS, TIME, YES_NO, HEX, KNOWN_NUMBER };

struct Fact {
    const char* label;
    const char* pointer; ///< into the object that the section is about
    Style style = Style::PLAIN;
};

constexpr std::array kFileFacts = {
    Fact{"File", "/path"},
    Fact{"Bytes", "/bytes"},
    Fact{"Closed", "/is_closed", Style::YES_NO},
    Fact{"Index", "/has_index", Style::YES_NO},
    Fact{"Readings", "/readings"},
    Fact{"Values", "/values"},
    Fact{"Blocks", "/blocks"},
    Fact{"Last reading", "/last_seconds", Style::SECONDS},
};

constexpr std::array kCollectionFacts = {
    Fact{"Command", "/command_line"},
    Fact{"Begin", "/start_time", Style::TIME},
    Fact{"End", "/stop_time", Style::TIME},
    Fact{"Duration", "/duration_seconds", Style::SECONDS},
    Fact{"Program begin", "/program_start_time", Style::TIME},
    Fact{"Program end", "/program_stop_time", Style::TIME},
    Fact{"Interval", "/polling_interval_ms", Style::MILLISECONDS},
    Fact{"Samples", "/produced_samples"},
    Fact{"Dropped samples", "/dropped_samples"},
    Fact{"Clock", "/clock_mhz", Style::MHZ},
    Fact{"Begin tick", "/start_ticks"},
    Fact{"End tick", "/stop_ticks"},
    Fact{"Single readings", "/immediate_mode", Style::YES_NO},
    Fact{"Low overhead", "/low_overhead_mode", Style::YES_NO},
    Fact{"Seconds a piece", "/continuous_quantum_seconds", Style::KNOWN_NUMBER},
};

constexpr std::array kMachineFacts = {
    Fact{"Host", "/host_name"},
    Fact{"System", "/os_name"},
    Fact{"System version", "/os_version"},
    Fact{"System type", "/os_type"},
    Fact{"Platform", "/platform_name"},
    Fact{"Hyper-V", "/hyper_v_enabled", Style::YES_NO},
    Fact{"VSM", "/vsm_enabled", Style::YES_NO},
    Fact{"HVCI", "/hvci_enabled", Style::YES_NO},
    Fact{"VTIO", "/vtio_enabled", Style::YES_NO},
    Fact{"eDRAM", "/edram_capable", Style::YES_NO},
    Fact{"Graphics", "/integrated_graphics_id", Style::HEX},
};

constexpr std::array kVersionFacts = {
    Fact{"Record format", "/app_version"},
    Fact{"Application built", "/app_build_date"},
    Fact{"Version name", "/non_numeric_version"},
    Fact{"Build", "/build_ref"},
    Fact{"Package", "/package_type"},
    Fact{"Driver", "/driver_version"},
    Fact{"Driver built", "/driver_build_date"},
    Fact{"SCU", "/scu_version"},
};

constexpr std::array kPlatformFacts = {
    Fact{"Name", "/display_name"},
    Fact{"Specifier", "/specifier_type"},
    Fact{"Specifier values", "/specifier_values"},
    Fact{"Specifier needed", "/requires_specifier", Style::YES_NO},
    Fact{"Specifier found", "/specifier_found", Style::YES_NO},
    Fact{"Family", "/cpu/family"},
    Fact{"Model", "/cpu/model"},
    Fact{"Stepping", "/cpu/stepping"},
    Fact{"Bus", "/cpu/bus_mhz", Style::MHZ},
    Fact{"Lowest", "/cpu/lowest_mhz", Style::MHZ},
    Fact{"Base", "/cpu/base_mhz", Style::MHZ},
    Fact{"Highest", "/cpu/highest_mhz", Style::MHZ},
    Fact{"Platform id", "/cpu/platform_id", Style::HEX},
    Fact{"Microcode", "/cpu/microcode_revision", Style::HEX},
    Fact{"Packages", "/cpu/topology/packages"},
    Fact{"Dies", "/cpu/topology/dies", Style::KNOWN_NUMBER},
    Fact{"Modules", "/cpu/topology/modules", Style::KNOWN_NUMBER},
    Fact{"Cores", "/cpu/topology/cores"},
    Fact{"Logical processors", "/cpu/topology/threads"},
};

std::string decimal(double value, int digits) {
    std::array<char, 400> text{}; // the largest double has 309 digits before the point
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits);
    return {text.data(), end.ptr};
}

/// Foreign bytes go to a terminal here, where control characters are commands.
std::string printable(std::string text) {
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        c = byte < 0x20 || byte == 0x7F ? '?' : c;
    }
    return text;
}

std::string hex(std::uint64_t value, const char* format = "0x%llx") {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, static_cast<unsigned long long>(value));
    return text.data();
}

std::string plain(const Json& value) {
    if (value.is_string()) {
        return printable(value.get<std::string>());
    }
    if (value.is_number_float()) {
        std::array<char, 400> text{};
        return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value.get<double>()).ptr};
    }
    if (!value.is_array()) {
        return value.is_null() ? std::string() : value.dump();
    }
    std::string text;
    for (const Json& part : value) {
        text += (text.empty() ? "" : " ") + plain(part);
    }
    return text;
}

/// "2026-03-01T12:30:00.000000Z" to "2026-03-01 12:30:00 UTC"
std::string timeText(const std::string& iso) {
    return iso.substr(0, 10) + " " + iso.substr(11, 8) + " UTC";
}

std::string styled(const Json& value, Style style) {
    const bool isNumber = value.is_number();
    const bool isUnknown = isNumber && value.get<double>() == 0;
    switch (style) {
    case Style::PLAIN: return plain(value);
    case Style::YES_NO: return !value.is_boolean() ? std::string() : value.get<bool>() ? "yes" : "no";
    case Style::TIME: return value.is_string() ? timeText(value.get<std::string>()) : std::string();
    case Style::SECONDS: return isNumber ? decimal(value.get<double>(), 3) + " s" : std::string();
    case Style::MHZ: return isUnknown || !isNumber ? std::string() : plain(value) + " MHz";
    case Style::MILLISECONDS: return isUnknown || !isNumber ? std::string() : plain(value) + " ms";
    case Style::HEX: return isUnknown || !isNumber ? std::string() : hex(value.get<std::uint64_t>());
    case Style::KNOWN_NUMBER: return isUnknown ? std::string() : plain(value);
    }
    return {};
}

/// Columns as wide as their longest cell; no blanks at the ends of lines.
std::string aligned(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].size());
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string section(const std::string& title, const std::vector<Row>& rows) {
    if (rows.empty()) {
        return {};
    }
    return "\n" + title + "\n" + std::string(title.size(), '=') + "\n" + aligned(rows);
}

template <std::size_t N> std::vector<Row> factsOf(const Json& object, const std::array<Fact, N>& facts) {
    std::vector<Row> rows;
    for (const Fact& fact : facts) {
        const Json::json_pointer pointer(fact.pointer);
        const std::string text = object.contains(pointer) ? styled(object.at(pointer), fact.style) : "";
        if (!text.empty()) {
            rows.push_back({fact.label, text});
        }
    }
    return rows;
}

/// A heading and one row for each element of a list; `keys` are the columns.
std::vector<Row> tableOf(const Json& list, const Row& headings, const std::vector<const char*>& keys) {
    std::vector<Row> rows;
    if (!list.empty() && !headings.empty()) {
        rows.push_back(headings);
    }
    for (const Json& element : list) {
        Row row;
        for (const char* key : keys) {
            row.push_back(plain(element.at(key)));
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<Row> fileRows(const Json& document) {
    const Json& file = document.at("file");
    std::vector<Row> rows = factsOf(file, kFileFacts);
    const std::string major = plain(file.at("format_major"));
    rows.insert(rows.begin() + 1, {"Format", major == "0" ? std::string("unknown")
                                                          : major + "." + plain(file.at("format_minor"))});
    return rows;
}

std::vector<Row> damageRows(const Json& damage) {
    std::vector<Row> rows;
    for (const Json& stretch : damage.at("stretches")) {
        rows.push_back(
            {"At byte " + plain(stretch.at("offset")) + ", " + plain(stretch.at("length")) + " bytes",
             plain(stretch.at("kind")) + ": " + plain(stretch.at("reason"))});
    }
    if (damage.at("lost_blocks") != 0) {
        rows.push_back({"Lost blocks", plain(damage.at("lost_blocks"))});
    }
    if (damage.at("lost_ticks") != 0) {
        const std::string seconds = styled(damage.at("lost_seconds"), Style::SECONDS);
        rows.push_back({"Lost time", seconds.empty() ? plain(damage.at("lost_ticks")) + " ticks" : seconds});
    }
    return rows;
}

std::string platformText(const Json& platform) {
    std::vector<Row> rows = factsOf(platform, kPlatformFacts);
    for (const auto& [name, value] : platform.at("values").items()) {
        rows.push_back({printable(name), plain(value)});
    }
    const Json& chipset = platform.at("chipset");
    if (chipset.is_object()) {
        for (const Json& entry : chipset.at("registers")) {
            rows.push_back({"Register " + hex(entry.at("id").get<std::uint64_t>()),
                            hex(entry.at("value").get<std::uint64_t>())});
        }
    }
    const bool isProcessor = platform.at("cpu").is_object();
    std::string text = section(isProcessor           ? "Processor"
                               : chipset.is_object() ? "Chipset"
                                                     : "Platform",
                               rows);
    if (isProcessor) {
        const Json& topology = platform.at("cpu").at("topology");
        text +=
            section("Logical processors", tableOf(topology.at("processors"), {"Id", "Name"}, {"id", "name"}));
        text += section("Queues", tableOf(topology.at("hwq_mapping"), {"Key", "Value"}, {"key", "value"}));
        text +=
            section("Processors that came or went",
                    tableOf(topology.at("changes"), {"Tick", "Action", "Thread", "Core", "Package", "Module"},
                            {"ticks", "action", "thread", "core", "package", "module"}));
    }
    return text;
}

std::vector<Row> deviceRows(const Json& devices) {
    std::vector<Row> rows;
    for (const Json& device : devices) {
        rows.push_back({plain(device.at("address")),
                        hex(device.at("vendor_id").get<std::uint64_t>(), "%04llx") + ":" +
                            hex(device.at("device_id").get<std::uint64_t>(), "%04llx"),
                        plain(device.at("name"))});
    }
    return rows;
}

std::vector<Row> clockRows(const Json& clocks) {
    return tableOf(
        clocks, {"Clock", "MHz", "Reading", "Default clock", "MHz", "Reading"},
        {"name", "mhz", "ticks", "default_clock_name", "default_clock_mhz", "default_clock_ticks"});
}

std::string systemText(const Json& system) {
    if (system.is_null()) {
        return "\nThe record of machine and collection is lost.\n";
    }
    std::string text = section("Collection", factsOf(system, kCollectionFacts));
    text += section("Machine", factsOf(system, kMachineFacts));
    for (const Json& platform : system.at("platforms")) {
        text += platformText(platform);
    }
    text += section("Platform specifiers", tableOf(system.at("platform_specifiers"), {}, {"name", "value"}));
    text += section("PCI devices", deviceRows(system.at("pci_devices")));
    text += section("Telemetry endpoints",
                    tableOf(system.at("aggregator_endpoints"),
                            {"Id", "Address", "GUID", "Bytes", "Samples", "Read as"},
                            {"id", "address", "guid", "size", "sample_count", "collection_type"}));
    text += section("Versions", factsOf(system, kVersionFacts));
    text += section("Streams", tableOf(system.at("streams"), {"Id", "Clock"}, {"id", "clock_uuid"}));
    text += section("Clocks of the record", clockRows(system.at("clocks")));
    return text;
}

std::string valueText(const Json& pairs) {
    std::string text;
    for (const Json& pair : pairs) {
        text += (text.empty() ? "" : "; ") + plain(pair.at("name")) + ": " + plain(pair.at("value"));
    }
    return text;
}

/// One row for each collector or metric; what it told of itself in one line.
std::vector<Row> propertyRows(const Json& list, const char* name) {
    std::vector<Row> rows;
    for (const Json& element : list) {
        rows.push_back({plain(element.at(name)), valueText(element.at("values"))});
    }
    return rows;
}

/// Messages under their features, both in file order.
std::string featureText(const Json& messages) {
    std::vector<std::string> features;
    std::map<std::string, Json> byFeature;
    for (const Json& message : messages) {
        const std::string feature = plain(message.at("feature"));
        if (byFeature.count(feature) == 0) {
            features.push_back(feature);
        }
        byFeature[feature].push_back(message);
    }
    std::string text;
    for (const std::string& feature : features) {
        text += section("Feature " + feature,
                        tableOf(byFeature[feature], {"Message", "Instances", "Read at", "Tracepoints"},
                                {"name", "instances", "triggers", "tracepoints"}));
    }
    return text;
}

} // namespace

std::string infoText(const Json& document) {
    // The first section needs no blank line above it.
    std::string text = section("Saved collection", fileRows(document)).substr(1);
    const Json& damage = document.at("damage");
    text += section("Damage", damageRows(damage));
    if (!document.at("file").at("is_closed").get<bool>()) {
        text += "\nThe file was not closed: what was collected last may be missing.\n";
    }
    text += systemText(document.at("system"));
    text += section("Collectors", propertyRows(document.at("collectors"), "name"));
    text += section("Metrics", propertyRows(document.at("metrics"), "metric_id"));
    text += featureText(document.at("messages"));
    text += section("Clocks", clockRows(document.at("clocks")));
    text += section("Configuration",
                    tableOf(document.at("configurations"), {"Name", "Bytes"}, {"name", "bytes"}));
    std::vector<Row> notes;
    for (const Json& note : document.at("notes")) {
        notes.push_back({plain(note)});
    }
    return text + section("Notes", notes);
}

} // namespace tarnwell
