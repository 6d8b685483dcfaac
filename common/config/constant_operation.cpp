#include "common/config/operation.h"
#include "common/plugin/logger.h"

namespace pwr {

CONSTANTOperation::CONSTANTOperation(const std::string& name) : Operation(name) {}
CONSTANTOperation::~CONSTANTOperation() = default;

CONSTANTOperation::CONSTANTOperation(const CONSTANTOperation& other)
    : Operation(other), m_pairs(other.m_pairs) {}

CONSTANTOperation& CONSTANTOperation::operator=(const CONSTANTOperation& other) {
    if (this != &other) {
        Operation::operator=(other);
        m_pairs = other.m_pairs;
        m_metadata.reset();
    }
    return *this;
}

CONSTANTOperation* CONSTANTOperation::clone() const {
    return new CONSTANTOperation(*this);
}

bool CONSTANTOperation::doesKeyExist_i(std::string_view key) const {
    return m_pairs.contains(key);
}

int CONSTANTOperation::addKey(std::string_view key, std::string_view value) {
    if (doesKeyExist_i(key)) {
        logError("ERROR: key %s already set!\n", std::string(key).c_str());
        return -1;
    }
    m_pairs.add(key, value);
    if (m_metadata != nullptr) {
        *m_metadata = CONSTANTOperationMetadata(getName(), m_pairs.get());
    }
    return 0;
}

std::unique_ptr<OperationMetadata> CONSTANTOperation::createMetadata() const {
    return std::make_unique<CONSTANTOperationMetadata>(getName(), m_pairs.get());
}

bool CONSTANTOperation::isOperationSuitableFor(const CollectorPlugin* collector) const {
    return collector != nullptr;
}

const CONSTANTOperationMetadata* CONSTANTOperation::getOperationMetadata() const {
    if (m_metadata == nullptr) {
        m_metadata = std::make_unique<CONSTANTOperationMetadata>(getName(), m_pairs.get());
    }
    return m_metadata.get();
}

} // namespace pwr
