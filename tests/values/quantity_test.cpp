#include "common/values/quantity.h"

#include <gtest/gtest.h>

#include <string>

#include "common/model/data_handle_provider.h"
#include "tests/support/log_capture.h"

using namespace pwr;

TEST(Quantity, builtIns) {
    struct Case {
        const Quantity* (*get)();
        unsigned type;
        const char* title;
        const Quantity* (*rate)();
        double factor;
    };
    for (const Case& c : {Case{Quantity::time, 1, "Time (ticks)", Quantity::frequency, 0.000001},
                          Case{Quantity::frequency, 2, "Frequency (MHz)", nullptr, 1.0},
                          Case{Quantity::data, 3, "Data (bytes)", Quantity::bandwidth, 0.000001},
                          Case{Quantity::bandwidth, 4, "Bandwidth (MB/s)", nullptr, 1.0},
                          Case{Quantity::power, 5, "Power (mW)", nullptr, 1.0},
                          Case{Quantity::energy, 6, "Energy (mJ)", Quantity::power, 1.0},
                          Case{Quantity::temperature, 7, "Temperature (oC)", nullptr, 1.0},
                          Case{Quantity::voltage, 10, "Voltage (mV)", nullptr, 1.0},
                          Case{Quantity::current, 11, "Current (mA)", nullptr, 1.0},
                          Case{Quantity::operations, 12, "Operations (OpsCount)", Quantity::throughput, 1.0},
                          Case{Quantity::throughput, 13, "Throughput (Ops/sec)", nullptr, 1.0}}) {
        SCOPED_TRACE(c.title);
        const Quantity* const quantity = c.get();
        EXPECT_EQ(quantity, c.get());
        EXPECT_EQ(static_cast<QuantityType>(c.type), quantity->toQuantity());
        std::string title = "old";
        EXPECT_EQ(0, quantity->toTitleString(title));
        EXPECT_EQ(c.title, title);
        EXPECT_EQ(UniqueIdType::QUANTITY, quantity->getIdType());
        EXPECT_EQ(quantity, DataHandleProvider::findId(quantity->getId()));

        const Quantity* rate = quantity;
        double factor = 7;
        EXPECT_EQ(c.rate == nullptr ? 1 : 0, quantity->getRateConversion(rate, factor));
        EXPECT_EQ(c.rate == nullptr ? nullptr : c.rate(), rate);
        EXPECT_EQ(c.factor, factor);
        // Whoever is told of a quantity can resolve its rate.
        EXPECT_TRUE(rate == nullptr || rate->getId() < quantity->getId());
    }
}

TEST(Quantity, customOnesAreNewAtEveryCall) {
    const Quantity* const one = Quantity::create(QuantityType::CUSTOM, "Packets", "", nullptr, 3.0);
    const Quantity* const other = Quantity::create(QuantityType::CUSTOM, "Packets", "", nullptr, 3.0);
    EXPECT_EQ(one->getId() + 1, other->getId());
    EXPECT_EQ(other, DataHandleProvider::findId(other->getId()));
    EXPECT_NE(Quantity::voltage(), Quantity::create(QuantityType::VOLTAGE, "Voltage", "mV", nullptr, 1.0));
    std::string title;
    one->toTitleString(title);
    EXPECT_EQ("Packets", title);

    const Quantity* rate = one;
    double factor = 7;
    EXPECT_EQ(1, one->getRateConversion(rate, factor)); // a factor without a quantity means nothing
    EXPECT_EQ(nullptr, rate);
    EXPECT_EQ(1.0, factor);
    const Quantity* const frames = Quantity::create(static_cast<QuantityType>(99), "Frames", "n", other, 2.5);
    EXPECT_EQ(0, frames->getRateConversion(rate, factor));
    EXPECT_EQ(other, rate);
    EXPECT_EQ(2.5, factor);
}

TEST(Quantity, lowTypesAreNotForCustomOnes) {
    LogCapture log;
    const Quantity* const refused =
        Quantity::create(QuantityType::POWER, "Mine", "W", Quantity::power(), 1.0);
    EXPECT_EQ("WARNING: Can't create a custom quantity of specified type\n", log.take());
    EXPECT_EQ("ERROR", refused->toQuantityString());
    EXPECT_EQ("ERROR", refused->toUnitsString());
    EXPECT_EQ(QuantityType::FALLBACK, refused->toQuantity());
    EXPECT_EQ(refused, Quantity::create(QuantityType::FALLBACK, "", "", nullptr, 1.0));
    const Quantity* rate = refused;
    double factor = 7;
    EXPECT_EQ(1, refused->getRateConversion(rate, factor));
    EXPECT_EQ(nullptr, rate);
}
