#include "common/values/formatter.h"

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

char* writeInteger(char* out, std::int64_t number, bool hex) {
    return hex ? writeHexadecimal(out, static_cast<std::uint64_t>(number)) : writeDecimal(out, number);
}

char* writeInteger(char* out, std::uint64_t number, bool hex) {
    return hex ? writeHexadecimal(out, number) : writeDecimal(out, number);
}

template <class Number> char* writeIntegers(char* out, const std::pair<Number, Number>& range, bool hex) {
    out = writeInteger(out, range.first, hex);
    for (const char* separator = RANGE_SEPARATOR; *separator != '\0'; ++separator)
        *out++ = *separator;
    return writeInteger(out, range.second, hex);
}

void appendNumber(std::string& out, double number, int precision) {
    char text[SHORT_REAL_SIZE];
    if (char* const end = writeShortReal(text, number, precision))
        out.append(text, end);
    else
        appendReal(out, number, precision);
}

} // namespace

void Formatter::widen(std::string& text, int width) {
    if (width > 0 && text.size() < static_cast<std::size_t>(width))
        text.insert(0, static_cast<std::size_t>(width) - text.size(), ' ');
}

int Formatter::finish_i(std::string& out) const {
    if (!m_unit.empty()) out += m_unit;
    if (m_width > 0) widen(out, m_width);
    return 0;
}

int Formatter::formatInt(const Formatter& formatter, std::string& out, const Data& value) {
    if (value.getType() == DataType::INT_RANGE) return formatIntRange(formatter, out, value);
    out.clear();
    std::int64_t number = 0;
    if (value.toInt(number) != 0) return 1;
    char text[INTEGER_TEXT_SIZE];
    out.assign(text, writeInteger(text, number, formatter.m_hex));
    return formatter.finish_i(out);
}

int Formatter::formatUInt(const Formatter& formatter, std::string& out, const Data& value) {
    if (value.getType() == DataType::UINT_RANGE) return formatUIntRange(formatter, out, value);
    out.clear();
    std::uint64_t number = 0;
    if (value.toUInt(number) != 0) return 1;
    char text[INTEGER_TEXT_SIZE];
    out.assign(text, writeInteger(text, number, formatter.m_hex));
    return formatter.finish_i(out);
}

int Formatter::formatReal(const Formatter& formatter, std::string& out, const Data& value) {
    if (value.getType() == DataType::REAL_RANGE) return formatRealRange(formatter, out, value);
    out.clear();
    double number = 0;
    if (value.toReal(number) != 0) return 1;
    appendNumber(out, number, formatter.m_precision);
    return formatter.finish_i(out);
}

int Formatter::formatIntRange(const Formatter& formatter, std::string& out, const Data& value) {
    out.clear();
    Data::IntRange range;
    if (value.toIntRange(range) != 0) return 1;
    char text[2 * INTEGER_TEXT_SIZE + sizeof RANGE_SEPARATOR];
    out.assign(text, writeIntegers(text, range, formatter.m_hex));
    return formatter.finish_i(out);
}

int Formatter::formatUIntRange(const Formatter& formatter, std::string& out, const Data& value) {
    out.clear();
    Data::UIntRange range;
    if (value.toUIntRange(range) != 0) return 1;
    char text[2 * INTEGER_TEXT_SIZE + sizeof RANGE_SEPARATOR];
    out.assign(text, writeIntegers(text, range, formatter.m_hex));
    return formatter.finish_i(out);
}

int Formatter::formatRealRange(const Formatter& formatter, std::string& out, const Data& value) {
    out.clear();
    Data::RealRange range;
    if (value.toRealRange(range) != 0) return 1;
    appendNumber(out, range.first, formatter.m_precision);
    out += RANGE_SEPARATOR;
    appendNumber(out, range.second, formatter.m_precision);
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
