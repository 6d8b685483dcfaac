#include "common/plugin/plugin_loader.h"
#include "common/values/data.h"
#include "plugins/metrics/data_driven_plugin.h"
#include "plugins/metrics/residency_carry/carried_message.h"

namespace pwr {

/// Computes residencies whose time is booked late and in steps, such as idle states and processor modes:
/// see ResidencyCarry for the rules.
using ResidencyCarryMetrics = DataDrivenPlugin<CarriedMessage>;

} // namespace pwr

KRCOMMON_PLUGIN("residency_carry", KR_PLUGIN_METRIC, pwr::ResidencyCarryMetrics);
