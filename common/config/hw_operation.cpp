#include <algorithm>

#include "common/config/operation.h"
#include "common/config/tw_configfile_parser.h"
#include "common/plugin/collector_plugin.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

constexpr pw_u32_t BITS_PER_BYTE = 8;
constexpr pw_u32_t DEFAULT_WIDTH = 64;

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
    pw_u32_t width = DEFAULT_WIDTH;
    if (const std::string* const given = getValue("WIDTH")) {
        extract_number_i(*given, width);
    }
    return std::make_unique<OperationMetadata>(getName(), m_collectorType,
                                               width / BITS_PER_BYTE + (width % BITS_PER_BYTE == 0 ? 0 : 1),
                                               getOrgMsgTag(), m_pairs.get());
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
