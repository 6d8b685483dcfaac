#include "tests/plugin/modules/named_plugin.h"

namespace {

class Refuser : public NamedPlugin {
public:
    Refuser() : NamedPlugin("refuser") {}
    int initialize() override { return 7; }
};

} // namespace

KRCOMMON_PLUGIN("refuser", KR_PLUGIN_COLLECTOR, Refuser);
