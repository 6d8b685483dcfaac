#pragma once

#include "common/export.h"
#include "common/values/formatter.h"

namespace pwr {

class Data;

/// What a type of value can do: seeds, sums, scaling, order and its default text form. One constant
/// object per type is shared by all values of the type (`g_dataHelpers`), which keeps `Data` free of
/// decisions by type. The operations return 0, or 1 after a warning; without a warning where the
/// type simply has no such seed, or an operand is unset.
class KRCOMMON_API DataHelper {
public:
    virtual ~DataHelper();
    virtual int initZero(Data& target) const = 0;
    virtual int accumulate(Data& target, const Data& input) const;
    virtual int multiply(Data& target, double factor) const;
    virtual int initMax(Data& target) const = 0;
    virtual int initMin(Data& target) const = 0;
    /// Both values are of the helper's type. An unusable one is neither less nor equal.
    virtual bool less(const Data& left, const Data& right) const = 0;
    virtual bool equal(const Data& left, const Data& right) const = 0;
    /// Never null; belongs to the helper.
    virtual const Formatter* defaultFormatter() const = 0;

protected:
    constexpr DataHelper() noexcept = default;
    DataHelper(const DataHelper&) = default;
    DataHelper& operator=(const DataHelper&) = default;
};

/// Signed integers; sums wrap in two's complement.
class KRCOMMON_API IntHelper : public DataHelper {
public:
    constexpr IntHelper() noexcept = default;
    ~IntHelper() override;
    int initZero(Data& target) const override;
    int accumulate(Data& target, const Data& input) const override;
    int multiply(Data& target, double factor) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    IntFormatter m_formatter{0, false};
};

/// Unsigned integers; sums wrap modulo 2^64.
class KRCOMMON_API UIntHelper : public DataHelper {
public:
    constexpr UIntHelper() noexcept = default;
    ~UIntHelper() override;
    int initZero(Data& target) const override;
    int accumulate(Data& target, const Data& input) const override;
    int multiply(Data& target, double factor) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    UIntFormatter m_formatter{0, false};
};

/// Reals; they also sum up integers, and both ends of a real range.
class KRCOMMON_API RealHelper : public DataHelper {
public:
    constexpr RealHelper() noexcept = default;
    ~RealHelper() override;
    int initZero(Data& target) const override;
    int accumulate(Data& target, const Data& input) const override;
    int multiply(Data& target, double factor) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    RealFormatter m_formatter{0, 2};
};

/// Ranges of signed integers: a number is added to both ends, a range end to end. Ranges compare by
/// their low ends only. An operand that is not usable counts as 0.
class KRCOMMON_API IntRangeHelper : public DataHelper {
public:
    constexpr IntRangeHelper() noexcept = default;
    ~IntRangeHelper() override;
    int initZero(Data& target) const override;
    int accumulate(Data& target, const Data& input) const override;
    int multiply(Data& target, double factor) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    IntFormatter m_formatter{0, false};
};

/// Ranges of unsigned integers, as IntRangeHelper.
class KRCOMMON_API UIntRangeHelper : public DataHelper {
public:
    constexpr UIntRangeHelper() noexcept = default;
    ~UIntRangeHelper() override;
    int initZero(Data& target) const override;
    int accumulate(Data& target, const Data& input) const override;
    int multiply(Data& target, double factor) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    UIntFormatter m_formatter{0, false};
};

/// Ranges of reals, as IntRangeHelper; every number and range is taken as a real.
class KRCOMMON_API RealRangeHelper : public DataHelper {
public:
    constexpr RealRangeHelper() noexcept = default;
    ~RealRangeHelper() override;
    int initZero(Data& target) const override;
    int accumulate(Data& target, const Data& input) const override;
    int multiply(Data& target, double factor) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    RealFormatter m_formatter{0, 2};
};

/// Strings: an order and a text form, no arithmetic.
class KRCOMMON_API StringHelper : public DataHelper {
public:
    constexpr StringHelper() noexcept = default;
    ~StringHelper() override;
    int initZero(Data& target) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    StringFormatter m_formatter{0};
};

/// References to handles, ordered by the handle's id; the handle need not be known.
class KRCOMMON_API HandleHelper : public DataHelper {
public:
    constexpr HandleHelper() noexcept = default;
    ~HandleHelper() override;
    int initZero(Data& target) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    HandleFormatter m_formatter{0};
};

/// Values without a type: everything fails, order and text form with a warning of their own.
class KRCOMMON_API VoidHelper : public DataHelper {
public:
    constexpr VoidHelper() noexcept = default;
    ~VoidHelper() override;
    int initZero(Data& target) const override;
    int initMax(Data& target) const override;
    int initMin(Data& target) const override;
    bool less(const Data& left, const Data& right) const override;
    bool equal(const Data& left, const Data& right) const override;
    const Formatter* defaultFormatter() const override;

private:
    VoidFormatter m_formatter;
};

} // namespace pwr
