#include "common/config/tw_configfile_parser.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <unordered_map>

#include "common/config/collector_types.h"
#include "common/config/config_sanity.h"
#include "common/config/config_text_reader.h"
#include "common/config/hardware_config_grammar.h"
#include "common/config/message_delivery.h"
#include "common/config/parser.h"
#include "common/config/taf_guids.h"
#include "common/plugin/logger.h"

namespace pwr {

struct TWConfigFileParser::Contents {
    CollectorTypes collectors;
    std::unique_ptr<Parser> parser; ///< null when it could not be set up
    MessageDelivery delivery;
};

namespace {

std::unique_ptr<TWConfigFileParser>& theParser() {
    static std::unique_ptr<TWConfigFileParser> parser;
    return parser;
}

std::unique_ptr<Parser> makeParser() {
    try {
        return std::make_unique<Parser>();
    } catch (const std::exception&) {
        return nullptr; // parse() says so: there may be no logger yet
    }
}

/// Whether there is anything that statements can go to.
bool isSetUp(const std::unique_ptr<Parser>& parser) {
    if (parser == nullptr) {
        logError("ERROR initializing parser\n");
    }
    return parser != nullptr;
}

/// Whether what two platforms offer under one prefix is the same capability, so that a list of both has it once.
bool isSameCap(const OfferedCap& left, const OfferedCap& right) {
    return left.definer == right.definer || left.cap == right.cap;
}

} // namespace

TWConfigFileParser::TWConfigFileParser() : m_contents(std::make_unique<Contents>()) {
    m_contents->parser = makeParser();
}

TWConfigFileParser::~TWConfigFileParser() = default;

TWConfigFileParser* TWConfigFileParser::instance() {
    auto& parser = theParser();
    if (parser == nullptr) {
        parser.reset(new TWConfigFileParser);
    }
    return parser.get();
}

TWConfigFileParser* TWConfigFileParser::current() {
    return theParser().get();
}

void TWConfigFileParser::destroy() {
    theParser().reset();
}

int TWConfigFileParser::parse(const std::vector<std::string>& files) {
    if (!isSetUp(m_contents->parser)) {
        return 1;
    }
    removeImplicitTriggers(*m_contents->parser);
    HardwareConfigGrammar grammar(*m_contents->parser, m_contents->collectors);
    int result = 0;
    for (const std::string& file : files) {
        if (readConfigFile(file, [&grammar](const Statement& statement, std::string& problem) {
                return grammar.apply(statement, problem);
            }) != 0) {
            result = 1;
        }
    }
    return finish_i(result);
}

int TWConfigFileParser::parseText(const std::string& name, std::string_view text) {
    if (!isSetUp(m_contents->parser)) {
        return 1;
    }
    removeImplicitTriggers(*m_contents->parser);
    HardwareConfigGrammar grammar(*m_contents->parser, m_contents->collectors);
    return finish_i(readConfigText(name, text, [&grammar](const Statement& statement, std::string& problem) {
        return grammar.apply(statement, problem);
    }));
}

int TWConfigFileParser::finish_i(int result) {
    m_contents->delivery.refresh();
    publishDeprecatedGUIDs(*m_contents->parser);
    addImplicitTriggers(*m_contents->parser);
    const int sanity = checkSanity(*m_contents->parser);
    return result == 0 && sanity == 0 ? 0 : 1;
}

int TWConfigFileParser::registerCollectorType(const std::string& type, CollectorPlugin* collector,
                                              const std::set<std::string>& categories) {
    return m_contents->collectors.add(type, collector, categories);
}

void TWConfigFileParser::forgetCollector(const CollectorPlugin* collector) {
    m_contents->collectors.forget(collector);
}

CollectorPlugin* TWConfigFileParser::getCollector(const std::string& type) const {
    return m_contents->collectors.getCollector(type);
}

bool TWConfigFileParser::isCategoryKnown(const std::string& type, const std::string& category) const {
    return m_contents->collectors.isCategoryKnown(type, category);
}

int TWConfigFileParser::getPlatformName(std::string& name,
                                        const std::pair<std::string, std::string>& specifier) const {
    name.clear();
    if (m_contents->parser == nullptr) {
        return 1;
    }
    const Platform* const platform = warnOfDeprecatedGUID(*m_contents->parser, specifier)
                                         ? nullptr
                                         : m_contents->parser->choosePlatform(specifier);
    if (platform == nullptr) {
        return 1;
    }
    name = platform->getName();
    return 0;
}

bool TWConfigFileParser::isPlatformPrefixSupported(const std::string& name) const {
    return findPlatform(name) != nullptr;
}

const Platform* TWConfigFileParser::findPlatform(const std::string& name) const {
    return m_contents->parser == nullptr ? nullptr : std::as_const(*m_contents->parser).findPlatform(name);
}

int TWConfigFileParser::selectPlatforms_i(const std::string& names,
                                          std::vector<const Platform*>& platforms) const {
    if (m_contents->parser != nullptr && m_contents->parser->getAllPlatforms_i(names, platforms) == 0) {
        return 0;
    }
    logError("ERROR: couldn't retrieve valid list of platforms from platform name string = %s\n",
             names.c_str());
    return 1;
}

int TWConfigFileParser::getCapabilitiesFor(std::vector<ConfigCap>& capabilities,
                                           const std::string& platforms) const {
    capabilities.clear();
    std::vector<const Platform*> selected;
    if (selectPlatforms_i(platforms, selected) != 0) {
        return 1;
    }
    std::unordered_multimap<std::string, OfferedCap> known; // by prefix
    for (const Platform* const platform : selected) {
        for (OfferedCap& offered : listOfferedCaps(*platform)) {
            const auto [first, last] = known.equal_range(offered.cap.getConfigfilePrefix());
            if (std::none_of(first, last,
                             [&offered](const auto& k) { return isSameCap(k.second, offered); })) {
                capabilities.push_back(offered.cap);
                known.emplace(offered.cap.getConfigfilePrefix(), std::move(offered));
            }
        }
    }
    return 0;
}

int TWConfigFileParser::getMessagesFor(std::vector<InputMsg*>& messages, const std::string& platforms,
                                       const std::string& prefix, bool maxDetail) const {
    messages.clear();
    std::vector<const Platform*> selected;
    if (selectPlatforms_i(platforms, selected) != 0) {
        return 1;
    }
    const auto lacksPrefix = [&prefix](const Platform* platform) { return !platform->offers(prefix); };
    // A machine is several platforms at once: a capability of one of them is nothing to be missed on the others.
    if (!std::all_of(selected.begin(), selected.end(), lacksPrefix)) {
        std::erase_if(selected, lacksPrefix);
    }
    const InputMsg::Detail detail = maxDetail ? InputMsg::Detail::MAX : InputMsg::Detail::NORMAL;
    std::set<const InputMsg*> known;
    int result = 1;
    for (const Platform* const platform : selected) {
        OfferedCap offered;
        if (platform->getMessagesFor(offered, prefix) != 0) {
            continue;
        }
        result = 0;
        // What an earlier platform inherits as well is carried out once.
        std::erase_if(offered.messages,
                      [&known](const InputMsg* message) { return !known.insert(message).second; });
        m_contents->delivery.deliver(*platform, offered, detail, messages);
    }
    return result;
}

std::vector<const Operation*> TWConfigFileParser::getOperationsOfType(
    const std::string& collectorType) const {
    std::vector<const Operation*> operations;
    if (m_contents->parser == nullptr) {
        return operations;
    }
    for (const auto& [name, platform] : m_contents->parser->getPlatforms()) {
        for (const auto& declared : platform->getDeclaredCaps()) {
            for (const auto& message : declared->messages) {
                std::copy_if(message->begin(), message->end(), std::back_inserter(operations),
                             [&collectorType](const Operation* operation) {
                                 return operation->getCollectorType() == collectorType;
                             });
            }
        }
    }
    return operations;
}

} // namespace pwr
