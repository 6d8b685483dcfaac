#include "plugins/collectors/aggregator/aggregator.h"

#include <algorithm>

#include "common/config/input_msg.h"
#include "common/platform/system_info.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/values/data.h"
#include "plugins/collectors/reading_time.h"

namespace aggregator {

namespace {

using pwr::AggrTelemOperation;
using pwr::MachineStatus;
using Pairs = std::vector<std::pair<std::string, std::string>>;

/// The operation's record with the values of names filled in.
pwr::OperationMetadata filledIn(const AggrTelemOperation& operation, const Pairs& names) {
    const auto record = operation.createMetadata();
    pwr::OperationMetadata::ValueList keys = record->getValues();
    for (auto& [key, text] : keys) {
        for (const auto& [name, value] : names) {
            const std::string placeholder = "{" + name + "}";
            for (std::size_t at = text.find(placeholder); at != std::string::npos;
                 at = text.find(placeholder, at + value.size())) {
                text.replace(at, placeholder.size(), value);
            }
        }
    }
    return {record->getName(), record->getOperation(), record->getSize(), record->getOrgMsgTag(),
            std::move(keys)};
}

} // namespace

Aggregator::Aggregator() : CollectorPlugin("aggregator") {}

Aggregator::~Aggregator() = default;

int Aggregator::setOption(const std::string& key, const std::string& value) {
    if ((key != "machine" && key != "endpoints") || value.empty()) {
        return 1;
    }
    (key == "machine" ? m_where : m_table) = value;
    return 0;
}

const char* Aggregator::getDescription() const {
    return "Counters of telemetry aggregators";
}

std::vector<std::string> Aggregator::getCollectorTypes() const {
    return {AggrTelemOperation::c_collectorType};
}

int Aggregator::initialize() {
    std::string reason;
    m_machine = pwr::openMachine(m_where, reason);
    if (!m_machine) {
        pwr::logError("ERROR: %s\n", reason.c_str());
        return 1;
    }
    if (m_where == "/" && !pwr::platform::keepsCountersInFiles()) {
        m_reason = "this system has no files of telemetry aggregators";
    } else {
        loadTable_i();
    }
    return 0;
}

void Aggregator::loadTable_i() {
    std::string text;
    const MachineStatus status = m_machine->read(m_table, text);
    if (status == MachineStatus::DENIED) {
        m_reason = m_table + " may not be read";
        m_fix = collectors::DENIED_FIX;
        return;
    }
    if (status != MachineStatus::OK) {
        m_reason = "no telemetry endpoints are known: " + m_table + " is not there";
        m_fix = "list the machine's endpoints in that file";
        return;
    }
    std::vector<std::string> problems;
    m_endpoints = pwr::readEndpointTable(m_table, text, problems);
    for (const std::string& problem : problems) {
        pwr::logWarning("WARNING: %s\n", problem.c_str());
    }
    for (const pwr::TelemetryEndpoint& endpoint : m_endpoints) {
        g_pluginEnvironment->addLoadedTAF(endpoint.info);
    }
    m_reason = m_table + " names no usable endpoint";
    m_fix = "list the machine's endpoints in that file";
}

MessageAvailability Aggregator::probe(const pwr::MsgMetadata& message) {
    using State = MessageAvailability::State;
    if (m_endpoints.empty()) {
        return {State::ABSENT, m_reason, m_fix};
    }
    MessageInstances seen;
    std::vector<Counter> counters;
    loadDescriptions_i(message);
    const bool isThere = resolveCounters(message, *m_machine, m_endpoints, counters, seen) == 0 &&
                         check_i(counters, seen) == 0;
    return isThere ? MessageAvailability() : MessageAvailability{State::ABSENT, seen.reason, seen.fix};
}

MessageAvailability Aggregator::probeWrite(const pwr::MsgMetadata& message) {
    return collectors::onlyReads(message, AggrTelemOperation::c_collectorType);
}

int Aggregator::open(const pwr::MsgMetadata& message, MessageInstances& out) {
    out = MessageInstances();
    if (m_endpoints.empty()) {
        out.reason = m_reason;
        out.fix = m_fix;
        return 1;
    }
    std::vector<Counter> counters;
    loadDescriptions_i(message);
    if (resolveCounters(message, *m_machine, m_endpoints, counters, out) != 0 ||
        check_i(counters, out) != 0 || m_names.makeInstances(counters, out) != 0) {
        out.instances.clear();
        return 1;
    }
    m_plans[message.getMsgID()] = std::make_unique<SamplePlan>(*m_machine, std::move(counters));
    return 0;
}

/// A counter that neither its GUID nor its platform tells is looked for in the descriptions that are loaded: let
/// those be all of this machine.
void Aggregator::loadDescriptions_i(const pwr::MsgMetadata& message) {
    const auto& all = message.getMetaValues();
    const bool isNeeded = std::any_of(all.begin(), all.end(), [&message](const auto* operation) {
        return !collectors::isConstant(*operation) &&
               collectors::keyOf(message, *operation, "GUID").empty() &&
               collectors::keyOf(message, *operation, "IP-NAME").empty();
    });
    for (const pwr::TelemetryEndpoint& endpoint : m_endpoints) {
        const pw_u32_t guid = describedGuid(endpoint.info.guid);
        if (isNeeded && m_described.insert(guid).second && !pwr::AggrTelemIndex::instance().isLoaded(guid)) {
            pwr::AggrTelemIndex::instance().load(guid);
        }
    }
}

int Aggregator::check_i(const std::vector<Counter>& counters, MessageInstances& out) const {
    std::string file;
    SamplePlan plan(*m_machine, counters);
    plan.read();
    const MachineStatus status = plan.failure(file);
    if (status == MachineStatus::OK) {
        return 0;
    }
    if (status == MachineStatus::DENIED) {
        out.reason = file + " may not be read";
        out.fix = collectors::DENIED_FIX;
    } else {
        out.reason = file + " does not have the samples that " + m_table + " tells of";
        out.fix = "correct the endpoint's file, offset and size in " + m_table;
    }
    return 1;
}

int Aggregator::read(const pwr::MsgMetadata& message, CollectionData& out) {
    const auto plan = m_plans.find(message.getMsgID());
    if (plan == m_plans.end()) {
        return 1;
    }
    collectors::stampReading(out, [&] { plan->second->read(); });
    return plan->second->store(out);
}

void Aggregator::close(const pwr::MsgMetadata& message) {
    m_plans.erase(message.getMsgID());
}

int Aggregator::doImmediateRead(pwr::Operation* operation, const std::string& /*argument*/) {
    auto* const counter = dynamic_cast<AggrTelemOperation*>(operation);
    if (counter == nullptr) {
        pwr::logError("ERROR: Only counters of telemetry aggregators can be read at once here\n");
        return -1;
    }
    return counter->isResolved() || counter->resolve() == 0 ? readSample_i(*counter) : -1;
}

int Aggregator::doImmediateRead(const pwr::InputMsg* message, const Pairs& values) {
    if (message == nullptr) {
        return -1;
    }
    for (pwr::Operation* const operation : message->getOperations()) {
        auto* const counter = dynamic_cast<AggrTelemOperation*>(operation);
        if (counter == nullptr) {
            continue; // the message's constants
        }
        pwr::AggrTelemCounterInfo info;
        if (pwr::parseAggrTelemOperationMetadata(counter->getName(), filledIn(*counter, values), info) != 0) {
            return -1;
        }
        counter->setCounterInfo(info);
        if (readSample_i(*counter) != 0) {
            return -1;
        }
    }
    return 0;
}

int Aggregator::readSample_i(AggrTelemOperation& operation) const {
    std::string path;
    std::string reason;
    std::uint64_t offset = 0;
    std::uint64_t sample = 0;
    if (findSample(m_endpoints, operation.getCounterInfo(), path, offset, reason) != 0) {
        pwr::logError("ERROR: %s: %s\n", operation.getName().c_str(), reason.c_str());
        return -1;
    }
    // A file of its own: those of messages may be in use by the thread that reads them.
    const MachineStatus status = collectors::BinaryFile(*m_machine, path).readNumber(offset, sample);
    if (status != MachineStatus::OK) {
        pwr::logError("ERROR: %s: %s cannot be read (%s)\n", operation.getName().c_str(), path.c_str(),
                      toText(status));
        return -1;
    }
    operation.setSample(sample);
    return 0;
}

} // namespace aggregator

KRCOMMON_PLUGIN("aggregator", KR_PLUGIN_COLLECTOR, aggregator::Aggregator);
