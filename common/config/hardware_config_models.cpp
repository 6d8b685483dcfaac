// The rules of statements that say what a platform is recognised by.

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

#include "common/config/hardware_config_grammar.h"
#include "common/config/specifier_values.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/pw_utils.h"

namespace pwr {

int HardwareConfigGrammar::modelRule_i() {
    m_cursor.take();
    static constexpr std::array SPECIAL = {
        Branch{"FMS", RuleId::modelFMSRule},
        Branch{"PCI", RuleId::modelPCIRule},
        Branch{"TAF", RuleId::modelTAFRule},
        Branch{"DEPRECATED-GUIDS", RuleId::modelTAFDeprecatedGUIDsRule},
    };
    const std::string_view kind = m_cursor.peek();
    const auto* const special =
        std::find_if(SPECIAL.begin(), SPECIAL.end(), [kind](const Branch& b) { return b.word == kind; });
    return call_i(special == SPECIAL.end() ? RuleId::modelOtherRule : special->rule);
}

int HardwareConfigGrammar::modelFMSRule_i() {
    m_cursor.take();
    if (m_platform->getName() == Parser::c_rootName) {
        logError("ERROR: \"%s\" is NOT allowed to have \"FMS\" as a model specifier!\n",
                 m_platform->getName().c_str());
        return fail_i("the root of all platforms is no processor");
    }
    if (expect_i("CONSTANT") != 0 || expect_i("VALUE") != 0) return -1;
    return call_i(RuleId::fmsValues);
}

int HardwareConfigGrammar::fmsValues_i() {
    const std::string_view value = m_cursor.take();
    ListItems items(value);
    if (!items.next(m_item)) {
        m_item = value; // nothing is no specifier either
        return call_i(RuleId::fmsValue);
    }
    do {
        if (call_i(RuleId::fmsValue) != 0) return -1;
    } while (items.next(m_item));
    return 0;
}

int HardwareConfigGrammar::fmsValue_i() {
    FMSValue fms;
    if (!readFMSValue(m_item, fms)) {
        m_problem = "FAMILY.MODEL or FAMILY.MODEL.STEPPING expected, each from 0 to 255, decimal or 0x...";
        throw std::invalid_argument("ERROR: " + std::string(m_item) + " is NOT a valid FMS specifier!");
    }
    m_platform->addSpecifier(std::make_unique<FMSConfigSpecifier>(fms.family, fms.model, fms.stepping));
    return 0;
}

int HardwareConfigGrammar::modelPCIRule_i() {
    m_cursor.take();
    if (expect_i("CONSTANT") != 0 || expect_i("VALUE") != 0) return -1;
    return call_i(RuleId::pciValue);
}

int HardwareConfigGrammar::pciValue_i() {
    // One specifier has a comma of its own, so the list is taken two items at a time.
    ListItems items(m_cursor.take());
    std::string_view vendor;
    bool hasAny = false;
    while (items.next(vendor)) {
        std::string_view device;
        PCIValue value;
        items.next(device);
        if (!readPCIValue(vendor, device, value)) {
            hasAny = false;
            break;
        }
        m_platform->addSpecifier(std::make_unique<PCIConfigSpecifier>(value.vendor, value.device));
        hasAny = true;
    }
    if (!hasAny) {
        logError("ERROR: Invalid syntax for \"PCI\" model specifier\n");
        return fail_i(
            "Invalid version and/or device passed to PCI specifier; VENDOR=0x...,DEVICE=0x... expected");
    }
    return 0;
}

/// The GUIDs of the value; none, or one that is none, is an error.
int HardwareConfigGrammar::readGUIDs_i(std::vector<pw_u32_t>& guids) {
    ListItems items(m_cursor.take());
    for (std::string_view item; items.next(item);) {
        pw_u32_t guid = 0;
        if (!readGUIDValue(item, guid)) {
            logError("ERROR: Invalid syntax for \"TAF\" GUID specifier\n");
            return fail_i("Invalid version and/or device passed to TAF specifier; GUID=0x... expected");
        }
        guids.push_back(guid);
    }
    if (guids.empty()) {
        logError("ERROR: No GUIDs specified for \"TAF\" GUID specifier\n");
        return fail_i("GUID=0x... expected");
    }
    return 0;
}

int HardwareConfigGrammar::modelTAFRule_i() {
    m_cursor.take();
    if (expect_i("CONSTANT") != 0 || expect_i("VALUE") != 0) return -1;
    return call_i(RuleId::TAFValue);
}

int HardwareConfigGrammar::TAFValue_i() {
    std::vector<pw_u32_t> guids;
    if (readGUIDs_i(guids) != 0) return -1;
    for (const pw_u32_t guid : guids) {
        if (m_platform->noteTAFGUID(guid)) {
            g_pluginEnvironment->addTAFPlatformGUID(m_platform->getName(), guid);
        }
    }
    m_platform->addSpecifier(std::make_unique<TAFConfigSpecifier>(guids));
    return 0;
}

int HardwareConfigGrammar::modelTAFDeprecatedGUIDsRule_i() {
    m_cursor.take();
    if (expect_i("CONSTANT") != 0 || expect_i("VALUE") != 0) return -1;
    return call_i(RuleId::TAFDeprecatedGUIDs);
}

int HardwareConfigGrammar::TAFDeprecatedGUIDs_i() {
    std::vector<pw_u32_t> guids;
    if (readGUIDs_i(guids) != 0) return -1;
    m_platform->addDeprecatedGUIDs(guids);
    return 0;
}

int HardwareConfigGrammar::modelOtherRule_i() {
    m_item = m_cursor.take();
    return call_i(RuleId::modelSpec);
}

int HardwareConfigGrammar::modelSpec_i() {
    if (expect_i("CONSTANT") != 0) return -1;
    static constexpr std::array FORMS = {Branch{"VALUE", RuleId::modelValue},
                                         Branch{"RANGE", RuleId::modelRange}};
    return callBranch_i(FORMS);
}

int HardwareConfigGrammar::modelValue_i() {
    m_cursor.take();
    m_platform->addSpecifier(
        std::make_unique<ValueConfigSpecifier>(std::string(m_item), std::string(m_cursor.take())));
    return 0;
}

int HardwareConfigGrammar::modelRange_i() {
    m_cursor.take();
    return call_i(RuleId::modelRangeSub);
}

int HardwareConfigGrammar::modelRangeSub_i() {
    const std::string_view value = m_cursor.take();
    const std::size_t comma = value.find(',');
    pw_u32_t low = 0;
    pw_u32_t high = 0;
    if (comma == std::string_view::npos ||
        extract_number_i(std::string(trimBlanks(value.substr(0, comma))), low) != 0 ||
        extract_number_i(std::string(trimBlanks(value.substr(comma + 1))), high) != 0) {
        logError("ERROR: range specifier MUST be a number!\n");
        return fail_i("LOW,HIGH expected, two whole numbers of 32 bits");
    }
    m_platform->addSpecifier(std::make_unique<RangeConfigSpecifier>(std::string(m_item), low, high));
    return 0;
}

} // namespace pwr
