#include "tarnwell/subcommand.h"

#include "tarnwell/check_config.h"
#include "tarnwell/completions.h"
#include "tarnwell/doctor.h"
#include "tarnwell/export.h"
#include "tarnwell/info.h"
#include "tarnwell/manual.h"
#include "tarnwell/repair.h"
#include "tarnwell/verify.h"

#include <algorithm>

namespace tarnwell {

const std::vector<Subcommand>& subcommands() {
    static const std::vector<Subcommand> rows = {
        {"doctor", "Say what this machine offers and, for what it does not, why", &doctorOptions, &runDoctor},
        {"info", "Say what a saved collection holds, and where it is from", &infoOptions, &runInfo},
        {"verify", "Read a saved collection to its end and say what is damaged", &verifyOptions, &runVerify},
        {"repair", "Copy what is intact of a saved collection into a new file", &repairOptions, &runRepair},
        {"check-config", "Say everything that is wrong with configuration files", &checkConfigOptions,
         &runCheckConfig},
        {"export", "Write the raw samples of a saved collection as text", &exportOptions, &runExport},
        {"completions", "Write a script that lets a shell complete this command line", &completionsOptions,
         &runCompletions},
        {"manual", "Write the manual page (tarnwell manual | man -l -)", &manualOptions, &runManual},
    };
    return rows;
}

const Subcommand* findSubcommand(const std::string& name) {
    const auto& rows = subcommands();
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const Subcommand& r) { return r.name == name; });
    return row == rows.end() ? nullptr : &*row;
}

const Subcommand& subcommandOf(const std::string& name) {
    return *findSubcommand(name);
}

} // namespace tarnwell
