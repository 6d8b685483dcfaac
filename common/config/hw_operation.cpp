#include <algorithm>
#include <string_view>
#include <utility>

#include "common/config/operation.h"
#include "common/config/tw_configfile_parser.h"
#include "common/plugin/collector_plugin.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

constexpr pw_u32_t BITS_PER_BYTE = 8;
constexpr pw_u32_t DEFAULT_WIDTH = 64;

pw_u32_t bytesOf(const std::string* width) {
    pw_u32_t bits = DEFAULT_WIDTH;
    if (width != nullptr) {
        extract_number_i(*width, bits);
    }
    return bits / BITS_PER_BYTE + (bits % BITS_PER_BYTE == 0 ? 0 : 1);
}

/// "KEY.part" as its two halves; no part where it has none.
std::pair<std::string_view, std::string_view> splitKey(std::string_view key) {
    const std::size_t point = key.find('.');
    return point == std::string_view::npos || point == 0 || point + 1 == key.size()
               ? std::pair(key, std::string_view())
               : std::pair(key.substr(0, point), key.substr(point + 1));
}

struct Part {
    std::string_view name;
    OrderedPairs own;
};

} // namespace

HWOperation::HWOperation(const std::string& name, const std::string& collectorType)
    : Operation(name), m_collectorType(collectorType) {}

HWOperation* HWOperation::clone() const {
    return new HWOperation(*this);
}

int HWOperation::addKey(std::string_view key, std::string_view value) {
    return m_pairs.add(key, value) ? 0 : -1;
}

std::unique_ptr<OperationMetadata> HWOperation::createMetadata() const {
    return std::make_unique<OperationMetadata>(getName(), m_collectorType, bytesOf(getValue("WIDTH")),
                                               getOrgMsgTag(), m_pairs.get());
}

std::vector<std::unique_ptr<OperationMetadata>> HWOperation::createAllMetadata() const {
    std::vector<Part> parts;
    for (const auto& [key, value] : m_pairs.get()) {
        const auto [word, name] = splitKey(key);
        if (name.empty()) {
            continue;
        }
        auto part =
            std::find_if(parts.begin(), parts.end(), [n = name](const Part& p) { return p.name == n; });
        if (part == parts.end()) {
            part = parts.insert(parts.end(), Part{name, {}});
        }
        part->own.add(word, value);
    }
    if (parts.empty()) {
        return Operation::createAllMetadata();
    }
    std::vector<std::unique_ptr<OperationMetadata>> all;
    for (const Part& part : parts) {
        OrderedPairs keys;
        for (const auto& [key, value] : m_pairs.get()) {
            if (splitKey(key).second.empty() && !part.own.contains(key)) {
                keys.add(key, value);
            }
        }
        for (const auto& [key, value] : part.own.get()) {
            keys.add(key, value);
        }
        all.push_back(std::make_unique<OperationMetadata>(std::string(part.name), m_collectorType,
                                                          bytesOf(keys.find("WIDTH")), getOrgMsgTag(),
                                                          keys.get()));
    }
    return all;
}

bool HWOperation::canSetCategory() const {
    return true;
}

bool HWOperation::isValidCategory(const std::string& category) const {
    const TWConfigFileParser* const parser = TWConfigFileParser::current();
    return parser != nullptr && parser->isCategoryKnown(m_collectorType, category);
}

bool HWOperation::isOperationSuitableFor(const CollectorPlugin* collector) const {
    if (collector == nullptr) {
        return false;
    }
    const std::vector<std::string> types = collector->getCollectorTypes();
    return std::find(types.begin(), types.end(), m_collectorType) != types.end();
}

} // namespace pwr
