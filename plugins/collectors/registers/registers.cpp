#include "plugins/collectors/registers/registers.h"

#include "common/metadata/msg_metadata.h"
#include "common/platform/system_info.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/values/data.h"
#include "plugins/collectors/reading_time.h"

namespace registers {

namespace {

constexpr const char* DENIED_FIX =
    "run as root; or let this user read that file and give the program the capability CAP_SYS_RAWIO (setcap "
    "cap_sys_rawio+ep)";
constexpr const char* MISSING_FIX = "load the kernel's driver for them (modprobe msr)";

} // namespace

Registers::Registers() : CollectorPlugin("registers") {}

Registers::~Registers() = default;

int Registers::setOption(const std::string& key, const std::string& value) {
    if (key != "machine" || value.empty()) {
        return 1;
    }
    m_where = value;
    return 0;
}

const char* Registers::getDescription() const {
    return "Processor registers";
}

std::vector<std::string> Registers::getCollectorTypes() const {
    return {COLLECTOR_TYPE};
}

int Registers::openMachine_i(std::string& reason) {
    if (m_where == "/" && !pwr::platform::keepsCountersInFiles()) {
        reason = "this system does not let programs read processor registers";
        return 1;
    }
    if (!m_machine) {
        m_machine = pwr::openMachine(m_where, reason);
    }
    return m_machine ? 0 : 1;
}

MessageAvailability Registers::probe(const pwr::MsgMetadata& message) {
    using State = MessageAvailability::State;
    MessageInstances seen;
    std::vector<RegisterValue> values;
    if (openMachine_i(seen.reason) != 0) {
        return {State::ABSENT, seen.reason, {}};
    }
    if (const std::string error = findRegisters(*m_machine, message).error; !error.empty()) {
        return {State::INVALID, error, {}};
    }
    return find_i(message, values, seen) == 0 ? MessageAvailability()
                                              : MessageAvailability{State::ABSENT, seen.reason, seen.fix};
}

MessageAvailability Registers::probeWrite(const pwr::MsgMetadata& message) {
    return collectors::onlyReads(message, COLLECTOR_TYPE);
}

int Registers::open(const pwr::MsgMetadata& message, MessageInstances& out) {
    out = MessageInstances();
    std::vector<RegisterValue> values;
    if (g_pluginEnvironment->getTopologyManager() == nullptr) {
        out.reason = "the processor topology is not known";
        return 1;
    }
    if (openMachine_i(out.reason) != 0 || find_i(message, values, out) != 0 ||
        m_names.makeInstances(values, out) != 0) {
        out.instances.clear();
        return 1;
    }
    m_plans[message.getMsgID()] = std::make_unique<RegisterPlan>(*m_machine, std::move(values));
    return 0;
}

int Registers::find_i(const pwr::MsgMetadata& message, std::vector<RegisterValue>& values,
                      MessageInstances& out) {
    RegisterValues found = findRegisters(*m_machine, message);
    values = std::move(found.values);
    if (!found.error.empty()) {
        out.reason = found.error;
    } else if (found.hasAnswer) {
        return 0;
    } else if (!found.denied.empty()) {
        out.reason = found.denied + " may not be read";
        out.fix = DENIED_FIX;
    } else if (!found.silent.empty()) {
        out.reason = "message " + message.getMsgName() + ": " + found.silent +
                     " does not answer: it has no such register, or its processor is offline";
    } else {
        out.reason = "message " + message.getMsgName() + ": no file of processor registers matches";
        out.fix = MISSING_FIX;
    }
    return 1;
}

int Registers::read(const pwr::MsgMetadata& message, CollectionData& out) {
    const auto plan = m_plans.find(message.getMsgID());
    if (plan == m_plans.end()) {
        return 1;
    }
    collectors::stampReading(out, [&] { plan->second->read(); });
    return plan->second->store(out);
}

void Registers::close(const pwr::MsgMetadata& message) {
    m_plans.erase(message.getMsgID());
}

} // namespace registers

KRCOMMON_PLUGIN("registers", KR_PLUGIN_COLLECTOR, registers::Registers);
