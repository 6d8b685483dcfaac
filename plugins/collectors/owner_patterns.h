#pragma once

#include <string>

#include "common/machine_files.h"
#include "plugins/collectors/message_keys.h"
#include "plugins/collectors/pattern.h"

namespace pwr {
class EntityHandle;
}

namespace collectors {

/// Whom a value belongs to.
struct Owner {
    Binding binding;
    std::string entity;     ///< what tells it from others: "{cpu}" filled in, "hwmon2", "eth0"
    std::string entityName; ///< how reports call it
    std::string descriptor; ///< "" for none
    bool isProcessor = false, isCore = false, isPackage = false; ///< the entity is that of the topology
    const pwr::EntityHandle* handle = nullptr;                   ///< where the entity is known beforehand
};

/// The keys that name the owners of an operation's values: ENTITY, ENTITY-FILE, DESCRIPTOR, DESCRIPTOR-FILE.
class OwnerPatterns {
public:
    /// 1 with the complaint in `error`. `entity` is meant where the key ENTITY is missing.
    int parse(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
              const std::string& entity, std::string& error);
    /// Whether PATH or FIELD, which find the values, have all variables of the patterns: others would be names as they
    /// stand. 1 with the complaint.
    int checkVariables(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
                       std::string& error) const;
    /// Fills the patterns with what the variables stand for; names that stand in files are read from there.
    Owner ownerOf(const pwr::MachineFiles& machine, const Binding& binding) const;

private:
    Owner m_owner; // what all owners have in common
    Pattern m_entity, m_entityFile, m_descriptor, m_descriptorFile;
};

} // namespace collectors
