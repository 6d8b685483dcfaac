#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/config/platform.h"
#include "common/export.h"

namespace pwr {

/// The platforms of the hardware description, and how they are found: by their name, by what a machine is
/// recognised by, or by a platform-name string. Owns them all.
class KRCOMMON_API Parser {
public:
    using Platforms = std::map<std::string, std::unique_ptr<Platform>, std::less<>>;

    /// The root of all platforms exists from the beginning.
    static constexpr const char* c_rootName = "ALL";

    Parser();
    ~Parser();
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    /// The platform of the name, made on first mention. A parent that is not there yet is waited for; an empty
    /// parent name means none. A parent's own parents must not lead back to the platform.
    Platform& getOrCreatePlatform(const std::string& name, const std::string& parentName);
    /// The parent that a platform's name implies: "A-B" descends from "A", "A" from the root, the root from none.
    static std::string getParentName(std::string_view name);

    /// Null when there is none.
    const Platform* findPlatform(std::string_view name) const;
    Platform* findPlatform(std::string_view name);
    /// By ascending name.
    const Platforms& getPlatforms() const { return m_platforms; }
    /// The parents that children wait for, by ascending name.
    std::vector<std::string> getUndefinedParents() const;

    /// The platform whose specifier fits a value best: the first exact match by ascending name, else the first
    /// partial one, else null.
    const Platform* choosePlatform(const std::pair<std::string, std::string>& specifier) const;

    /// The platforms of a string "TYPE=NAME,TYPE=NAME", each once, in the order of the entries. 0; -1 after an
    /// error when one is not declared or no entry is of that form.
    int getAllPlatforms_i(const std::string& platformNames, std::vector<const Platform*>& platforms) const;

private:
    Platforms m_platforms;
    std::map<std::string, std::vector<Platform*>> m_orphans; // by the parent's name
};

} // namespace pwr
