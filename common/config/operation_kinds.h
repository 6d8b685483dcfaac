#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "common/config/operation.h"
#include "common/export.h"

namespace pwr {

/// The classes of operations, by the collector type word of their statements. A type that is not in the table
/// makes an HWOperation. A subsystem with an operation of its own enters it here, so that the hardware
/// description need not know it. Entries last as long as the process, whatever becomes of the parser.
class KRCOMMON_API OperationKinds {
public:
    /// Gets the operation's name and its type word.
    using Factory =
        std::function<std::unique_ptr<Operation>(const std::string& name, const std::string& collectorType)>;

    /// Enters a kind, in the place of an earlier one of the type. Its type word needs no registration.
    static void add(const std::string& collectorType, Factory factory);
    /// Whether the type is in the table.
    static bool contains(const std::string& collectorType);
    static std::set<std::string> getTypes();
    /// Null when the type's factory makes none.
    static std::unique_ptr<Operation> make(const std::string& name, const std::string& collectorType);
};

} // namespace pwr
