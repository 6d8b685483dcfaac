#include "common/values/data.h"

#include "common/model/data_handle.h"
#include "common/plugin/logger.h"
#include "common/values/data_helper.h"

namespace pwr {

void FormatterDeleter::operator()(Formatter* formatter) const {
    delete formatter;
}

Data::Data(const DataHandle& handle) : Data(DataType::HANDLE, handle.getId(), 0, true) {}

void Data::init_i(DataType type) {
    m_formatter.reset();
    m_set = m_valid = false;
    m_type = type;
    const auto number = static_cast<unsigned>(type);
    if (number < DATA_TYPE_COUNT) {
        m_helper = g_dataHelpers[number];
        return;
    }
    m_helper = g_dataHelpers[static_cast<unsigned>(DataType::INT)];
    logMessage(PWLogLevel::WARNING, "WARNING: Unhandled type %u\n", number);
}

int Data::adopt_i(DataType type) {
    if (m_type != DataType::NONE) return refuse_i(type);
    init_i(type);
    return 0;
}

int Data::refuse_i(DataType type) {
    m_valid = false;
    logMessage(PWLogLevel::WARNING,
               "WARNING: Invalid attempt to initialize data of the wrong type (%d != %d)\n",
               static_cast<int>(m_type), static_cast<int>(type));
    return 1;
}

int Data::setValue(const std::string& value) {
    if (m_type != DataType::STRING && adopt_i(DataType::STRING) != 0) return 1;
    m_text = value;
    m_set = m_valid = true;
    return 0;
}

int Data::setValue(const DataHandle& handle) {
    return setFixed_i(DataType::HANDLE, handle.getId(), 0);
}

int Data::setValue(const Data& other) {
    if (!other.isUsable_i()) return 1;
    switch (other.m_type) {
    case DataType::INT:
    case DataType::UINT:
    case DataType::REAL: return setScalar_i(other.m_type, other.m_words[0]);
    case DataType::INT_RANGE:
    case DataType::UINT_RANGE:
    case DataType::REAL_RANGE:
    case DataType::HANDLE: return setFixed_i(other.m_type, other.m_words[0], other.m_words[1]);
    case DataType::STRING: return setValue(other.m_text);
    case DataType::NONE: break;
    }
    return 1;
}

void Data::warnUnreadable_i(DataType wanted) {
    constexpr auto level = PWLogLevel::WARNING;
    switch (wanted) {
    case DataType::INT:
        return logMessage(level, "WARNING: Attempt to retrieve a signed value from a non-signed type\n");
    case DataType::UINT:
        return logMessage(level, "WARNING: Attempt to retrieve an unsigned value from a non-unsigned type\n");
    case DataType::REAL:
        return logMessage(level, "WARNING: Attempt to retrieve a real value from a non-real type\n");
    case DataType::INT_RANGE:
        return logMessage(level,
                          "WARNING: Attempt to retrieve a non int range value from a int range type\n");
    case DataType::UINT_RANGE:
        return logMessage(
            level, "WARNING: Attempt to retrieve a non unsigned range value from an unsigned range type\n");
    case DataType::REAL_RANGE:
        return logMessage(level,
                          "WARNING: Attempt to retrieve a not double range value from a double range type\n");
    case DataType::HANDLE:
        return logMessage(level, "WARNING: Attempt to retrieve handle value from a non-unsigned type\n");
    case DataType::STRING:
        return logMessage(level, "WARNING: Attempt to retrieve a string from a non-string type\n");
    case DataType::NONE: return;
    }
}

int Data::toHandle(const DataHandle*& handle) const {
    return isReadable_i(DataType::HANDLE) ? DataHandle::get(m_words[0], handle) : 1;
}

int Data::toFormattedString(std::string& text) const {
    const Formatter& formatter = m_formatter ? *m_formatter : *m_helper->defaultFormatter();
    return formatter.format(text, *this);
}

int Data::setCustomFormatter(const Formatter& formatter) {
    // Cloned before the old one goes: the argument may be part of this very value.
    m_formatter.reset(formatter.clone());
    return 0;
}

void Data::copyFormatter_i(const Data& other) {
    m_formatter.reset(other.m_formatter ? other.m_formatter->clone() : nullptr);
}

int Data::initZero() {
    return m_helper->initZero(*this);
}

int Data::initMin() {
    return m_helper->initMin(*this);
}

int Data::initMax() {
    return m_helper->initMax(*this);
}

int Data::addValue(const Data& input) {
    return m_helper->accumulate(*this, input);
}

int Data::multiplyValue(double factor) {
    return m_helper->multiply(*this, factor);
}

bool Data::lessByHelper_i(const Data& other) const {
    return m_helper->less(*this, other);
}

bool Data::equalByHelper_i(const Data& other) const {
    return m_helper->equal(*this, other);
}

Data Data::convertToReal(const Data* value) {
    const auto fromInt = [](std::uint64_t bits) {
        return static_cast<double>(std::bit_cast<std::int64_t>(bits));
    };
    const auto fromUInt = [](std::uint64_t bits) { return static_cast<double>(bits); };
    const auto converted = [value](DataType type, auto convert) {
        Data real(type);
        real.m_words[0] = std::bit_cast<std::uint64_t>(convert(value->m_words[0]));
        real.m_words[1] = std::bit_cast<std::uint64_t>(convert(value->m_words[1]));
        real.m_set = value->m_set;
        real.m_valid = value->m_valid;
        return real;
    };
    switch (value != nullptr ? value->m_type : DataType::NONE) {
    case DataType::REAL:
    case DataType::REAL_RANGE: return *value;
    case DataType::INT: return converted(DataType::REAL, fromInt);
    case DataType::UINT: return converted(DataType::REAL, fromUInt);
    case DataType::INT_RANGE: return converted(DataType::REAL_RANGE, fromInt);
    case DataType::UINT_RANGE: return converted(DataType::REAL_RANGE, fromUInt);
    case DataType::NONE:
    case DataType::HANDLE:
    case DataType::STRING: break;
    }
    logMessage(PWLogLevel::WARNING, "WARNING: Cannot convert data object to real type\n");
    return value != nullptr ? *value : Data();
}

} // namespace pwr
