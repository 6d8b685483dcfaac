#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/config/config_cap.h"
#include "common/export.h"

class CollectorPlugin;

namespace pwr {

class InputMsg;
class Operation;
struct AggrTelemCounterInfo;
class Platform;

/// The hardware description: which platforms there are, how each is recognised, what it offers and how that is
/// read. Several parse() calls add up. Platforms are named to the queries by a string "TYPE=NAME,TYPE=NAME".
/// Out-parameters of the queries are emptied first.
/// Ownership: one object for the process, made with instance(); destroy() ends it, and with it all messages,
///            collector types and registered collectors (which stay the host's).
/// Threads:   one at a time.
class KRCOMMON_API TWConfigFileParser {
public:
    static TWConfigFileParser* instance();
    /// The parser if there is one, else null; never makes one.
    static TWConfigFileParser* current();
    static void destroy();

    TWConfigFileParser(const TWConfigFileParser&) = delete;
    TWConfigFileParser& operator=(const TWConfigFileParser&) = delete;
    ~TWConfigFileParser();

    /// Reads all files in order, then links the platforms and checks that everything fits together. 0, or 1 when
    /// a file, a line or a check failed; all of them are reported, and what was good counts.
    int parse(const std::vector<std::string>& files);
    /// The same for a text that is no file, such as one kept in a saved collection; the name stands in reports.
    int parseText(const std::string& name, std::string_view text);

    /// Makes a word a collector type of the language. The collector may follow in a later call, when its module is
    /// loaded. Categories are what may stand behind the word and ":". 1 when the word cannot be one, or when
    /// another collector serves it.
    int registerCollectorType(const std::string& type, CollectorPlugin* collector,
                              const std::set<std::string>& categories = {});
    /// To be called before a registered collector ends: its types stay, and nobody serves them.
    void forgetCollector(const CollectorPlugin* collector);
    /// Null when nobody serves the type.
    CollectorPlugin* getCollector(const std::string& type) const;
    bool isCategoryKnown(const std::string& type, const std::string& category) const;

    /// The platform that a value found on the machine selects: (type, value), such as ("FMS", "6.85.4"). 0, or 1
    /// and an empty name when none fits.
    int getPlatformName(std::string& name, const std::pair<std::string, std::string>& specifier) const;
    /// Whether statements have declared the platform.
    bool isPlatformPrefixSupported(const std::string& name) const;
    /// Null when it is not declared.
    const Platform* findPlatform(const std::string& name) const;

    /// What the platforms offer, platform by platform; what several of them inherit stands once. 0, or 1 when a
    /// platform is not declared.
    int getCapabilitiesFor(std::vector<ConfigCap>& capabilities, const std::string& platforms) const;
    /// The messages of a capability, by its configuration prefix; those that went into a group are left out.
    /// With maximum detail a message has its triggers of that level where it has any; without, messages that have
    /// no others are left out. 0, or 1 when no platform declares the prefix.
    int getMessagesFor(std::vector<InputMsg*>& messages, const std::string& platforms,
                       const std::string& prefix, bool maxDetail = false) const;
    /// The operations of a collector type in all declarations, platform by platform.
    std::vector<const Operation*> getOperationsOfType(const std::string& collectorType) const;
    /// The telemetry counter that a declared operation reads, by the operation's name or the counter's. 0; or 1 after
    /// a message, and `info` is untouched.
    int getAggrTelemCounterInfo(const std::string& name, AggrTelemCounterInfo& info) const;

private:
    struct Contents;

    TWConfigFileParser();
    int finish_i(int result);
    int selectPlatforms_i(const std::string& names, std::vector<const Platform*>& platforms) const;

    std::unique_ptr<Contents> m_contents;
};

} // namespace pwr
