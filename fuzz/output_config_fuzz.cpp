// Any bytes as output configuration: the parser must report what it cannot read and answer every query.

#include "common/config/writer_interface_configfile_parser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    pwr::WriterInterfaceConfigFileParser* const parser = pwr::WriterInterfaceConfigFileParser::instance();
    parser->parseText("fuzz.cfg", std::string_view(reinterpret_cast<const char*>(bytes), size));

    std::deque<std::string> prefixes;
    parser->getAllFeaturePrefixes(prefixes);
    for (const std::string& prefix : prefixes) {
        std::deque<std::string> tables;
        if (!parser->getTableOrderForMetric(tables, prefix)) std::abort();
        const std::size_t delimiter = prefix.find('_');
        for (const std::string& table : tables) {
            pwr::TableInfo info;
            const std::string feature = prefix.substr(0, delimiter);
            const std::string container = prefix.substr(delimiter + 1);
            if (!parser->getTableInfoFor(info, feature, container, table)) std::abort();
        }
    }
    pwr::WriterInterfaceConfigFileParser::destroy();
    return 0;
}
