// Table cells: values to text as the writers ask for it, against loops without any of our classes
// that write into a plain buffer. Goals: 2 x for reals with two digits and for hexadecimal numbers.
// Then the copies of values that the intake makes, against copying a record of two words.

#include "bench/interleaved.h"
#include "common/values/data.h"
#include "common/values/formatter.h"

#include <benchmark/benchmark.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr std::size_t CELLS = 1024;
constexpr std::size_t ROUNDS = 200;
constexpr char DIGIT_PAIRS[] = "00010203040506070809101112131415161718192021222324"
                               "25262728293031323334353637383940414243444546474849"
                               "50515253545556575859606162636465666768697071727374"
                               "75767778798081828384858687888990919293949596979899";

std::size_t writeFixed2(char* out, double value) {
    char* const start = out;
    if (std::signbit(value)) {
        *out++ = '-';
        value = -value;
    }
    const double product = value * 100.0;
    if (!(product < 4e15))
        return static_cast<std::size_t>(
            std::to_chars(out, out + 400, value, std::chars_format::fixed, 2).ptr - start);
    auto cents = static_cast<std::uint64_t>(static_cast<std::int64_t>(product));
    const double rest = product - static_cast<double>(static_cast<std::int64_t>(cents));
    if (rest == 0.5) {
        const double error = std::fma(value, 100.0, -product);
        cents += error > 0 || (error == 0 && (cents & 1) != 0);
    } else {
        cents += rest > 0.5;
    }
    char digits[24];
    char* first = digits + sizeof digits - 2;
    std::memcpy(first, DIGIT_PAIRS + 2 * (cents % 100), 2);
    *--first = '.';
    cents /= 100;
    for (; cents >= 100; cents /= 100)
        std::memcpy(first -= 2, DIGIT_PAIRS + 2 * (cents % 100), 2);
    if (cents >= 10)
        std::memcpy(first -= 2, DIGIT_PAIRS + 2 * cents, 2);
    else
        *--first = static_cast<char>('0' + cents);
    const auto size = static_cast<std::size_t>(digits + sizeof digits - first);
    std::memcpy(out, first, size);
    return static_cast<std::size_t>(out - start) + size;
}

std::size_t writeHex(char* out, std::uint64_t value) {
    if (value == 0) {
        *out = '0';
        return 1;
    }
    std::memcpy(out, "0x", 2);
    const auto digits = static_cast<std::size_t>((std::bit_width(value) + 3) / 4);
    for (std::size_t place = digits + 1; place >= 2; --place, value >>= 4)
        out[place] = "0123456789abcdef"[value & 15];
    return digits + 2;
}

template <class Work> bench::Nanoseconds overCells(const Work& work) {
    return bench::timed([&] {
        for (std::size_t round = 0; round < ROUNDS; ++round)
            for (std::size_t cell = 0; cell < CELLS; ++cell)
                work(cell);
    });
}

// The comparison means something only when both sides write the same characters.
void check(const std::string& text, const char* limit, std::size_t size, const char* printed) {
    if (text == std::string(limit, size) && text == printed) return;
    std::fprintf(stderr, "table_cells_bench: %s, %.*s and %s differ\n", text.c_str(), static_cast<int>(size),
                 limit, printed);
    std::exit(1);
}

void compareReals(const std::vector<double>& numbers) {
    const pwr::RealFormatter formatter(0, 2);
    const std::vector<pwr::Data> cells(numbers.begin(), numbers.end());
    std::string text;
    char buffer[512];
    for (std::size_t cell = 0; cell < CELLS; ++cell) {
        char printed[512];
        std::snprintf(printed, sizeof printed, "%.2f", numbers[cell]);
        formatter.format(text, cells[cell]);
        check(text, buffer, writeFixed2(buffer, numbers[cell]), printed);
    }
    bench::Interleaved reals("a real with 2 digits");
    const std::size_t count = CELLS * ROUNDS;
    reals.add("limit: product by 100 into a buffer", count, [&] {
        return overCells([&](std::size_t cell) {
            benchmark::DoNotOptimize(writeFixed2(buffer, numbers[cell]));
            benchmark::ClobberMemory();
        });
    });
    reals.add("RealFormatter", count, [&] {
        return overCells(
            [&](std::size_t cell) { benchmark::DoNotOptimize(formatter.format(text, cells[cell])); });
    });
    reals.add("Data::toFormattedString", count, [&] {
        return overCells(
            [&](std::size_t cell) { benchmark::DoNotOptimize(cells[cell].toFormattedString(text)); });
    });
    reals.add("std::to_chars", count, [&] {
        return overCells([&](std::size_t cell) {
            benchmark::DoNotOptimize(
                std::to_chars(buffer, buffer + 400, numbers[cell], std::chars_format::fixed, 2));
        });
    });
    reals.add("snprintf", count, [&] {
        return overCells([&](std::size_t cell) {
            benchmark::DoNotOptimize(std::snprintf(buffer, sizeof buffer, "%.2f", numbers[cell]));
        });
    });
    std::ostringstream stream;
    stream.setf(std::ios::fixed, std::ios::floatfield);
    stream.precision(2);
    reals.add("stream", count, [&] {
        return overCells([&](std::size_t cell) {
            stream.seekp(0);
            stream << numbers[cell];
        });
    });
    reals.report();
}

void compareHexadecimal(const std::vector<std::uint64_t>& numbers) {
    const pwr::UIntFormatter formatter(0, true);
    const std::vector<pwr::Data> cells(numbers.begin(), numbers.end());
    std::string text;
    char buffer[64];
    for (std::size_t cell = 0; cell < CELLS; ++cell) {
        char printed[64];
        std::snprintf(printed, sizeof printed, "%#llx", static_cast<unsigned long long>(numbers[cell]));
        formatter.format(text, cells[cell]);
        check(text, buffer, writeHex(buffer, numbers[cell]), printed);
    }
    bench::Interleaved hex("a hexadecimal number");
    const std::size_t count = CELLS * ROUNDS;
    hex.add("limit: digits into a buffer", count, [&] {
        return overCells([&](std::size_t cell) {
            benchmark::DoNotOptimize(writeHex(buffer, numbers[cell]));
            benchmark::ClobberMemory();
        });
    });
    hex.add("UIntFormatter", count, [&] {
        return overCells(
            [&](std::size_t cell) { benchmark::DoNotOptimize(formatter.format(text, cells[cell])); });
    });
    hex.add("snprintf", count, [&] {
        return overCells([&](std::size_t cell) {
            benchmark::DoNotOptimize(std::snprintf(buffer, sizeof buffer, "%#llx",
                                                   static_cast<unsigned long long>(numbers[cell])));
        });
    });
    std::ostringstream stream;
    stream << std::hex << std::showbase;
    hex.add("stream", count, [&] {
        return overCells([&](std::size_t cell) {
            stream.seekp(0);
            stream << numbers[cell];
        });
    });
    hex.report();
}

void compareCopies(const std::vector<std::uint64_t>& numbers) {
    struct Plain {
        std::uint64_t first, second;
        const void* helper;
        std::uint32_t flags;
    };
    std::vector<Plain> plain, plainPool(CELLS);
    std::vector<pwr::Data> values(numbers.begin(), numbers.end()), pool(CELLS);
    for (const std::uint64_t number : numbers)
        plain.push_back({number, 0, nullptr, 1});
    const std::size_t count = CELLS * ROUNDS;
    bench::Interleaved copies("a value for the intake");
    copies.add("limit: assigning a plain record", count, [&] {
        return overCells([&](std::size_t cell) {
            plainPool[cell] = plain[cell];
            benchmark::ClobberMemory();
        });
    });
    copies.add("Data, assigned into a pool", count, [&] {
        return overCells([&](std::size_t cell) {
            pool[cell] = values[cell];
            benchmark::ClobberMemory();
        });
    });
    copies.add("Data, copied", count, [&] {
        return overCells([&](std::size_t cell) {
            pwr::Data copy(values[cell]);
            benchmark::DoNotOptimize(copy);
        });
    });
    copies.add("Data, made from a number", count, [&] {
        return overCells([&](std::size_t cell) {
            pwr::Data made(numbers[cell]);
            benchmark::DoNotOptimize(made);
        });
    });
    copies.add("Data::setValue(number)", count, [&] {
        return overCells([&](std::size_t cell) {
            benchmark::DoNotOptimize(pool[cell].setValue(numbers[cell]));
            benchmark::ClobberMemory();
        });
    });
    copies.add("Data, compared", count, [&] {
        return overCells(
            [&](std::size_t cell) { benchmark::DoNotOptimize(values[cell] < pool[CELLS - 1 - cell]); });
    });
    copies.report();
}

} // namespace

int main() {
    std::mt19937_64 random(7);
    std::vector<double> reals;
    std::vector<std::uint64_t> integers;
    for (std::size_t cell = 0; cell < CELLS; ++cell) {
        // Watts, percent, milliseconds and megahertz: up to five digits before the point.
        reals.push_back(static_cast<double>(random() % 1000000000) / 1e4 * (cell % 16 == 0 ? -1 : 1));
        integers.push_back(random() >> (random() % 64));
    }
    compareReals(reals);
    compareHexadecimal(integers);
    compareCopies(integers);
    return 0;
}
