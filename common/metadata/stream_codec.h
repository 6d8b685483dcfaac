#pragma once

#include "common/pw_types.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// How each kind of value stands in a saved collection: little-endian, no alignment, no filler, no
/// type tags; texts and containers behind a 16-bit count that is not checked when writing.
/// The functions work on plain memory: callers make room first (encodedSize), and probe() foreign
/// bytes as a whole before take() reads them, so that a value is read completely or not at all.
namespace pwr::stream {

using Count = pw_u16_t;

template <class T>
concept Scalar = std::is_arithmetic_v<T> && sizeof(T) <= 8;

template <class T>
concept Text = std::convertible_to<const T&, std::string_view>;

template <class T> inline constexpr bool isPair = false;
template <class First, class Second> inline constexpr bool isPair<std::pair<First, Second>> = true;

template <class T>
concept Pair = isPair<T>;

/// Maps and sets that iterate in key order.
template <class T>
concept Ordered = !Text<T> && requires {
    typename T::key_compare;
};

template <class T>
concept Map = Ordered<T> && requires {
    typename T::mapped_type;
};

/// Vectors, lists, deques and ordered sets.
template <class T>
concept Sequence = !Text<T> && !Map<T> && requires(const T& container) {
    typename T::value_type;
    { container.size() } -> std::convertible_to<std::size_t>;
    container.begin();
    requires Ordered<T> || requires(T & grown) {
        grown.emplace_back();
    };
};

/// Everything that has a form. Enumerations have none: a number is checked before it becomes one.
template <class T>
concept Storable = Scalar<T> || Text<T> || Pair<T> || Map<T> || Sequence<T>;

static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == 4);
static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == 8);
static_assert(std::endian::native == std::endian::little || std::endian::native == std::endian::big);

/// The first `size` bytes of a number, reversed where the machine's order is not the stream's.
inline void copyNumber(char* target, const char* source, std::size_t size) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(target, source, size);
    } else {
        for (std::size_t i = 0; i < size; ++i) {
            target[i] = source[size - 1 - i];
        }
    }
}

template <Scalar T> void storeScalar(char* target, T value) {
    if constexpr (std::same_as<T, bool>) {
        *target = value ? '\1' : '\0';
    } else {
        char bytes[sizeof(T)];
        std::memcpy(bytes, &value, sizeof(T));
        copyNumber(target, bytes, sizeof(T));
    }
}

template <Scalar T> T loadScalar(const char* source) {
    if constexpr (std::same_as<T, bool>) {
        return *source != '\0'; // any other byte is true; a bool may only hold 0 or 1
    } else {
        char bytes[sizeof(T)];
        copyNumber(bytes, source, sizeof(T));
        T value;
        std::memcpy(&value, bytes, sizeof(T));
        return value;
    }
}

template <Storable T> std::size_t encodedSize(const T& value) {
    if constexpr (Scalar<T>) {
        return sizeof(T);
    } else if constexpr (Text<T>) {
        return sizeof(Count) + std::string_view(value).size();
    } else if constexpr (Pair<T>) {
        return encodedSize(value.first) + encodedSize(value.second);
    } else if constexpr (Scalar<typename T::value_type>) {
        return sizeof(Count) + value.size() * sizeof(typename T::value_type);
    } else {
        std::size_t size = sizeof(Count);
        for (const auto& element : value) {
            size += encodedSize(element);
        }
        return size;
    }
}

/// Writes the value at the position and moves it behind; there must be room for encodedSize().
template <Storable T> void put(char*& position, const T& value) {
    if constexpr (Scalar<T>) {
        storeScalar(position, value);
        position += sizeof(T);
    } else if constexpr (Text<T>) {
        const std::string_view text(value);
        put(position, static_cast<Count>(text.size()));
        if (!text.empty()) {
            std::memcpy(position, text.data(), text.size());
            position += text.size();
        }
    } else if constexpr (Pair<T>) {
        put(position, value.first);
        put(position, value.second);
    } else {
        put(position, static_cast<Count>(value.size()));
        for (const auto& element : value) {
            // Through the element's type: a sequence of bool hands out stand-ins.
            const typename T::value_type& plain = element;
            put(position, plain);
        }
    }
}

/// Whether a whole value stands between the position and the end; moves behind it then. An empty
/// text counts as missing, as it does when it is read alone.
template <Storable T> bool probe(const char*& position, const char* end) {
    using Value = std::remove_const_t<T>;
    const auto left = static_cast<std::size_t>(end - position);
    if constexpr (Scalar<Value>) {
        if (left < sizeof(Value)) {
            return false;
        }
        position += sizeof(Value);
        return true;
    } else if constexpr (Pair<Value>) {
        return probe<typename Value::first_type>(position, end) &&
               probe<typename Value::second_type>(position, end);
    } else {
        if (left < sizeof(Count)) {
            return false;
        }
        const std::size_t count = loadScalar<Count>(position);
        position += sizeof(Count);
        if constexpr (Text<Value>) {
            if (count == 0 || left - sizeof(Count) < count) {
                return false;
            }
            position += count;
        } else if constexpr (Scalar<typename Value::value_type>) {
            constexpr std::size_t width = sizeof(typename Value::value_type);
            if ((left - sizeof(Count)) / width < count) {
                return false;
            }
            position += count * width;
        } else {
            for (std::size_t i = 0; i < count; ++i) {
                if (!probe<typename Value::value_type>(position, end)) {
                    return false;
                }
            }
        }
        return true;
    }
}

/// Reads a value that probe() has found whole, and moves behind it. Replaces what the target holds;
/// the elements of a sequence are reused.
template <Storable T> void take(const char*& position, T& value) {
    if constexpr (Scalar<T>) {
        value = loadScalar<T>(position);
        position += sizeof(T);
    } else if constexpr (Pair<T>) {
        take(position, value.first);
        take(position, value.second);
    } else {
        const std::size_t count = loadScalar<Count>(position);
        position += sizeof(Count);
        if constexpr (std::same_as<T, std::string>) {
            value.assign(position, count);
            position += count;
        } else if constexpr (Map<T>) {
            value.clear();
            for (std::size_t i = 0; i < count; ++i) {
                typename T::key_type key{};
                take(position, key);
                typename T::mapped_type mapped{};
                take(position, mapped);
                value.insert_or_assign(value.end(), std::move(key), std::move(mapped));
            }
        } else if constexpr (Ordered<T>) {
            value.clear();
            for (std::size_t i = 0; i < count; ++i) {
                typename T::value_type element{};
                take(position, element);
                value.emplace_hint(value.end(), std::move(element));
            }
        } else {
            value.resize(count);
            for (auto&& element : value) {
                if constexpr (std::same_as<typename T::value_type, bool>) {
                    bool plain = false;
                    take(position, plain);
                    element = plain; // a stand-in of a sequence of bool is assigned to
                } else {
                    take(position, element);
                }
            }
        }
    }
}

} // namespace pwr::stream
