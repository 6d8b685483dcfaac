#include "common/plugin/metric_plugin.h"

MetricPlugin::MetricPlugin(const std::string& name) : Plugin(name) {}

MetricPlugin::~MetricPlugin() = default;
