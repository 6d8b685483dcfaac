// A telemetry specification of 2,000 samples with four fields each: pugixml's load alone, and the index that the
// library makes of the file. Goal: 1.5 x. Look-ups are measured against one of a standard hash map.

#include "bench/interleaved.h"
#include "common/plugin/plugin_environment.h"
#include "common/telemetry/aggr_telem.h"

#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::size_t c_samples = 2000;
constexpr std::size_t c_fields = 4;
constexpr std::size_t c_descriptors = c_samples * (1 + c_fields);
constexpr pw_u32_t c_guid = 0xBE7C4;

std::string sampleName(std::size_t number) {
    return "PUNIT_ENERGY_COUNTER_" + std::to_string(number);
}

std::string makeText() {
    std::string text = "<?xml version=\"1.0\"?>\n<TELEM:Aggregator>\n <TELEM:SampleGroup name=\"all\">\n";
    for (std::size_t i = 0; i < c_samples; ++i) {
        text += "  <TELC:sample name=\"" + sampleName(i) + "\" sampleID=\"" + std::to_string(i) + "\">\n";
        text += "   <TELC:description>counts what it counts</TELC:description>\n";
        for (std::size_t k = 0; k < c_fields; ++k) {
            text += "   <TELC:sampleSubGroup name=\"field " + std::to_string(k) +
                    "\"><TELC:description>what these bits count, since when, and in which "
                    "unit</TELC:description><TELC:lsb>" +
                    std::to_string(16 * k) + "</TELC:lsb><TELC:msb>" + std::to_string(16 * k + 15) +
                    "</TELC:msb></TELC:sampleSubGroup>\n";
        }
        text += "  </TELC:sample>\n";
    }
    return text + " </TELEM:SampleGroup>\n</TELEM:Aggregator>\n";
}

void require(bool isRight, const char* what) {
    if (!isRight) {
        std::fprintf(stderr, "%s\n", what);
        std::exit(1);
    }
}

void compareLoading(const std::string& path) {
    bench::Interleaved comparison("Telemetry specification, " + std::to_string(c_descriptors) +
                                  " descriptors, cost of one");
    comparison.add("limit, pugixml's load", c_descriptors, [&] {
        return bench::timed([&] {
            pugi::xml_document document;
            require(document.load_file(path.c_str()), "pugixml refused the file");
        });
    });
    comparison.add("load and index", c_descriptors, [] {
        return bench::timed(
            [] { require(pwr::AggrTelemIndex::instance().load(c_guid) == 0, "the index refused the file"); });
    });
    comparison.report();
}

void compareLookups() {
    std::unordered_map<std::string, pw_u16_t> limit;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < c_samples; ++i) {
        names.push_back(sampleName(i * 7 % c_samples));
        limit.emplace(sampleName(i), static_cast<pw_u16_t>(i));
    }
    std::size_t sum = 0;
    bench::Interleaved comparison("Look-up of a sample by name, cost of one");
    comparison.add("limit, standard hash map", c_samples, [&] {
        return bench::timed([&] {
            for (const std::string& name : names) {
                sum += limit.find(name)->second;
            }
        });
    });
    comparison.add("findSample", c_samples, [&] {
        return bench::timed([&] {
            for (const std::string& name : names) {
                pw_u16_t id = 0;
                pwr::AggrTelemIndex::instance().findSample(c_guid, name, id);
                sum -= id;
            }
        });
    });
    comparison.report();
    require(sum == 0, "look-ups differ");
}

} // namespace

int main() {
    g_pluginEnvironment->setTarnwellDirectory();
    const std::filesystem::path folder =
        std::filesystem::path(g_pluginEnvironment->getTarnwellDirectory()) / "xml_configs";
    std::filesystem::create_directories(folder);
    const std::filesystem::path path = folder / "telemetry_0xbe7c4.xml";
    std::ofstream(path, std::ios::binary) << makeText();
    compareLoading(path.string());
    compareLookups();
    std::filesystem::remove(path);
    return 0;
}
