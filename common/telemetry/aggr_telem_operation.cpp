#include "common/telemetry/aggr_telem_operation.h"

#include <memory>

#include "common/config/operation_kinds.h"
#include "common/config/tw_configfile_parser.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

// The configuration does not know this folder; so the folder enters itself.
[[maybe_unused]] const bool g_isEntered = [] {
    OperationKinds::add(AggrTelemOperation::c_collectorType, [](const std::string& name, const std::string&) {
        return std::make_unique<AggrTelemOperation>(name);
    });
    return true;
}();

} // namespace

AggrTelemOperation::AggrTelemOperation(const std::string& name) : HWOperation(name, c_collectorType) {}

AggrTelemOperation* AggrTelemOperation::clone() const {
    return std::make_unique<AggrTelemOperation>(*this).release();
}

bool AggrTelemOperation::isValidCommand(TWOpCommand command) const {
    return command != TWOpCommand::WRITE;
}

int AggrTelemOperation::resolve() {
    m_isResolved = parseAggrTelemOperationMetadata(getName(), *createMetadata(), m_info) == 0;
    return m_isResolved ? 0 : 1;
}

void AggrTelemOperation::setCounterInfo(const AggrTelemCounterInfo& info) {
    m_info = info;
    m_isResolved = true;
}

AggrTelemImmediate::AggrTelemImmediate(const std::string& ipName, const std::string& counter,
                                       const std::string& field)
    : m_operation(counter), m_counter(counter) {
    const std::pair<const char*, const std::string*> keys[] = {
        {"IP-NAME", &ipName}, {"COUNTER-NAME", &counter}, {"COUNTER-FIELD-NAME", &field}};
    for (const auto& [key, value] : keys) {
        if (!value->empty()) {
            m_operation.addKey(key, *value);
        }
    }
}

int AggrTelemImmediate::find_i() {
    if (m_operation.isResolved() || m_operation.resolve() == 0) {
        return 0;
    }
    pw_u32_t guid = 0;
    if (!AggrTelemIndex::instance().findGuidOf(m_counter, guid)) {
        logWarning("WARNING: Could not read the counter \"%s\": XML file not loaded. \n", m_counter.c_str());
    }
    return 1;
}

int AggrTelemImmediate::readSample_i(pw_u16_t id, pw_u64_t& sample) {
    AggrTelemOperation operation(m_operation);
    AggrTelemCounterInfo info = m_operation.getCounterInfo();
    info.sampleId = id;
    operation.setCounterInfo(info);
    if (Operation::dispatchRead(&operation, "") != 0) {
        return 1;
    }
    sample = operation.getSample();
    return 0;
}

int AggrTelemImmediate::read(pw_u64_t& value) {
    pw_u64_t sample = 0;
    if (find_i() != 0 || readSample_i(getCounterMetadata().sampleId, sample) != 0) {
        return 1;
    }
    value = getCounterMetadata().bitsOf(sample);
    return 0;
}

int AggrTelemImmediate::read(std::map<pw_u16_t, pw_u64_t>& samples) {
    if (find_i() != 0) {
        return 1;
    }
    std::map<pw_u16_t, pw_u64_t> read = samples;
    for (auto& [id, sample] : read) {
        if (readSample_i(id, sample) != 0) {
            return 1;
        }
    }
    samples = std::move(read);
    return 0;
}

int TWConfigFileParser::getAggrTelemCounterInfo(const std::string& name, AggrTelemCounterInfo& info) const {
    for (const Operation* operation : getOperationsOfType(AggrTelemOperation::c_collectorType)) {
        const std::unique_ptr<OperationMetadata> metadata = operation->createMetadata();
        for (const auto& [key, value] : metadata->getValues()) {
            if (operation->getName() == name || (key == "COUNTER-NAME" && value == name)) {
                return parseAggrTelemOperationMetadata(operation->getName(), *metadata, info);
            }
        }
    }
    logWarning("WARNING: Could not locate TAF counter '%s' in XML files\n", name.c_str());
    return 1;
}

} // namespace pwr
