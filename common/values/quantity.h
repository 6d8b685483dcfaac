#pragma once

#include <cstdint>
#include <string>

#include "common/export.h"
#include "common/model/unique_id.h"

namespace pwr {

/// Kinds of quantities. The numbers are fixed; 8 and up are open to plug-ins.
enum class QuantityType : std::uint32_t {
    FALLBACK = 0,
    TIME = 1,
    FREQUENCY = 2,
    DATA = 3,
    BANDWIDTH = 4,
    POWER = 5,
    ENERGY = 6,
    TEMPERATURE = 7,
    CUSTOM = 8,
    CUSTOM_RATE = 9,
    VOLTAGE = 10,
    CURRENT = 11,
    OPERATIONS = 12,
    THROUGHPUT = 13,
};

/// What a value measures, the unit it is printed in, and how an amount of it becomes a rate:
/// rate = amount per second * rate factor, in the unit of the rate quantity.
///
/// Quantities live for the whole process and are compared by address. A built-in one is made, takes
/// its id and is registered when it is first asked for, so that a process that never asks for one
/// spends no id on it. Not synchronised, like the registry.
class KRCOMMON_API Quantity : public UniqueId {
public:
    static const Quantity* time();        ///< ticks of the collection clock; rate: MHz
    static const Quantity* frequency();   ///< MHz
    static const Quantity* data();        ///< bytes; rate: MB/s
    static const Quantity* bandwidth();   ///< MB/s
    static const Quantity* power();       ///< mW
    static const Quantity* energy();      ///< mJ; rate: mW
    static const Quantity* temperature(); ///< degrees Celsius
    static const Quantity* voltage();     ///< mV
    static const Quantity* current();     ///< mA
    static const Quantity* operations();  ///< count; rate: Ops/sec
    static const Quantity* throughput();  ///< Ops/sec

    /// Makes and registers a quantity of a plug-in's own, a new one at every call. A null rate
    /// quantity means that there is no rate form; the factor is then ignored. Types below CUSTOM
    /// are refused with a warning and answered with the one fallback quantity, named "ERROR".
    static const Quantity* create(QuantityType type, const std::string& name, const std::string& unit,
                                  const Quantity* rateQuantity, double rateFactor);

    Quantity(const Quantity&) = delete;
    Quantity& operator=(const Quantity&) = delete;
    ~Quantity() override;

    UniqueIdType getIdType() const override;

    QuantityType toQuantity() const { return m_type; }
    const std::string& toQuantityString() const { return m_name; }
    const std::string& toUnitsString() const { return m_unit; }
    /// "Time (ticks)", or the name alone when there is no unit. Always 0.
    int toTitleString(std::string& title) const;
    /// 0 with the rate quantity and the factor, or 1 with null and 1.0 when there is no rate form.
    int getRateConversion(const Quantity*& rateQuantity, double& factor) const;

private:
    Quantity(QuantityType type, const std::string& name, const std::string& unit,
             const Quantity* rateQuantity, double rateFactor);
    static const Quantity* builtIn_i(QuantityType type);

    std::string m_name;
    std::string m_unit;
    QuantityType m_type;
    double m_rateFactor;
    const Quantity* m_rateQuantity; // null: no rate form
};

} // namespace pwr
