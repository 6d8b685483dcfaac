#pragma once

#include <memory>
#include <span>
#include <vector>

#include "common/metadata/metadata.h"

namespace pwr {

/// The rows that say what a collector offers, until the hardware description says it: what to read, and
/// how it becomes a metric. An empty text leaves a key out.

/// One value of a message for each place that its patterns match.
struct OperationRow {
    const char* name;
    const char* path;
    const char* field;
    const char* descriptor;
};

/// One key of a metric and its value (the keys are those of the generic metric plug-in).
struct ConstantRow {
    const char* key;
    const char* value;
};

struct MessageRow {
    const char* name;
    unsigned width; ///< of its counters, in bits
    std::span<const OperationRow> operations;
    std::span<const ConstantRow> constants;
    /// The message is wanted only where none of the feature's earlier ones works.
    bool isAlternative;
};

struct FeatureRow {
    const char* name;
    const char* description;
    const char* reason; ///< when nothing of it is found here
    const char* fix;
    std::span<const MessageRow> messages;
};

/// Appends the records of one message: the message with its operations and constants, then its metric.
/// The number identifies both until the host gives its own.
void appendDeclaration(const FeatureRow& feature, const MessageRow& message, const char* collectorType,
                       unsigned number, std::vector<std::unique_ptr<Metadata>>& declarations);

} // namespace pwr
