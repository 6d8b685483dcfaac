#include "plugins/collectors/text_files/expansion.h"

#include <array>
#include <string_view>
#include <utility>

#include "common/metadata/operation_metadata.h"
#include "plugins/collectors/path_expansion.h"

namespace text_files {

namespace {

using collectors::complaint;
using collectors::ExpandedPath;
using collectors::expandPath;
using collectors::isConstant;
using collectors::keyOf;
using pwr::MachineFiles;
using pwr::MachineStatus;
using pwr::MsgMetadata;
using pwr::OperationMetadata;

constexpr std::array<std::string_view, 8> READ_KEYS{"PATH",   "FIELD",       "WIDTH",      "RAW-TYPE",
                                                    "ENTITY", "ENTITY-FILE", "DESCRIPTOR", "DESCRIPTOR-FILE"};

/// Expands one operation of a message.
class OperationExpander {
public:
    OperationExpander(const MachineFiles& machine, const MsgMetadata& message,
                      const OperationMetadata& operation, Expansion& out)
        : m_machine(machine), m_message(message), m_operation(operation), m_out(out) {}

    int expand() {
        std::vector<ExpandedPath> candidates;
        std::string what;
        const std::string& path = keyOf(m_message, m_operation, "PATH");
        if (parseKeys_i() != 0) {
            return 1;
        }
        if (expandPath(m_machine, path, candidates, what) != 0) {
            return fail_i("PATH", what);
        }
        for (const ExpandedPath& candidate : candidates) {
            expandFile_i(candidate);
        }
        return 0;
    }

private:
    int fail_i(const char* key, const std::string& what) {
        m_out.error = complaint(m_message, m_operation, key, what);
        return 1;
    }

    int parseKeys_i() {
        std::string what;
        if (m_field.parse(keyOf(m_message, m_operation, "FIELD"), what) != 0) {
            return fail_i("FIELD", what);
        }
        return m_owners.parse(m_message, m_operation, "", m_out.error) != 0 ||
                       m_owners.checkVariables(m_message, m_operation, m_out.error) != 0 ||
                       rawTypeOf(m_message, m_operation, m_type, m_out.error) != 0 ||
                       collectors::widthOf(m_message, m_operation, m_width, m_out.error) != 0
                   ? 1
                   : 0;
    }

    void expandFile_i(const ExpandedPath& candidate) {
        const MachineStatus status = m_machine.read(candidate.path, m_text);
        if (status == MachineStatus::OK) {
            for (const Binding& binding : m_field.findAll(m_text, candidate.binding)) {
                add_i(candidate, binding);
            }
        } else if (status == MachineStatus::NO_ANSWER && m_field.kind == Field::Kind::WORD) {
            add_i(candidate, candidate.binding); // it may answer later
        } else if (status == MachineStatus::DENIED) {
            m_out.denied = candidate.path;
        }
    }

    void add_i(const ExpandedPath& candidate, const Binding& binding) {
        Place place{m_owners.ownerOf(m_machine, binding), candidate.path, m_field, m_type, m_width,
                    // The processor whose folder the path goes through.
                    collectors::numberOf(candidate.binding, "cpu")};
        m_out.places.push_back(std::move(place));
    }

    const MachineFiles& m_machine;
    const MsgMetadata& m_message;
    const OperationMetadata& m_operation;
    Expansion& m_out;
    Field m_field;
    RawType m_type = RawType::UINT;
    unsigned m_width = 0;
    collectors::OwnerPatterns m_owners;
    std::string m_text;
};

} // namespace

Expansion expandMessage(const MachineFiles& machine, const MsgMetadata& message) {
    Expansion expansion;
    if (collectors::checkKeys(message, READ_KEYS, expansion.error) != 0) {
        return expansion;
    }
    for (const OperationMetadata* operation : message.getMetaValues()) {
        if (!isConstant(*operation) &&
            OperationExpander(machine, message, *operation, expansion).expand() != 0) {
            expansion.places.clear();
            break;
        }
    }
    return expansion;
}

} // namespace text_files
