#include "common/metadata/system_metadata.h"
#include "tests/support/log_capture.h"
#include "tests/support/table_text.h"

#include <gtest/gtest.h>

#include <memory>

using pwr::LogCapture;
using pwr::WriterStreamHost;
using tests::CapturingWriter;
using tests::TableCapture;

namespace {

/// A message that claims a kind it is not.
class Impostor : public pwr::WriterMessage {
public:
    explicit Impostor(unsigned kind) : m_kind(kind) {}
    pwr::MessageType getMessageType() const override { return static_cast<pwr::MessageType>(m_kind); }

private:
    unsigned m_kind;
};

/// A table without a state of its own.
class DerivedTable : public pwr::TableMessage {
public:
    explicit DerivedTable(const pwr::TableMessage* source) : TableMessage(source) {}
};

class RefusingWriter : public WriterPlugin {
public:
    RefusingWriter() : WriterPlugin("refusing") {}
    const char* getDescription() const override { return ""; }
    int flushResults() override {
        ++flushes;
        return 1;
    }
    int flushes = 0;
    int metrics = 0;

private:
    int writeMessage(const pwr::Metric&) override {
        ++metrics;
        return 1;
    }
    int writeMessage(const pwr::TableMessage&) override { return 1; }
};

TEST(WriterStream, deliversEachKindToItsOperation) {
    TableCapture capture;
    pwr::IdMessage ids;
    pwr::SystemMetadata metadata;
    pwr::SystemMessage system(&metadata);
    pwr::MetricContainerInfoMessage info;
    info.setMetricFeatureTag("f");
    info.setMetricContainerTag("c");
    Impostor unknown(6);
    Impostor text(2);
    for (pwr::WriterMessage* message :
         std::initializer_list<pwr::WriterMessage*>{&ids, &system, &info, &unknown, &text}) {
        EXPECT_EQ(0, capture.stream().pushMessage(*message));
    }
    EXPECT_EQ(0, capture.stream().pushTextMessage("x"));
    EXPECT_EQ((std::vector<std::string>{"ids: 0", "system", "container: f/c", "text: x"}),
              capture.writer.messages);
    Impostor table(0);
    EXPECT_EQ(1, capture.stream().pushMessage(table));
    EXPECT_TRUE(capture.tables().empty()) << "what is no table is handed to nobody";
}

TEST(WriterStream, tablesAreEmptiedByDeliveryAlsoWithoutPlugins) {
    std::set<WriterPlugin*> plugins;
    WriterStream* const stream = WriterStreamHost::create(plugins);
    pwr::TableMessage table("t", nullptr);
    table.addField("n", pwr::DataType::INT, true);
    table.createTable();
    table.setFieldValueAt(nullptr, 0, pwr::Data(std::int64_t{1}));
    EXPECT_EQ(0, stream->pushMessage(table));
    EXPECT_TRUE(table.validBegin() == table.validEnd());
    EXPECT_EQ(1U, table.getSharedFieldCount());

    RefusingWriter
        late; // the stream looks at the host's set, and a plug-in's answer to a message does not count
    plugins.insert(&late);
    EXPECT_EQ(0, stream->pushMessage(table));
    const DerivedTable derived(&table);
    DerivedTable empty(&derived);
    LogCapture log;
    EXPECT_EQ(0, stream->pushMessage(empty));
    EXPECT_EQ("WARNING: Can't reset table data before table is created\n", log.text());
    EXPECT_EQ(1, WriterStreamHost::flush(*stream));
    EXPECT_EQ(1, late.flushes);
    plugins.clear();
    EXPECT_EQ(0, WriterStreamHost::flush(*stream));
    WriterStreamHost::destroy(stream);
}

TEST(WriterStream, metricGoesToAllAlthoughOneRefuses) {
    RefusingWriter writers[2];
    std::set<WriterPlugin*> plugins{&writers[0], &writers[1]};
    WriterStream* const stream = WriterStreamHost::create(plugins);
    LogCapture log;
    EXPECT_EQ(1, stream->pushMessage(static_cast<const pwr::Metric*>(nullptr)));
    EXPECT_EQ("WARNING: Error pushing null Metric object to Writer stream.\n", log.take());
    // Only its address travels: no writer here looks into the metric.
    alignas(16) const unsigned char place[16] = {};
    const auto* metric = reinterpret_cast<const pwr::Metric*>(place);
    EXPECT_EQ(1, stream->pushMessage(metric));
    EXPECT_EQ(1, writers[0].metrics);
    EXPECT_EQ(1, writers[1].metrics);
    const std::string one = "WARNING: Unable to push Metric object to writer plugin\n";
    EXPECT_EQ(one + one, log.text());
    plugins.clear();
    EXPECT_EQ(0, stream->pushMessage(metric));
    WriterStreamHost::destroy(stream);
}

TEST(WriterStream, servesTheSetAsItIsAtEveryPush) {
    alignas(16) const unsigned char place[16] = {};
    const auto* metric = reinterpret_cast<const pwr::Metric*>(place);
    RefusingWriter writers[4];
    std::set<WriterPlugin*> plugins{&writers[0], &writers[1], &writers[2]};
    WriterStream* const stream = WriterStreamHost::create(plugins);
    const auto counts = [&] {
        stream->pushMessage(metric);
        std::string text;
        for (const RefusingWriter& writer : writers) {
            text += std::to_string(writer.metrics);
        }
        return text;
    };
    EXPECT_EQ("1110", counts());
    plugins.erase(&writers[1]); // as many as before, the same first one
    plugins.insert(&writers[3]);
    EXPECT_EQ("2121", counts());
    plugins.insert(&writers[1]); // now every living writer is in the set
    EXPECT_EQ("3232", counts());
    EXPECT_EQ("4343", counts());
    {
        RefusingWriter late;
        plugins.insert(&late);
        EXPECT_EQ("5454", counts());
        EXPECT_EQ(1, late.metrics);
        plugins.erase(&late);
    }
    plugins.erase(&writers[0]);
    EXPECT_EQ("5565", counts());
    WriterStreamHost::destroy(stream);
}

TEST(WriterStream, textGoesThroughTheEnvironmentsStream) {
    std::set<WriterPlugin*> none;
    WriterStream* const other = WriterStreamHost::create(none);
    {
        TableCapture capture;
        EXPECT_EQ(0, other->pushTextMessage("found its way"));
        EXPECT_EQ(std::vector<std::string>{"text: found its way"}, capture.writer.messages);
    }
    EXPECT_EQ(nullptr, g_pluginEnvironment->getWriterStream()) << "destroy() takes the stream out";
    EXPECT_THROW(other->pushTextMessage("lost"), const char*);
    WriterStreamHost::destroy(other);
}

TEST(WriterStream, tableClassesComeFromCapabilitiesAndHost) {
    CapturingWriter writer;
    auto capability = std::make_unique<PluginCapability>("c", "");
    capability->addGroup("table-class:trace");
    capability->addGroup("something else");
    ASSERT_EQ(0, writer.addCapability(capability.get()));
    static_cast<void>(capability.release());
    EXPECT_EQ(1, writer.addCapability(nullptr));
    EXPECT_EQ(std::set<pwr::TableClass>{pwr::TableClass::TRACE}, writer.getTableClasses());

    std::set<WriterPlugin*> plugins;
    WriterStream* const stream = WriterStreamHost::create(plugins);
    EXPECT_FALSE(stream->isSupportedTableClass(pwr::TableClass::TRACE));
    EXPECT_EQ(0, WriterStreamHost::addSupportedTableClass(*stream, pwr::TableClass::TRACE));
    EXPECT_TRUE(stream->isSupportedTableClass(pwr::TableClass::TRACE));
    WriterStreamHost::destroy(stream);
}

} // namespace
