#include "common/plugin/logger.h"
#include "common/values/data.h"
#include "common/values/data_helper.h"
#include "common/values/number_arithmetic.h"

namespace pwr {

namespace {

int read(const Data& value, std::int64_t& number) {
    return value.toInt(number);
}

int read(const Data& value, std::uint64_t& number) {
    return value.toUInt(number);
}

int read(const Data& value, double& number) {
    return value.toReal(number);
}

template <class Int> int addInteger(Data& target, const Data& input) {
    Int sum = 0;
    Int addend = 0;
    if (read(target, sum) != 0 || read(input, addend) != 0) return 1;
    return target.setValue(wrappingSum(sum, addend));
}

template <class Int> int scaleInteger(Data& target, double factor) {
    Int number = 0;
    if (read(target, number) != 0) return 1;
    return target.setValue(scaledInteger(number, factor));
}

template <class Number> bool lessNumber(const Data& left, const Data& right) {
    Number low = 0;
    Number high = 0;
    return read(left, low) == 0 && read(right, high) == 0 && low < high;
}

template <class Number> bool equalNumber(const Data& left, const Data& right) {
    Number one = 0;
    Number other = 0;
    return read(left, one) == 0 && read(right, other) == 0 && one == other;
}

/// What a real sum may take in, as one real; `type` is the input's.
int readAddend(const Data& input, DataType type, double& addend) {
    std::int64_t integer = 0;
    std::uint64_t unsignedInteger = 0;
    Data::RealRange range;
    int result = 1;
    switch (type) {
    case DataType::REAL: return input.toReal(addend);
    case DataType::INT:
        result = input.toInt(integer);
        addend = static_cast<double>(integer);
        return result;
    case DataType::UINT:
        result = input.toUInt(unsignedInteger);
        addend = static_cast<double>(unsignedInteger);
        return result;
    case DataType::REAL_RANGE:
        result = input.toRealRange(range);
        addend = range.first + range.second;
        return result;
    case DataType::NONE:
    case DataType::INT_RANGE:
    case DataType::UINT_RANGE:
    case DataType::HANDLE:
    case DataType::STRING: break;
    }
    logMessage(PWLogLevel::WARNING,
               "WARNING: Accumulator must have REAL, INT, UINT or REAL_RANGE type as input\n");
    return 1;
}

} // namespace

int IntHelper::initZero(Data& target) const {
    return target.setValue(std::int64_t{0});
}

int IntHelper::initMax(Data& target) const {
    return target.setValue(Seeds<std::int64_t>::maximum);
}

int IntHelper::initMin(Data& target) const {
    return target.setValue(Seeds<std::int64_t>::minimum);
}

int IntHelper::accumulate(Data& target, const Data& input) const {
    if (input.getType() == DataType::INT) return addInteger<std::int64_t>(target, input);
    logMessage(PWLogLevel::WARNING, "WARNING: Accumulator must have INT type as input\n");
    return 1;
}

int IntHelper::multiply(Data& target, double factor) const {
    return scaleInteger<std::int64_t>(target, factor);
}

bool IntHelper::less(const Data& left, const Data& right) const {
    return lessNumber<std::int64_t>(left, right);
}

bool IntHelper::equal(const Data& left, const Data& right) const {
    return equalNumber<std::int64_t>(left, right);
}

const Formatter* IntHelper::defaultFormatter() const {
    return &m_formatter;
}

int UIntHelper::initZero(Data& target) const {
    return target.setValue(std::uint64_t{0});
}

int UIntHelper::initMax(Data& target) const {
    return target.setValue(Seeds<std::uint64_t>::maximum);
}

int UIntHelper::initMin(Data& target) const {
    return target.setValue(Seeds<std::uint64_t>::minimum);
}

int UIntHelper::accumulate(Data& target, const Data& input) const {
    if (input.getType() == DataType::UINT) return addInteger<std::uint64_t>(target, input);
    logMessage(PWLogLevel::WARNING, "WARNING: Accumulator must have UINT type as input\n");
    return 1;
}

int UIntHelper::multiply(Data& target, double factor) const {
    return scaleInteger<std::uint64_t>(target, factor);
}

bool UIntHelper::less(const Data& left, const Data& right) const {
    return lessNumber<std::uint64_t>(left, right);
}

bool UIntHelper::equal(const Data& left, const Data& right) const {
    return equalNumber<std::uint64_t>(left, right);
}

const Formatter* UIntHelper::defaultFormatter() const {
    return &m_formatter;
}

int RealHelper::initZero(Data& target) const {
    return target.setValue(0.0);
}

int RealHelper::initMax(Data& target) const {
    return target.setValue(Seeds<double>::maximum);
}

int RealHelper::initMin(Data& target) const {
    return target.setValue(Seeds<double>::minimum);
}

int RealHelper::accumulate(Data& target, const Data& input) const {
    double sum = 0;
    double addend = 0;
    if (readAddend(input, input.getType(), addend) != 0 || target.toReal(sum) != 0) return 1;
    return target.setValue(sum + addend);
}

int RealHelper::multiply(Data& target, double factor) const {
    double number = 0;
    if (target.toReal(number) != 0) return 1;
    return target.setValue(number * factor);
}

bool RealHelper::less(const Data& left, const Data& right) const {
    return lessNumber<double>(left, right);
}

bool RealHelper::equal(const Data& left, const Data& right) const {
    return equalNumber<double>(left, right);
}

const Formatter* RealHelper::defaultFormatter() const {
    return &m_formatter;
}

} // namespace pwr
