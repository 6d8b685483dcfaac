#include "plugins/collectors/text_files/expansion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "common/metadata/operation_metadata.h"

namespace text_files {

namespace {

using pwr::MachineFiles;
using pwr::MachineStatus;
using pwr::MsgMetadata;
using pwr::OperationMetadata;

struct TypeRow {
    std::string_view word;
    RawType type;
};
constexpr std::array TYPES{
    TypeRow{"UINT", RawType::UINT},
    TypeRow{"INT", RawType::INT},
    TypeRow{"REAL", RawType::REAL},
    TypeRow{"STRING", RawType::STRING},
};

struct Candidate {
    std::string path;
    Binding binding;
};

const std::string& valueIn(const OperationMetadata::ValueList& values, std::string_view key) {
    static const std::string NONE;
    const auto found =
        std::find_if(values.begin(), values.end(), [key](const auto& pair) { return pair.first == key; });
    return found == values.end() ? NONE : found->second;
}

/// Fills the variables of a path from the names in the machine's folders, one component after the other.
int expandPath(const MachineFiles& machine, std::string_view path, std::vector<Candidate>& found,
               std::string& error) {
    found.assign(1, Candidate());
    if (!path.starts_with('/')) {
        error = "it must start with \"/\"";
        return 1;
    }
    std::vector<std::string> names;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::size_t end = std::min(path.find('/'), path.size());
        Pattern part;
        if (part.parse(path.substr(0, end), error) != 0) {
            return 1;
        }
        path.remove_prefix(end);
        std::vector<Candidate> next;
        for (Candidate& candidate : found) {
            if (!part.hasVariables()) {
                candidate.path += "/" + part.expand({});
                next.push_back(std::move(candidate));
                continue;
            }
            machine.list(candidate.path, names);
            for (const std::string& name : names) {
                Binding binding = candidate.binding;
                if (part.match(name, binding)) {
                    next.push_back({candidate.path + "/" + name, std::move(binding)});
                }
            }
        }
        found = std::move(next);
    }
    return 0;
}

/// The processor whose folder a path goes through, by the variable of that name.
int processorIn(const Binding& binding) {
    const std::string* text = binding.find("cpu");
    int number = -1;
    if (text != nullptr) {
        std::from_chars(text->data(), text->data() + text->size(), number);
    }
    return number;
}

std::string textOfFile(const MachineFiles& machine, const Pattern& pattern, const Binding& binding) {
    std::string text;
    if (!pattern.hasVariables() || machine.read(pattern.expand(binding), text) != MachineStatus::OK) {
        return {};
    }
    std::string_view rest = text;
    return std::string(trim(takeLine(rest)));
}

/// Expands one operation of a message.
class OperationExpander {
public:
    OperationExpander(const MachineFiles& machine, const MsgMetadata& message,
                      const OperationMetadata& operation, Expansion& out)
        : m_machine(machine), m_message(message), m_operation(operation), m_out(out) {}

    int expand() {
        std::vector<Candidate> candidates;
        const std::string& path = keyOf(m_message, m_operation, "PATH");
        if (parseKeys_i() != 0) {
            return 1;
        }
        std::string error;
        if (expandPath(m_machine, path, candidates, error) != 0) {
            return fail_i("PATH", path, error);
        }
        for (const Candidate& candidate : candidates) {
            expandFile_i(candidate);
        }
        return 0;
    }

private:
    int fail_i(const char* key, const std::string& value, const std::string& what) {
        m_out.error = m_message.getMsgName() + ", operation " + m_operation.getName() + ": " + key + " \"" +
                      value + "\": " + what;
        return 1;
    }

    int parsePattern_i(const char* key, Pattern& pattern) {
        std::string error;
        const std::string& text = keyOf(m_message, m_operation, key);
        return pattern.parse(text, error) == 0 ? 0 : fail_i(key, text, error);
    }

    int parseKeys_i() {
        std::string error;
        const std::string& field = keyOf(m_message, m_operation, "FIELD");
        if (m_place.field.parse(field, error) != 0) {
            return fail_i("FIELD", field, error);
        }
        if (parsePattern_i("ENTITY", m_entity) != 0 || parsePattern_i("ENTITY-FILE", m_entityFile) != 0 ||
            parsePattern_i("DESCRIPTOR", m_descriptor) != 0 ||
            parsePattern_i("DESCRIPTOR-FILE", m_descriptorFile) != 0) {
            return 1;
        }
        const std::string& entity = keyOf(m_message, m_operation, "ENTITY");
        m_place.isProcessor = entity == "{cpu}";
        m_place.isCore = entity == "{core}";
        m_place.isPackage = entity == "{package}";
        return parseType_i() != 0 ? 1 : parseWidth_i();
    }

    int parseType_i() {
        std::string word = keyOf(m_message, m_operation, "RAW-TYPE");
        if (word.empty() && constantOf(m_message, "SOURCE") == "LEVEL") {
            word = constantOf(m_message, "VALUE-TYPE");
        }
        const auto row =
            std::find_if(TYPES.begin(), TYPES.end(), [&word](const TypeRow& r) { return r.word == word; });
        if (row == TYPES.end() && !word.empty()) {
            return fail_i("RAW-TYPE", word, "expected UINT, INT, REAL or STRING");
        }
        m_place.type = row == TYPES.end() ? RawType::UINT : row->type;
        return 0;
    }

    int parseWidth_i() {
        const std::string& text = keyOf(m_message, m_operation, "WIDTH");
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), m_place.width);
        const bool isNumber = error == std::errc() && end == text.data() + text.size();
        if (!text.empty() && (!isNumber || m_place.width == 0 || m_place.width > 64)) {
            return fail_i("WIDTH", text, "expected a number of bits from 1 to 64");
        }
        return 0;
    }

    void expandFile_i(const Candidate& candidate) {
        const MachineStatus status = m_machine.read(candidate.path, m_text);
        if (status == MachineStatus::OK) {
            for (const Binding& binding : m_place.field.findAll(m_text, candidate.binding)) {
                add_i(candidate, binding);
            }
        } else if (status == MachineStatus::NO_ANSWER && m_place.field.kind == Field::Kind::WORD) {
            add_i(candidate, candidate.binding); // it may answer later
        } else if (status == MachineStatus::DENIED) {
            m_out.denied = candidate.path;
        }
    }

    void add_i(const Candidate& candidate, const Binding& binding) {
        Place place = m_place;
        place.path = candidate.path;
        place.binding = binding;
        place.processor = processorIn(candidate.binding);
        place.entity = m_entity.expand(binding);
        place.entityName = textOfFile(m_machine, m_entityFile, binding);
        place.descriptor = textOfFile(m_machine, m_descriptorFile, binding);
        if (place.entityName.empty()) {
            place.entityName = place.entity;
        }
        if (place.descriptor.empty()) {
            place.descriptor = m_descriptor.expand(binding);
        }
        m_out.places.push_back(std::move(place));
    }

    const MachineFiles& m_machine;
    const MsgMetadata& m_message;
    const OperationMetadata& m_operation;
    Expansion& m_out;
    Place m_place; // what all places of the operation have in common
    Pattern m_entity, m_entityFile, m_descriptor, m_descriptorFile;
    std::string m_text;
};

bool isConstant(const OperationMetadata& operation) {
    return operation.getOperation() == pwr::CONSTANTOperationMetadata::c_operation;
}

} // namespace

const std::string& constantOf(const MsgMetadata& message, const char* key) {
    for (const OperationMetadata* operation : message.getMetaValues()) {
        const std::string& value = valueIn(operation->getValues(), key);
        if (isConstant(*operation) && !value.empty()) {
            return value;
        }
    }
    return valueIn({}, key);
}

const std::string& keyOf(const MsgMetadata& message, const OperationMetadata& operation, const char* key) {
    const std::string& value = valueIn(operation.getValues(), key);
    return value.empty() ? constantOf(message, key) : value;
}

Expansion expandMessage(const MachineFiles& machine, const MsgMetadata& message) {
    Expansion expansion;
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
