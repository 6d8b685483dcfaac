#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "plugins/collectors/text_files/field.h"

namespace text_files {

/// Takes all values of one kind of field out of a file's text in one pass. Made once, when a message is
/// opened; a pass allocates nothing once its buffers have grown.
class TextReader {
public:
    static std::unique_ptr<TextReader> create(Field::Kind kind);

    TextReader() = default;
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;
    virtual ~TextReader() = default;

    /// Also reads this field, whose variables are bound, into values[slot]. The width in bits is that of
    /// the counters that a sum adds up: they wrap one by one, and so must their sum.
    virtual void add(const Field& field, const Binding& binding, std::size_t slot, RawType type,
                     unsigned width) = 0;

    /// Fills the slots whose fields the text has; all slots come as missing.
    virtual void read(std::string_view text, std::span<RawValue> values) = 0;
};

} // namespace text_files
