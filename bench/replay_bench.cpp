// What a report from a saved collection costs for each sample, beside a loop that has the samples ready as records of
// 16 bytes with row numbers and computes the same; and what decoding alone costs.
//     replay_bench [MILLION-SAMPLES]     4 by default

#include "bench/interleaved.h"
#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/plugin/metric_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/saved/collection_reader.h"
#include "common/saved/collection_writer.h"
#include "common/saved/sample_block_decoder.h"
#include "common/saved/sample_block_encoder.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream_host.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <string>

namespace {

constexpr std::uint32_t ROWS = 1024;
constexpr std::uint32_t DESCRIPTORS = 16;
constexpr std::uint32_t DISTINCT = 16;
constexpr std::uint64_t INTERVAL = 100'000'000; // ticks of a 1000 MHz clock
constexpr std::size_t POINTS_OF_BLOCK = 10;
const char* const FILE_NAME = "replay_bench.tmp";

struct Record {
    std::uint32_t row;
    std::uint32_t value;
    std::uint64_t tick;
};

/// Levels of 16 values, all rows at one tick; what came is a function of the place alone.
struct Workload {
    explicit Workload(std::size_t samples) : points(samples / ROWS) {
        std::mt19937 random(7);
        std::generate(pool.begin(), pool.end(),
                      [&] { return static_cast<std::uint8_t>(random() % DISTINCT); });
    }
    std::uint8_t value(std::size_t point, std::uint32_t row) const {
        return pool[(point * 40'503 + row) % pool.size()];
    }
    void fill(std::size_t point, CollectionData& reading) const {
        reading.clear();
        for (std::uint32_t row = 0; row < ROWS; ++row) {
            reading.add(value(point, row));
        }
        reading.header().timestamp = (point + 1) * INTERVAL;
        reading.header().id = {1, 1, 1};
    }
    std::size_t samples() const { return points * ROWS; }

    std::size_t points;
    std::vector<std::uint8_t> pool = std::vector<std::uint8_t>(std::size_t{1} << 18);
};

/// The limit: somebody's loop who has the rows' numbers and needs exactly this.
class HandWritten {
public:
    bench::Nanoseconds run(const std::vector<Record>& records, bool keepsDistinct) {
        return bench::timed([&] {
            std::vector<Row> rows(ROWS);
            for (const Record& record : records) {
                Row& row = rows[record.row];
                const std::uint64_t duration = record.tick - row.last;
                row.last = record.tick;
                row.minimum = std::min(row.minimum, record.value);
                row.maximum = std::max(row.maximum, record.value);
                row.sum += record.value;
                ++row.count;
                row.weightedSum += static_cast<double>(record.value) * static_cast<double>(duration);
                row.totalWeight += static_cast<double>(duration);
                if (keepsDistinct) {
                    Distinct* entry = &row.distinct[(record.value * 0x9E3779B9U) >> 27];
                    while (entry->count != 0 && entry->value != record.value) {
                        entry = entry == &row.distinct[2 * DISTINCT - 1] ? row.distinct : entry + 1;
                    }
                    entry->value = record.value;
                    ++entry->count;
                    entry->duration += duration;
                }
            }
            for (const Row& row : rows) {
                m_kept += row.weightedSum + static_cast<double>(row.sum + row.minimum + row.maximum);
            }
        });
    }
    double kept() const { return m_kept; }

private:
    struct Distinct {
        std::uint64_t value, count, duration;
    };
    struct Row {
        std::uint64_t last = 0;
        std::uint32_t minimum = UINT32_MAX;
        std::uint32_t maximum = 0;
        std::uint64_t sum = 0;
        std::uint64_t count = 0;
        double weightedSum = 0;
        double totalWeight = 0;
        Distinct distinct[2 * DISTINCT] = {};
    };
    double m_kept = 0;
};

/// A saved collection, and the report from it through the same path as from a live one.
class Replay {
public:
    explicit Replay(const Workload& work)
        : m_stream(pwr::WriterStreamHost::create(m_writers)), m_message(1, 1, 1, "bench", "VALUES"),
          m_withStates(1, 1, keys_i(true)), m_withoutStates(1, 1, keys_i(false)) {
        g_pluginEnvironment->setWriterStream(m_stream);
        for (std::uint32_t row = 0; row < ROWS; ++row) {
            if (row < DESCRIPTORS) {
                m_descriptors.push_back(pwr::DataDescriptorBuilder("d" + std::to_string(row)).build());
            }
            if (row % DESCRIPTORS == 0) {
                m_entity = pwr::EntityHandle::create("e" + std::to_string(row), nullptr);
            }
            m_instances.instances.push_back({m_entity, m_descriptors[row % DESCRIPTORS]});
        }
        m_system.startTSC = 1;
        m_system.twaClockFreq = 1000.0F;
        m_system.platformName = m_system.hostName = m_system.osName = m_system.osType = m_system.osVersion =
            "x";
        write_i(work);
    }
    ~Replay() {
        pwr::WriterStreamHost::destroy(m_stream);
        std::filesystem::remove(FILE_NAME);
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    bench::Nanoseconds report(bool keepsDistinct) {
        std::string config;
        for (const char* key : {"SAMPLE-COUNT", "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE",
                                "APPROXIMATED-RESIDENCY"}) {
            const bool isShown = keepsDistinct && std::string(key) != "SAMPLE-COUNT";
            config += std::string("bench_VALUES_") + key + "_TABLE_VALUE=" + (isShown ? "YES" : "NO") + "\n";
        }
        pwr::WriterInterfaceConfigFileParser::destroy();
        pwr::WriterInterfaceConfigFileParser::instance()->parseText("bench", config);
        pwr::PluginLoader loader;
        loader.loadFile(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins/generic.so");
        for (MetricPlugin* plugin : loader.getPlugins<MetricPlugin>()) {
            plugin->processMetadata(m_message);
            plugin->processMetadata(keepsDistinct ? m_withStates : m_withoutStates);
            plugin->processInstances(m_message, m_instances);
            plugin->initializeCollection(m_system);
        }
        const auto plugins = loader.getPlugins<MetricPlugin>();
        const bench::Nanoseconds taken = bench::timed([&] {
            read_i([&](const CollectionData& reading) { plugins.front()->processMessage(reading); });
            plugins.front()->finalizeCollection(m_last);
        });
        loader.unload();
        return taken;
    }
    bench::Nanoseconds readOnly() {
        return bench::timed([&] { read_i([](const CollectionData&) {}); });
    }
    std::uintmax_t fileSize() const { return std::filesystem::file_size(FILE_NAME); }

private:
    static std::vector<std::pair<std::string, std::string>> keys_i(bool hasStates) {
        std::string states;
        for (std::uint32_t value = 0; value < DISTINCT; ++value) {
            states += (value == 0 ? "" : ",") + std::to_string(value) + "=s" + std::to_string(value);
        }
        std::vector<std::pair<std::string, std::string>> keys{
            {"METRIC-NAME", "values"}, {"CONTAINER-TAG", "VALUES"}, {"METRIC-TYPE", "SampledValue"},
            {"QUANTITY", "Things;x"},  {"SOURCE", "LEVEL"},         {"VALUE-TYPE", "UINT"}};
        if (hasStates) {
            keys.emplace_back("STATES", states);
        }
        return keys;
    }
    void write_i(const Workload& work) {
        std::string error;
        auto writer = pwr::saved::CollectionWriter::create(
            FILE_NAME, pwr::saved::CollectionWriter::Existing::REPLACE, error);
        int result = writer == nullptr ? 1 : 0;
        result = result == 0 ? writer->begin(m_system) : result;
        CollectionData reading;
        for (std::size_t point = 0; result == 0 && point < work.points; ++point) {
            work.fill(point, reading);
            result = writer->append(reading);
        }
        m_last = (work.points + 1) * INTERVAL;
        if (result != 0 || writer->end(m_system) != 0) {
            std::fprintf(stderr, "no file: %s\n", error.c_str());
            std::exit(1);
        }
    }
    template <class Take> void read_i(const Take& take) {
        std::string error;
        const auto reader = pwr::saved::CollectionReader::open(FILE_NAME, error);
        CollectionData reading;
        pwr::saved::SavedInstances added;
        while (reader != nullptr &&
               reader->next(reading, added) == pwr::saved::CollectionReader::Event::READING) {
            take(reading);
        }
    }

    std::set<WriterPlugin*> m_writers;
    WriterStream* m_stream;
    pwr::MsgMetadata m_message;
    pwr::MetricMetadata m_withStates; // without a finite set so many distinct values would be given up
    pwr::MetricMetadata m_withoutStates;
    MessageInstances m_instances;
    std::vector<const pwr::DataDescriptor*> m_descriptors;
    const pwr::EntityHandle* m_entity = nullptr;
    pwr::SystemMetadata m_system;
    std::uint64_t m_last = 0;
};

void decoding(const Workload& work) {
    const std::size_t points = std::min<std::size_t>(work.points, 1000);
    std::vector<std::vector<char>> blocks(1);
    pwr::saved::SampleBlockEncoder encoder;
    CollectionData reading;
    std::vector<std::uint64_t> plain;
    for (std::size_t point = 0; point < points; ++point) {
        work.fill(point, reading);
        encoder.add(reading);
        if (encoder.readings() == POINTS_OF_BLOCK) {
            encoder.finish(blocks.back());
            blocks.emplace_back();
        }
        for (std::uint32_t row = 0; row < ROWS; ++row) {
            plain.push_back(reading.getBits(row));
        }
    }
    blocks.pop_back();
    bench::Interleaved table("a sample decoded into a reading; the limit copies values that lie ready");
    table.add("limit: 8 bytes each, copied by row", points * ROWS, [&] {
        return bench::timed([&] {
            for (std::size_t point = 0; point < points; ++point) {
                reading.clear();
                reading.addAll(std::span(plain).subspan(point * ROWS, ROWS));
            }
        });
    });
    table.add("SampleBlockDecoder", points / POINTS_OF_BLOCK * POINTS_OF_BLOCK * ROWS, [&] {
        return bench::timed([&] {
            pwr::saved::SampleBlockDecoder decoder;
            std::string error;
            for (const auto& block : blocks) {
                decoder.open(block, error);
                while (decoder.next(reading)) {}
            }
        });
    });
    table.report();
}

} // namespace

int main(int argc, char** argv) {
    const double millions = argc > 1 ? std::atof(argv[1]) : 4;
    const Workload work(static_cast<std::size_t>(millions * 1e6));
    decoding(work);

    std::vector<Record> records;
    for (std::size_t point = 0; point < work.points; ++point) {
        for (std::uint32_t row = 0; row < ROWS; ++row) {
            records.push_back({row, work.value(point, row), (point + 1) * INTERVAL});
        }
    }
    Replay replay(work);
    HandWritten limit;
    std::printf("%.2f bytes a sample in the file\n",
                static_cast<double>(replay.fileSize()) / static_cast<double>(work.samples()));
    const int repetitions = millions > 10 ? 1 : 5;
    for (const bool keepsDistinct : {true, false}) {
        bench::Interleaved table(keepsDistinct ? "report with distinct values"
                                               : "report without distinct values");
        table.add("limit: records of 16 bytes", work.samples(),
                  [&] { return limit.run(records, keepsDistinct); });
        table.add("replay of the file", work.samples(), [&] { return replay.report(keepsDistinct); });
        table.add("  of which reading the file", work.samples(), [&] { return replay.readOnly(); });
        table.report(repetitions);
    }
    return limit.kept() > 0 ? 0 : 1;
}
