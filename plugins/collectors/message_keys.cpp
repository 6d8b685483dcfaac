#include "plugins/collectors/message_keys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>

namespace collectors {

namespace {

using pwr::MsgMetadata;
using pwr::OperationMetadata;

constexpr unsigned MAX_WIDTH = 64;

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

const std::string& valueIn(const OperationMetadata::ValueList& values, std::string_view key) {
    static const std::string NONE;
    const auto found =
        std::find_if(values.begin(), values.end(), [key](const auto& pair) { return pair.first == key; });
    return found == values.end() ? NONE : found->second;
}

} // namespace

bool isConstant(const OperationMetadata& operation) {
    return operation.getOperation() == pwr::CONSTANTOperationMetadata::c_operation;
}

const std::string& constantOf(const MsgMetadata& message, std::string_view key) {
    for (const OperationMetadata* operation : message.getMetaValues()) {
        const std::string& value = valueIn(operation->getValues(), key);
        if (isConstant(*operation) && !value.empty()) {
            return value;
        }
    }
    return valueIn({}, key);
}

const std::string& keyOf(const MsgMetadata& message, const OperationMetadata& operation,
                         std::string_view key) {
    const std::string& value = valueIn(operation.getValues(), key);
    return value.empty() ? constantOf(message, key) : value;
}

std::string complaint(const MsgMetadata& message, const OperationMetadata& operation, std::string_view key,
                      const std::string& what) {
    return message.getMsgName() + ", operation " + operation.getName() + ": " + std::string(key) + " \"" +
           keyOf(message, operation, key) + "\": " + what;
}

int checkKeys(const MsgMetadata& message, std::span<const std::string_view> known, std::string& error) {
    for (const OperationMetadata* operation : message.getMetaValues()) {
        for (const auto& [key, value] : operation->getValues()) {
            if (isConstant(*operation) || std::find(known.begin(), known.end(), key) != known.end()) {
                continue;
            }
            std::string words;
            for (const std::string_view word : known) {
                words += (words.empty() ? "" : ", ") + std::string(word);
            }
            error = complaint(message, *operation, key, "unknown key; there are " + words);
            return 1;
        }
    }
    return 0;
}

MessageAvailability onlyReads(const MsgMetadata& message, const std::string& collectorType) {
    return {MessageAvailability::State::INVALID,
            "message " + message.getMsgName() + ": WRITE-WHEN: " + collectorType + " is only read",
            {}};
}

bool isCounter(const MsgMetadata& message) {
    return constantOf(message, "SOURCE") == "COUNTER";
}

int rawTypeOf(const MsgMetadata& message, const OperationMetadata& operation, RawType& type,
              std::string& error) {
    std::string word = keyOf(message, operation, "RAW-TYPE");
    if (word.empty() && !isCounter(message)) {
        word = constantOf(message, "VALUE-TYPE");
    }
    const auto row =
        std::find_if(TYPES.begin(), TYPES.end(), [&word](const TypeRow& r) { return r.word == word; });
    if (row == TYPES.end() && !word.empty()) {
        error = complaint(message, operation, "RAW-TYPE", "expected UINT, INT, REAL or STRING");
        return 1;
    }
    type = row == TYPES.end() ? RawType::UINT : row->type;
    return 0;
}

int widthOf(const MsgMetadata& message, const OperationMetadata& operation, unsigned& width,
            std::string& error) {
    const std::string& text = keyOf(message, operation, "WIDTH");
    width = MAX_WIDTH;
    const auto [end, result] = std::from_chars(text.data(), text.data() + text.size(), width);
    const bool isNumber = result == std::errc() && end == text.data() + text.size();
    if (!text.empty() && (!isNumber || width == 0 || width > MAX_WIDTH)) {
        error = complaint(message, operation, "WIDTH", "expected a number of bits from 1 to 64");
        return 1;
    }
    return 0;
}

int checkWidth(const MsgMetadata& message, const OperationMetadata& operation, unsigned bits, unsigned width,
               std::string& error) {
    if (isCounter(message) && width > bits) {
        error = complaint(message, operation, "WIDTH",
                          "the counter has " + std::to_string(bits) + " bits, and its width must say so");
        return 1;
    }
    return 0;
}

std::string descriptorOf(const MsgMetadata& message, const OperationMetadata& operation) {
    const auto& all = message.getMetaValues();
    const auto read =
        std::count_if(all.begin(), all.end(), [](const OperationMetadata* one) { return !isConstant(*one); });
    return read > 1 ? operation.getName() : std::string();
}

std::uint64_t valueOf(std::uint64_t field, unsigned bits, RawType type) {
    if (type == RawType::REAL) {
        return std::bit_cast<std::uint64_t>(static_cast<double>(field));
    }
    const bool isNegative = type == RawType::INT && bits < MAX_WIDTH && (field >> (bits - 1) & 1U) != 0;
    return isNegative ? field | ~std::uint64_t{0} << bits : field;
}

} // namespace collectors
