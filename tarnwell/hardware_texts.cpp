#include "tarnwell/hardware_texts.h"

#include "common/config/input_msg.h"
#include "common/config/statement.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <string_view>

namespace tarnwell {
namespace {

using pwr::Statement;

void forEachStatement(const std::string& text, const std::function<void(const Statement&)>& use) {
    pwr::StatementReader reader(text);
    Statement statement;
    for (auto read = reader.next(statement); read != pwr::StatementReader::Result::END;
         read = reader.next(statement)) {
        if (read == pwr::StatementReader::Result::STATEMENT) {
            use(statement);
        }
    }
}

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '-';
}

/// Takes the next word of a text, as keys of statements are written.
bool takeWord(std::string_view& text, std::string_view& word) {
    while (!text.empty() && !isWordCharacter(text.front())) {
        text.remove_prefix(1);
    }
    const auto* const end = std::find_if_not(text.begin(), text.end(), isWordCharacter);
    word = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(word.size());
    return !word.empty();
}

/// How much of a statement whose key a complaint has stands in it.
int likenessOf(std::string_view key, std::string_view value, const std::string& complaint) {
    const std::string quoted = "\"" + std::string(value) + "\"";
    if (complaint.find(std::string(key) + " " + quoted) != std::string::npos) {
        return 3; // other keys may be named as well, with a value like theirs
    }
    return !value.empty() && complaint.find(quoted) != std::string::npos ? 2 : 1;
}

} // namespace

StatementPlaces::StatementPlaces(const ConfigurationTexts& texts) {
    std::size_t order = 0;
    for (const auto& [name, text] : texts) {
        forEachStatement(text, [&, file = &name](const Statement& statement) {
            const auto& fields = statement.fields;
            const std::string_view message(fields[0].data(),
                                           fields[0].size() + fields[1].size() + fields[2].size() + 2);
            const std::string_view key = fields[4].substr(0, fields[4].find('.'));
            const Place place{file, statement.lineNumber, order++, fields[Statement::VALUE]};
            m_messages.try_emplace(message, MessagePlaces{place, {}})
                .first->second.byKey[key]
                .push_back(place);
        });
    }
}

std::string StatementPlaces::find(const pwr::InputMsg& message, const std::string& complaint) const {
    // Whoever made it: the message's own statements, or those of what a group or a source handed it.
    std::set<std::string_view> tags = {message.getName()};
    for (const pwr::Operation* operation : message) {
        tags.insert(operation->getOrgMsgTag());
    }
    Found best;
    for (const std::string_view tag : tags) {
        const auto places = m_messages.find(message.getPlatformPrefix() + "_" +
                                            message.getConfigfilePrefix() + "_" + std::string(tag));
        if (places != m_messages.end()) {
            look_i(places->second, complaint, best);
        }
    }
    return best.place.file == nullptr ? "" : *best.place.file + ":" + std::to_string(best.place.lineNumber);
}

void StatementPlaces::look_i(const MessagePlaces& message, const std::string& complaint, Found& best) {
    best.offer(message.first, 0);
    std::string_view rest = complaint;
    for (std::string_view word; takeWord(rest, word);) {
        const auto places = message.byKey.find(word);
        if (places == message.byKey.end()) {
            continue;
        }
        for (const Place& place : places->second) {
            best.offer(place, likenessOf(word, place.value, complaint));
        }
    }
}

void StatementPlaces::Found::offer(const Place& candidate, int candidateLikeness) {
    if (candidateLikeness > likeness || (candidateLikeness == likeness && candidate.order < place.order)) {
        place = candidate;
        likeness = candidateLikeness;
    }
}

ConfigurationTexts usedStatements(const ConfigurationTexts& texts, const std::set<std::string>& platforms,
                                  const std::set<std::string>& prefixes) {
    ConfigurationTexts all;
    for (const auto& [name, text] : texts) {
        std::string used;
        forEachStatement(text, [&](const Statement& statement) {
            const bool isUsed =
                platforms.count(std::string(statement.fields[0])) != 0 &&
                (statement.fields[1] == "MODEL" || prefixes.count(std::string(statement.fields[1])) != 0);
            used += isUsed ? std::string(statement.text) + "\n" : std::string();
        });
        if (!used.empty()) {
            all.emplace_back(kHardwareTextPrefix + name, std::move(used));
        }
    }
    return all;
}

std::set<std::string> platformsIn(const ConfigurationTexts& texts) {
    std::set<std::string> platforms;
    for (const auto& [name, text] : texts) {
        forEachStatement(text, [&](const Statement& statement) { platforms.emplace(statement.fields[0]); });
    }
    return platforms;
}

} // namespace tarnwell
