#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "common/metadata/msg_metadata.h"
#include "common/metadata/operation_metadata.h"
#include "common/plugin/collector_plugin.h"

/// What the collectors' ways to read a message have in common: its keys, their patterns, and whom values belong to.
namespace collectors {

/// How the 64 bits of a value are meant, or that it stays a text.
enum class RawType : std::uint8_t { UINT, INT, REAL, STRING };

/// The constants of a message are an operation too, which nobody reads.
bool isConstant(const pwr::OperationMetadata& operation);

/// The value of a key: an operation's own, else the message's constant; "" when there is none.
const std::string& keyOf(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
                         std::string_view key);
const std::string& constantOf(const pwr::MsgMetadata& message, std::string_view key);

/// What is wrong with a key, with the message and the operation that have it.
std::string complaint(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
                      std::string_view key, const std::string& what);

/// Whether all keys of a message's operations are among these, so that a misspelt one is not taken for a missing one.
/// 1 with the complaint.
int checkKeys(const pwr::MsgMetadata& message, std::span<const std::string_view> known, std::string& error);
/// What a collector that only reads says of a message that is written.
MessageAvailability onlyReads(const pwr::MsgMetadata& message, const std::string& collectorType);

// What the metric takes the bits for, by the keys that it goes by too, so that both agree. 1 with the complaint.
int rawTypeOf(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation, RawType& type,
              std::string& error);
/// The key WIDTH; 64 without it.
int widthOf(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation, unsigned& width,
            std::string& error);
bool isCounter(const pwr::MsgMetadata& message);
/// Whether a value of so many bits can be a message's: a counter's declared width may not be larger, or each of its
/// wraps would be taken for a reset. 1 with the complaint.
int checkWidth(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation, unsigned bits,
               unsigned width, std::string& error);
/// A descriptor for the values of an operation that has none: its name, where the message has several.
std::string descriptorOf(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation);

/// A field of so many bits as a value of the type (no text): the field's top bit is an INT's sign.
std::uint64_t valueOf(std::uint64_t field, unsigned bits, RawType type);

} // namespace collectors
