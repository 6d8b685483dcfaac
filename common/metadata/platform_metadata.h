#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <list>
#include <map>
#include <string>
#include <vector>

namespace pwr {

class Serializer;
class SystemMetadata;
class TWConfigFileParser;

/// What kind of platform object stands behind a number of a saved collection. Persistent: never renumber.
enum class PlatformType : pw_u16_t { GENERIC = 0, CPU = 1, CXH = 2 };

/// What is known of one platform (processor, chipset, ...) that a collection ran on: how the
/// hardware description recognises it, how it is called, and free name-value pairs.
/// Base of the special platform objects, and complete by itself.
class KRCOMMON_API PlatformMetadata {
public:
    PlatformMetadata() = default;
    /// specifierType: kind of the configuration specifiers that select the platform, such as "FMS".
    explicit PlatformMetadata(std::string specifierType);
    virtual ~PlatformMetadata();
    PlatformMetadata(const PlatformMetadata&) = delete;
    PlatformMetadata& operator=(const PlatformMetadata&) = delete;

    const std::string& getSpecifierType() const { return m_specifierType; }
    void setSpecifierType(const std::string& type) { m_specifierType = type; }
    const std::string& getDisplayName() const { return m_displayName; }
    void setDisplayName(const std::string& name) { m_displayName = name; }

    /// The values found on this machine that a specifier is matched with, in order of finding.
    const std::vector<std::string>& getSpecifierValues() const { return m_specifierValues; }
    void addSpecifierValue(const std::string& value);
    /// Removes the value at the position; a position beyond the end does nothing.
    void eraseSpecifierValue(pw_u16_t index);

    const std::map<std::string, std::string>& getMetadataValues() const { return m_metadataValues; }
    /// Stores a value under a name; a later value of the same name replaces the earlier one.
    void addMetadataValue(const std::string& name, const std::string& value);
    /// "" for a name that has no value.
    std::string getMetadataValue(const std::string& name) const;

    /// Whether collecting needs a platform of the hardware description that matches this one.
    void setRequiresConfigSpecifier(bool required) { m_requiresConfigSpecifier = required; }
    bool checkRequiresConfigSpecifier() const { return m_requiresConfigSpecifier; }
    /// Whether such a platform was found.
    void setConfigSpecifierFound(bool found) { m_configSpecifierFound = found; }
    bool checkConfigSpecifierFound() const { return m_configSpecifierFound; }

    /// Writes the object as it stands in the system record, behind its PlatformType. Derived objects
    /// write this part first. The two flags are not saved.
    virtual void serializePlatformMetadata(Serializer& out) const;
    /// Reads the object in place of what it holds; all texts may be empty. 0, or 1 when something is
    /// missing; what was read until then stays.
    virtual int deserializePlatformMetadata(Serializer& in);

    /// Appends the names of the platforms of the hardware description that the machine's values select, each once,
    /// and notes whether one was found. 0, or 1 when none was.
    virtual int getPlatformNames(TWConfigFileParser* parser, std::list<std::string>& names,
                                 SystemMetadata& system);
    /// Whether getPlatformNames() warns when nothing fits: only where a collection needs the platform.
    virtual bool shouldPrintMessageOnNoMatch() const;

protected:
    /// The values to be matched, in order of finding; what is not known yet is looked up in the record of the
    /// machine. 0, or 1 when there is none.
    virtual int initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values);

private:
    std::string m_specifierType;
    std::string m_displayName;
    std::vector<std::string> m_specifierValues;
    std::map<std::string, std::string> m_metadataValues;
    bool m_requiresConfigSpecifier = false;
    bool m_configSpecifierFound = false;
};

} // namespace pwr
