#include "tests/plugin/modules/named_plugin.h"

namespace {

class Good : public NamedPlugin {
public:
    Good() : NamedPlugin("good") {}
};

} // namespace

KRCOMMON_PLUGIN("good", KR_PLUGIN_COLLECTOR, Good);
