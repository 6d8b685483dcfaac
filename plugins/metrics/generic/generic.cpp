#include "common/plugin/plugin_loader.h"
#include "common/values/data.h"
#include "plugins/metrics/data_driven_plugin.h"
#include "plugins/metrics/generic/message_computer.h"

namespace pwr {

/// Computes every metric that can be described by data alone: see MetricDeclaration for the words and
/// MessageComputer for the rules. Metrics that need more name their own plug-in.
using GenericMetrics = DataDrivenPlugin<MessageComputer>;

} // namespace pwr

KRCOMMON_PLUGIN("generic", KR_PLUGIN_METRIC, pwr::GenericMetrics);
