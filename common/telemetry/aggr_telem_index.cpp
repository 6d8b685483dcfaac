#include "common/telemetry/aggr_telem.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <new>

#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/pw_utils.h"
#include "common/telemetry/telemetry_specification.h"

namespace pwr {

namespace {

/// The file of a GUID; "" after a warning when nobody knows where such files are.
std::string pathOf(pw_u32_t guid) {
    const std::string& base = g_pluginEnvironment->getTarnwellDirectory();
    if (base.empty()) {
        logWarning("WARNING: Tarnwell base directory is not set\n");
        return {};
    }
    char digits[9] = {};
    std::to_chars(digits, digits + sizeof(digits), guid, 16);
    return base + "xml_configs" + "/" + "telemetry_0x" + digits + ".xml";
}

// Far more than any description has; what claims to be larger (a folder does) is none.
constexpr long MAX_FILE_SIZE = 256L << 20;

/// A file's bytes, not zeroed before they are read: most of loading a large file is touching memory.
struct FileText {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
};

int readWhole(const std::string& path, FileText& text) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openFileHandle(path, "rb"), &std::fclose);
    if (file == nullptr || std::fseek(file.get(), 0, SEEK_END) != 0) {
        return 1;
    }
    const long end = std::ftell(file.get());
    if (end < 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) {
        return 1;
    }
    if (end > MAX_FILE_SIZE) {
        return 1;
    }
    text.size = static_cast<std::size_t>(end);
    text.bytes = std::make_unique_for_overwrite<char[]>(text.size + 1);
    return std::fread(text.bytes.get(), 1, text.size, file.get()) == text.size ? 0 : 1;
}

/// False when the file cannot be read, or the memory does not hold it; else @p parsed says whether it is XML.
bool readSpecification(const std::string& path, TelemetrySpecification& specification, int& parsed) try {
    FileText text;
    if (readWhole(path, text) != 0) {
        return false;
    }
    parsed = specification.parse({text.bytes.get(), text.size});
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

int loadSpecification(pw_u32_t guid, TelemetrySpecification& specification) {
    const std::string path = pathOf(guid);
    if (path.empty()) {
        return 1;
    }
    if (!pw_fileExists(path)) {
        logWarning("WARNING: XML file for GUID 0x%x not found!\n", guid);
        return 1;
    }
    int parsed = 1;
    if (!readSpecification(path, specification, parsed)) {
        logWarning("WARNING: Failed to load XML %s\n", path.c_str());
        return 1;
    }
    if (parsed != 0) {
        logWarning(
            "WARNING: Could not read Telemetry Aggregation Facility specification XML file %s. The format "
            "is invalid.\n",
            path.c_str());
        return 1;
    }
    for (const std::string& problem : specification.problems()) {
        logWarning("WARNING: %s: %s\n", path.c_str(), problem.c_str());
    }
    if (!specification.problems().empty()) {
        logWarning(
            "WARNING: Metrics relying on the Telemetry Aggregation Facility driver may not collect properly "
            "for TAF: 0x%x.\n",
            guid);
    }
    return 0;
}

} // namespace

AggrTelemIndex::AggrTelemIndex() = default;
AggrTelemIndex::~AggrTelemIndex() = default;

AggrTelemIndex& AggrTelemIndex::instance() {
    static AggrTelemIndex index;
    return index;
}

int AggrTelemIndex::load(pw_u32_t guid) {
    std::erase(m_order, guid);
    auto specification = std::make_unique<TelemetrySpecification>();
    if (loadSpecification(guid, *specification) != 0) {
        m_specifications.erase(guid);
        logWarning(
            "WARNING: Metrics relying on the Telemetry Aggregation Facility driver are disabled for TAF: "
            "0x%x. The required XML configuration file is invalid, missing or the platform is not supported. "
            "Please see the Tarnwell User Guide and Release Notes for supported TAF platforms.\n",
            guid);
        return 1;
    }
    m_specifications[guid] = std::move(specification);
    m_order.push_back(guid);
    return 0;
}

void AggrTelemIndex::clear() {
    m_specifications.clear();
    m_order.clear();
}

const TelemetrySpecification* AggrTelemIndex::specificationOf_i(pw_u32_t guid) const {
    const auto found = m_specifications.find(guid);
    return found == m_specifications.end() ? nullptr : found->second.get();
}

bool AggrTelemIndex::isLoaded(pw_u32_t guid) const {
    return specificationOf_i(guid) != nullptr;
}

bool AggrTelemIndex::findSample(pw_u32_t guid, const std::string& name, pw_u16_t& id) const {
    const TelemetrySpecification* const specification = specificationOf_i(guid);
    return specification != nullptr && specification->findSample(name, id);
}

bool AggrTelemIndex::findField(pw_u32_t guid, const std::string& sample, const std::string& field,
                               pw_u16_t& lsb, pw_u16_t& msb) const {
    const TelemetrySpecification* const specification = specificationOf_i(guid);
    TelemetrySpecification::BitRange range;
    if (specification == nullptr || !specification->findField(sample, field, range)) {
        return false;
    }
    lsb = range.lsb;
    msb = range.msb;
    return true;
}

bool AggrTelemIndex::findGuidOf(const std::string& sample, pw_u32_t& guid) const {
    pw_u16_t id = 0;
    const auto found = std::find_if(m_order.begin(), m_order.end(),
                                    [&](pw_u32_t one) { return findSample(one, sample, id); });
    if (found == m_order.end()) {
        return false;
    }
    guid = *found;
    return true;
}

} // namespace pwr
