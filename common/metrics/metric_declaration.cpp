#include "common/metrics/metric_declaration.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string_view>
#include <system_error>

#include "common/values/quantity.h"

namespace pwr {

namespace {

using Declaration = MetricDeclaration;

constexpr unsigned MAX_WIDTH = 64;

std::string_view takePart(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

template <class Number> bool parseWhole(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

int parseDecimal(const std::string& text, DecimalNumber& number) {
    if (!parseWhole(text, number.value)) {
        return 1;
    }
    number.isWhole = parseWhole(text, number.whole);
    return 0;
}

/// Looks a word up in a table of (word, value) rows; 1 when it is not there.
template <class Rows, class Value> int parseWord(const Rows& rows, const std::string& text, Value& value) {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&text](const auto& r) { return r.first == text; });
    if (row == rows.end()) {
        return 1;
    }
    value = row->second;
    return 0;
}

using MetricType = Metric::MetricType;
constexpr std::array METRIC_TYPES{
    std::pair<std::string_view, MetricType>{"SampledDelta", MetricType::SampledDelta},
    std::pair<std::string_view, MetricType>{"SampledResidency", MetricType::SampledResidency},
    std::pair<std::string_view, MetricType>{"SampledValue", MetricType::SampledValue},
    std::pair<std::string_view, MetricType>{"TracedValueTransition", MetricType::TracedValueTransition},
    std::pair<std::string_view, MetricType>{"TracedEvent", MetricType::TracedEvent},
};
constexpr std::array DATA_TYPES{
    std::pair<std::string_view, DataType>{"INT", DataType::INT},
    std::pair<std::string_view, DataType>{"UINT", DataType::UINT},
    std::pair<std::string_view, DataType>{"REAL", DataType::REAL},
    std::pair<std::string_view, DataType>{"STRING", DataType::STRING},
};
constexpr std::array SOURCES{
    std::pair<std::string_view, Declaration::Source>{"COUNTER", Declaration::Source::COUNTER},
    std::pair<std::string_view, Declaration::Source>{"LEVEL", Declaration::Source::LEVEL},
};

int parseWidth(Declaration& d, const std::string& text) {
    return parseWhole(text, d.width) && d.width > 0 && d.width <= MAX_WIDTH ? 0 : 1;
}

/// "1=on,0=off": a value and its name each.
int parseStates(Declaration& d, const std::string& text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view name = takePart(rest, ',');
        const std::string_view value = takePart(name, '=');
        if (value.empty() || name.empty()) {
            return 1;
        }
        d.states.emplace_back(value, name);
    }
    return d.states.empty() ? 1 : 0;
}

template <std::string Declaration::*Member> int setText(Declaration& d, const std::string& text) {
    d.*Member = text;
    return 0;
}

int ignore(Declaration&, const std::string&) {
    return 0;
}

struct KeyRow {
    std::string_view key;
    int (*set)(Declaration&, const std::string&);
    const char* expected;
};

constexpr std::array KEYS{
    KeyRow{"METRIC-NAME", &setText<&Declaration::name>, "a name"},
    KeyRow{"CONTAINER-TAG", &setText<&Declaration::containerTag>, "a tag"},
    KeyRow{"METRIC-TYPE",
           [](Declaration& d, const std::string& t) { return parseWord(METRIC_TYPES, t, d.type); },
           "SampledDelta, SampledResidency, SampledValue, TracedValueTransition or TracedEvent"},
    KeyRow{"QUANTITY", &setText<&Declaration::quantity>, "a quantity"},
    KeyRow{"SOURCE", [](Declaration& d, const std::string& t) { return parseWord(SOURCES, t, d.source); },
           "COUNTER or LEVEL"},
    KeyRow{"SCALE", [](Declaration& d, const std::string& t) { return parseDecimal(t, d.scale); },
           "a decimal number"},
    KeyRow{"OFFSET", [](Declaration& d, const std::string& t) { return parseDecimal(t, d.offset); },
           "a decimal number"},
    KeyRow{"WIDTH", &parseWidth, "a number of bits from 1 to 64"},
    KeyRow{"RAW-TYPE",
           [](Declaration& d, const std::string& t) { return parseWord(DATA_TYPES, t, d.rawType); },
           "INT, UINT, REAL or STRING"},
    KeyRow{"VALUE-TYPE",
           [](Declaration& d, const std::string& t) { return parseWord(DATA_TYPES, t, d.valueType); },
           "INT, UINT, REAL or STRING"},
    KeyRow{"STATES", &parseStates, "VALUE=NAME,VALUE=NAME"},
    KeyRow{"ENTITY-TITLE", &setText<&Declaration::entityTitle>, "a title"},
    KeyRow{"DESCRIPTOR-TITLE", &setText<&Declaration::descriptorTitle>, "a title"},
    KeyRow{"PLUGIN", &setText<&Declaration::plugin>, "a metric plug-in"},
    KeyRow{"REST", &setText<&Declaration::rest>, "a name"},
    KeyRow{"NOT-BOOKED", &setText<&Declaration::notBooked>, "a name"},
    // What the collector does with these is done by the time that a reading arrives.
    KeyRow{"ENTITY", &ignore, "a pattern"},
    KeyRow{"ENTITY-FILE", &ignore, "a pattern"},
    KeyRow{"DESCRIPTOR", &ignore, "a pattern"},
    KeyRow{"DESCRIPTOR-FILE", &ignore, "a pattern"},
    KeyRow{"SKIP-UNUSED", &ignore, "names"},
    KeyRow{"SKIP-KNOWN", &ignore, "YES"},
};

/// What the host goes by when it chooses messages, and nobody asks for later.
constexpr std::array MESSAGE_KEYS{
    KeyRow{"INSTEAD-OF", &ignore, "messages"},
    KeyRow{"ABSENT-REASON", &ignore, "a sentence"},
    KeyRow{"ABSENT-FIX", &ignore, "a sentence"},
};

template <class Rows> const KeyRow* findKey(const Rows& rows, const std::string& key) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&key](const KeyRow& r) { return r.key == key; });
    return row == rows.end() ? nullptr : &*row;
}

struct QuantityRow {
    std::string_view word;
    const Quantity* (*get)();
};

constexpr std::array QUANTITIES{
    QuantityRow{"time", &Quantity::time},
    QuantityRow{"frequency", &Quantity::frequency},
    QuantityRow{"data", &Quantity::data},
    QuantityRow{"bandwidth", &Quantity::bandwidth},
    QuantityRow{"power", &Quantity::power},
    QuantityRow{"energy", &Quantity::energy},
    QuantityRow{"temperature", &Quantity::temperature},
    QuantityRow{"voltage", &Quantity::voltage},
    QuantityRow{"current", &Quantity::current},
    QuantityRow{"operations", &Quantity::operations},
    QuantityRow{"throughput", &Quantity::throughput},
};

struct QuantityWords {
    std::string name, unit, rateName, rateUnit;
    double factor = 0.0;
};

int parseQuantity(std::string_view text, QuantityWords& words, std::string& error) {
    if (text.find(';') == std::string_view::npos || text.front() == ';') {
        error = "\"" + std::string(text) + "\" is no built-in quantity; a new one is NAME;UNIT";
        return 1;
    }
    words.name = takePart(text, ';');
    words.unit = takePart(text, ';');
    if (text.empty()) {
        return 0;
    }
    words.rateName = takePart(text, ';');
    words.rateUnit = takePart(text, ';');
    if (words.rateName.empty() || !parseWhole(text, words.factor)) {
        error = "expected NAME;UNIT;RATE NAME;RATE UNIT;FACTOR";
        return 1;
    }
    return 0;
}

const Quantity* makeQuantity(const QuantityWords& words) {
    if (words.rateName.empty()) {
        return Quantity::create(QuantityType::CUSTOM, words.name, words.unit, nullptr, 1.0);
    }
    const Quantity* rate =
        Quantity::create(QuantityType::CUSTOM_RATE, words.rateName, words.rateUnit, nullptr, 1.0);
    return Quantity::create(QuantityType::CUSTOM, words.name, words.unit, rate, words.factor);
}

const QuantityRow* builtInQuantity(const std::string& text) {
    const auto row = std::find_if(QUANTITIES.begin(), QUANTITIES.end(),
                                  [&text](const QuantityRow& r) { return r.word == text; });
    return row == QUANTITIES.end() ? nullptr : &*row;
}

} // namespace

const Quantity* quantityOf(const std::string& text, std::string& error) {
    // Quantities are compared by address and live as long as the process; so does this.
    static std::map<std::string, const Quantity*> made;
    if (text.empty()) {
        return nullptr;
    }
    if (const QuantityRow* const row = builtInQuantity(text)) {
        return row->get();
    }
    const auto known = made.find(text);
    if (known != made.end()) {
        return known->second;
    }
    QuantityWords words;
    const Quantity* quantity = parseQuantity(text, words, error) == 0 ? makeQuantity(words) : nullptr;
    if (quantity != nullptr) {
        made.emplace(text, quantity);
    }
    return quantity;
}

int checkQuantity(const std::string& text, std::string& error) {
    QuantityWords words;
    return text.empty() || builtInQuantity(text) != nullptr ? 0 : parseQuantity(text, words, error);
}

bool MetricDeclaration::isForMessage(const std::string& key) {
    return findKey(MESSAGE_KEYS, key) != nullptr;
}

int MetricDeclaration::set(const std::string& key, const std::string& value, std::string& error) {
    if (isForMessage(key)) {
        return 0;
    }
    const KeyRow* const row = findKey(KEYS, key);
    if (row == nullptr) {
        error = "unknown key " + key;
        return 1;
    }
    if (row->set(*this, value) != 0) {
        error = key + ": expected " + row->expected + ", got \"" + value + "\"";
        return 1;
    }
    return 0;
}

int MetricDeclaration::parse(const MetricMetadata& record, std::string& error) {
    return parse(record.getValues(), error);
}

int MetricDeclaration::parse(const MetricMetadata::ValueList& values, std::string& error) {
    for (const auto& [key, value] : values) {
        if (set(key, value, error) != 0) {
            return 1;
        }
    }
    return complete_i(error);
}

int MetricDeclaration::complete_i(std::string& error) {
    if (name.empty() || containerTag.empty()) {
        error = name.empty() ? "METRIC-NAME is missing" : "CONTAINER-TAG is missing";
        return 1;
    }
    const bool isCounter = source == Source::COUNTER;
    if (rawType == DataType::NONE) {
        rawType = isCounter || valueType == DataType::NONE ? DataType::UINT : valueType;
    }
    if (valueType == DataType::NONE) {
        const bool isExact = scale.isWhole && offset.isWhole;
        valueType = isExact || rawType == DataType::STRING ? rawType : DataType::REAL;
    }
    if (type == MetricType::SampledResidency) {
        valueType = DataType::UINT; // ticks
    }
    if (type == MetricType::SampledResidency && !quantity.empty() && quantity != "time") {
        error = "QUANTITY: a SampledResidency is of \"time\"";
        return 1;
    }
    if (isCounter && rawType != DataType::UINT) {
        error = "RAW-TYPE: a COUNTER is UINT";
        return 1;
    }
    if ((rawType == DataType::STRING) != (valueType == DataType::STRING)) {
        error = "VALUE-TYPE: a text stays a text";
        return 1;
    }
    const bool isScaled = !scale.isWhole || scale.whole != 1 || !offset.isWhole || offset.whole != 0;
    isRaw = !isScaled && rawType == DataType::UINT && valueType == DataType::UINT;
    return 0;
}

} // namespace pwr
