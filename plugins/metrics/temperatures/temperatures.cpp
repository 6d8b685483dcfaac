#include "common/plugin/plugin_loader.h"
#include "plugins/metrics/temperatures/temperature_metrics.h"

KRCOMMON_PLUGIN("temperatures", KR_PLUGIN_METRIC, pwr::TemperatureMetrics);
