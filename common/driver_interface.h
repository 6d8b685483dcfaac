#pragma once

#include "common/pw_types.h"

#include <cstddef>
#include <tuple>
#include <type_traits>

// The records that the drivers, the collectors and saved files share. Their bytes are fixed.

/// The identity of a sample's configuration: which plug-in, metric and message it belongs to
/// (numbers 1 to 255, given by the host in loading order). Ordered by its bytes, first byte first.
struct id_config_t {
    pw_u8_t plugin;
    pw_u8_t metric;
    pw_u8_t message;
};

inline bool operator<(const id_config_t& left, const id_config_t& right) {
    return std::tie(left.plugin, left.metric, left.message) <
           std::tie(right.plugin, right.metric, right.message);
}

inline bool operator==(const id_config_t& left, const id_config_t& right) {
    return std::tie(left.plugin, left.metric, left.message) ==
           std::tie(right.plugin, right.metric, right.message);
}

/// The bits of tw_driver_msg::flags. Persistent: never renumber.
namespace tw_driver_msg_flag {
inline constexpr pw_u8_t TEXT = 0x01;    ///< at least one value is a text
inline constexpr pw_u8_t RESET = 0x02;   ///< the sources were reset before this reading
inline constexpr pw_u8_t WRAPPED = 0x04; ///< a counter ran through its end since the last reading
inline constexpr pw_u8_t GAP = 0x08;     ///< readings of the same instances before this one are missing
inline constexpr pw_u8_t END = 0x10;     ///< the last reading of the collection
} // namespace tw_driver_msg_flag

/// The header of one reading of a message; the values follow it. A message with more than 65,535
/// values comes as several records, each telling its first instance.
struct tw_driver_msg {
    pw_u64_t timestamp;      ///< ticks of the default clock
    pw_u16_t count;          ///< number of values
    id_config_t id;          ///< which message this is a reading of
    pw_u8_t flags;           ///< tw_driver_msg_flag bits
    pw_u16_t first_instance; ///< the instance that the first value belongs to
    pw_u32_t read_span;      ///< how long the reading took, in ticks of the default clock
    pw_u32_t reserved;
};

static_assert(sizeof(id_config_t) == 3);
static_assert(sizeof(tw_driver_msg) == 24);
static_assert(offsetof(tw_driver_msg, count) == 8);
static_assert(offsetof(tw_driver_msg, id) == 10);
static_assert(offsetof(tw_driver_msg, flags) == 13);
static_assert(offsetof(tw_driver_msg, first_instance) == 14);
static_assert(offsetof(tw_driver_msg, read_span) == 16);
static_assert(offsetof(tw_driver_msg, reserved) == 20);

/// One endpoint of a telemetry aggregator, as the driver reports it and as saved files hold it.
#pragma pack(push, 2)
struct _tw_aggregator_info {
    pw_u64_t address;         ///< where the endpoint's samples start
    pw_u32_t guid;            ///< which telemetry description fits the endpoint
    pw_u32_t size;            ///< bytes of all samples
    pw_u16_t endpoint_id;     ///< number of the endpoint
    pw_u16_t sample_count;    ///< number of samples
    pw_u16_t collection_type; ///< how the endpoint is read
};
#pragma pack(pop)

static_assert(sizeof(_tw_aggregator_info) == 22);
static_assert(alignof(_tw_aggregator_info) == 2);
static_assert(offsetof(_tw_aggregator_info, guid) == 8);
static_assert(offsetof(_tw_aggregator_info, endpoint_id) == 16);
static_assert(offsetof(_tw_aggregator_info, collection_type) == 20);
static_assert(std::is_trivially_copyable_v<_tw_aggregator_info>);

/// A processor that came or went while collecting.
struct tw_driver_topology_change {
    pw_u64_t timestamp; ///< ticks of the default clock
    pw_u32_t type;      ///< what happened
    pw_u16_t cpu;       ///< logical processor
    pw_u16_t core;
    pw_u16_t pkg;
};
