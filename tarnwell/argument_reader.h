#pragma once

#include "tarnwell/program_options.h"

#include <string>
#include <utility>
#include <vector>

namespace tarnwell {

/// What stands on a command line, before anything of it takes effect.
struct ReadArguments {
    struct Given {
        const KnownOption* option;
        std::string value;
    };

    const Subcommand* subcommand = nullptr;
    std::vector<Given> given; ///< options and arguments in order
    bool asksForFeatures = false;
    bool asksForHelp = false;
    bool hasSeparator = false;
    std::vector<std::string> command; ///< behind "--"
    std::string error;                ///< the first thing that is wrong, as a sentence; "" when nothing is

    bool has(const std::string& name) const;
};

/// Reads words by the table of options: "--name value", "--name=value", "-n value", "-nvalue", one subcommand and its
/// arguments. What stands in front of the subcommand goes with it when it has such an option.
class ArgumentReader {
public:
    explicit ArgumentReader(const ProgramOptions& options) : m_options(options), m_scope(&options.main()) {}

    ReadArguments read(const std::vector<std::string>& arguments);

private:
    void takeOption_i(const std::string& word);
    void takeWord_i(const std::string& word);
    void takeValue_i(const KnownOption& option, const std::string& name);
    void enter_i(const Subcommand& subcommand, const std::string& calledAs);
    void add_i(const KnownOption& option, const std::string& value);
    void checkArguments_i();
    void fault_i(const std::string& text);
    std::vector<std::string> names_i() const;

    const ProgramOptions& m_options;
    const std::vector<KnownOption>* m_scope;
    std::vector<std::string> m_words; ///< those in front of "--"
    std::size_t m_at = 0;
    ReadArguments m_read;
};

} // namespace tarnwell
