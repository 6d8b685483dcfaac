#include "common/values/formatter.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "common/plugin/logger.h"
#include "common/values/data.h"
#include "common/values/number_text.h"

namespace pwr {

Formatter::~Formatter() = default;
IntFormatter::~IntFormatter() = default;
UIntFormatter::~UIntFormatter() = default;
RealFormatter::~RealFormatter() = default;
StringFormatter::~StringFormatter() = default;
HandleFormatter::~HandleFormatter() = default;
VoidFormatter::~VoidFormatter() = default;

namespace {

constexpr char RANGE_SEPARATOR[] = " -- ";

template <class Int> void writeInteger(std::string& out, std::size_t start, Int number, bool hex) {
    if (hex)
        writeHexadecimal(out, start, static_cast<std::uint64_t>(number));
    else
        writeDecimal(out, start, number);
}

template <class Int> void writeIntegers(std::string& out, const std::pair<Int, Int>& range, bool hex) {
    writeInteger(out, 0, range.first, hex);
    out += RANGE_SEPARATOR;
    writeInteger(out, out.size(), range.second, hex);
}

/// The numbers are written over the old text, so a failure has to empty it.
int unreadable(std::string& out) {
    out.clear();
    return 1;
}

} // namespace

void Formatter::widen(std::string& text, int width) {
    if (width > 0 && text.size() < static_cast<std::size_t>(width))
        text.insert(0, static_cast<std::size_t>(width) - text.size(), ' ');
}

int Formatter::formatInt(const Formatter& formatter, std::string& out, const Data& value) {
    if (value.getType() == DataType::INT_RANGE) return formatIntRange(formatter, out, value);
    std::int64_t number = 0;
    if (value.toInt(number) != 0) return unreadable(out);
    writeInteger(out, 0, number, formatter.m_hex);
    return formatter.finish_i(out);
}

int Formatter::formatUInt(const Formatter& formatter, std::string& out, const Data& value) {
    if (value.getType() == DataType::UINT_RANGE) return formatUIntRange(formatter, out, value);
    std::uint64_t number = 0;
    if (value.toUInt(number) != 0) return unreadable(out);
    writeInteger(out, 0, number, formatter.m_hex);
    return formatter.finish_i(out);
}

int Formatter::formatReal(const Formatter& formatter, std::string& out, const Data& value) {
    if (value.getType() == DataType::REAL_RANGE) return formatRealRange(formatter, out, value);
    double number = 0;
    if (value.toReal(number) != 0) return unreadable(out);
    writeReal(out, 0, number, formatter.m_precision);
    return formatter.finish_i(out);
}

int Formatter::formatIntRange(const Formatter& formatter, std::string& out, const Data& value) {
    Data::IntRange range;
    if (value.toIntRange(range) != 0) return unreadable(out);
    writeIntegers(out, range, formatter.m_hex);
    return formatter.finish_i(out);
}

int Formatter::formatUIntRange(const Formatter& formatter, std::string& out, const Data& value) {
    Data::UIntRange range;
    if (value.toUIntRange(range) != 0) return unreadable(out);
    writeIntegers(out, range, formatter.m_hex);
    return formatter.finish_i(out);
}

int Formatter::formatRealRange(const Formatter& formatter, std::string& out, const Data& value) {
    Data::RealRange range;
    if (value.toRealRange(range) != 0) return unreadable(out);
    writeReal(out, 0, range.first, formatter.m_precision);
    out += RANGE_SEPARATOR;
    writeReal(out, out.size(), range.second, formatter.m_precision);
    return formatter.finish_i(out);
}

int Formatter::formatString(const Formatter& formatter, std::string& out, const Data& value) {
    out.clear();
    return value.toString(out) != 0 ? 1 : formatter.finish_i(out);
}

int IntFormatter::format(std::string& out, const Data& value) const {
    return formatInt(*this, out, value);
}

Formatter* IntFormatter::clone() const {
    return new IntFormatter(*this);
}

int UIntFormatter::format(std::string& out, const Data& value) const {
    return formatUInt(*this, out, value);
}

Formatter* UIntFormatter::clone() const {
    return new UIntFormatter(*this);
}

int RealFormatter::format(std::string& out, const Data& value) const {
    return formatReal(*this, out, value);
}

Formatter* RealFormatter::clone() const {
    return new RealFormatter(*this);
}

int StringFormatter::format(std::string& out, const Data& value) const {
    return formatString(*this, out, value);
}

Formatter* StringFormatter::clone() const {
    return new StringFormatter(*this);
}

int HandleFormatter::format(std::string& out, const Data& value) const {
    return formatHandle(*this, out, value);
}

Formatter* HandleFormatter::clone() const {
    return new HandleFormatter(*this);
}

int VoidFormatter::format(std::string& out, const Data&) const {
    logMessage(PWLogLevel::WARNING, "WARNING: Data of type pwr::DataType::NONE can't be formatted\n");
    out = "INVALID";
    return 1;
}

Formatter* VoidFormatter::clone() const {
    return new VoidFormatter(*this);
}

} // namespace pwr
