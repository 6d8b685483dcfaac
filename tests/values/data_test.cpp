#include "common/values/data.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "common/model/state.h"
#include "common/values/formatter.h"
#include "tests/support/log_capture.h"

using namespace pwr;

namespace {

constexpr auto UNKNOWN = static_cast<DataType>(200);

const DataHandle& handle(int which) {
    static const State* const handles[] = {State::create(StateDescription("C1")),
                                           State::create(StateDescription("C6"))};
    return *handles[which];
}

struct Kind {
    DataType type;
    bool adopts; // a NONE value takes on the type
    std::function<int(Data&)> set;
    std::function<int(const Data&)> get; // checks the payload that `set` stored
    const char* mismatch;
};

template <class T>
Kind kind(DataType type, T payload, int (Data::*getter)(T&) const, bool adopts, const char* text) {
    return {type, adopts, [payload](Data& data) { return data.setValue(payload); },
            [payload, getter](const Data& data) {
                T out{};
                const int result = (data.*getter)(out);
                EXPECT_EQ(result == 0 ? payload : T{}, out); // a failed getter leaves the output alone
                return result;
            },
            text};
}

const std::vector<Kind>& kinds() {
    static const std::vector<Kind> all = {
        kind(DataType::INT, std::int64_t{-5}, &Data::toInt, true,
             "WARNING: Attempt to retrieve a signed value from a non-signed type\n"),
        kind(DataType::UINT, ~std::uint64_t{0}, &Data::toUInt, true,
             "WARNING: Attempt to retrieve an unsigned value from a non-unsigned type\n"),
        kind(DataType::REAL, 2.5, &Data::toReal, true,
             "WARNING: Attempt to retrieve a real value from a non-real type\n"),
        kind(DataType::INT_RANGE, Data::IntRange(-1, 9), &Data::toIntRange, false,
             "WARNING: Attempt to retrieve a non int range value from a int range type\n"),
        kind(DataType::UINT_RANGE, Data::UIntRange(1, 9), &Data::toUIntRange, false,
             "WARNING: Attempt to retrieve a non unsigned range value from an unsigned range type\n"),
        kind(DataType::REAL_RANGE, Data::RealRange(1.5, 2.5), &Data::toRealRange, false,
             "WARNING: Attempt to retrieve a not double range value from a double range type\n"),
        {DataType::HANDLE, false, [](Data& data) { return data.setValue(handle(0)); },
         [](const Data& data) {
             const DataHandle* out = nullptr;
             const int result = data.toHandle(out);
             EXPECT_EQ(result == 0 ? &handle(0) : nullptr, out);
             return result;
         },
         "WARNING: Attempt to retrieve handle value from a non-unsigned type\n"},
        kind(DataType::STRING, std::string("a text that is longer than a short one"), &Data::toString, true,
             "WARNING: Attempt to retrieve a string from a non-string type\n"),
    };
    return all;
}

std::string wrongType(DataType is, DataType wanted) {
    return "WARNING: Invalid attempt to initialize data of the wrong type (" +
           std::to_string(static_cast<int>(is)) + " != " + std::to_string(static_cast<int>(wanted)) + ")\n";
}

std::string textOf(const Data& data) {
    std::string text;
    return data.toFormattedString(text) == 0 ? text : "failed: " + text;
}

std::string sum(Data target, const Data& input) {
    return target.addValue(input) == 0 ? textOf(target) : "refused";
}

std::string product(Data target, double factor) {
    return target.multiplyValue(factor) == 0 ? textOf(target) : "refused";
}

} // namespace

TEST(Data, everySetterOnEveryType) {
    LogCapture log;
    for (const Kind& kind : kinds()) {
        for (unsigned number = 0; number <= 9; ++number) {
            const auto type = number < 9 ? static_cast<DataType>(number) : UNKNOWN;
            SCOPED_TRACE(std::to_string(static_cast<int>(type)) + " <- " +
                         std::to_string(static_cast<int>(kind.type)));
            Data data(type);
            EXPECT_EQ(type == UNKNOWN ? "WARNING: Unhandled type 200\n" : "", log.take());
            EXPECT_FALSE(data.isSet() || data.isValid());
            const bool taken = type == kind.type || (type == DataType::NONE && kind.adopts);
            EXPECT_EQ(taken ? 0 : 1, kind.set(data));
            EXPECT_EQ(taken ? "" : wrongType(type, kind.type), log.take());
            EXPECT_EQ(taken || !kind.adopts, data.isSet());
            EXPECT_EQ(taken, data.isValid());
            EXPECT_EQ(taken ? kind.type : type, data.getType());
        }
    }
}

TEST(Data, everyGetterOnEveryType) {
    LogCapture log;
    for (const Kind& stored : kinds()) {
        Data data(stored.type);
        for (const bool usable : {false, true}) {
            if (usable) {
                ASSERT_EQ(0, stored.set(data));
            }
            for (const Kind& wanted : kinds()) {
                const bool match = stored.type == wanted.type;
                EXPECT_EQ(match && usable ? 0 : 1, wanted.get(data));
                EXPECT_EQ(match ? "" : wanted.mismatch, log.take());
            }
        }
        data.invalidate();
        EXPECT_TRUE(data.isSet());
        EXPECT_EQ(1, stored.get(data));
        EXPECT_EQ("", log.take());
        const int number = static_cast<int>(stored.type);
        EXPECT_EQ(number >= 1 && number <= 6, data.isNumeric());
        EXPECT_EQ(1, stored.get(Data(UNKNOWN)));
        EXPECT_EQ("WARNING: Unhandled type 200\n" + std::string(stored.mismatch), log.take());
    }
    EXPECT_FALSE(Data().isNumeric() || Data(UNKNOWN).isNumeric());
}

TEST(Data, failedSetterSpoilsTheOldValueUntilTheNextGoodOne) {
    LogCapture log;
    Data data(std::int64_t{7});
    EXPECT_EQ(1, data.setValue(2.5));
    EXPECT_EQ(wrongType(DataType::INT, DataType::REAL), log.take());
    std::int64_t out = 0;
    EXPECT_EQ(1, data.toInt(out));
    EXPECT_TRUE(data.isSet());
    EXPECT_EQ(0, data.setValue(std::int64_t{8}));
    EXPECT_EQ(0, data.toInt(out));
    EXPECT_EQ(8, out);
}

TEST(Data, constructorsChooseTheType) {
    const Data made[] = {Data(-3),     Data(3ULL),     Data(0.5),       Data(-1, 2),
                         Data(1U, 2U), Data(0.5, 1.5), Data(handle(1)), Data("text")};
    unsigned number = 0;
    for (const Data& data : made) {
        EXPECT_EQ(static_cast<DataType>(++number), data.getType());
        EXPECT_TRUE(data.isSet() && data.isValid());
    }
}

TEST(Data, takesOverAnotherPayloadButKeepsItsFormatter) {
    LogCapture log;
    Data target(1.0);
    target.setCustomFormatter(RealFormatter("W", 0, 1));
    Data source(2.25);
    source.setCustomFormatter(RealFormatter(0, 3));
    EXPECT_EQ(0, target.setValue(source));
    EXPECT_EQ("2.2W", textOf(target));
    Data invalid(3.0);
    invalid.invalidate();
    for (const Data& refused : {Data(), Data(DataType::REAL), invalid})
        EXPECT_EQ(1, target.setValue(refused));
    EXPECT_EQ("2.2W", textOf(target));
    EXPECT_EQ("", log.take());
    EXPECT_EQ(1, target.setValue(Data(1)));
    EXPECT_EQ(wrongType(DataType::REAL, DataType::INT), log.take());

    for (const Data& adopted : {Data(1), Data(1.5), Data("t"), Data(1U)}) {
        Data none;
        EXPECT_EQ(0, none.setValue(adopted));
        EXPECT_EQ(adopted, none);
    }
    for (const Data& refused : {Data(1.0, 2.0), Data(handle(0))}) {
        Data none;
        EXPECT_EQ(1, none.setValue(refused));
        EXPECT_EQ(wrongType(DataType::NONE, refused.getType()), log.take());
    }
}

TEST(Data, copiesOwnTheirFormatterAndText) {
    const std::string longText(100, 'x');
    Data text(longText);
    text.setCustomFormatter(StringFormatter(102));
    Data copy(text);
    text = Data(5);
    EXPECT_EQ("  " + longText, textOf(copy));
    EXPECT_EQ("5", textOf(text)); // the assignment removed the formatter
    Data& same = copy;
    copy = same;
    EXPECT_EQ("  " + longText, textOf(copy));
    Data taken(std::move(copy));
    EXPECT_EQ("  " + longText, textOf(taken));
    taken = Data("");
    EXPECT_EQ("", textOf(taken));
    taken.setCustomFormatter(StringFormatter(2));
    taken.setCustomFormatter(StringFormatter(1));
    EXPECT_EQ(" ", textOf(taken));

    Data none;
    none.setCustomFormatter(StringFormatter(5));
    none.setValue("a"); // adopting a type starts without a formatter
    EXPECT_EQ("a", textOf(none));
}

TEST(Data, seedsOfRunningValues) {
    constexpr double largest = 1.7976931348623157e308;
    constexpr double tiny = 2.2250738585072014e-308;
    const std::tuple<Data, Data, Data> cases[] = {
        {Data(0), Data(INT64_MAX), Data(INT64_MIN)},
        {Data(0U), Data(UINT64_MAX), Data(0U)},
        {Data(0.0), Data(largest), Data(tiny)},
        {Data(0, 0), Data(INT64_MAX, INT64_MAX), Data(INT64_MIN, INT64_MIN)},
        {Data(0U, 0U), Data(UINT64_MAX, UINT64_MAX), Data(0U, 0U)},
        {Data(0.0, 0.0), Data(largest, largest), Data(tiny, tiny)}};
    for (const auto& [zero, minimum, maximum] : cases) {
        const DataType type = zero.getType();
        Data started(type);
        EXPECT_EQ(0, started.initZero());
        EXPECT_EQ(textOf(zero), textOf(started));
        EXPECT_EQ(0, started.initMin());
        EXPECT_EQ(textOf(minimum), textOf(started));
        EXPECT_EQ(0, started.initMax());
        EXPECT_EQ(textOf(maximum), textOf(started));
        EXPECT_EQ(maximum, started); // as a text the tiny seed is 0.00
    }
    LogCapture log;
    for (Data data : {Data(), Data("kept"), Data(handle(0))}) {
        const Data before(data);
        EXPECT_EQ(3, data.initZero() + data.initMin() + data.initMax());
        EXPECT_TRUE(data == before);
    }
    EXPECT_EQ("", log.take());

    Data maximum(DataType::REAL);
    maximum.initMax();
    for (const double sample : {-3.0, -1.0})
        if (Data(sample) > maximum) maximum.setValue(sample);
    EXPECT_EQ(Data(tiny), maximum);
}

TEST(Data, addsWhatMixes) {
    const Data reals(1.0, 2.0), unsetRange(DataType::INT_RANGE);
    Data invalid(3);
    invalid.invalidate();
    EXPECT_EQ("-9223372036854775808", sum(Data(INT64_MAX), Data(1)));
    EXPECT_EQ("1", sum(Data(UINT64_MAX), Data(2U)));
    EXPECT_EQ("4.00", sum(Data(0.0), Data(1.5, 2.5)));
    EXPECT_EQ("-0.50", sum(Data(0.5), Data(-1)));
    EXPECT_EQ("18446744073709551616.00", sum(Data(0.0), Data(UINT64_MAX)));
    EXPECT_EQ("2 -- -9223372036854775808", sum(Data(Data::IntRange(1, INT64_MAX)), Data(1)));
    EXPECT_EQ("11 -- 22", sum(Data(1, 2), Data(10, 20)));
    EXPECT_EQ("4 -- 5", sum(Data(1U, 2U), Data(3U)));
    EXPECT_EQ("4 -- 6", sum(Data(1U, 2U), Data(3U, 4U)));
    EXPECT_EQ("1.50 -- 2.50", sum(reals, Data(0.5)));
    EXPECT_EQ("0.00 -- 1.00", sum(reals, Data(-1)));
    EXPECT_EQ("2.00 -- 3.00", sum(reals, Data(1U)));
    EXPECT_EQ("0.00 -- 3.00", sum(reals, Data(-1, 1)));
    EXPECT_EQ("2.00 -- 4.00", sum(reals, Data(1U, 2U)));
    EXPECT_EQ("2.00 -- 2.50", sum(reals, Data(1.0, 0.5)));
    EXPECT_EQ("4 -- 4", sum(unsetRange, Data(4)));
    EXPECT_EQ("1 -- 2", sum(Data(1, 2), unsetRange));
    EXPECT_EQ("1 -- 2", sum(Data(1, 2), invalid));
    Data twice(1, 2);
    EXPECT_EQ(0, twice.addValue(twice));
    EXPECT_EQ("2 -- 4", textOf(twice));
}

TEST(Data, refusesToAddWhatDoesNotMix) {
    const char real[] = "WARNING: Accumulator must have REAL, INT, UINT or REAL_RANGE type as input\n";
    const char unsupported[] = "WARNING: Attempt to accumulate on unsupported type\n";
    const std::tuple<Data, Data, const char*> cases[] = {
        {Data(1), Data(1U), "WARNING: Accumulator must have INT type as input\n"},
        {Data(1U), Data(1), "WARNING: Accumulator must have UINT type as input\n"},
        {Data(1.0), Data(1, 2), real},
        {Data(1.0), Data(), real},
        {Data(1, 2), Data(1.0), "WARNING: IntRange accumulate expects INT type\n"},
        {Data(1U, 2U), Data(1), "WARNING: UIntRange accumulate expects UINT type\n"},
        {Data(1.0, 2.0), Data("1"), "WARNING: Accumulator must have REAL, INT, or UINT type as input\n"},
        {Data("1"), Data("1"), unsupported},
        {Data(handle(0)), Data(1), unsupported},
        {Data(), Data(1), unsupported}};
    LogCapture log;
    for (const auto& [before, input, message] : cases) {
        Data target(before);
        EXPECT_EQ(1, target.addValue(input));
        EXPECT_EQ(message, log.take());
        EXPECT_TRUE(target == before);
    }
}

TEST(Data, scalesAndRounds) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ("2", product(Data(3), 0.5));
    EXPECT_EQ("3", product(Data(5), 0.5));
    EXPECT_EQ("-3", product(Data(-5), 0.5));
    EXPECT_EQ("9223372036854775807", product(Data(INT64_MAX), 1));
    EXPECT_EQ("-9223372036854775808", product(Data(INT64_MIN), 1));
    EXPECT_EQ("-9223372036854775808", product(Data(-1), 1e300));
    EXPECT_EQ("0", product(Data(1), nan));
    EXPECT_EQ("18446744073709551615", product(Data(UINT64_MAX), 1));
    EXPECT_EQ("13835058055282163712", product(Data(std::uint64_t{1} << 62), 3));
    EXPECT_EQ("0", product(Data(5U), -1));
    EXPECT_EQ("0", product(Data(5U), nan));
    EXPECT_EQ("-3.00", product(Data(1.5), -2));
    EXPECT_EQ("2 -- 3", product(Data(3, 5), 0.5));
    EXPECT_EQ("2 -- 3", product(Data(3U, 5U), 0.5));
    EXPECT_EQ("0.50 -- 1.00", product(Data(1.0, 2.0), 0.5));
    LogCapture log;
    for (Data data : {Data(), Data("2"), Data(handle(0))}) {
        EXPECT_EQ(1, data.multiplyValue(2));
        EXPECT_EQ("WARNING: Multiply only supported for numeric types\n", log.take());
    }
    for (Data unset : {Data(DataType::INT), Data(DataType::REAL), Data(DataType::UINT_RANGE)}) {
        EXPECT_EQ(1, unset.multiplyValue(2));
        EXPECT_FALSE(unset.isSet());
    }
    EXPECT_EQ("", log.take());
}

TEST(Data, order) {
    // Each is less than all that follow.
    const std::vector<Data> ascending = {
        Data(),         Data(DataType::INT), Data(INT64_MIN), Data(3),         Data(0U),     Data(UINT64_MAX),
        Data(-1e300),   Data(2.0),           Data(1, 9),      Data(2, 0),      Data(1U, 9U), Data(2U, 0U),
        Data(1.0, 9.0), Data(1.5, 0.0),      Data(handle(0)), Data(handle(1)), Data("10"),   Data("9")};
    LogCapture log;
    for (std::size_t left = 0; left < ascending.size(); ++left) {
        for (std::size_t right = left + 1; right < ascending.size(); ++right) {
            SCOPED_TRACE(std::to_string(left) + " and " + std::to_string(right));
            const Data &low = ascending[left], &high = ascending[right];
            EXPECT_TRUE(low < high && low <= high && high > low && high >= low && low != high);
            EXPECT_FALSE(high < low || high <= low || low > high || low >= high || low == high);
        }
        const Data& same = ascending[left];
        EXPECT_TRUE(same == ascending[left] && same <= ascending[left] && same >= ascending[left]);
        EXPECT_FALSE(same != ascending[left] || same < ascending[left] || same > ascending[left]);
    }
    EXPECT_EQ("", log.take());
}

TEST(Data, oddComparisons) {
    Data unset(DataType::INT);
    Data invalid(1);
    invalid.invalidate();
    EXPECT_TRUE(unset < invalid && invalid < Data(INT64_MIN));
    EXPECT_TRUE(invalid == unset && !(unset == invalid)); // each side asks about its own state first
    EXPECT_TRUE(Data(1, 5) == Data(1, 7));
    EXPECT_FALSE(Data(5) == invalid || Data(5) < unset);
    const Data nan(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(nan > Data(1.0) && Data(1.0) > nan && nan > nan && nan != nan);
    EXPECT_TRUE(Data(0.0) == Data(-0.0));
}

TEST(Data, convertsToReal) {
    LogCapture log;
    Data unset(DataType::UINT);
    Data hex(255);
    hex.setCustomFormatter(IntFormatter(0, true));
    Data watts(1.5);
    watts.setCustomFormatter(RealFormatter("W", 0, 1));
    const std::tuple<Data, DataType, const char*> cases[] = {
        {hex, DataType::REAL, "255.00"},
        {Data(UINT64_MAX), DataType::REAL, "18446744073709551616.00"},
        {watts, DataType::REAL, "1.5W"},
        {Data(-1, 2), DataType::REAL_RANGE, "-1.00 -- 2.00"},
        {Data(1U, 2U), DataType::REAL_RANGE, "1.00 -- 2.00"},
        {Data(1.0, 2.0), DataType::REAL_RANGE, "1.00 -- 2.00"},
        {unset, DataType::REAL, "failed: "}};
    for (const auto& [value, type, text] : cases) {
        const Data real = Data::convertToReal(&value);
        EXPECT_EQ(type, real.getType());
        EXPECT_EQ(text, textOf(real));
        EXPECT_EQ("", log.take());
    }
    EXPECT_FALSE(Data::convertToReal(&unset).isSet());
    for (const Data& other : {Data("text"), Data(handle(0)), Data()}) {
        EXPECT_TRUE(Data::convertToReal(&other) == other);
        EXPECT_EQ("WARNING: Cannot convert data object to real type\n", log.take());
    }
}

TEST(Data, anUntypedValueSaysSo) {
    LogCapture log;
    std::string text = "old";
    EXPECT_EQ(1, Data().toFormattedString(text));
    EXPECT_EQ("INVALID", text);
    EXPECT_EQ("WARNING: Cannot use data object with type pwr::DataType::NONE\n"
              "WARNING: Data of type pwr::DataType::NONE can't be formatted\n",
              log.take());
}
