#pragma once

#include "common/metadata/collector_metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collection_data.h"
#include "common/saved/collection_reader.h"
#include "common/saved/collection_writer.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace tests {

using pwr::saved::CollectionReader;
using pwr::saved::CollectionWriter;

inline constexpr pw_u64_t c_second = 1'000'000; // ticks of the fixture's clock of 1 MHz

/// What a reader gave, as text, so that it can be compared at a glance.
struct Told {
    std::string error; ///< of opening; nothing else then
    std::vector<std::string> readings;
    std::vector<pw_u8_t> gaps; ///< 1 where the reading of the same number carries the flag
    std::string instances;     ///< "N+M": M of them behind N readings
    std::string facts;         ///< all that is known besides, counted
    pwr::saved::DamageReport damage;
    CollectionReader::Totals totals;
};

inline std::string textOf(const CollectionData& reading) {
    const tw_driver_msg& header = reading.header();
    std::string text = std::to_string(header.timestamp) + " #" + std::to_string(header.id.message) + ":";
    for (std::size_t i = 0; i < reading.size(); ++i) {
        text += reading.isText(i)      ? " " + std::string(reading.getText(i))
                : reading.isPresent(i) ? " " + std::to_string(reading.getBits(i))
                                       : " -";
    }
    return text;
}

inline std::string factsOf(CollectionReader& reader) {
    std::string facts = reader.system() == nullptr ? "no system" : reader.system()->hostName;
    for (const std::size_t count : {reader.declarations().size(), reader.instances().size(),
                                    reader.configurations().size(), reader.clocks().size()}) {
        facts += " " + std::to_string(count);
    }
    return facts;
}

inline Told readAll(CollectionReader& reader) {
    Told told;
    told.facts = factsOf(reader);
    CollectionData reading;
    pwr::saved::SavedInstances added;
    for (;;) {
        switch (reader.next(reading, added)) {
        case CollectionReader::Event::READING:
            told.gaps.push_back((reading.header().flags & tw_driver_msg_flag::GAP) != 0 ? 1 : 0);
            told.readings.push_back(textOf(reading));
            break;
        case CollectionReader::Event::INSTANCES:
            told.instances +=
                std::to_string(told.readings.size()) + "+" + std::to_string(added.instances.size()) + " ";
            break;
        case CollectionReader::Event::END:
            told.damage = reader.damage();
            told.totals = reader.totals();
            return told;
        }
    }
}

class CollectionTest : public testing::Test {
protected:
    CollectionTest()
        : m_path((std::filesystem::path(testing::TempDir()) /
                  (std::string("kr_saved_") + testing::UnitTest::GetInstance()->current_test_info()->name() +
                   ".twc"))
                     .string()),
          m_message(1, 1, 7, "cap", "MSG") {
        std::filesystem::remove(m_path);
        m_system.platformName = m_system.hostName = m_system.osName = m_system.osType = m_system.osVersion =
            "x";
        m_system.twaClockFreq = 1.0F;
        m_system.startTSC = 5 * c_second;
        m_system.startTimeval = 1'000'000'000;
        m_system.stopTSC = 99 * c_second;
        m_instances.instances.push_back({pwr::EntityHandle::create("disk", nullptr), nullptr});
    }
    ~CollectionTest() override { std::filesystem::remove(m_path); }

    static CollectionData reading(pw_u64_t tick, pw_u64_t value) {
        CollectionData data;
        data.header().timestamp = tick;
        data.header().id = {1, 1, 7};
        data.add(value);
        data.addText("t" + std::to_string(value));
        data.addMissing();
        return data;
    }

    std::unique_ptr<CollectionWriter> begun() {
        std::string error;
        auto writer = CollectionWriter::create(m_path, CollectionWriter::Existing::REPLACE, error);
        EXPECT_EQ("", error);
        writer->addConfiguration("tables", "all");
        writer->addDeclaration(m_message);
        writer->addInstances(m_system, m_message, m_instances);
        EXPECT_EQ(0, writer->begin(m_system));
        EXPECT_EQ(0, writer->addMoment(m_system.startTSC, m_system.startTimeval,
                                       {{"u", "clock", 1, 2, "d", "default", 3, 4}}));
        return writer;
    }
    /// Two readings a second.
    static void collect(CollectionWriter& writer, pw_u64_t firstSecond, pw_u64_t seconds) {
        for (pw_u64_t i = 0; i < 2 * seconds; ++i) {
            const pw_u64_t tick = firstSecond * c_second + i * c_second / 2;
            EXPECT_EQ(0, writer.append(reading(tick, tick / 1000)));
            EXPECT_EQ(0, writer.settle(tick + c_second / 2));
        }
    }
    /// A closed collection with all kinds of blocks, as bytes.
    std::vector<char> collection(pw_u64_t seconds) {
        const auto writer = begun();
        collect(*writer, 6, seconds);
        writer->addInstances(m_system, m_message, m_instances, true);
        collect(*writer, 6 + seconds, 1);
        writer->addNotes({"a note"});
        EXPECT_EQ(0, writer->end(m_system)) << writer->error();
        return bytes();
    }
    std::vector<char> bytes() const {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::unique_ptr<CollectionReader> opened(const std::vector<char>& bytes, std::string& error) {
        return CollectionReader::open(pwr::saved::ByteSource::ofMemory(bytes), "memory", error);
    }
    static Told told(const std::vector<char>& bytes) {
        std::string error;
        const auto reader = opened(bytes, error);
        if (!reader) {
            Told nothing;
            nothing.error = error;
            return nothing;
        }
        return readAll(*reader);
    }

    pwr::LogCapture m_log; // the records here have no processor part
    std::string m_path;
    pwr::SystemMetadata m_system;
    pwr::MsgMetadata m_message;
    MessageInstances m_instances;
};

} // namespace tests
