#include "plugins/collectors/windows_counters/features.h"

#include <array>

namespace windows_counters {

namespace {

using pwr::ConstantRow;
using pwr::FeatureRow;
using pwr::MessageRow;
using pwr::OperationRow;

constexpr std::array CPU_TIME_OPERATIONS{
    OperationRow{"user", "processor-times", "user", "User"},
    OperationRow{"system", "processor-times", "system", "System"},
    OperationRow{"idle", "processor-times", "idle", "Idle"},
    OperationRow{"interrupt", "processor-times", "interrupt", "Interrupts"},
    OperationRow{"deferred", "processor-times", "deferred", "Soft interrupts"},
};
constexpr std::array CPU_TIME_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Processor time"},
    ConstantRow{"CONTAINER-TAG", "CPU-TIME"},
    ConstantRow{"METRIC-TYPE", "SampledResidency"},
    ConstantRow{"QUANTITY", "time"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"SCALE", "0.1"}, // the system counts units of 100 nanoseconds
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
    ConstantRow{"DESCRIPTOR-TITLE", "Mode"},
    ConstantRow{"PLUGIN", "residency_carry"},
    ConstantRow{"NOT-BOOKED", "Not booked"},
};
constexpr std::array CPU_MESSAGES{MessageRow{"CPU-TIME", 64, CPU_TIME_OPERATIONS, CPU_TIME_CONSTANTS, false}};

constexpr std::array NET_BYTES_OPERATIONS{
    OperationRow{"rx_bytes", "network-interfaces", "bytes-in", "Received"},
    OperationRow{"tx_bytes", "network-interfaces", "bytes-out", "Sent"},
};
constexpr std::array NET_PACKETS_OPERATIONS{
    OperationRow{"rx_packets", "network-interfaces", "packets-in", "Received"},
    OperationRow{"tx_packets", "network-interfaces", "packets-out", "Sent"},
};
constexpr std::array NET_BYTES_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Network traffic"},
    ConstantRow{"CONTAINER-TAG", "NETWORK-BYTES"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "data"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"ENTITY", "{net}"},
    ConstantRow{"ENTITY-TITLE", "Interface"},
    ConstantRow{"DESCRIPTOR-TITLE", "Direction"},
};
constexpr std::array NET_PACKETS_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Network packets"},
    ConstantRow{"CONTAINER-TAG", "NETWORK-PACKETS"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "Packets;packets;Packet rate;packets/s;1"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"ENTITY", "{net}"},
    ConstantRow{"ENTITY-TITLE", "Interface"},
    ConstantRow{"DESCRIPTOR-TITLE", "Direction"},
};
constexpr std::array NET_MESSAGES{
    MessageRow{"NETWORK-BYTES", 64, NET_BYTES_OPERATIONS, NET_BYTES_CONSTANTS, false},
    MessageRow{"NETWORK-PACKETS", 64, NET_PACKETS_OPERATIONS, NET_PACKETS_CONSTANTS, false},
};

constexpr std::array MEMORY_OPERATIONS{
    OperationRow{"total", "memory", "total", "Total"},
    OperationRow{"available", "memory", "available", "Available"},
};
constexpr std::array MEMORY_CONSTANTS{
    ConstantRow{"METRIC-NAME", "System memory"},
    ConstantRow{"CONTAINER-TAG", "MEMORY"},
    ConstantRow{"METRIC-TYPE", "SampledValue"},
    ConstantRow{"QUANTITY", "Memory;MiB"},
    ConstantRow{"SOURCE", "LEVEL"},
    ConstantRow{"RAW-TYPE", "UINT"},
    ConstantRow{"VALUE-TYPE", "REAL"},
    ConstantRow{"SCALE", "0.00000095367431640625"}, // the system counts bytes
    ConstantRow{"ENTITY", "SYSTEM"},
    ConstantRow{"DESCRIPTOR-TITLE", "Memory"},
};
constexpr std::array MEMORY_MESSAGES{MessageRow{"MEMORY", 64, MEMORY_OPERATIONS, MEMORY_CONSTANTS, false}};

constexpr std::array FEATURES{
    FeatureRow{"cpu", "processor time by mode, per logical processor",
               "the system does not tell its processors' times", "", CPU_MESSAGES},
    FeatureRow{"network", "bytes and packets, per network interface", "no network interface was ever used",
               "connect a network", NET_MESSAGES},
    FeatureRow{"memory", "system memory", "the system does not tell its memory", "", MEMORY_MESSAGES},
};

} // namespace

std::span<const FeatureRow> features() {
    return FEATURES;
}

} // namespace windows_counters
