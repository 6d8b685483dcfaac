// Foreign pages and formats of a trace: whatever they hold, events lie within their page, and every byte is walked
// over once at most.

#include "fuzz/seed_writer.h"
#include "plugins/collectors/tracefs/page_decoder.h"
#include "tests/support/trace_pages.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t c_pageSize = 512;

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

void checkEvent(const tracefs::TraceEvent& event, const tracefs::EventFormat& format, std::string_view page) {
    require(event.data >= page.data() && event.data + event.size <= page.data() + page.size());
    for (const tracefs::EventField& field : format.fields) {
        std::uint64_t number = 0;
        std::string_view text;
        require(!field.number(event, number) || !field.text(event, text));
        require(text.empty() ||
                (text.data() >= event.data && text.data() + text.size() <= event.data + event.size));
    }
}

int writeSeeds(const SeedWriter& seeds) {
    const std::string format = "name: e\nID: 5\nformat:\n\tfield:u32 state;\toffset:8;\tsize:4;\tsigned:0;\n"
                               "\tfield:__data_loc char[] name;\toffset:12;\tsize:4;\tsigned:0;\n";
    using tests::TracePages;
    TracePages pages(c_pageSize);
    pages.event(1000,
                TracePages::eventHead(5) + TracePages::number(1, 4) + TracePages::number(0x30010, 4) + "abc");
    pages.event(std::uint64_t{1} << 40U, TracePages::eventHead(5) + std::string(200, 'x'));
    pages.lose(3);
    pages.event(std::uint64_t{2} << 40U, TracePages::eventHead(5) + TracePages::number(1, 4));
    std::string seed = format;
    seed.push_back('\0');
    seed += pages.bytes();
    seeds.write("pages", 'p', {seed.begin(), seed.end()});
    return 0;
}

} // namespace

/// A byte, the text of a format up to a zero byte, then pages.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view all(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t end = std::min(all.find('\0'), all.size());
    std::string error;
    tracefs::PageLayout layout;
    require(layout.parse(tests::TracePages::layout(c_pageSize), error) == 0);
    tracefs::PageLayout foreign;
    require(foreign.parse(all.substr(0, end), error) != 0 || foreign.dataOffset < foreign.pageSize);
    tracefs::EventFormat format;
    require(format.parse(all.substr(0, end), error) == 0 || !error.empty());
    std::string_view pages = all.substr(std::min(end + 1, all.size()));
    while (!pages.empty()) {
        const std::string_view page = pages.substr(0, c_pageSize);
        pages.remove_prefix(page.size());
        tracefs::PageDecoder decoder(layout);
        if (decoder.load(page) != 0) {
            require(decoder.isDamaged());
            continue;
        }
        tracefs::TraceEvent event;
        std::size_t bytes = 0;
        while (decoder.next(event)) {
            checkEvent(event, format, page);
            bytes += event.size;
        }
        require(bytes <= page.size());
    }
    return 0;
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    if (const char* const folder = SeedWriter::folderOf(*argc, *argv)) {
        std::exit(writeSeeds(SeedWriter(folder)));
    }
    return 0;
}
