#include "tarnwell/info.h"

#include "common/saved/collection_reader.h"
#include "tarnwell/complaints.h"
#include "tarnwell/info_document.h"
#include "tarnwell/settings.h"
#include "tarnwell/shared_rows.h"

#include <cstdio>

namespace tarnwell {
namespace {

void readToEnd(pwr::saved::CollectionReader& reader) {
    CollectionData reading;
    pwr::saved::SavedInstances added;
    while (reader.next(reading, added) != pwr::saved::CollectionReader::Event::END) {}
}

constexpr CommandOption kOptions[] = {
    kSavedFileRow,
    {.text = {.name = "--json", .description = "As JSON, for programs"},
     .apply = [](Settings& s, const std::string&) { s.asJson = true; }},
};

} // namespace

std::span<const CommandOption> infoOptions() {
    return kOptions;
}

int runInfo(const Settings& settings) {
    std::string error;
    const auto reader = pwr::saved::CollectionReader::open(settings.inputFile, error);
    if (reader == nullptr) {
        return fail(ExitCode::FAILED, error);
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
        return fail(ExitCode::FAILED, "the description could not be written completely");
    }
    return toInt(reader->damage().isWhole() ? ExitCode::DONE : ExitCode::DAMAGED);
}

} // namespace tarnwell
