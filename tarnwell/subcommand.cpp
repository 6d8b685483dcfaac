#include "tarnwell/subcommand.h"

#include "tarnwell/check_config.h"
#include "tarnwell/doctor.h"
#include "tarnwell/export.h"
#include "tarnwell/info.h"
#include "tarnwell/repair.h"
#include "tarnwell/verify.h"

#include <algorithm>

namespace tarnwell {

const std::vector<Subcommand>& subcommands() {
    static const std::vector<Subcommand> rows = {
        {"doctor", "say what this machine offers and, for what it does not, why", &declareDoctor, &runDoctor},
        {"info", "say what a saved collection holds, and where it is from", &declareInfo, &runInfo},
        {"verify", "read a saved collection to its end and say what is damaged", &declareVerify, &runVerify},
        {"repair", "copy what is intact of a saved collection into a new file", &declareRepair, &runRepair},
        {"check-config", "say everything that is wrong with configuration files", &declareCheckConfig,
         &runCheckConfig},
        {"export", "write the raw samples of a saved collection as text", &declareExport, &runExport},
    };
    return rows;
}

const Subcommand& subcommandOf(const std::string& name) {
    return *std::find_if(subcommands().begin(), subcommands().end(),
                         [&](const Subcommand& row) { return row.name == name; });
}

} // namespace tarnwell
