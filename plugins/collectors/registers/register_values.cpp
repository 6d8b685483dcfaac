#include "plugins/collectors/registers/register_values.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "common/model/entity_handle.h"
#include "common/pw_utils.h"
#include "plugins/collectors/path_expansion.h"

namespace registers {

namespace {

using collectors::complaint;
using collectors::ExpandedPath;
using collectors::keyOf;
using collectors::RawType;
using pwr::EntityHandle;
using pwr::MachineStatus;

constexpr unsigned REGISTER_BITS = 64;
constexpr std::array<std::string_view, 9> KEYS{"REGISTER",    "PATH",       "BIT-RANGE",
                                               "WIDTH",       "RAW-TYPE",   "ENTITY",
                                               "ENTITY-FILE", "DESCRIPTOR", "DESCRIPTOR-FILE"};

/// The core or the package of a logical processor; null when the topology does not know the processor.
const EntityHandle* coreOf(int processor) {
    const EntityHandle* const thread = EntityHandle::getCPUThreadHandle(processor);
    return thread == nullptr ? nullptr : thread->getParent();
}

const EntityHandle* packageOf(int processor) {
    const EntityHandle* entity = coreOf(processor);
    while (entity != nullptr && entity->getParent() != nullptr && !entity->getParent()->isSystemEntity()) {
        entity = entity->getParent();
    }
    return entity;
}

/// Finds the values of one operation of a message.
class RegisterFinder {
public:
    RegisterFinder(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message,
                   const pwr::OperationMetadata& operation, RegisterValues& out)
        : m_machine(machine), m_message(message), m_operation(operation), m_out(out) {}

    int find() {
        std::vector<ExpandedPath> paths;
        const std::string& given = keyOf(m_message, m_operation, "PATH");
        const std::string path = given.empty() ? DEFAULT_PATH : given;
        std::string what;
        if (expandPath(m_machine, path, paths, what) != 0) {
            return fail_i("PATH", what);
        }
        const bool isOfProcessors = path.find("{cpu}") != std::string::npos;
        if (parseRegister_i() != 0 || parseBits_i() != 0 ||
            m_owners.parse(m_message, m_operation, isOfProcessors ? "{cpu}" : "SYSTEM", m_out.error) != 0) {
            return 1;
        }
        for (const ExpandedPath& one : paths) {
            add_i(one);
        }
        return 0;
    }

private:
    int fail_i(const char* key, const std::string& what) {
        m_out.error = complaint(m_message, m_operation, key, what);
        return 1;
    }

    int parseRegister_i() {
        const std::string& text = keyOf(m_message, m_operation, "REGISTER");
        return pwr::extract_number_i(text, m_value.number) == 0
                   ? 0
                   : fail_i("REGISTER", "expected a register's number of up to 32 bits");
    }

    /// The bits that BIT-RANGE names, else as many as WIDTH says from the lowest on.
    int parseBits_i() {
        unsigned width = 0;
        if (collectors::rawTypeOf(m_message, m_operation, m_value.type, m_out.error) != 0 ||
            collectors::widthOf(m_message, m_operation, width, m_out.error) != 0) {
            return 1;
        }
        if (m_value.type == RawType::STRING) {
            return fail_i("RAW-TYPE", "a register is no text");
        }
        const std::string& range = keyOf(m_message, m_operation, "BIT-RANGE");
        m_value.bits = width;
        if (range.empty()) {
            return 0;
        }
        const std::size_t comma = std::min(range.find(','), range.size());
        unsigned msb = 0;
        if (pwr::extract_number_i(range.substr(0, comma), m_value.lsb) != 0 ||
            pwr::extract_number_i(range.substr(std::min(comma + 1, range.size())), msb) != 0 ||
            msb < m_value.lsb || msb >= REGISTER_BITS) {
            return fail_i("BIT-RANGE", "expected the lowest and the highest bit, from 0 to 63, as \"0,31\"");
        }
        m_value.bits = msb - m_value.lsb + 1;
        if (collectors::checkWidth(m_message, m_operation, m_value.bits, width, m_out.error) != 0) {
            return 1;
        }
        // A counter's lower bits are a counter of that width; the bits of a level belong together.
        m_value.bits = collectors::isCounter(m_message) ? width : m_value.bits;
        return 0;
    }

    void add_i(const ExpandedPath& found) {
        std::uint64_t whole = 0;
        const MachineStatus status =
            collectors::BinaryFile(m_machine, found.path).readNumber(m_value.number, whole);
        if (status == MachineStatus::DENIED) {
            m_out.denied = found.path;
        } else if (status == MachineStatus::NO_ANSWER) {
            m_out.silent = found.path;
        }
        RegisterValue value = m_value;
        static_cast<collectors::Owner&>(value) = m_owners.ownerOf(m_machine, found.binding);
        value.path = found.path;
        const bool isShared = findSharing_i(value);
        // A processor may be offline now and answer later; for what several share, one that answers is asked.
        const bool isUsable =
            status == MachineStatus::OK || (status == MachineStatus::NO_ANSWER && !isShared);
        if (!isUsable || (isShared && !m_taken.emplace(value.handle, value.descriptor).second)) {
            return;
        }
        m_out.hasAnswer = m_out.hasAnswer || status == MachineStatus::OK;
        if (value.descriptor.empty()) {
            value.descriptor = collectors::descriptorOf(m_message, m_operation);
        }
        m_out.values.push_back(std::move(value));
    }

    /// Whether the value is of a core or a package, which are found by the processors in them.
    static bool findSharing_i(RegisterValue& value) {
        const int processor = collectors::numberOf(value.binding, "cpu");
        if (processor < 0 || (!value.isCore && !value.isPackage)) {
            return false;
        }
        value.handle = value.isCore ? coreOf(processor) : packageOf(processor);
        return true;
    }

    const pwr::MachineFiles& m_machine;
    const pwr::MsgMetadata& m_message;
    const pwr::OperationMetadata& m_operation;
    RegisterValues& m_out;
    RegisterValue m_value; // what all values of the operation have in common
    collectors::OwnerPatterns m_owners;
    std::set<std::pair<const EntityHandle*, std::string>> m_taken;
};

} // namespace

RegisterValues findRegisters(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message) {
    RegisterValues found;
    if (collectors::checkKeys(message, KEYS, found.error) != 0) {
        return found;
    }
    for (const pwr::OperationMetadata* operation : message.getMetaValues()) {
        if (!collectors::isConstant(*operation) &&
            RegisterFinder(machine, message, *operation, found).find() != 0) {
            found.values.clear();
            break;
        }
    }
    return found;
}

} // namespace registers
