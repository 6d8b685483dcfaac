#include "common/metrics/data_element.h"

#include "common/plugin/logger.h"

namespace pwr {

int DataElement::refuseEntity_i() {
    logWarning("WARNING: Please provide a valid entity.\n");
    return 1;
}

int DataElement::refuseDescriptor_i() {
    logWarning("WARNING: Please provide a valid descriptor.\n");
    return 1;
}

int DataElement::setAdditionalInfo(const DynamicAttributeValueManager* info) {
    if (info == nullptr) {
        logWarning("WARNING: Please provide a valid DynamicAttributeValueManager.\n");
        return 1;
    }
    m_info = info;
    return 0;
}

const Data* DataElement::getValue() const {
    if (!m_value) {
        logWarning(
            "WARNING: Value is not set in the DataElement object. Returning an invalid Data object.\n");
        return nullptr;
    }
    return &*m_value;
}

const DataDescriptor* DataElement::getOrvexDescriptor() const {
    if (m_reportingDescriptor == nullptr) {
        logWarning(
            "WARNING: Orvex descriptor is not set. Was this DataElement objectever added to Metric before "
            "calling getOrvexDescriptor?\n");
    }
    return m_reportingDescriptor;
}

} // namespace pwr
