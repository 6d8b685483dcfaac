#include "plugins/collectors/windows_counters/windows_counters.h"

#include <algorithm>
#include <limits>

#include "common/metadata/msg_metadata.h"
#include "common/model/data_descriptor.h"
#include "common/model/data_handle_provider.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/tw_clock.h"
#include "common/values/data.h"

namespace windows_counters {

namespace {

using pwr::OperationMetadata;
using State = MessageAvailability::State;

constexpr const char* PROCESSOR_TIMES = "processor-times";
constexpr const char* MEMORY = "memory";

std::string valueOf(const OperationMetadata& operation, const std::string& key) {
    for (const auto& [name, value] : operation.getValues()) {
        if (name == key) {
            return value;
        }
    }
    return {};
}

const pwr::DataDescriptor* descriptorOf(const std::string& name) {
    if (name.empty()) {
        return nullptr;
    }
    const pwr::DataDescriptor* known = pwr::DataHandleProvider::findDescriptor(name);
    return known != nullptr ? known : pwr::DataDescriptorBuilder(name).build();
}

} // namespace

WindowsCounters::WindowsCounters() : CollectorPlugin("windows_counters") {}

WindowsCounters::~WindowsCounters() = default;

int WindowsCounters::setOption(const std::string& key, const std::string& value) {
    if (key != "machine") {
        return 1;
    }
    m_isLive = value == "/";
    return 0;
}

const char* WindowsCounters::getDescription() const {
    return "Counters that Windows gives by calls";
}

std::vector<std::string> WindowsCounters::getCollectorTypes() const {
    return {COLLECTOR_TYPE};
}

int WindowsCounters::initialize() {
    if (!m_isLive) {
        return 0;
    }
    m_sources.emplace(PROCESSOR_TIMES, makeProcessorTimes());
    m_sources.emplace("network-interfaces", makeNetworkInterfaces());
    m_sources.emplace(MEMORY, makeMemory());
    return 0;
}

CounterSource* WindowsCounters::findSource_i(const std::string& path) const {
    const auto source = m_sources.find(path);
    return source == m_sources.end() ? nullptr : source->second.get();
}

MessageAvailability WindowsCounters::probe(const pwr::MsgMetadata& message) {
    if (!m_isLive) {
        return {State::NOT_HERE, {}, {}};
    }
    bool isHere = false;
    for (const OperationMetadata* operation : message.getMetaValues()) {
        if (operation->getOperation() == pwr::CONSTANTOperationMetadata::c_operation) {
            continue;
        }
        std::string reason;
        std::size_t counter = 0;
        CounterSource* source = findCounter_i(*operation, counter, reason);
        if (source == nullptr) {
            return {State::INVALID, reason, {}};
        }
        isHere = isHere || (source->refresh() && !source->owners().empty());
    }
    return {isHere ? State::AVAILABLE : State::ABSENT, {}, {}};
}

MessageAvailability WindowsCounters::probeWrite(const pwr::MsgMetadata& message) {
    return {State::INVALID,
            "message " + message.getMsgName() + ": WRITE-WHEN: " + COLLECTOR_TYPE + " is only read",
            {}};
}

/// The source and the number of an operation's counter; null with the reason.
CounterSource* WindowsCounters::findCounter_i(const OperationMetadata& operation, std::size_t& counter,
                                              std::string& reason) const {
    const std::string path = valueOf(operation, "PATH");
    const std::string field = valueOf(operation, "FIELD");
    CounterSource* source = findSource_i(path);
    if (source == nullptr) {
        reason = "operation " + operation.getName() + ": PATH \"" + path + "\" is no source";
        return nullptr;
    }
    const auto names = source->counters();
    const auto found = std::find(names.begin(), names.end(), field);
    if (found == names.end()) {
        reason = "operation " + operation.getName() + ": FIELD \"" + field + "\" is no counter of " + path;
        return nullptr;
    }
    counter = static_cast<std::size_t>(found - names.begin());
    return source;
}

int WindowsCounters::open(const pwr::MsgMetadata& message, MessageInstances& out) {
    out = MessageInstances();
    std::vector<Value> values;
    if (g_pluginEnvironment->getTopologyManager() == nullptr) {
        out.reason = "the processor topology is not known";
        return 1;
    }
    for (const OperationMetadata* operation : message.getMetaValues()) {
        const bool isConstant = operation->getOperation() == pwr::CONSTANTOperationMetadata::c_operation;
        if (!isConstant && addOperation_i(*operation, values, out) != 0) {
            out.instances.clear();
            return 1;
        }
    }
    if (values.empty()) {
        out.reason = "message " + message.getMsgName() + ": nothing on this machine matches";
        return 1;
    }
    m_messages[message.getMsgID()] = std::move(values);
    return 0;
}

int WindowsCounters::addOperation_i(const OperationMetadata& operation, std::vector<Value>& values,
                                    MessageInstances& out) {
    std::size_t counter = 0;
    CounterSource* source = findCounter_i(operation, counter, out.reason);
    if (source == nullptr) {
        return 1;
    }
    const std::string path = valueOf(operation, "PATH");
    if (!source->refresh()) {
        out.reason = "operation " + operation.getName() + ": PATH \"" + path + "\" does not answer";
        return 1;
    }
    const pwr::DataDescriptor* descriptor = descriptorOf(valueOf(operation, "DESCRIPTOR"));
    for (const CounterSource::Owner& owner : source->owners()) {
        const pwr::EntityHandle* entity = entityOf_i(path, owner);
        if (entity != nullptr) {
            out.instances.push_back({entity, descriptor});
            values.push_back({source, owner.key, counter});
        }
    }
    return 0;
}

const pwr::EntityHandle* WindowsCounters::entityOf_i(const std::string& path,
                                                     const CounterSource::Owner& owner) {
    if (path == PROCESSOR_TIMES) {
        return pwr::EntityHandle::getCPUThreadHandle(static_cast<int>(owner.key));
    }
    if (path == MEMORY) {
        return pwr::EntityHandle::getSystemHandle();
    }
    const pwr::EntityHandle*& entity = m_interfaces[owner.key];
    if (entity == nullptr) {
        entity = pwr::EntityHandle::create(owner.name, pwr::EntityHandle::getSystemHandle());
    }
    return entity;
}

int WindowsCounters::read(const pwr::MsgMetadata& message, CollectionData& out) {
    const auto values = m_messages.find(message.getMsgID());
    if (values == m_messages.end()) {
        return 1;
    }
    const pw_u64_t begin = pwr::getTWATimestamp();
    const CounterSource* fresh = nullptr;
    bool isAnswered = false;
    int result = 0;
    for (const Value& value : values->second) {
        if (value.source != fresh) {
            isAnswered = value.source->refresh();
            fresh = value.source;
        }
        std::uint64_t bits = 0;
        const bool isKnown = isAnswered && value.source->value(value.key, value.counter, bits);
        result |= isKnown ? out.add(bits) : out.addMissing();
    }
    const pw_u64_t end = pwr::getTWATimestamp();
    const pw_u64_t span = end > begin ? end - begin : 0;
    out.header().timestamp = begin + span / 2;
    out.header().read_span =
        static_cast<pw_u32_t>(std::min<pw_u64_t>(span, std::numeric_limits<pw_u32_t>::max()));
    return result;
}

void WindowsCounters::close(const pwr::MsgMetadata& message) {
    m_messages.erase(message.getMsgID());
}

} // namespace windows_counters

KRCOMMON_PLUGIN("windows_counters", KR_PLUGIN_COLLECTOR, windows_counters::WindowsCounters);
