#include "tarnwell/message_check.h"

#include "common/config/input_msg.h"
#include "common/config/statement.h"
#include "common/metadata/msg_metadata.h"
#include "common/metrics/metric_declaration.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace tarnwell {
namespace {

// The highest processor number that any supported system has.
constexpr unsigned kHighestProcessor = 65535;

void checkMetric(const pwr::MsgMetadata& record, std::vector<std::string>& complaints) {
    pwr::MetricDeclaration metric;
    std::string error;
    const std::size_t before = complaints.size();
    for (const auto& [key, value] : constantsOf(record)) {
        if (metric.set(key, value, error) != 0) {
            complaints.push_back(error);
        }
    }
    if (complaints.size() == before && hasMetric(record) && metric.parse(constantsOf(record), error) != 0) {
        complaints.push_back(error);
    }
    if (pwr::checkQuantity(metric.quantity, error) != 0) {
        complaints.push_back("QUANTITY: " + error);
    }
}

void checkWidths(const pwr::MsgMetadata& record, std::vector<std::string>& complaints) {
    std::set<std::string> widths;
    for (const pwr::OperationMetadata* operation : record.getMetaValues()) {
        for (const auto& [key, value] : operation->getValues()) {
            if (key == "WIDTH") {
                widths.insert(value);
            }
        }
    }
    if (widths.size() > 1) {
        complaints.push_back("WIDTH: the counters of one message have one width; make a message of each");
    }
}

} // namespace

std::vector<std::pair<std::string, std::string>> constantsOf(const pwr::MsgMetadata& record) {
    for (const pwr::OperationMetadata* operation : record.getMetaValues()) {
        if (operation->getOperation() == pwr::CONSTANTOperationMetadata::c_operation) {
            return operation->getValues();
        }
    }
    return {};
}

std::string constantOf(const pwr::MsgMetadata& record, const std::string& key) {
    for (const auto& [name, value] : constantsOf(record)) {
        if (name == key) {
            return value;
        }
    }
    return {};
}

bool hasMetric(const pwr::MsgMetadata& record) {
    // Keys that only tell collectors whom values belong to make no metric.
    return !constantOf(record, "METRIC-NAME").empty() || !constantOf(record, "CONTAINER-TAG").empty() ||
           !constantOf(record, "METRIC-TYPE").empty();
}

bool isRead(const pwr::InputMsg& message) {
    return message.getCommand() != pwr::TWOpCommand::WRITE;
}

int readProcessor(const pwr::InputMsg& message, int& processor) {
    processor = -1;
    const std::string_view text = pwr::trimBlanks(message.getCPUString());
    if (text.empty() || text == "ALL") {
        return 0;
    }
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number > kHighestProcessor) {
        return 1;
    }
    processor = static_cast<int>(number);
    return 0;
}

std::vector<std::string> complaintsOf(const pwr::InputMsg& message, const pwr::MsgMetadata& record,
                                      const std::vector<pwr::InputMsg*>& capability) {
    std::vector<std::string> complaints;
    if (isRead(message)) {
        checkMetric(record, complaints);
        checkWidths(record, complaints);
    } else if (hasMetric(record)) {
        complaints.push_back("METRIC-NAME, METRIC-TYPE and CONTAINER-TAG: what is written gives no readings");
    }
    int processor = -1;
    if (readProcessor(message, processor) != 0) {
        complaints.push_back(
            "READ-WHICH-CPU or WRITE-WHICH-CPU: expected a processor's number or ALL, got \"" +
            message.getCPUString() + "\"");
    }
    const std::string others = constantOf(record, "INSTEAD-OF");
    pwr::ListItems items(others);
    for (std::string_view item; items.next(item);) {
        const auto isNamed = [item](const pwr::InputMsg* other) { return other->getName() == item; };
        if (item == message.getName() || std::none_of(capability.begin(), capability.end(), isNamed)) {
            complaints.push_back("INSTEAD-OF: the capability has no other message \"" + std::string(item) +
                                 "\"");
        }
    }
    return complaints;
}

} // namespace tarnwell
