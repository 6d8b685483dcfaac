#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "common/export.h"

namespace pwr {

class Data;
class DataHandle;
class DataHelper;
class Formatter;

/// What a value holds. The numbers are stored in saved collections and compared: never renumber.
enum class DataType : std::uint8_t {
    NONE = 0,
    INT = 1,
    UINT = 2,
    REAL = 3,
    INT_RANGE = 4,
    UINT_RANGE = 5,
    REAL_RANGE = 6,
    HANDLE = 7,
    STRING = 8,
};

inline constexpr unsigned DATA_TYPE_COUNT = 9;

/// The helper of each type, indexed by the type's number. The table is filled by the linker, so that
/// values may be made while other modules are still being initialised, and it outlives all of them.
KRCOMMON_API extern const DataHelper* const g_dataHelpers[DATA_TYPE_COUNT];

/// Deletes a value's own formatter where the class is complete; values are usable without it.
struct KRCOMMON_API FormatterDeleter {
    void operator()(Formatter* formatter) const;
};

/// Integers that convert to int64 or uint64 without a loss, by their signedness.
template <class T>
concept NarrowInteger = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, std::int64_t> &&
                        !std::same_as<T, std::uint64_t> && sizeof(T) <= sizeof(std::uint64_t);

/// The one tagged value of the whole library: samples, table cells, finite sets, attribute values.
///
/// A value is readable only when the getter's type is its type and it is both set and valid; nothing
/// converts between types. Every failure returns 1 and leaves a warning in the environment's log,
/// except reading a value of the right type that is unset or invalid, which is an answer.
/// Copies are independent: a custom formatter is cloned. Not synchronised.
///
/// The intake copies and assigns values for every sample, so copying a number without a formatter
/// is a few stores: text is touched only when one of the two sides holds some.
class KRCOMMON_API Data {
public:
    using IntRange = std::pair<std::int64_t, std::int64_t>;
    using UIntRange = std::pair<std::uint64_t, std::uint64_t>;
    using RealRange = std::pair<double, double>;

    /// A value of type NONE; the first number or string that is stored decides the type.
    Data() noexcept : Data(DataType::NONE, 0, 0, false) {}
    /// A value of the given type that is not set yet.
    explicit Data(DataType type) : Data() { init_i(type); }
    Data(std::int64_t value) noexcept : Data(DataType::INT, std::bit_cast<std::uint64_t>(value), 0, true) {}
    Data(std::uint64_t value) noexcept : Data(DataType::UINT, value, 0, true) {}
    Data(double value) noexcept : Data(DataType::REAL, std::bit_cast<std::uint64_t>(value), 0, true) {}
    template <NarrowInteger T> Data(T value) noexcept : Data(widen_i(value)) {}
    Data(const std::string& value) : Data(DataType::STRING, 0, 0, true) { m_text = value; }
    Data(const char* value) : Data(std::string(value)) {}
    /// Refers to a handle by its id; the handle itself is neither copied nor kept.
    Data(const DataHandle& handle);
    Data(const IntRange& range) noexcept : Data(range.first, range.second) {}
    Data(const UIntRange& range) noexcept : Data(range.first, range.second) {}
    Data(const RealRange& range) noexcept : Data(range.first, range.second) {}
    Data(std::int64_t low, std::int64_t high) noexcept
        : Data(DataType::INT_RANGE, std::bit_cast<std::uint64_t>(low), std::bit_cast<std::uint64_t>(high),
               true) {}
    Data(std::uint64_t low, std::uint64_t high) noexcept : Data(DataType::UINT_RANGE, low, high, true) {}
    Data(double low, double high) noexcept
        : Data(DataType::REAL_RANGE, std::bit_cast<std::uint64_t>(low), std::bit_cast<std::uint64_t>(high),
               true) {}
    template <NarrowInteger T> Data(T low, T high) noexcept : Data(widen_i(low), widen_i(high)) {}

    Data(const Data& other)
        : m_words{other.m_words[0], other.m_words[1]}, m_helper(other.m_helper), m_type(other.m_type),
          m_valid(other.m_valid), m_set(other.m_set) {
        if (!other.m_text.empty()) m_text = other.m_text;
        if (other.m_formatter) copyFormatter_i(other);
    }
    // Safe for a value assigned to itself: the formatter is cloned before the old one goes.
    Data& operator=(const Data& other) { // NOLINT(bugprone-unhandled-self-assignment)
        if (m_formatter || other.m_formatter) copyFormatter_i(other);
        if (!m_text.empty() || !other.m_text.empty()) m_text = other.m_text;
        m_words[0] = other.m_words[0];
        m_words[1] = other.m_words[1];
        m_helper = other.m_helper;
        m_type = other.m_type;
        m_valid = other.m_valid;
        m_set = other.m_set;
        return *this;
    }
    Data(Data&& other) noexcept = default;
    Data& operator=(Data&& other) noexcept = default;
    ~Data() = default;

    /// Numbers and strings: a NONE value adopts the type (and loses its custom formatter). On any
    /// other mismatch the old value becomes invalid, so that a stale number is never read.
    int setValue(std::int64_t value) {
        return setScalar_i(DataType::INT, std::bit_cast<std::uint64_t>(value));
    }
    int setValue(std::uint64_t value) { return setScalar_i(DataType::UINT, value); }
    int setValue(double value) { return setScalar_i(DataType::REAL, std::bit_cast<std::uint64_t>(value)); }
    template <NarrowInteger T> int setValue(T value) { return setValue(widen_i(value)); }
    int setValue(const std::string& value);
    int setValue(const char* value) { return setValue(std::string(value)); }
    /// Ranges and handles never adopt a type, and a refused one still counts as set.
    int setValue(const IntRange& range) {
        return setFixed_i(DataType::INT_RANGE, std::bit_cast<std::uint64_t>(range.first),
                          std::bit_cast<std::uint64_t>(range.second));
    }
    int setValue(const UIntRange& range) {
        return setFixed_i(DataType::UINT_RANGE, range.first, range.second);
    }
    int setValue(const RealRange& range) {
        return setFixed_i(DataType::REAL_RANGE, std::bit_cast<std::uint64_t>(range.first),
                          std::bit_cast<std::uint64_t>(range.second));
    }
    int setValue(const DataHandle& handle);
    /// Takes over the payload by its type, under the same rules; this value keeps its formatter.
    /// A source that is NONE, unset or invalid is refused (1) and changes nothing.
    int setValue(const Data& other);

    DataType getType() const { return m_type; }
    bool isSet() const { return m_set; }
    bool isValid() const { return m_valid; }
    /// Payload and the set flag stay; the next stored value makes the object usable again.
    void invalidate() { m_valid = false; }
    /// Integers, reals and their ranges.
    bool isNumeric() const { return m_type >= DataType::INT && m_type <= DataType::REAL_RANGE; }

    /// Getters: 0 and the payload, or 1 with the output untouched.
    int toInt(std::int64_t& value) const {
        if (!isReadable_i(DataType::INT)) return 1;
        value = std::bit_cast<std::int64_t>(m_words[0]);
        return 0;
    }
    int toUInt(std::uint64_t& value) const {
        if (!isReadable_i(DataType::UINT)) return 1;
        value = m_words[0];
        return 0;
    }
    int toReal(double& value) const {
        if (!isReadable_i(DataType::REAL)) return 1;
        value = std::bit_cast<double>(m_words[0]);
        return 0;
    }
    int toIntRange(IntRange& range) const {
        if (!isReadable_i(DataType::INT_RANGE)) return 1;
        range = {std::bit_cast<std::int64_t>(m_words[0]), std::bit_cast<std::int64_t>(m_words[1])};
        return 0;
    }
    int toUIntRange(UIntRange& range) const {
        if (!isReadable_i(DataType::UINT_RANGE)) return 1;
        range = {m_words[0], m_words[1]};
        return 0;
    }
    int toRealRange(RealRange& range) const {
        if (!isReadable_i(DataType::REAL_RANGE)) return 1;
        range = {std::bit_cast<double>(m_words[0]), std::bit_cast<double>(m_words[1])};
        return 0;
    }
    int toString(std::string& value) const {
        if (!isReadable_i(DataType::STRING)) return 1;
        value = m_text;
        return 0;
    }
    /// Resolves the stored id through the registry of handles, which warns when the id is unknown.
    int toHandle(const DataHandle*& handle) const;

    /// The value as text: by the custom formatter if there is one, else by the type's default.
    int toFormattedString(std::string& text) const;
    /// Whether the value brings a formatter of its own, which a copy of its payload would lose.
    bool hasCustomFormatter() const { return m_formatter != nullptr; }
    /// Keeps a clone of the formatter; the caller's object is not needed any more. Always 0.
    int setCustomFormatter(const Formatter& formatter);

    /// Starts a sum.
    int initZero();
    /// Starts a running minimum: the largest value of the type.
    int initMin();
    /// Starts a running maximum: the smallest value of the type, for reals the smallest positive
    /// normal one, so that the maximum of negative samples stays at that seed.
    int initMax();
    /// Adds the input to this value; integer sums wrap. Which types mix is the helper's decision.
    int addValue(const Data& input);
    /// Scales a number; integers round half away from zero and saturate at the ends of their type.
    int multiplyValue(double factor);

    /// The same value with real payload: integers and integer ranges are converted, the flags kept.
    /// Reals come back as they are, anything else with a warning and unchanged.
    static Data convertToReal(const Data* value);

    /// The order of types comes first, then unset before invalid before usable, then the payload:
    /// ranges by their low ends only, handles by id. "Greater" is "neither less nor equal", so NaN is
    /// greater than everything and everything greater than NaN.
    bool operator<(const Data& other) const {
        if (m_type != other.m_type) return m_type < other.m_type;
        if (!m_set) return other.m_set;
        if (!m_valid) return other.m_valid;
        return lessPayload_i(other);
    }
    bool operator==(const Data& other) const {
        if (m_type != other.m_type) return false;
        if (!m_set) return !other.m_set;
        if (!m_valid) return !other.m_valid;
        return equalPayload_i(other);
    }
    bool operator!=(const Data& other) const { return !(*this == other); }
    bool operator>(const Data& other) const { return !(*this < other) && !(*this == other); }
    bool operator<=(const Data& other) const { return *this < other || *this == other; }
    bool operator>=(const Data& other) const { return !(*this < other); }

protected:
    /// Makes this an unset value of the type, without a custom formatter. An unknown number is kept
    /// as the type with the helper of INT, so that every later access fails by its type.
    void init_i(DataType type);

private:
    friend class HandleHelper;
    friend class StringHelper;

    Data(DataType type, std::uint64_t first, std::uint64_t second, bool usable) noexcept
        : m_words{first, second}, m_helper(g_dataHelpers[static_cast<unsigned>(type)]), m_type(type),
          m_valid(usable), m_set(usable) {}

    template <class T> static constexpr auto widen_i(T value) {
        if constexpr (std::is_signed_v<T>)
            return static_cast<std::int64_t>(value);
        else
            return static_cast<std::uint64_t>(value);
    }
    bool isUsable_i() const { return m_set && m_valid; }
    bool isReadable_i(DataType wanted) const {
        if (m_type != wanted) {
            warnUnreadable_i(wanted);
            return false;
        }
        return isUsable_i();
    }
    int setScalar_i(DataType type, std::uint64_t bits) {
        if (m_type != type && adopt_i(type) != 0) return 1;
        m_words[0] = bits;
        m_set = m_valid = true;
        return 0;
    }
    int setFixed_i(DataType type, std::uint64_t first, std::uint64_t second) {
        m_set = true;
        if (m_type != type) return refuse_i(type);
        m_words[0] = first;
        m_words[1] = second;
        m_valid = true;
        return 0;
    }
    bool lessPayload_i(const Data& other) const {
        if (m_type == DataType::UINT) return other.isUsable_i() && m_words[0] < other.m_words[0];
        if (m_type == DataType::REAL)
            return other.isUsable_i() &&
                   std::bit_cast<double>(m_words[0]) < std::bit_cast<double>(other.m_words[0]);
        if (m_type == DataType::INT)
            return other.isUsable_i() &&
                   std::bit_cast<std::int64_t>(m_words[0]) < std::bit_cast<std::int64_t>(other.m_words[0]);
        return lessByHelper_i(other);
    }
    bool equalPayload_i(const Data& other) const {
        if (m_type == DataType::UINT || m_type == DataType::INT)
            return other.isUsable_i() && m_words[0] == other.m_words[0];
        if (m_type == DataType::REAL)
            return other.isUsable_i() &&
                   std::bit_cast<double>(m_words[0]) == std::bit_cast<double>(other.m_words[0]);
        return equalByHelper_i(other);
    }

    int adopt_i(DataType type);
    int refuse_i(DataType type);
    void copyFormatter_i(const Data& other);
    bool lessByHelper_i(const Data& other) const;
    bool equalByHelper_i(const Data& other) const;
    static void warnUnreadable_i(DataType wanted);

    std::uint64_t m_words[2];                                 // scalars and ids use the first
    const DataHelper* m_helper;                               // of the type, never null
    std::unique_ptr<Formatter, FormatterDeleter> m_formatter; // null: the type's default formatter
    std::string m_text;                                       // STRING only
    DataType m_type;
    bool m_valid;
    bool m_set;
};

// A sample is one cache line and a bit; growing it slows the intake down.
static_assert(sizeof(void*) != 8 || sizeof(std::string) != 32 || sizeof(Data) == 72);

} // namespace pwr
