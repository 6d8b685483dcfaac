#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "common/config/config_specifier.h"
#include "common/config/declared_cap.h"
#include "common/config/named_list.h"
#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

struct OfferedCap;

/// A platform of the hardware description: what it is recognised by, the platform that it descends from, and the
/// capabilities that its own statements declare. Owned by the parser.
class KRCOMMON_API Platform {
public:
    explicit Platform(const std::string& name);
    ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    const std::string& getName() const { return m_name; }

    /// Null for the root, and as long as the parent is not declared.
    const Platform* getParent() const { return m_parent; }
    /// In the order of linking.
    const std::vector<const Platform*>& getChildren() const { return m_children; }
    void addChild(Platform& child);

    void addSpecifier(std::unique_ptr<ConfigSpecifier> specifier);
    /// In the order of declaration.
    const std::vector<std::unique_ptr<ConfigSpecifier>>& getSpecifiers() const { return m_specifiers; }

    void addDeprecatedGUIDs(const std::vector<pw_u32_t>& guids);
    const std::vector<pw_u32_t>& getDeprecatedGUIDs() const { return m_deprecatedGUIDs; }
    bool isDeprecatedGUID(pw_u32_t guid) const;
    /// The GUIDs of all its telemetry specifiers.
    std::vector<pw_u32_t> getTAFGUIDs() const;
    /// Whether a GUID that a telemetry specifier is to have is the first of its number.
    bool noteTAFGUID(pw_u32_t guid) { return m_notedGUIDs.insert(guid).second; }

    DeclaredCap& getOrCreateCap(std::string_view prefix);
    const NamedList<DeclaredCap>& getDeclaredCaps() const { return m_caps; }

    /// Whether it or one that it descends from declares the prefix.
    bool offers(std::string_view prefix) const;
    /// A capability with its messages, inherited ones included. 0, or 1 and a warning when neither the platform nor
    /// one that it descends from declares the prefix.
    int getMessagesFor(OfferedCap& offered, const std::string& prefix) const;

private:
    std::string m_name;
    const Platform* m_parent = nullptr;
    std::vector<const Platform*> m_children;
    std::vector<std::unique_ptr<ConfigSpecifier>> m_specifiers;
    std::vector<pw_u32_t> m_deprecatedGUIDs;
    std::unordered_set<pw_u32_t> m_notedGUIDs;
    NamedList<DeclaredCap> m_caps;
};

} // namespace pwr
