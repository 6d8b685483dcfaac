#include "tarnwell/capture.h"

#include "common/machine_bundle.h"
#include "common/platform/interrupt.h"
#include "common/result_file.h"
#include "common/telemetry/endpoint_table.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/poll_schedule.h"
#include "tarnwell/settings.h"

#include <cmath>

namespace tarnwell {
namespace {

constexpr double kDefaultSeconds = 1.0;
constexpr double kNanosecondsPerSecond = 1e9;
constexpr double kNanosecondsPerMillisecond = 1e6;
// Moments count from one second on, so that no reading of a replay is stamped 0.
constexpr std::uint64_t kFirstMoment = 1000000000;

const std::vector<std::string>& capturedPaths() {
    static const std::vector<std::string> paths = {
        "/proc/cpuinfo",
        "/proc/stat",
        "/proc/meminfo",
        "/proc/vmstat",
        "/proc/interrupts",
        "/proc/softirqs",
        "/proc/diskstats",
        "/proc/net/dev",
        "/proc/sys/kernel/hostname",
        "/proc/sys/kernel/ostype",
        "/proc/sys/kernel/osrelease",
        "/proc/sys/kernel/arch",
        "/etc/os-release",
        "/usr/lib/os-release",
        "/sys/hypervisor/type",
        "/sys/class/dmi/id/sys_vendor",
        "/sys/class/dmi/id/product_name",
        "/sys/class/dmi/id/bios_version",
        "/sys/class/dmi/id/bios_date",
        "/sys/bus/pci/devices/*/vendor",
        "/sys/bus/pci/devices/*/device",
        "/sys/bus/pci/devices/*/class",
        "/sys/bus/pci/devices/*/label",
        "/sys/devices/system/cpu/cpu0/microcode/version",
        "/sys/devices/system/cpu/cpu0/microcode/processor_flags",
        "/sys/devices/system/cpu/*",
        "/sys/devices/system/cpu/cpu*/*",
        "/sys/devices/system/cpu/cpu*/topology/*",
        "/sys/devices/system/cpu/cpu*/cpuidle/state*/*",
        "/sys/devices/system/cpu/cpu*/cpufreq/*",
        "/sys/devices/cpu_core/cpus",
        "/sys/devices/cpu_atom/cpus",
        "/sys/class/net/*",
        "/sys/class/net/*/statistics/*",
        "/sys/block/*",
        "/sys/block/*/stat",
        "/sys/class/hwmon/*",
        "/sys/class/hwmon/*/*",
        "/sys/class/thermal/*",
        "/sys/class/thermal/*/*",
    };
    return paths;
}

/// The paths of every machine, those of the telemetry endpoints that this one lists, and more.
std::vector<std::string> pathsOf(const pwr::MachineFiles& machine, const Settings& settings,
                                 const std::vector<std::string>& more) {
    std::vector<std::string> paths = capturedPaths();
    paths.insert(paths.end(), more.begin(), more.end());
    const std::string name =
        settings.endpointTable.empty() ? pwr::TELEMETRY_ENDPOINT_TABLE : settings.endpointTable;
    paths.push_back(name);
    std::string table;
    std::vector<std::string> problems; // whoever collects from the record will hear of them
    machine.read(name, table);
    for (const pwr::TelemetryEndpoint& endpoint : pwr::readEndpointTable(name, table, problems)) {
        paths.push_back(endpoint.file);
    }
    return paths;
}

} // namespace

int captureMachine(const pwr::MachineFiles& machine, const Settings& settings,
                   const std::vector<std::string>& files, std::string& reason) {
    // Opened first, so that a place that cannot be written is known before the recording.
    pwr::ResultFile file(settings.captureFile);
    if (!file.getError().empty()) {
        return file.commit(reason);
    }
    CollectionClock clock(machine);
    const double nanosecondsPerTick = kNanosecondsPerSecond / clock.ticksPerSecond();
    const auto ticksOf = [&](double nanoseconds) {
        return static_cast<std::uint64_t>(std::llround(nanoseconds / nanosecondsPerTick));
    };
    const std::uint64_t begin = clock.now();
    const double seconds = settings.seconds.value_or(kDefaultSeconds);
    PollSchedule schedule(begin, ticksOf(settings.intervalMs * kNanosecondsPerMillisecond),
                          begin + ticksOf(seconds * kNanosecondsPerSecond));
    pwr::BundleWriter writer(machine, pathsOf(machine, settings, files));
    for (std::uint64_t deadline = begin;;) {
        while (clock.now() < deadline && pwr::platform::interruptCount() == 0) {
            clock.waitUntil(deadline, nullptr);
        }
        const double passed = static_cast<double>(clock.now() - begin) * nanosecondsPerTick;
        writer.capture(kFirstMoment + static_cast<std::uint64_t>(std::llround(passed)));
        if (pwr::platform::interruptCount() > 0 || schedule.isStop(deadline)) {
            break;
        }
        deadline = schedule.nextDeadline(clock.now());
    }
    file.write(writer.text());
    return file.commit(reason);
}

} // namespace tarnwell
