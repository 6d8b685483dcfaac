#include "common/values/quantity.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include "common/model/data_handle_provider.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

struct BuiltIn {
    QuantityType type;
    const char* name;
    const char* unit;
    QuantityType rateType; // FALLBACK: no rate form
    double rateFactor;
};

constexpr auto NO_RATE = QuantityType::FALLBACK;
constexpr double PER_MILLION = 0.000001; // bytes per second to MB/s, ticks per second to MHz

constexpr BuiltIn BUILT_INS[] = {
    {QuantityType::FALLBACK, "ERROR", "ERROR", NO_RATE, 1.0},
    {QuantityType::TIME, "Time", "ticks", QuantityType::FREQUENCY, PER_MILLION},
    {QuantityType::FREQUENCY, "Frequency", "MHz", NO_RATE, 1.0},
    {QuantityType::DATA, "Data", "bytes", QuantityType::BANDWIDTH, PER_MILLION},
    {QuantityType::BANDWIDTH, "Bandwidth", "MB/s", NO_RATE, 1.0},
    {QuantityType::POWER, "Power", "mW", NO_RATE, 1.0},
    {QuantityType::ENERGY, "Energy", "mJ", QuantityType::POWER, 1.0},
    // The unit is the letter o on purpose: the degree sign depends on the reader's encoding.
    {QuantityType::TEMPERATURE, "Temperature", "oC", NO_RATE, 1.0},
    {QuantityType::VOLTAGE, "Voltage", "mV", NO_RATE, 1.0},
    {QuantityType::CURRENT, "Current", "mA", NO_RATE, 1.0},
    {QuantityType::OPERATIONS, "Operations", "OpsCount", QuantityType::THROUGHPUT, 1.0},
    {QuantityType::THROUGHPUT, "Throughput", "Ops/sec", NO_RATE, 1.0},
};

constexpr std::size_t TYPE_COUNT = 14;

// Indexed by type; filled on request. The registry owns the objects, for the rest of the process.
constinit std::array<const Quantity*, TYPE_COUNT> g_builtIns{};

} // namespace

Quantity::Quantity(QuantityType type, const std::string& name, const std::string& unit,
                   const Quantity* rateQuantity, double rateFactor)
    : m_name(name), m_unit(unit), m_type(type), m_rateFactor(rateFactor), m_rateQuantity(rateQuantity) {}

Quantity::~Quantity() = default;

UniqueIdType Quantity::getIdType() const {
    return UniqueIdType::QUANTITY;
}

const Quantity* Quantity::builtIn_i(QuantityType type) {
    const Quantity*& known = g_builtIns[static_cast<std::size_t>(type)];
    if (known != nullptr) return known;
    for (const BuiltIn& row : BUILT_INS) {
        if (row.type != type) continue;
        // First the rate quantity, so that whoever is told of this one can already resolve it.
        const Quantity* const rate = row.rateType == NO_RATE ? nullptr : builtIn_i(row.rateType);
        std::unique_ptr<const Quantity> made(new Quantity(type, row.name, row.unit, rate, row.rateFactor));
        // Known before it is announced: a writer may ask for it while it is told of it.
        known = made.get();
        DataHandleProvider::registerId(std::move(made));
    }
    return known;
}

const Quantity* Quantity::time() {
    return builtIn_i(QuantityType::TIME);
}

const Quantity* Quantity::frequency() {
    return builtIn_i(QuantityType::FREQUENCY);
}

const Quantity* Quantity::data() {
    return builtIn_i(QuantityType::DATA);
}

const Quantity* Quantity::bandwidth() {
    return builtIn_i(QuantityType::BANDWIDTH);
}

const Quantity* Quantity::power() {
    return builtIn_i(QuantityType::POWER);
}

const Quantity* Quantity::energy() {
    return builtIn_i(QuantityType::ENERGY);
}

const Quantity* Quantity::temperature() {
    return builtIn_i(QuantityType::TEMPERATURE);
}

const Quantity* Quantity::voltage() {
    return builtIn_i(QuantityType::VOLTAGE);
}

const Quantity* Quantity::current() {
    return builtIn_i(QuantityType::CURRENT);
}

const Quantity* Quantity::operations() {
    return builtIn_i(QuantityType::OPERATIONS);
}

const Quantity* Quantity::throughput() {
    return builtIn_i(QuantityType::THROUGHPUT);
}

const Quantity* Quantity::create(QuantityType type, const std::string& name, const std::string& unit,
                                 const Quantity* rateQuantity, double rateFactor) {
    if (type < QuantityType::CUSTOM) {
        logMessage(PWLogLevel::WARNING, "WARNING: Can't create a custom quantity of specified type\n");
        return builtIn_i(QuantityType::FALLBACK);
    }
    return DataHandleProvider::adopt(
        std::unique_ptr<const Quantity>(new Quantity(type, name, unit, rateQuantity, rateFactor)));
}

int Quantity::toTitleString(std::string& title) const {
    title = m_unit.empty() ? m_name : m_name + " (" + m_unit + ")";
    return 0;
}

int Quantity::getRateConversion(const Quantity*& rateQuantity, double& factor) const {
    rateQuantity = m_rateQuantity;
    factor = m_rateQuantity != nullptr ? m_rateFactor : 1.0;
    return m_rateQuantity != nullptr ? 0 : 1;
}

} // namespace pwr
