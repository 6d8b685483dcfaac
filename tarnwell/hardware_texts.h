#pragma once

#include "tarnwell/configuration_texts.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pwr {
class InputMsg;
}

namespace tarnwell {

/// Where the statements of messages stand.
class StatementPlaces {
public:
    /// The texts must outlive it, unchanged.
    explicit StatementPlaces(const ConfigurationTexts& texts);

    /// The place "FILE:LINE" of the statement that a complaint about a message is about: the one whose key and value
    /// the complaint has, else the one whose key it has, else the message's first. "" when no text has any.
    std::string find(const pwr::InputMsg& message, const std::string& complaint) const;

private:
    struct Place {
        const std::string* file = nullptr;
        std::size_t lineNumber = 0;
        std::size_t order = 0; ///< among all statements
        std::string_view value;
    };
    struct MessagePlaces {
        Place first;
        std::unordered_map<std::string_view, std::vector<Place>> byKey;
    };
    struct Found {
        void offer(const Place& candidate, int candidateLikeness);

        Place place;
        int likeness = -1;
    };

    static void look_i(const MessagePlaces& message, const std::string& complaint, Found& best);

    std::unordered_map<std::string_view, MessagePlaces> m_messages; // by the first three fields
};

/// The statements of some capabilities (by their prefixes) and of some platforms' own lines, as texts to be saved: file by file, without
/// comments, under names that begin with kHardwareTextPrefix. Files without any are left out.
ConfigurationTexts usedStatements(const ConfigurationTexts& texts, const std::set<std::string>& platforms,
                                  const std::set<std::string>& prefixes);

/// All platforms that statements are about.
std::set<std::string> platformsIn(const ConfigurationTexts& texts);

} // namespace tarnwell
