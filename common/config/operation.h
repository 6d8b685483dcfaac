#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/config/ordered_pairs.h"
#include "common/config/pw_set.h"
#include "common/export.h"
#include "common/metadata/operation_metadata.h"

class CollectorPlugin;

namespace pwr {

class EntityHandle;
class PluginRequirement;

/// What a message does when it is carried out; the first trigger of a message decides it. Persistent numbers.
enum class TWOpCommand : int { READ = 0, WRITE = 1, UNSET = 2 };

/// One thing that a message reads or writes, or knows. The base class belongs to no collector and takes no keys.
/// A copy or clone() has its own keys and shares the requirements. Threads: one at a time.
class KRCOMMON_API Operation {
public:
    explicit Operation(const std::string& name);
    virtual ~Operation();
    Operation(const Operation&);
    Operation& operator=(const Operation&);

    /// A copy of the same kind; the caller owns it.
    virtual Operation* clone() const;

    const std::string& getName() const { return m_name; }
    /// The tag of the message whose statements made it, which a group or a source hands on; "" for none.
    const std::string& getOrgMsgTag() const { return m_orgMsgTag; }
    void setOrgMsgTag(const std::string& tag) { m_orgMsgTag = tag; }

    /// The word that names the collector which carries it out; "" for none.
    virtual const std::string& getCollectorType() const;
    /// Takes one key and its value; 0, or -1 when the key is set already or the operation takes none.
    virtual int addKey(std::string_view key, std::string_view value);
    /// How many keys it has been given.
    virtual std::size_t getKeyCount() const;
    /// As it is saved with a collection.
    virtual std::unique_ptr<OperationMetadata> createMetadata() const;
    /// What a message's record holds of it: one operation, or one for each part that its keys name.
    virtual std::vector<std::unique_ptr<OperationMetadata>> createAllMetadata() const;

    /// Notes a hardware category; -1 when the operation has none or the collector does not know it.
    int addCategory(const std::string& category);
    const PWSet& getCategories() const { return m_categories; }
    virtual bool canSetCategory() const;
    virtual bool isValidCategory(const std::string& category) const;

    /// What must hold on the machine before it can be carried out. A null requirement is ignored.
    void addRequirement(std::shared_ptr<const PluginRequirement> requirement);
    const std::vector<std::shared_ptr<const PluginRequirement>>& getRequirements() const {
        return m_requirements;
    }

    /// Whether it can be done at all under a command.
    virtual bool isValidCommand(TWOpCommand command) const;
    /// Whether the collector can carry it out.
    virtual bool isOperationSuitableFor(const CollectorPlugin* collector) const;
    /// Whether one message can hold both: each collector carries out whole messages.
    bool hasCollectorOf(const Operation& other) const;

    /// Has an operation carried out at once by the collector of its type, and gives the collector's result;
    /// -1 and an error when the operation has no type or nobody serves it.
    static int dispatchRead(Operation* operation, const std::string& argument);
    static int dispatchWrite(Operation* operation, const std::string& argument);
    /// Collectors have no work on a single entity: these warn and do nothing (-1).
    static int dispatchRead(Operation* operation, const EntityHandle* entity);
    static int dispatchWrite(Operation* operation, const EntityHandle* entity);

private:
    std::string m_name;
    std::string m_orgMsgTag;
    PWSet m_categories;
    std::vector<std::shared_ptr<const PluginRequirement>> m_requirements;
};

/// Pairs that the hardware description gives and nobody reads from hardware. Goes with any collector and command.
class KRCOMMON_API CONSTANTOperation : public Operation {
public:
    explicit CONSTANTOperation(const std::string& name);
    ~CONSTANTOperation() override;
    CONSTANTOperation(const CONSTANTOperation& other);
    CONSTANTOperation& operator=(const CONSTANTOperation& other);

    CONSTANTOperation* clone() const override;
    /// -1 and an error when the key is set already; the first value stays.
    int set(const std::string& key, const std::string& value) { return addKey(key, value); }
    int addKey(std::string_view key, std::string_view value) override;
    std::size_t getKeyCount() const override { return m_pairs.get().size(); }
    std::unique_ptr<OperationMetadata> createMetadata() const override;
    bool isOperationSuitableFor(const CollectorPlugin* collector) const override;

    /// The pairs in the order of setting.
    OrderedPairs::Pairs::const_iterator begin() const { return m_pairs.get().begin(); }
    OrderedPairs::Pairs::const_iterator end() const { return m_pairs.get().end(); }

    /// The record of this moment. Owned by the operation and kept up to date in place.
    const CONSTANTOperationMetadata* getOperationMetadata() const;

private:
    bool doesKeyExist_i(std::string_view key) const;

    OrderedPairs m_pairs;
    mutable std::unique_ptr<CONSTANTOperationMetadata> m_metadata;
};

/// Work of one collector: a type word and the keys that tell where and what to read or write.
/// A key "KEY.part" belongs to that part of the work alone. Where there are parts, each is an operation of the
/// message's record, named after it, in the order in which they are first named, and the keys without a part hold for
/// all that have none of their own.
class KRCOMMON_API HWOperation : public Operation {
public:
    HWOperation(const std::string& name, const std::string& collectorType);

    HWOperation* clone() const override;
    const std::string& getCollectorType() const override { return m_collectorType; }
    int addKey(std::string_view key, std::string_view value) override;
    std::size_t getKeyCount() const override { return m_pairs.get().size(); }
    /// The width of the counter is that of the key WIDTH, in bits; without one it is 64.
    std::unique_ptr<OperationMetadata> createMetadata() const override;
    std::vector<std::unique_ptr<OperationMetadata>> createAllMetadata() const override;
    bool canSetCategory() const override;
    /// The categories that were registered with the collector type.
    bool isValidCategory(const std::string& category) const override;
    bool isOperationSuitableFor(const CollectorPlugin* collector) const override;

    OrderedPairs::Pairs::const_iterator begin() const { return m_pairs.get().begin(); }
    OrderedPairs::Pairs::const_iterator end() const { return m_pairs.get().end(); }
    /// Null when the key is not set.
    const std::string* getValue(std::string_view key) const { return m_pairs.find(key); }

private:
    std::string m_collectorType;
    OrderedPairs m_pairs;
};

} // namespace pwr
