#include "tarnwell/print_fms.h"

#include "common/machine_files.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/machine_description.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/settings.h"
#include "tarnwell/standard_output.h"

namespace tarnwell {

int printFms(const Settings& settings) {
    std::string reason;
    const std::unique_ptr<pwr::MachineFiles> machine = openChosenMachine(settings, reason);
    if (machine == nullptr) {
        return fail(ExitCode::FAILED, reason);
    }
    const CollectionClock clock(*machine);
    const HostEnvironment environment({});
    HostEnvironment::useClock(clock.source());
    pwr::SystemMetadata system;
    describeMachine(*machine, !clock.isRecorded() && settings.machine == "/", system);
    const auto platform = system.platformMetadata.find(pwr::PlatformType::CPU);
    const auto* const processor = platform == system.platformMetadata.end()
                                      ? nullptr
                                      : dynamic_cast<const pwr::CPUMetadata*>(platform->second.get());
    if (processor == nullptr || processor->getFamily() == 0) {
        return fail(ExitCode::FAILED, "the processor does not tell its family, model and stepping");
    }
    return printWhole(std::to_string(processor->getFamily()) + "." + std::to_string(processor->getModel()) +
                      "." + std::to_string(processor->getStepping()) + "\n");
}

} // namespace tarnwell
