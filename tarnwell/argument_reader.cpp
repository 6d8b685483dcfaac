#include "tarnwell/argument_reader.h"

#include "tarnwell/near_name.h"

#include <algorithm>

namespace tarnwell {
namespace {

constexpr const char* kFeature = "--feature";

/// Whether a word can only be meant as an option: "-5" is a number, "-" a name.
bool looksLikeOption(const std::string& word) {
    return word.size() > 1 && word[0] == '-' &&
           (word[1] == '-' || (word[1] >= 'a' && word[1] <= 'z') || (word[1] >= 'A' && word[1] <= 'Z'));
}

} // namespace

bool ReadArguments::has(const std::string& name) const {
    return std::any_of(given.begin(), given.end(),
                       [&](const Given& g) { return g.option->text.getName() == name; });
}

ReadArguments ArgumentReader::read(const std::vector<std::string>& arguments) {
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    m_words.assign(arguments.begin(), separator);
    m_read.hasSeparator = separator != arguments.end();
    if (m_read.hasSeparator) {
        m_read.command.assign(separator + 1, arguments.end());
    }
    while (m_at < m_words.size()) {
        const std::string& word = m_words[m_at++];
        if (looksLikeOption(word)) {
            takeOption_i(word);
        } else {
            takeWord_i(word);
        }
    }
    if (m_read.asksForFeatures && !m_read.asksForHelp && m_read.subcommand == nullptr) {
        enter_i(subcommandOf("doctor"), std::string(kFeature) + " without a name");
    }
    checkArguments_i();
    return std::move(m_read);
}

void ArgumentReader::takeOption_i(const std::string& word) {
    std::size_t end = word.find('=');
    std::size_t value = end == std::string::npos ? end : end + 1;
    if (word[1] != '-' && word.size() > 2) { // "-i50"
        end = 2;
        value = word[2] == '=' ? 3 : 2;
    }
    const std::string name = word.substr(0, end);
    const KnownOption* const option = ProgramOptions::find(*m_scope, name);
    if (option == nullptr) {
        // The whole of it, since nobody knows where a name ends that is not known.
        fault_i("unknown option " + (word[1] == '-' ? name : word) +
                (m_read.subcommand == nullptr ? "" : std::string(" of ") + m_read.subcommand->name) +
                suggestion(name, names_i()));
    } else if (value == std::string::npos) {
        takeValue_i(*option, name);
    } else if (option->takesValue()) {
        add_i(*option, word.substr(value));
    } else {
        fault_i(name + " takes no value: " + word);
    }
}

void ArgumentReader::takeValue_i(const KnownOption& option, const std::string& name) {
    const bool hasValue = m_at < m_words.size() && !looksLikeOption(m_words[m_at]);
    if (!option.takesValue()) {
        add_i(option, {});
    } else if (hasValue) {
        add_i(option, m_words[m_at++]);
    } else if (option.text.getName() == kFeature) {
        m_read.asksForFeatures = true;
    } else {
        const std::string arg = option.text.getAttribute(pwr::usage::Option::Attribute::ARG);
        fault_i(name + " needs a value: " + name + " " + arg);
    }
}

void ArgumentReader::takeWord_i(const std::string& word) {
    if (m_read.subcommand == nullptr) {
        const Subcommand* const subcommand = findSubcommand(word);
        if (subcommand != nullptr) {
            enter_i(*subcommand, word);
            return;
        }
        std::vector<std::string> names;
        for (const Subcommand& row : subcommands()) {
            names.emplace_back(row.name);
        }
        const std::string near = suggestion(word, names);
        fault_i("unknown subcommand \"" + word + "\"" +
                (near.empty() ? "; a command to run stands behind --" : near));
        return;
    }
    for (const KnownOption& option : *m_scope) {
        if (option.isArgument() && (option.mayRepeat || !m_read.has(option.text.getName()))) {
            add_i(option, word);
            return;
        }
    }
    fault_i(std::string(m_read.subcommand->name) + " does not expect \"" + word + "\"");
}

void ArgumentReader::enter_i(const Subcommand& subcommand, const std::string& calledAs) {
    m_read.subcommand = &subcommand;
    m_scope = &m_options.of(subcommand);
    for (ReadArguments::Given& given : m_read.given) {
        const std::string name = given.option->text.getName();
        const KnownOption* const own = ProgramOptions::find(*m_scope, name);
        if (own == nullptr) {
            fault_i(name + " does not go with " + calledAs);
        } else {
            given.option = own;
        }
    }
}

void ArgumentReader::add_i(const KnownOption& option, const std::string& value) {
    const std::string name = option.text.getName();
    m_read.asksForHelp = m_read.asksForHelp || name == "--help";
    if (option.takesValue() && !option.mayRepeat && m_read.has(name)) {
        fault_i(name + " is given twice");
    }
    m_read.given.push_back({&option, value});
}

void ArgumentReader::checkArguments_i() {
    for (const KnownOption& option : *m_scope) {
        if (option.isRequired && !m_read.has(option.text.getName())) {
            fault_i(std::string(m_read.subcommand->name) + " needs " + option.text.getName() + ": " +
                    option.text.getAttribute(pwr::usage::Option::Attribute::DESCRIPTION));
        }
    }
}

void ArgumentReader::fault_i(const std::string& text) {
    if (m_read.error.empty()) {
        m_read.error = text;
    }
}

std::vector<std::string> ArgumentReader::names_i() const {
    std::vector<std::string> names;
    for (const KnownOption& option : *m_scope) {
        if (!option.isArgument()) {
            names.push_back(option.text.getName());
        }
    }
    return names;
}

} // namespace tarnwell
