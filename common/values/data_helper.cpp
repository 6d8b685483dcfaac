#include "common/values/data_helper.h"

#include "common/plugin/logger.h"
#include "common/values/data.h"

namespace pwr {

DataHelper::~DataHelper() = default;
IntHelper::~IntHelper() = default;
UIntHelper::~UIntHelper() = default;
RealHelper::~RealHelper() = default;
IntRangeHelper::~IntRangeHelper() = default;
UIntRangeHelper::~UIntRangeHelper() = default;
RealRangeHelper::~RealRangeHelper() = default;
StringHelper::~StringHelper() = default;
HandleHelper::~HandleHelper() = default;
VoidHelper::~VoidHelper() = default;

namespace {

/// Keeps an object from being destroyed: values that outlive the library's last static still print.
template <class T> union Permanent {
    constexpr Permanent() noexcept : object() {}
    // A defaulted destructor would be a deleted one here.
    ~Permanent() {} // NOLINT(modernize-use-equals-default)
    T object;
};

struct HelperObjects {
    Permanent<VoidHelper> none;
    Permanent<IntHelper> integer;
    Permanent<UIntHelper> unsignedInteger;
    Permanent<RealHelper> real;
    Permanent<IntRangeHelper> intRange;
    Permanent<UIntRangeHelper> uintRange;
    Permanent<RealRangeHelper> realRange;
    Permanent<HandleHelper> handle;
    Permanent<StringHelper> string;
};

#if defined(__clang__)
// Cannot evaluate the standard library's empty string at compile time; filled when the library is
// loaded, which is early enough for everything but formatting in a static initialiser.
const HelperObjects helpers;
#else
constinit const HelperObjects helpers;
#endif

} // namespace

constinit const DataHelper* const g_dataHelpers[DATA_TYPE_COUNT] = {
    &helpers.none.object,      &helpers.integer.object,  &helpers.unsignedInteger.object,
    &helpers.real.object,      &helpers.intRange.object, &helpers.uintRange.object,
    &helpers.realRange.object, &helpers.handle.object,   &helpers.string.object,
};

int DataHelper::accumulate(Data&, const Data&) const {
    logMessage(PWLogLevel::WARNING, "WARNING: Attempt to accumulate on unsupported type\n");
    return 1;
}

int DataHelper::multiply(Data&, double) const {
    logMessage(PWLogLevel::WARNING, "WARNING: Multiply only supported for numeric types\n");
    return 1;
}

int StringHelper::initZero(Data&) const {
    return 1;
}

int StringHelper::initMax(Data&) const {
    return 1;
}

int StringHelper::initMin(Data&) const {
    return 1;
}

bool StringHelper::less(const Data& left, const Data& right) const {
    return left.isUsable_i() && right.isUsable_i() && left.m_text < right.m_text;
}

bool StringHelper::equal(const Data& left, const Data& right) const {
    return left.isUsable_i() && right.isUsable_i() && left.m_text == right.m_text;
}

const Formatter* StringHelper::defaultFormatter() const {
    return &m_formatter;
}

int HandleHelper::initZero(Data&) const {
    return 1;
}

int HandleHelper::initMax(Data&) const {
    return 1;
}

int HandleHelper::initMin(Data&) const {
    return 1;
}

bool HandleHelper::less(const Data& left, const Data& right) const {
    return left.isUsable_i() && right.isUsable_i() && left.m_words[0] < right.m_words[0];
}

bool HandleHelper::equal(const Data& left, const Data& right) const {
    return left.isUsable_i() && right.isUsable_i() && left.m_words[0] == right.m_words[0];
}

const Formatter* HandleHelper::defaultFormatter() const {
    return &m_formatter;
}

int VoidHelper::initZero(Data&) const {
    return 1;
}

int VoidHelper::initMax(Data&) const {
    return 1;
}

int VoidHelper::initMin(Data&) const {
    return 1;
}

bool VoidHelper::less(const Data&, const Data&) const {
    logMessage(PWLogLevel::WARNING, "WARNING: Cannot use data object with type pwr::DataType::NONE\n");
    return false;
}

bool VoidHelper::equal(const Data&, const Data&) const {
    logMessage(PWLogLevel::WARNING, "WARNING: Cannot use data object with type pwr::DataType::NONE\n");
    return false;
}

const Formatter* VoidHelper::defaultFormatter() const {
    logMessage(PWLogLevel::WARNING, "WARNING: Cannot use data object with type pwr::DataType::NONE\n");
    return &m_formatter;
}

} // namespace pwr
