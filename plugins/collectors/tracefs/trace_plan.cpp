#include "plugins/collectors/tracefs/trace_plan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "plugins/collectors/message_keys.h"
#include "plugins/collectors/path_expansion.h"
#include "plugins/collectors/tracefs/trace_source.h"

namespace tracefs {

namespace {

using collectors::ExpandedPath;
using collectors::keyOf;
using pwr::MachineStatus;

constexpr std::array<std::string_view, 12> KEYS = {"FIELD",    "CPU-FIELD", "ENTITY", "PATH",
                                                   "RAW-TYPE", "NAMES",     "STATES", "STATES-FILE",
                                                   "LEAVING",  "WITNESS",   "WIDTH",  "DESCRIPTOR"};

std::string_view takeItem(std::string_view& list, char separator) {
    constexpr std::string_view BLANKS = " \t";
    const std::size_t end = std::min(list.find(separator), list.size());
    std::string_view item = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    item.remove_prefix(std::min(item.find_first_not_of(BLANKS), item.size()));
    return item.substr(0, item.find_last_not_of(BLANKS) + 1);
}

bool parseNumber(std::string_view text, std::uint64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

/// "0=HI,1=TIMER"; false when it is anything else.
bool parseNames(std::string_view text, NumberNames& names, std::vector<std::uint64_t>& order) {
    while (!text.empty()) {
        std::string_view name = takeItem(text, ',');
        std::uint64_t number = 0;
        if (!parseNumber(takeItem(name, '='), number) || name.empty()) {
            return false;
        }
        names.insert_or_assign(number, std::string(name));
        if (std::find(order.begin(), order.end(), number) == order.end()) {
            order.push_back(number);
        }
    }
    return true;
}

class Planner {
public:
    Planner(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message,
            const pwr::OperationMetadata& operation, TracePlan& plan)
        : m_machine(machine), m_message(message), m_operation(operation), m_plan(plan) {}

    void make() {
        if (readKeys_i() == 0 && checkTriggers_i() == 0 && findTracepoints_i() == 0 && findOwners_i() == 0) {
            readStates_i();
        }
    }

private:
    const std::string& key_i(const char* key) const { return keyOf(m_message, m_operation, key); }
    int fail_i(const char* key, const std::string& what) {
        m_plan.error = collectors::complaint(m_message, m_operation, key, what);
        return 1;
    }

    int readKeys_i() {
        collectors::RawType type = collectors::RawType::UINT;
        if (collectors::rawTypeOf(m_message, m_operation, type, m_plan.error) != 0) {
            return 1;
        }
        m_plan.isText = type == collectors::RawType::STRING;
        if (!m_plan.isText && key_i("FIELD").empty()) {
            return fail_i("FIELD",
                          "a field of the event is needed; RAW-TYPE=STRING without one gives events' names");
        }
        std::vector<std::uint64_t> order;
        if (!parseNames(key_i("NAMES"), m_plan.names, order)) {
            return fail_i("NAMES", "expected NUMBER=NAME,NUMBER=NAME");
        }
        // The metric's own check has more to say of it.
        parseNames(key_i("STATES"), m_plan.states, m_plan.stateOrder);
        std::uint64_t leaving = 0;
        if (!key_i("LEAVING").empty() && !parseNumber(key_i("LEAVING"), leaving)) {
            return fail_i("LEAVING", "expected a number");
        }
        if (!key_i("LEAVING").empty()) {
            m_plan.leaving = leaving;
        }
        m_plan.witness = key_i("WITNESS");
        return 0;
    }

    int checkTriggers_i() {
        for (const std::string& name : m_message.getTracepointNames()) {
            const std::size_t colon = name.find(':');
            if (colon == 0 || colon == std::string::npos || colon + 1 == name.size() ||
                name.find_first_of("/ ") != std::string::npos ||
                name.find(':', colon + 1) != std::string::npos) {
                m_plan.error = "message " + m_message.getMsgName() + ": tracepoint \"" + name +
                               "\": expected SYSTEM:EVENT, such as power:cpu_idle";
                return 1;
            }
        }
        if (m_message.getTracepointNames().empty()) {
            m_plan.error =
                "message " + m_message.getMsgName() + ": its trigger must be TRACEPOINT=SYSTEM:EVENT,...";
            return 1;
        }
        return 0;
    }

    /// A kernel that lacks some of them still has the others.
    int findTracepoints_i() {
        std::string missing;
        for (const std::string& name : m_message.getTracepointNames()) {
            const std::size_t colon = name.find(':');
            Tracepoint point{name, name.substr(colon + 1), 0, {}, {}};
            const std::string path = std::string(TRACING_FOLDER) + "/events/" + name.substr(0, colon) + "/" +
                                     point.event + "/format";
            std::string text;
            std::string what;
            EventFormat format;
            if (m_machine.read(path, text) != MachineStatus::OK) {
                missing += (missing.empty() ? "" : ", ") + name;
            } else if (format.parse(text, what) != 0) {
                m_plan.reason = "tracepoint " + name + ": " + what;
            } else if (findFields_i(format, point, what)) {
                m_plan.tracepoints.push_back(std::move(point));
            } else {
                m_plan.reason = "tracepoint " + name + ": the kernel gives it no field " + what;
            }
        }
        if (m_plan.tracepoints.empty() && m_plan.reason.empty()) {
            m_plan.reason = "the kernel has no tracepoint " + missing;
        }
        return m_plan.tracepoints.empty() ? 1 : 0;
    }

    /// FIELD names one or more fields, of which the first that the event has is meant. A name of an event can do
    /// without.
    bool findFields_i(const EventFormat& format, Tracepoint& point, std::string& missing) const {
        const std::string& fields = key_i("FIELD");
        std::string_view list = fields;
        while (!list.empty() && !point.value) {
            if (const EventField* field = format.find(takeItem(list, ','))) {
                point.value = *field;
            }
        }
        const bool isUsable =
            m_plan.isText || (point.value.has_value() && point.value->kind == EventField::Kind::NUMBER);
        if (!isUsable) {
            missing = fields;
        }
        const std::string& processor = key_i("CPU-FIELD");
        const EventField* const field = format.find(processor);
        if (field != nullptr && field->kind == EventField::Kind::NUMBER) {
            point.processor = *field;
        } else if (!processor.empty() && isUsable) {
            missing = processor;
            return false;
        }
        point.id = format.id;
        return isUsable;
    }

    int findOwners_i() {
        const std::string& entity = key_i("ENTITY");
        const bool isOfSystem = entity == "SYSTEM";
        if (!isOfSystem && !entity.empty() && entity != "{cpu}") {
            return fail_i("ENTITY", "expected {cpu} or SYSTEM");
        }
        collectors::OwnerPatterns patterns;
        if (patterns.parse(m_message, m_operation, "{cpu}", m_plan.error) != 0) {
            return 1;
        }
        const std::string& given = key_i("PATH");
        const std::string path = given.empty() ? std::string(TRACING_FOLDER) + "/per_cpu/cpu{cpu}" : given;
        std::vector<ExpandedPath> found;
        std::string what;
        if (collectors::expandPath(m_machine, path, found, what) != 0) {
            return fail_i("PATH", what);
        }
        std::erase_if(found, [this](const ExpandedPath& one) { return !m_machine.exists(one.path); });
        for (const ExpandedPath& one : found) {
            if (isOfSystem && !m_plan.owners.empty()) {
                break;
            }
            m_plan.owners.push_back(
                {patterns.ownerOf(m_machine, one.binding), isOfSystem ? -1 : numberOf(one.binding, "cpu")});
        }
        return m_plan.owners.empty() ? 1 : 0;
    }

    /// Names that the machine gives its states go before those of the description.
    void readStates_i() {
        std::vector<ExpandedPath> found;
        std::string what;
        const std::string& path = key_i("STATES-FILE");
        if (path.empty() || collectors::expandPath(m_machine, path, found, what) != 0) {
            return;
        }
        NumberNames known;
        for (const ExpandedPath& one : found) {
            std::string text;
            const int number = collectors::numberOf(one.binding, "state");
            if (number >= 0 && m_machine.read(one.path, text) == MachineStatus::OK) {
                std::string_view line = text;
                std::string name(takeItem(line, '\n'));
                std::replace(name.begin(), name.end(), ',', ' '); // separates the names
                if (!name.empty()) {
                    known.emplace(static_cast<std::uint64_t>(number), std::move(name));
                }
            }
        }
        if (known.empty()) {
            return;
        }
        // What the description names besides is what no file names: the end of a state.
        std::erase_if(m_plan.stateOrder, [this](std::uint64_t state) { return state != m_plan.leaving; });
        std::erase_if(m_plan.states, [this](const auto& state) { return state.first != m_plan.leaving; });
        for (auto& [number, name] : known) {
            m_plan.stateOrder.push_back(number);
            m_plan.states.insert_or_assign(number, std::move(name));
        }
    }

    const pwr::MachineFiles& m_machine;
    const pwr::MsgMetadata& m_message;
    const pwr::OperationMetadata& m_operation;
    TracePlan& m_plan;
};

} // namespace

TracePlan planTrace(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message) {
    TracePlan plan;
    if (collectors::checkKeys(message, KEYS, plan.error) != 0) {
        return plan;
    }
    const pwr::OperationMetadata* only = nullptr;
    for (const pwr::OperationMetadata* operation : message.getMetaValues()) {
        if (collectors::isConstant(*operation)) {
            continue;
        }
        if (only != nullptr) {
            plan.error = "message " + message.getMsgName() + ": a traced message has one operation";
            return plan;
        }
        only = operation;
    }
    if (only == nullptr) {
        plan.error = "message " + message.getMsgName() + ": it has no operation";
        return plan;
    }
    Planner(machine, message, *only, plan).make();
    return plan;
}

std::string statesOf(const TracePlan& plan) {
    std::string text;
    for (const std::uint64_t state : plan.stateOrder) {
        text += (text.empty() ? "" : ",") + std::to_string(state) + "=" + plan.states.at(state);
    }
    return text;
}

} // namespace tracefs
