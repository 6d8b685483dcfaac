#include "plugins/collectors/declared_feature.h"

#include <string>
#include <string_view>
#include <utility>

#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"

namespace pwr {

namespace {

constexpr unsigned BITS_PER_BYTE = 8;

void addValue(OperationMetadata::ValueList& values, const char* key, std::string value) {
    if (!value.empty()) {
        values.emplace_back(key, std::move(value));
    }
}

} // namespace

void appendDeclaration(const FeatureRow& feature, const MessageRow& message, const char* collectorType,
                       unsigned number, std::vector<std::unique_ptr<Metadata>>& declarations) {
    MetricMetadata::ValueList constants;
    for (const ConstantRow& constant : message.constants) {
        addValue(constants, constant.key, constant.value);
    }
    addValue(constants, "WIDTH", std::to_string(message.width));
    auto record = std::make_unique<MsgMetadata>(1, number, number, feature.name, message.name);
    for (const OperationRow& operation : message.operations) {
        OperationMetadata::ValueList values;
        addValue(values, "PATH", operation.path);
        addValue(values, "FIELD", operation.field);
        addValue(values, "DESCRIPTOR", operation.descriptor);
        record->addMetaValue(OperationMetadata(operation.name, collectorType, message.width / BITS_PER_BYTE,
                                               message.name, std::move(values)));
    }
    record->addMetaValue(std::make_unique<CONSTANTOperationMetadata>("metric", constants));
    for (const char* trigger : {"BEGIN", "POLL", "END"}) {
        record->addTrigger(trigger);
    }
    declarations.push_back(std::move(record));
    declarations.push_back(std::make_unique<MetricMetadata>(1, number, std::move(constants)));
}

} // namespace pwr
