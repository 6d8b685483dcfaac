#include "plugins/collectors/owner_patterns.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace collectors {

namespace {

constexpr std::string_view BLANKS = " \t\r";

std::string firstLineOf(const pwr::MachineFiles& machine, const Pattern& pattern, const Binding& binding) {
    std::string text;
    if (!pattern.hasVariables() || machine.read(pattern.expand(binding), text) != pwr::MachineStatus::OK) {
        return {};
    }
    text.resize(std::min(text.find('\n'), text.size()));
    text.resize(text.find_last_not_of(BLANKS) + 1);
    text.erase(0, std::min(text.find_first_not_of(BLANKS), text.size()));
    return text;
}

} // namespace

int OwnerPatterns::parse(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
                         const std::string& entity, std::string& error) {
    const std::array<std::pair<const char*, Pattern*>, 4> patterns{{{"ENTITY", &m_entity},
                                                                    {"ENTITY-FILE", &m_entityFile},
                                                                    {"DESCRIPTOR", &m_descriptor},
                                                                    {"DESCRIPTOR-FILE", &m_descriptorFile}}};
    const std::string& given = keyOf(message, operation, "ENTITY");
    const std::string& wanted = given.empty() ? entity : given;
    for (const auto& [key, pattern] : patterns) {
        std::string what;
        if (pattern->parse(pattern == &m_entity ? wanted : keyOf(message, operation, key), what) != 0) {
            error = complaint(message, operation, key, what);
            return 1;
        }
    }
    m_owner.isProcessor = wanted == "{cpu}";
    m_owner.isCore = wanted == "{core}";
    m_owner.isPackage = wanted == "{package}";
    return 0;
}

int OwnerPatterns::checkVariables(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
                                  std::string& error) const {
    const std::string found = keyOf(message, operation, "PATH") + keyOf(message, operation, "FIELD");
    const std::array<std::pair<const char*, const Pattern*>, 4> patterns{
        {{"ENTITY", &m_entity},
         {"ENTITY-FILE", &m_entityFile},
         {"DESCRIPTOR", &m_descriptor},
         {"DESCRIPTOR-FILE", &m_descriptorFile}}};
    for (const auto& [key, pattern] : patterns) {
        for (const std::string& name : pattern->variables()) {
            if (found.find("{" + name + "}") == std::string::npos) {
                error = complaint(message, operation, key, "neither PATH nor FIELD has {" + name + "}");
                return 1;
            }
        }
    }
    return 0;
}

Owner OwnerPatterns::ownerOf(const pwr::MachineFiles& machine, const Binding& binding) const {
    Owner owner = m_owner;
    owner.binding = binding;
    owner.entity = m_entity.expand(binding);
    owner.entityName = firstLineOf(machine, m_entityFile, binding);
    owner.descriptor = firstLineOf(machine, m_descriptorFile, binding);
    if (owner.entityName.empty()) {
        owner.entityName = owner.entity;
    }
    if (owner.descriptor.empty()) {
        owner.descriptor = m_descriptor.expand(binding);
    }
    return owner;
}

} // namespace collectors
