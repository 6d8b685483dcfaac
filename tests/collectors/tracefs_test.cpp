#include "tests/collectors/collector_fixture.h"
#include "tests/support/trace_pages.h"

#include <gmock/gmock.h>

namespace {

using tests::TracePages;

constexpr std::size_t PAGE = 256;
constexpr std::uint64_t LEAVING = 0xFFFFFFFF;
const std::string EVENTS = "/sys/kernel/tracing/events/";

std::string format(unsigned id, const std::vector<std::string>& fields) {
    std::string text = "name: any\nID: " + std::to_string(id) +
                       "\nformat:\n\tfield:unsigned short common_type;\toffset:0;\tsize:2;\tsigned:0;\n\n";
    for (const std::string& field : fields) {
        text += "\tfield:" + field + "\n";
    }
    return text + "\nprint fmt: \"state=%lu\", REC->state\n";
}

/// A change of a processor's state, as the kernel records it.
std::string idle(std::uint64_t state, std::uint64_t processor) {
    return TracePages::eventHead(5) + TracePages::number(state, 4) + TracePages::number(processor, 4);
}
/// An interrupt with a name that stands behind its fields.
std::string interrupt(const std::string& name) {
    return TracePages::eventHead(300) + TracePages::number(24, 4) +
           TracePages::number(16 | (name.size() + 1) << 16U, 4) + name + '\0';
}
std::string soft(std::uint64_t vector) {
    return TracePages::eventHead(301) + TracePages::number(vector, 4);
}

class TracefsTest : public tests::CollectorFixture {
protected:
    TracefsTest() : m_pages{TracePages(PAGE), TracePages(PAGE)} {}

    /// A machine of two processors with three tracepoints, and the pages that were made so far.
    void loadPages(const std::string& more = "") {
        loadEntries(fileEntry(EVENTS + "header_page", TracePages::layout(PAGE)) +
                        fileEntry(EVENTS + "power/cpu_idle/format",
                                  format(5, {"u32 state;\toffset:8;\tsize:4;\tsigned:0;",
                                             "u32 cpu_id;\toffset:12;\tsize:4;\tsigned:0;"})) +
                        fileEntry(EVENTS + "irq/irq_handler_entry/format",
                                  format(300, {"int irq;\toffset:8;\tsize:4;\tsigned:1;",
                                               "__data_loc char[] name;\toffset:12;\tsize:4;\tsigned:0;"})) +
                        fileEntry(EVENTS + "irq/softirq_entry/format",
                                  format(301, {"unsigned int vec;\toffset:8;\tsize:4;\tsigned:0;"})) +
                        fileEntry("/sys/kernel/tracing/per_cpu/cpu0/trace_pipe_raw", m_pages[0].bytes()) +
                        fileEntry("/sys/kernel/tracing/per_cpu/cpu1/trace_pipe_raw", m_pages[1].bytes()) +
                        more,
                    "tracefs");
    }
    static std::unique_ptr<pwr::MsgMetadata> traced(const std::vector<std::string>& names, const Keys& keys,
                                                    const Keys& constants = {}, unsigned number = 1) {
        auto message = makeMessage(keys, constants, number);
        for (const std::string& name : names) {
            message->addTracepointName(name);
        }
        return message;
    }
    static std::unique_ptr<pwr::MsgMetadata> idleMessage(Keys more = {}, unsigned number = 1) {
        more.insert(more.begin(), {{"FIELD", "state"}, {"CPU-FIELD", "cpu_id"}, {"LEAVING", "4294967295"}});
        return traced({"power:cpu_idle"}, more, {}, number);
    }
    /// "tick entity=value" for each record, with "!" in front of what comes after a gap.
    std::string drain(const pwr::MsgMetadata& message, std::uint64_t until = UINT64_MAX) {
        std::vector<CollectionData> records;
        EXPECT_EQ(0, plugin().drain(message, until, records));
        std::string text;
        for (const CollectionData& record : records) {
            EXPECT_EQ(1U, record.size());
            const auto* entity = m_instances.instances.at(record.header().first_instance).entity;
            text += (text.empty() ? "" : " | ");
            text += (record.header().flags & tw_driver_msg_flag::GAP) != 0 ? "!" : "";
            text += std::to_string(record.header().timestamp) + " " + entity->getName() + "=";
            text += record.isText(0) ? std::string(record.getText(0)) : std::to_string(record.getBits(0));
        }
        return text;
    }
    std::string openAndDrain(const pwr::MsgMetadata& message) {
        return plugin().open(message, m_instances) == 0 ? drain(message)
                                                        : m_instances.reason + " | " + m_instances.fix;
    }
    std::vector<std::string> closeAndNote(const pwr::MsgMetadata& message) {
        plugin().close(message);
        return plugin().takeNotes();
    }

    std::array<TracePages, 2> m_pages;
};

TEST_F(TracefsTest, eventsOfAllProcessorsComeInOrderOfTimeAndNotTwice) {
    m_pages[0].event(2000, idle(1, 0));
    m_pages[0].event(2000, idle(LEAVING, 0)); // at one moment with the one before
    m_pages[0].event(2500, idle(2, 1));       // told by another processor
    m_pages[1].event(2100, idle(1, 1));
    m_pages[1].event(2400, idle(LEAVING, 1));
    m_pages[1].event(2400, idle(1, 7)); // nobody knows this processor
    loadPages();
    const auto message = idleMessage();
    ASSERT_EQ(0, plugin().open(*message, m_instances)) << m_instances.reason;
    EXPECT_EQ("", drain(*message, 2000));
    EXPECT_EQ("2000 Thread_0=1 | 2001 Thread_0=4294967295 | 2100 Thread_1=1", drain(*message, 2400));
    EXPECT_EQ("", drain(*message, 2400));
    EXPECT_EQ("2400 Thread_1=4294967295 | 2500 Thread_1=2", drain(*message, 9000));
    EXPECT_THAT(closeAndNote(*message),
                testing::ElementsAre(testing::HasSubstr("1 events of processors that were offline"),
                                     "Traced events: 6, none lost"));
    EXPECT_THAT(plugin().takeNotes(), testing::IsEmpty());
    std::vector<CollectionData> records;
    EXPECT_EQ(1, plugin().drain(*message, 9999, records));
}

TEST_F(TracefsTest, everyKindOfEntryIsUnderstood) {
    m_pages[0].event(2000, idle(1, 0));
    m_pages[0].event(2000 + (std::uint64_t{1} << 30U), idle(2, 0)); // more time than an event holds
    m_pages[0].event(2001 + (std::uint64_t{1} << 30U),
                     idle(3, 0) + std::string(120, 'x')); // longer than its head says
    m_pages[0].endPage();
    m_pages[0].begin(std::uint64_t{3} << 30U);
    m_pages[0].entry(29, 1); // taken back: 8 bytes that stand for nothing
    m_pages[0].raw(TracePages::number(8, 4) + std::string(4, 'x'));
    m_pages[0].entry(31, 9); // the time in full
    m_pages[0].raw(TracePages::number(std::uint64_t{5} << 3U, 4));
    m_pages[0].entry(4, 1);
    m_pages[0].raw(idle(4, 0));
    m_pages[0].entry(29, 0); // nothing follows
    m_pages[0].raw(std::string(8, '\xFF'));
    loadPages();
    EXPECT_EQ("2000 Thread_0=1 | 1073743824 Thread_0=2 | 1073743825 Thread_0=3 | 5368709130 Thread_0=4",
              openAndDrain(*idleMessage()));
}

TEST_F(TracefsTest, whatWasLostIsMarkedAndCounted) {
    m_pages[0].event(2000, idle(1, 0));
    m_pages[0].lose(7);
    m_pages[0].event(3000, idle(2, 0));
    m_pages[0].event(3500, idle(3, 0));
    m_pages[1].event(2900, idle(1, 1));
    loadPages();
    const auto message = idleMessage();
    EXPECT_EQ("2000 Thread_0=1 | 2900 Thread_1=1 | !3000 Thread_0=2 | 3500 Thread_0=3",
              openAndDrain(*message));
    EXPECT_THAT(closeAndNote(*message), testing::ElementsAre("Traced events: 4; lost: 7 (processor 0: 7)"));
}

TEST_F(TracefsTest, aDamagedPageEndsAtItsDamage) {
    const std::string zero(4, '\0');
    const std::vector<std::string> damages = {
        TracePages::number(28 | 1U << 5U, 4) + "xxxx",            // an event longer than the page
        TracePages::number(1U << 5U, 4),                          // a long one without room for its length
        TracePages::number(1U << 5U, 4) + zero,                   // shorter than its length
        TracePages::number(1U << 5U, 4) + std::string(4, '\xFF'), // longer than memory
        TracePages::number(30 | 1U << 5U, 4),                     // half a time
    };
    for (std::size_t i = 0; i < damages.size(); ++i) {
        m_pages[0].event(2000 + i, idle(i, 0));
        m_pages[0].raw(damages[i]);
        m_pages[0].endPage();
    }
    m_pages[0].event(3000, idle(9, 0));
    loadPages();
    const auto message = idleMessage();
    EXPECT_EQ("2000 Thread_0=0 | 2001 Thread_0=1 | 2002 Thread_0=2 | 2003 Thread_0=3 | 2004 Thread_0=4 | "
              "3000 Thread_0=9",
              openAndDrain(*message));
    EXPECT_THAT(closeAndNote(*message),
                testing::Contains(testing::HasSubstr("Damaged pages of the trace: 5")));
}

TEST_F(TracefsTest, textsAreTheNamesOfEventsAndWhatTheyTell) {
    m_pages[0].event(2000, interrupt("disk"));
    m_pages[0].event(2100, soft(1));
    m_pages[1].event(2200, soft(12));
    m_pages[1].event(2300, idle(1, 1)); // nobody asked
    loadPages();
    const Keys text = {{"RAW-TYPE", "STRING"}};
    const std::vector<std::string> names = {"irq:irq_handler_entry", "irq:softirq_entry",
                                            "irq:not_in_this_kernel"};
    const auto named = traced(names, {{"FIELD", "name,vec"}, {"NAMES", "1=TIMER"}}, text, 1);
    const auto plain = traced(names, {{"ENTITY", "SYSTEM"}, {"WIDTH", "8"}}, text, 2);
    MessageInstances ofProcessors;
    ASSERT_EQ(0, plugin().open(*plain, m_instances)) << m_instances.reason;
    ASSERT_EQ(0, plugin().open(*named, ofProcessors)) << ofProcessors.reason;
    EXPECT_EQ("2000 SYSTEM=irq_handler_entry | 2100 SYSTEM=softirq_entry | 2200 SYSTEM=softirq_entry",
              drain(*plain));
    plugin().close(*plain);
    m_instances = ofProcessors;
    EXPECT_EQ("2000 Thread_0=irq_handler_entry disk | 2100 Thread_0=softirq_entry TIMER | "
              "2200 Thread_1=softirq_entry 12",
              drain(*named))
        << "what was recorded while another message was closed is not lost";
}

TEST_F(TracefsTest, theTwoWitnessesAreCompared) {
    const std::string usage = "/sys/devices/system/cpu/cpu";
    m_pages[0].event(2000, idle(1, 0));
    m_pages[0].event(2100, idle(LEAVING, 0));
    for (unsigned i = 0; i < 20; ++i) {
        m_pages[1].event(2000 + i, idle(i % 2 == 0 ? LEAVING : 1, 1));
    }
    loadPages("line " + usage + "0/cpuidle/state0/usage 10\nline " + usage +
              "0/cpuidle/state1/usage 5\nline " + usage +
              "1/cpuidle/state1/usage 7\nline /names/state0 POLL\nline /names/state1 C1\n@5000\nline " +
              usage + "0/cpuidle/state0/usage 500\nline " + usage + "0/cpuidle/state1/usage 6\n");
    const auto message = idleMessage({{"WITNESS", usage + "{cpu}/cpuidle/state{state}/usage"},
                                      {"STATES", "4294967295=active,0=polling,3=idle"},
                                      {"STATES-FILE", "/names/state{state}"}});
    m_clock.now = 1000;
    ASSERT_EQ(0, plugin().open(*message, m_instances)) << m_instances.reason;
    EXPECT_EQ("4294967295=active,0=POLL,1=C1", m_instances.states);
    m_clock.now = 5000;
    const std::vector<std::string> notes = closeAndNote(*message);
    ASSERT_EQ(3U, notes.size());
    EXPECT_THAT(notes[0],
                testing::HasSubstr("(processor 0: 1 traced, 491 counted). The counters are the better"));
    EXPECT_THAT(notes[1], testing::HasSubstr("(processor 1: 10 traced, 0 counted). The trace is the better"));
}

TEST_F(TracefsTest, whatCannotBeTracedHasAReason) {
    loadPages();
    struct Case {
        std::vector<std::string> names;
        Keys keys;
        const char* seen;
    };
    for (const Case& c : {
             Case{{"power:cpu_idle"}, {{"FIELD", "state"}}, "available"},
             {{"power:cpu_idle"}, {{"FEILD", "state"}}, "invalid: .*FEILD.*"},
             {{"power:cpu_idle"}, {}, "invalid: .*FIELD.*a field of the event is needed.*"},
             {{"power:cpu_idle"},
              {{"FIELD", "level"}},
              "absent: tracepoint power:cpu_idle: .*no field level"},
             {{"power:cpu_idle"}, {{"FIELD", "state"}, {"CPU-FIELD", "cpu"}}, "absent: .*no field cpu"},
             {{"power:cpu_idle"}, {{"FIELD", "state"}, {"LEAVING", "x"}}, "invalid: .*expected a number"},
             {{"power:cpu_idle"}, {{"FIELD", "state"}, {"NAMES", "1"}}, "invalid: .*expected NUMBER=NAME.*"},
             {{"power:cpu_idle"},
              {{"FIELD", "state"}, {"ENTITY", "{net}"}},
              "invalid: .*expected .cpu. or SYSTEM"},
             {{"power:cpu_idle"}, {{"FIELD", "state"}, {"PATH", "x"}}, "invalid: .*must start with.*"},
             {{"power:cpu_idle"}, {{"FIELD", "state"}, {"PATH", "/none/cpu{cpu}"}}, "absent"},
             {{"power"}, {{"FIELD", "state"}}, "invalid: .*expected SYSTEM:EVENT.*"},
             {{"a/b:c"}, {{"FIELD", "state"}}, "invalid: .*expected SYSTEM:EVENT.*"},
             {{}, {{"FIELD", "state"}}, "invalid: .*must be TRACEPOINT=.*"},
             {{"x:y"}, {{"FIELD", "state"}}, "absent: the kernel has no tracepoint x:y"},
         }) {
        EXPECT_THAT(availability(*traced(c.names, c.keys)),
                    testing::ContainsRegex(std::string("^") + c.seen + "$"));
    }
    const auto missing = traced({"x:y"}, {{"FIELD", "state"}});
    EXPECT_EQ("message MSG: the kernel has no tracepoint x:y | ", openAndDrain(*missing));
    m_data.clear();
    EXPECT_EQ(1, plugin().read(*missing, m_data)) << "nothing is there to be read";
}

} // namespace
