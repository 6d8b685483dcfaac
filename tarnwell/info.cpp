#include "tarnwell/info.h"

#include "common/saved/collection_reader.h"
#include "tarnwell/command_options.h"
#include "tarnwell/exit_code.h"
#include "tarnwell/info_document.h"
#include "tarnwell/settings.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace tarnwell {
namespace {

int fail(const std::string& text) {
    std::fprintf(stderr, "tarnwell: %s\n", text.c_str());
    return toInt(ExitCode::FAILED);
}

void readToEnd(pwr::saved::CollectionReader& reader) {
    CollectionData reading;
    pwr::saved::SavedInstances added;
    while (reader.next(reading, added) != pwr::saved::CollectionReader::Event::END) {}
}

} // namespace

void declareInfo(CLI::App& options, Settings& settings) {
    declareSavedFile(options, settings);
    options.add_flag("--json", settings.asJson, "as JSON, for programs");
}

int runInfo(const Settings& settings) {
    std::string error;
    const auto reader = pwr::saved::CollectionReader::open(settings.inputFile, error);
    if (reader == nullptr) {
        return fail(error);
    }
    if (!reader->damage().isClosed) {
        readToEnd(*reader);
    }
    const nlohmann::ordered_json document = infoDocument(settings.inputFile, *reader);
    // Texts of the file that are no UTF-8 must not keep the rest from being read.
    const std::string text =
        settings.asJson
            ? document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n"
            : infoText(document);
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return fail("the description could not be written completely");
    }
    return toInt(reader->damage().isWhole() ? ExitCode::DONE : ExitCode::DAMAGED);
}

} // namespace tarnwell
