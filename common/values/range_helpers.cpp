#include "common/plugin/logger.h"
#include "common/values/data.h"
#include "common/values/data_helper.h"
#include "common/values/number_arithmetic.h"

namespace pwr {

namespace {

int read(const Data& value, Data::IntRange& range) {
    return value.toIntRange(range);
}

int read(const Data& value, Data::UIntRange& range) {
    return value.toUIntRange(range);
}

int read(const Data& value, Data::RealRange& range) {
    return value.toRealRange(range);
}

/// A range that is not usable counts as (0, 0) in sums: the getters leave the zeros untouched.
template <class Range> Range rangeOrZero(const Data& value) {
    Range range{};
    (void)read(value, range);
    return range;
}

std::int64_t intOrZero(const Data& value) {
    std::int64_t number = 0;
    (void)value.toInt(number);
    return number;
}

std::uint64_t uintOrZero(const Data& value) {
    std::uint64_t number = 0;
    (void)value.toUInt(number);
    return number;
}

double realOrZero(const Data& value) {
    double number = 0;
    (void)value.toReal(number);
    return number;
}

template <class Range> Range bothEnds(typename Range::first_type number) {
    return {number, number};
}

template <class Range> Data::RealRange asReals(const Range& range) {
    return {static_cast<double>(range.first), static_cast<double>(range.second)};
}

template <class Range> int addWrapping(Data& target, const Range& addend) {
    const auto sum = rangeOrZero<Range>(target);
    return target.setValue(
        Range{wrappingSum(sum.first, addend.first), wrappingSum(sum.second, addend.second)});
}

template <class Range> int scaleIntegers(Data& target, double factor) {
    Range range{};
    if (read(target, range) != 0) return 1;
    return target.setValue(Range{scaledInteger(range.first, factor), scaledInteger(range.second, factor)});
}

template <class Range> bool lessLowEnd(const Data& left, const Data& right) {
    Range one{};
    Range other{};
    return read(left, one) == 0 && read(right, other) == 0 && one.first < other.first;
}

template <class Range> bool equalLowEnd(const Data& left, const Data& right) {
    Range one{};
    Range other{};
    return read(left, one) == 0 && read(right, other) == 0 && one.first == other.first;
}

/// The two reals that an input adds to a real range; 1 when its type adds nothing.
int readAddend(const Data& input, Data::RealRange& addend) {
    switch (input.getType()) {
    case DataType::INT: addend = bothEnds<Data::RealRange>(static_cast<double>(intOrZero(input))); return 0;
    case DataType::UINT: addend = bothEnds<Data::RealRange>(static_cast<double>(uintOrZero(input))); return 0;
    case DataType::REAL: addend = bothEnds<Data::RealRange>(realOrZero(input)); return 0;
    case DataType::INT_RANGE: addend = asReals(rangeOrZero<Data::IntRange>(input)); return 0;
    case DataType::UINT_RANGE: addend = asReals(rangeOrZero<Data::UIntRange>(input)); return 0;
    case DataType::REAL_RANGE: addend = rangeOrZero<Data::RealRange>(input); return 0;
    case DataType::NONE:
    case DataType::HANDLE:
    case DataType::STRING: break;
    }
    return 1;
}

} // namespace

int IntRangeHelper::initZero(Data& target) const {
    return target.setValue(Data::IntRange{});
}

int IntRangeHelper::initMax(Data& target) const {
    return target.setValue(bothEnds<Data::IntRange>(Seeds<std::int64_t>::maximum));
}

int IntRangeHelper::initMin(Data& target) const {
    return target.setValue(bothEnds<Data::IntRange>(Seeds<std::int64_t>::minimum));
}

int IntRangeHelper::accumulate(Data& target, const Data& input) const {
    if (input.getType() == DataType::INT)
        return addWrapping(target, bothEnds<Data::IntRange>(intOrZero(input)));
    if (input.getType() == DataType::INT_RANGE)
        return addWrapping(target, rangeOrZero<Data::IntRange>(input));
    logMessage(PWLogLevel::WARNING, "WARNING: IntRange accumulate expects INT type\n");
    return 1;
}

int IntRangeHelper::multiply(Data& target, double factor) const {
    return scaleIntegers<Data::IntRange>(target, factor);
}

bool IntRangeHelper::less(const Data& left, const Data& right) const {
    return lessLowEnd<Data::IntRange>(left, right);
}

bool IntRangeHelper::equal(const Data& left, const Data& right) const {
    return equalLowEnd<Data::IntRange>(left, right);
}

const Formatter* IntRangeHelper::defaultFormatter() const {
    return &m_formatter;
}

int UIntRangeHelper::initZero(Data& target) const {
    return target.setValue(Data::UIntRange{});
}

int UIntRangeHelper::initMax(Data& target) const {
    return target.setValue(bothEnds<Data::UIntRange>(Seeds<std::uint64_t>::maximum));
}

int UIntRangeHelper::initMin(Data& target) const {
    return target.setValue(bothEnds<Data::UIntRange>(Seeds<std::uint64_t>::minimum));
}

int UIntRangeHelper::accumulate(Data& target, const Data& input) const {
    if (input.getType() == DataType::UINT)
        return addWrapping(target, bothEnds<Data::UIntRange>(uintOrZero(input)));
    if (input.getType() == DataType::UINT_RANGE)
        return addWrapping(target, rangeOrZero<Data::UIntRange>(input));
    logMessage(PWLogLevel::WARNING, "WARNING: UIntRange accumulate expects UINT type\n");
    return 1;
}

int UIntRangeHelper::multiply(Data& target, double factor) const {
    return scaleIntegers<Data::UIntRange>(target, factor);
}

bool UIntRangeHelper::less(const Data& left, const Data& right) const {
    return lessLowEnd<Data::UIntRange>(left, right);
}

bool UIntRangeHelper::equal(const Data& left, const Data& right) const {
    return equalLowEnd<Data::UIntRange>(left, right);
}

const Formatter* UIntRangeHelper::defaultFormatter() const {
    return &m_formatter;
}

int RealRangeHelper::initZero(Data& target) const {
    return target.setValue(Data::RealRange{});
}

int RealRangeHelper::initMax(Data& target) const {
    return target.setValue(bothEnds<Data::RealRange>(Seeds<double>::maximum));
}

int RealRangeHelper::initMin(Data& target) const {
    return target.setValue(bothEnds<Data::RealRange>(Seeds<double>::minimum));
}

int RealRangeHelper::accumulate(Data& target, const Data& input) const {
    Data::RealRange addend;
    if (readAddend(input, addend) != 0) {
        logMessage(PWLogLevel::WARNING, "WARNING: Accumulator must have REAL, INT, or UINT type as input\n");
        return 1;
    }
    const auto sum = rangeOrZero<Data::RealRange>(target);
    return target.setValue(Data::RealRange{sum.first + addend.first, sum.second + addend.second});
}

int RealRangeHelper::multiply(Data& target, double factor) const {
    Data::RealRange range;
    if (target.toRealRange(range) != 0) return 1;
    return target.setValue(Data::RealRange{range.first * factor, range.second * factor});
}

bool RealRangeHelper::less(const Data& left, const Data& right) const {
    return lessLowEnd<Data::RealRange>(left, right);
}

bool RealRangeHelper::equal(const Data& left, const Data& right) const {
    return equalLowEnd<Data::RealRange>(left, right);
}

const Formatter* RealRangeHelper::defaultFormatter() const {
    return &m_formatter;
}

} // namespace pwr
