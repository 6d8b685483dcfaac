#include "tests/plugin/modules/named_plugin.h"

#include <stdexcept>

namespace {

class Thrower : public NamedPlugin {
public:
    Thrower() : NamedPlugin("thrower") { throw std::runtime_error("no such luck"); }
};

} // namespace

KRCOMMON_PLUGIN("thrower", KR_PLUGIN_COLLECTOR, Thrower);
