// Any bytes as the description of a telemetry GUID: what loads must answer every query, what does not must leave
// nothing behind. Behind a zero byte stands a table of endpoints, read by the same people.

#include "common/metadata/operation_metadata.h"
#include "common/plugin/plugin_environment.h"
#include "common/telemetry/aggr_telem.h"
#include "common/telemetry/endpoint_table.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t MAX_NAMES = 64;

/// The file of a GUID that no other process of the fuzzer writes.
struct Place {
    Place() {
        g_pluginEnvironment->setTarnwellDirectory();
        const std::filesystem::path folder =
            std::filesystem::path(g_pluginEnvironment->getTarnwellDirectory()) / "xml_configs";
        std::filesystem::create_directories(folder);
        do {
            ++guid;
            file = folder / ("telemetry_" + hexOf(guid) + ".xml");
        } while (!std::filesystem::create_directory(file.string() + ".taken"));
        _tw_aggregator_info endpoint{};
        endpoint.guid = guid;
        endpoint.endpoint_id = 1;
        g_pluginEnvironment->addLoadedTAF(endpoint);
    }
    ~Place() {
        std::filesystem::remove(file);
        std::filesystem::remove(file.string() + ".taken");
    }
    static std::string hexOf(pw_u32_t number) {
        char text[16];
        std::snprintf(text, sizeof(text), "0x%x", static_cast<unsigned>(number));
        return text;
    }

    pw_u32_t guid = 0xf0220000;
    std::filesystem::path file;
};

/// All that stands between quotes, which is where names are.
std::set<std::string> quoted(std::string_view text) {
    std::set<std::string> names;
    while (names.size() < MAX_NAMES) {
        const std::size_t begin = text.find('"');
        const std::size_t end = begin == std::string_view::npos ? begin : text.find('"', begin + 1);
        if (end == std::string_view::npos) break;
        names.emplace(text.substr(begin + 1, end - begin - 1));
        text.remove_prefix(end + 1);
    }
    return names;
}

void ask(pw_u32_t guid, const std::string& sample, const std::string& field) {
    const pwr::OperationMetadata operation(
        "op", "AGGR-TELEM", 8, "",
        {{"GUID", Place::hexOf(guid)}, {"COUNTER-NAME", sample}, {"COUNTER-FIELD-NAME", field}});
    pwr::AggrTelemCounterInfo info;
    if (pwr::parseAggrTelemOperationMetadata("op", operation, info) != 0) return;
    if (info.msb < info.lsb || info.msb > 63 || info.guid != guid) std::abort();
    const std::uint64_t width = info.msb - info.lsb + 1U;
    if (width < 64 && info.bitsOf(~pw_u64_t{0}) != (std::uint64_t{1} << width) - 1) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const Place place;
    std::string_view text(reinterpret_cast<const char*>(bytes), size);
    std::vector<std::string> problems;
    const std::size_t zero = text.find('\0');
    if (zero != std::string_view::npos) {
        const auto endpoints = pwr::readEndpointTable("t", text.substr(zero + 1), problems);
        for (const pwr::TelemetryEndpoint& one : endpoints) {
            if (!one.file.starts_with('/') || one.info.sample_count * 8U > one.info.size) std::abort();
        }
        text = text.substr(0, zero);
    }
    std::ofstream(place.file, std::ios::binary) << text;
    pwr::AggrTelemIndex& index = pwr::AggrTelemIndex::instance();
    const bool isLoaded = index.load(place.guid) == 0;
    if (isLoaded != index.isLoaded(place.guid)) std::abort();
    const std::set<std::string> names = quoted(text);
    for (const std::string& sample : names) {
        pw_u16_t id = 0;
        pw_u32_t guid = 0;
        const bool isFound = index.findSample(place.guid, sample, id);
        if (isFound != index.findGuidOf(sample, guid) || (isFound && !isLoaded)) std::abort();
        ask(place.guid, sample, "");
        for (const std::string& field : names) {
            if (isFound) ask(place.guid, sample, field);
        }
    }
    index.clear();
    return 0;
}
