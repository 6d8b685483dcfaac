#include "plugins/collectors/text_files/features.h"

#include <array>

namespace text_files {

namespace {

using pwr::ConstantRow;
using pwr::FeatureRow;
using pwr::MessageRow;
using pwr::OperationRow;

#define CPU_FOLDER "/sys/devices/system/cpu/cpu{cpu}"

// A processor's states are known by number; their names are for the report.
constexpr std::array IDLE_TIME_OPERATIONS{
    OperationRow{"time", CPU_FOLDER "/cpuidle/state{state}/time", "", ""}};
constexpr std::array IDLE_ENTRY_OPERATIONS{
    OperationRow{"usage", CPU_FOLDER "/cpuidle/state{state}/usage", "", ""}};
constexpr std::array IDLE_TIME_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Idle states"},
    ConstantRow{"CONTAINER-TAG", "IDLE-STATES"},
    ConstantRow{"METRIC-TYPE", "SampledResidency"},
    ConstantRow{"QUANTITY", "time"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"SCALE", "1"}, // the files count microseconds
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
    ConstantRow{"DESCRIPTOR", "state{state}"},
    ConstantRow{"DESCRIPTOR-FILE", CPU_FOLDER "/cpuidle/state{state}/name"},
    ConstantRow{"DESCRIPTOR-TITLE", "State"},
    ConstantRow{"PLUGIN", "residency_carry"},
    ConstantRow{"REST", "Not idle"},
    ConstantRow{"NOT-BOOKED", "Not booked"},
};
constexpr std::array IDLE_ENTRY_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Idle state entries"},
    ConstantRow{"CONTAINER-TAG", "IDLE-ENTRIES"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "Entries;entries;Entry rate;entries/s;1"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
    ConstantRow{"DESCRIPTOR", "state{state}"},
    ConstantRow{"DESCRIPTOR-FILE", CPU_FOLDER "/cpuidle/state{state}/name"},
    ConstantRow{"DESCRIPTOR-TITLE", "State"},
};
constexpr std::array IDLE_MESSAGES{
    MessageRow{"IDLE-TIME", 64, IDLE_TIME_OPERATIONS, IDLE_TIME_CONSTANTS, false},
    MessageRow{"IDLE-ENTRIES", 64, IDLE_ENTRY_OPERATIONS, IDLE_ENTRY_CONSTANTS, false},
};

// Time in virtual machines is part of "user" already, so it has no row.
constexpr std::array CPU_TIME_OPERATIONS{
    OperationRow{"user", "/proc/stat", "cpu{cpu} 1", "User"},
    OperationRow{"nice", "/proc/stat", "cpu{cpu} 2", "Nice"},
    OperationRow{"system", "/proc/stat", "cpu{cpu} 3", "System"},
    OperationRow{"idle", "/proc/stat", "cpu{cpu} 4", "Idle"},
    OperationRow{"iowait", "/proc/stat", "cpu{cpu} 5", "I/O wait"},
    OperationRow{"irq", "/proc/stat", "cpu{cpu} 6", "Interrupts"},
    OperationRow{"softirq", "/proc/stat", "cpu{cpu} 7", "Soft interrupts"},
    OperationRow{"steal", "/proc/stat", "cpu{cpu} 8", "Stolen"},
};
constexpr std::array CPU_TIME_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Processor time"},
    ConstantRow{"CONTAINER-TAG", "CPU-TIME"},
    ConstantRow{"METRIC-TYPE", "SampledResidency"},
    ConstantRow{"QUANTITY", "time"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"SCALE",
                "10000"}, // the file counts hundredths of a second, whatever the kernel's own tick is
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
    ConstantRow{"DESCRIPTOR-TITLE", "Mode"},
    ConstantRow{"PLUGIN", "residency_carry"},
    ConstantRow{"NOT-BOOKED", "Not booked"},
};
constexpr std::array CPU_MESSAGES{MessageRow{"CPU-TIME", 64, CPU_TIME_OPERATIONS, CPU_TIME_CONSTANTS, false}};

#define NET_FOLDER "/sys/class/net/{net}/statistics"
// Interfaces that a kernel makes by itself and that hardly anybody uses.
#define NET_UNUSED "ifb*,dummy*,sit*,tunl*,ip6*,gre*,erspan*,ip_vti*,bond*,teql*"

constexpr std::array NET_BYTES_OPERATIONS{
    OperationRow{"rx_bytes", NET_FOLDER "/rx_bytes", "", "Received"},
    OperationRow{"tx_bytes", NET_FOLDER "/tx_bytes", "", "Sent"},
};
constexpr std::array NET_PACKETS_OPERATIONS{
    OperationRow{"rx_packets", NET_FOLDER "/rx_packets", "", "Received"},
    OperationRow{"tx_packets", NET_FOLDER "/tx_packets", "", "Sent"},
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
    ConstantRow{"SKIP-UNUSED", NET_UNUSED},
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
    ConstantRow{"SKIP-UNUSED", NET_UNUSED},
};
constexpr std::array NET_MESSAGES{
    MessageRow{"NETWORK-BYTES", 64, NET_BYTES_OPERATIONS, NET_BYTES_CONSTANTS, false},
    MessageRow{"NETWORK-PACKETS", 64, NET_PACKETS_OPERATIONS, NET_PACKETS_CONSTANTS, false},
};

#define BLOCK_FILE "/sys/block/{block}/stat"
#define BLOCK_UNUSED "loop*,ram*,zram*,fd*,sr*,nbd*,md*"

constexpr std::array DISK_BYTES_OPERATIONS{
    OperationRow{"sectors read", BLOCK_FILE, "3", "Read"},
    OperationRow{"sectors written", BLOCK_FILE, "7", "Written"},
};
constexpr std::array DISK_OPERATIONS_OPERATIONS{
    OperationRow{"reads", BLOCK_FILE, "1", "Read"},
    OperationRow{"writes", BLOCK_FILE, "5", "Written"},
};
constexpr std::array DISK_BYTES_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Disk traffic"},
    ConstantRow{"CONTAINER-TAG", "DISK-BYTES"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "data"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"SCALE", "512"}, // sectors of this size, whatever the device's own are
    ConstantRow{"ENTITY", "{block}"},
    ConstantRow{"ENTITY-TITLE", "Device"},
    ConstantRow{"DESCRIPTOR-TITLE", "Direction"},
    ConstantRow{"SKIP-UNUSED", BLOCK_UNUSED},
};
constexpr std::array DISK_OPERATIONS_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Disk operations"},
    ConstantRow{"CONTAINER-TAG", "DISK-OPERATIONS"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "operations"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"ENTITY", "{block}"},
    ConstantRow{"ENTITY-TITLE", "Device"},
    ConstantRow{"DESCRIPTOR-TITLE", "Direction"},
    ConstantRow{"SKIP-UNUSED", BLOCK_UNUSED},
};
constexpr std::array DISK_MESSAGES{
    MessageRow{"DISK-BYTES", 64, DISK_BYTES_OPERATIONS, DISK_BYTES_CONSTANTS, false},
    MessageRow{"DISK-OPERATIONS", 64, DISK_OPERATIONS_OPERATIONS, DISK_OPERATIONS_CONSTANTS, false},
};

constexpr std::array INTERRUPT_OPERATIONS{OperationRow{"interrupts", "/proc/interrupts", "sum CPU{cpu}", ""}};
constexpr std::array SWITCH_OPERATIONS{OperationRow{"ctxt", "/proc/stat", "ctxt 1", ""}};
constexpr std::array INTERRUPT_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Interrupts"},
    ConstantRow{"CONTAINER-TAG", "INTERRUPTS"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "Interrupts;interrupts;Interrupt rate;interrupts/s;1"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
};
constexpr std::array SWITCH_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Context switches"},
    ConstantRow{"CONTAINER-TAG", "CONTEXT-SWITCHES"},
    ConstantRow{"METRIC-TYPE", "SampledDelta"},
    ConstantRow{"QUANTITY", "Switches;switches;Switch rate;switches/s;1"},
    ConstantRow{"SOURCE", "COUNTER"},
    ConstantRow{"ENTITY", "SYSTEM"},
};
constexpr std::array INTERRUPT_MESSAGES{
    MessageRow{"INTERRUPTS", 32, INTERRUPT_OPERATIONS, INTERRUPT_CONSTANTS, false},
    MessageRow{"CONTEXT-SWITCHES", 64, SWITCH_OPERATIONS, SWITCH_CONSTANTS, false},
};

constexpr std::array FREQUENCY_OPERATIONS{
    OperationRow{"frequency", CPU_FOLDER "/cpufreq/scaling_cur_freq", "", ""}};
constexpr std::array REPORTED_OPERATIONS{
    OperationRow{"frequency", "/proc/cpuinfo", "[processor {cpu}] cpu MHz", ""}};
constexpr std::array FREQUENCY_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Processor frequency"},
    ConstantRow{"CONTAINER-TAG", "CPU-FREQUENCY"},
    ConstantRow{"METRIC-TYPE", "SampledValue"},
    ConstantRow{"QUANTITY", "frequency"},
    ConstantRow{"SOURCE", "LEVEL"},
    ConstantRow{"RAW-TYPE", "UINT"},
    ConstantRow{"VALUE-TYPE", "REAL"},
    ConstantRow{"SCALE", "0.001"}, // the file is in kHz
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
};
constexpr std::array REPORTED_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Processor frequency"},
    ConstantRow{"CONTAINER-TAG", "CPU-FREQUENCY"},
    ConstantRow{"METRIC-TYPE", "SampledValue"},
    ConstantRow{"QUANTITY", "frequency"},
    ConstantRow{"SOURCE", "LEVEL"},
    ConstantRow{"VALUE-TYPE", "REAL"},
    ConstantRow{"ENTITY", "{cpu}"},
    ConstantRow{"ENTITY-TITLE", "Processor"},
};
constexpr std::array FREQUENCY_MESSAGES{
    MessageRow{"FREQUENCY", 64, FREQUENCY_OPERATIONS, FREQUENCY_CONSTANTS, false},
    MessageRow{"FREQUENCY-REPORTED", 64, REPORTED_OPERATIONS, REPORTED_CONSTANTS, true},
};

#define SENSOR_FOLDER "/sys/class/hwmon/hwmon{sensor}"
#define ZONE_FOLDER "/sys/class/thermal/thermal_zone{zone}"

constexpr std::array SENSOR_OPERATIONS{OperationRow{"input", SENSOR_FOLDER "/temp{channel}_input", "", ""}};
constexpr std::array ZONE_OPERATIONS{OperationRow{"temp", ZONE_FOLDER "/temp", "", "Zone"}};
constexpr std::array SENSOR_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Temperature"},
    ConstantRow{"CONTAINER-TAG", "TEMPERATURE"},
    ConstantRow{"METRIC-TYPE", "SampledValue"},
    ConstantRow{"QUANTITY", "temperature"},
    ConstantRow{"SOURCE", "LEVEL"},
    ConstantRow{"RAW-TYPE", "INT"},
    ConstantRow{"VALUE-TYPE", "REAL"},
    ConstantRow{"SCALE", "0.001"}, // thousandths of a degree
    ConstantRow{"ENTITY", "hwmon{sensor}"},
    ConstantRow{"ENTITY-FILE", SENSOR_FOLDER "/name"},
    ConstantRow{"ENTITY-TITLE", "Sensor"},
    ConstantRow{"DESCRIPTOR", "temp{channel}"},
    ConstantRow{"DESCRIPTOR-FILE", SENSOR_FOLDER "/temp{channel}_label"},
    ConstantRow{"DESCRIPTOR-TITLE", "Channel"},
};
// A zone that is also a sensor appears under the sensor's name only.
constexpr std::array ZONE_CONSTANTS{
    ConstantRow{"METRIC-NAME", "Temperature"},
    ConstantRow{"CONTAINER-TAG", "TEMPERATURE"},
    ConstantRow{"METRIC-TYPE", "SampledValue"},
    ConstantRow{"QUANTITY", "temperature"},
    ConstantRow{"SOURCE", "LEVEL"},
    ConstantRow{"RAW-TYPE", "INT"},
    ConstantRow{"VALUE-TYPE", "REAL"},
    ConstantRow{"SCALE", "0.001"},
    ConstantRow{"ENTITY", "thermal_zone{zone}"},
    ConstantRow{"ENTITY-FILE", ZONE_FOLDER "/type"},
    ConstantRow{"ENTITY-TITLE", "Sensor"},
    ConstantRow{"DESCRIPTOR-TITLE", "Channel"},
    ConstantRow{"SKIP-KNOWN", "YES"},
};
constexpr std::array TEMPERATURE_MESSAGES{
    MessageRow{"TEMPERATURE-SENSORS", 64, SENSOR_OPERATIONS, SENSOR_CONSTANTS, false},
    MessageRow{"TEMPERATURE-ZONES", 64, ZONE_OPERATIONS, ZONE_CONSTANTS, false},
};

constexpr std::array MEMORY_OPERATIONS{
    OperationRow{"MemTotal", "/proc/meminfo", "MemTotal: 1", "Total"},
    OperationRow{"MemAvailable", "/proc/meminfo", "MemAvailable: 1", "Available"},
    OperationRow{"MemFree", "/proc/meminfo", "MemFree: 1", "Free"},
    OperationRow{"Cached", "/proc/meminfo", "Cached: 1", "Cached"},
};
constexpr std::array MEMORY_CONSTANTS{
    ConstantRow{"METRIC-NAME", "System memory"},
    ConstantRow{"CONTAINER-TAG", "MEMORY"},
    ConstantRow{"METRIC-TYPE", "SampledValue"},
    ConstantRow{"QUANTITY", "Memory;MiB"},
    ConstantRow{"SOURCE", "LEVEL"},
    ConstantRow{"RAW-TYPE", "UINT"},
    ConstantRow{"VALUE-TYPE", "REAL"},
    ConstantRow{"SCALE", "0.0009765625"}, // the file is in KiB
    ConstantRow{"ENTITY", "SYSTEM"},
    ConstantRow{"DESCRIPTOR-TITLE", "Memory"},
};
constexpr std::array MEMORY_MESSAGES{MessageRow{"MEMORY", 64, MEMORY_OPERATIONS, MEMORY_CONSTANTS, false}};

constexpr std::array FEATURES{
    FeatureRow{"idle", "time in idle states, per logical processor",
               "the kernel offers no idle states (/sys/devices/system/cpu/cpu*/cpuidle)",
               "use a kernel with cpuidle; a virtual machine must be given idle states by its host",
               IDLE_MESSAGES},
    FeatureRow{"cpu", "processor time by mode, per logical processor", "/proc/stat has no processor lines",
               "mount /proc", CPU_MESSAGES},
    FeatureRow{"network", "bytes and packets, per network interface",
               "/sys/class/net lists no interface with statistics", "mount /sys", NET_MESSAGES},
    FeatureRow{"disk", "bytes and operations, per block device",
               "/sys/block lists no device that was ever used", "mount /sys", DISK_MESSAGES},
    FeatureRow{"interrupts", "interrupts per logical processor, and context switches",
               "/proc/interrupts has no processor columns", "mount /proc", INTERRUPT_MESSAGES},
    FeatureRow{
        "frequency", "frequency, per logical processor",
        "neither cpufreq files (/sys/devices/system/cpu/cpu*/cpufreq) nor a frequency in /proc/cpuinfo",
        "load the driver for the processor's frequency control; virtual machines usually have none",
        FREQUENCY_MESSAGES},
    FeatureRow{"temperature", "temperatures of sensors and thermal zones",
               "no sensors in /sys/class/hwmon or /sys/class/thermal",
               "load the drivers of the machine's sensors; virtual machines usually have none",
               TEMPERATURE_MESSAGES},
    FeatureRow{"memory", "system memory", "/proc/meminfo does not tell", "mount /proc", MEMORY_MESSAGES},
};

} // namespace

std::span<const FeatureRow> features() {
    return FEATURES;
}

} // namespace text_files
