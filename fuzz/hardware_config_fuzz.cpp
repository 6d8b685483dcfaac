// Any bytes as hardware description: the parser must report what it cannot read and answer every query.

#include "common/config/config_lint.h"
#include "common/config/input_msg.h"
#include "common/config/platform.h"
#include "common/config/tw_configfile_parser.h"
#include "common/metadata/msg_metadata.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void askFor(const pwr::TWConfigFileParser& parser, const std::string& platforms) {
    std::vector<pwr::ConfigCap> caps;
    if (parser.getCapabilitiesFor(caps, platforms) != 0) std::abort();
    for (const pwr::ConfigCap& cap : caps) {
        for (const bool maxDetail : {false, true}) {
            std::vector<pwr::InputMsg*> messages;
            if (parser.getMessagesFor(messages, platforms, cap.getConfigfilePrefix(), maxDetail) != 0)
                std::abort();
            for (const pwr::InputMsg* const message : messages) {
                if (message->createMsgMetadata() == nullptr) std::abort();
                message->execute({});
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    pwr::ConfigLint lint;
    lint.checkText("fuzz.cfg", text);

    pwr::TWConfigFileParser* const parser = pwr::TWConfigFileParser::instance();
    parser->registerCollectorType("FILE", nullptr, {"FAST"});
    // Half of the text again: statements meet what an earlier parse has left.
    parser->parseText("fuzz.cfg", text.substr(0, size / 2));
    parser->parseText("fuzz.cfg", text);

    askFor(*parser, "X=ALL");
    std::vector<const pwr::Platform*> waiting = {parser->findPlatform("ALL")};
    for (int asked = 0; asked < 8 && !waiting.empty(); ++asked) {
        const pwr::Platform* const platform = waiting.back();
        waiting.pop_back();
        waiting.insert(waiting.end(), platform->getChildren().begin(), platform->getChildren().end());
        // A list of platforms cannot name those with a comma in their name.
        if (platform->getName().find_first_of(", \t\r\n") == std::string::npos) {
            askFor(*parser, "X=" + platform->getName() + ",Y=ALL");
        }
        for (const auto& specifier : platform->getSpecifiers()) {
            const std::string printed = specifier->toString();
            std::string name;
            parser->getPlatformName(name, {specifier->getType(), printed.substr(printed.find('=') + 1)});
            parser->getPlatformName(name, {specifier->getType(), printed});
        }
    }
    pwr::TWConfigFileParser::destroy();
    return 0;
}
