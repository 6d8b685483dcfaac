#pragma once

#include "common/export.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace pwr {

/// The text file NAME.manifest beside the module NAME: what must be known of a plug-in before, or without, loading it.
/// Lines "key=value"; "#" begins a comment:
///     kind=collector           or metric, writer
///     library=0.8.0            the version of the library that it belongs to
///     systems=linux,windows    where there is a module of it; all when missing
///     type=REGISTER:MSR,PCI    a collector type with its hardware categories, one line each
/// A type of the hardware description is known by its manifest, so that a module that does not load turns off what
/// it would have collected and nothing else.
struct KRCOMMON_API PluginManifest {
    std::string name; ///< of the file, without its ending
    std::uint32_t kind = 0;
    std::string libraryVersion;
    std::set<std::string> systems;
    std::map<std::string, std::set<std::string>> types; ///< collector types and the categories of each

    /// 0; or 1 with the line and what is wrong with it in `error`.
    int parse(const std::string& manifestName, std::string_view text, std::string& error);
    /// Whether there is a module of it for the running system.
    [[nodiscard]] bool isForThisSystem() const;
};

} // namespace pwr
