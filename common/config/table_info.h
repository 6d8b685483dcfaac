#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "common/export.h"

namespace pwr {

/// How one summary table appears in reports, as the output configuration asks for it.
/// An empty object stands for the defaults: no title or notes of its own, shown, not transposed, with totals.
class KRCOMMON_API TableInfo {
public:
    /// Sets an entry; false, and the first value stays, when the key is set already. Any key is stored, also
    /// those that no reader here knows.
    bool setKeyValuePair(std::string_view key, std::string_view value);

    /// Takes over the entries of `other` whose keys are not set here.
    void addMissingEntries(const TableInfo& other);

    /// Each returns false, with the output untouched, when the configuration has no such text.
    bool getTableTitle(std::string& title) const;
    bool getPreTableNote(std::string& note) const;
    bool getPostTableNote(std::string& note) const;

    /// A table is shown unless its entry says something else than "YES"; transposing it and leaving out its
    /// total must be asked for with "YES". The comparison is exact.
    [[nodiscard]] bool isTableDisplayed() const;
    [[nodiscard]] bool isTableTransposed() const;
    [[nodiscard]] bool suppressTotal() const;

private:
    bool getConfigEntry(std::string_view key, std::string& value) const;
    [[nodiscard]] bool isConfigEntryYesOrNo(std::string_view key) const;

    std::map<std::string, std::string, std::less<>> m_entries;
};

} // namespace pwr
