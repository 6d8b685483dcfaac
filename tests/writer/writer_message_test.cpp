#include "common/metadata/system_metadata.h"
#include "common/writer/table_message.h"
#include "tests/support/table_text.h"

#include <gtest/gtest.h>

using tests::TableCapture;

namespace {

TEST(WriterMessage, idsCountEveryKindAndEveryCopy) {
    const pwr::IdMessage first;
    pwr::IdMessage copy(first);
    const pwr::TableMessage table("t", nullptr);
    EXPECT_EQ(first.getMessageId() + 1, copy.getMessageId());
    EXPECT_EQ(first.getMessageId() + 2, table.getMessageId());
    copy = first;
    EXPECT_EQ(first.getMessageId(), copy.getMessageId()) << "assignment copies the id";
}

TEST(WriterMessage, parentsAndContainerIdTravelWithCopies) {
    pwr::IdMessage message;
    EXPECT_FALSE(message.isChildOf(0));
    message.addParentMessage(7);
    message.addParentMessage(7);
    EXPECT_EQ(0, message.setMetricContainerId(3));
    const pwr::IdMessage copy(message);
    EXPECT_TRUE(copy.isChildOf(7));
    EXPECT_FALSE(copy.isChildOf(8));
    EXPECT_EQ(3U, copy.getMetricContainerId());
}

TEST(WriterMessage, textIsPushedAtEverySet) {
    TableCapture capture;
    pwr::TextMessage text;
    pwr::HeaderTextMessage header;
    EXPECT_EQ(0, text.setMessage("one"));
    EXPECT_EQ(0, text.setMessage("two"));
    header.setMessage("head");
    EXPECT_EQ((std::vector<std::string>{"text: one", "text: two", "header: head"}), capture.writer.messages);
}

TEST(WriterMessage, textsWithoutStreamThrowTheText) {
    for (const bool isHeader : {false, true}) {
        try {
            isHeader ? static_cast<void>(pwr::HeaderTextMessage()) : static_cast<void>(pwr::TextMessage());
            ADD_FAILURE() << "nothing was thrown";
        } catch (const char* text) {
            EXPECT_STREQ("ERROR: Writer stream is not initialized", text);
        }
    }
}

TEST(WriterMessage, containerInfoKeepsWhatItIsGiven) {
    pwr::MetricContainerInfoMessage info;
    EXPECT_EQ("", info.getContainerHeader());
    info.setContainerHeader("");
    EXPECT_EQ("\n\n", info.getContainerHeader());
    info.setContainerHeader("Cores");
    EXPECT_EQ("=====\nCores\n=====", info.getContainerHeader());
    const pwr::TableMessage first("a", nullptr);
    const pwr::TableMessage second("b", nullptr);
    info.addStaticTableRowInfo(&first);
    info.addStaticTableRowInfo(&second);
    EXPECT_EQ(&second, info.getStaticTableRowInfo());
    EXPECT_EQ(pwr::TimelineTableType::NONE, info.getTimelineTableToDisplay());
    EXPECT_EQ(nullptr, info.getTextInfo());
}

TEST(TextNotes, keepsEachPlaceInOrder) {
    pwr::TextNotes notes;
    std::vector<std::string> out{"kept"};
    EXPECT_EQ(0, notes.addPostTableNote("after"));
    EXPECT_FALSE(notes.getPreTableNotes(out));
    EXPECT_EQ(std::vector<std::string>{"kept"}, out);
    notes.addPreTableNote("b");
    notes.addPreTableNote("a");
    EXPECT_TRUE(notes.getPreTableNotes(out));
    EXPECT_EQ((std::vector<std::string>{"b", "a"}), out);
}

} // namespace
