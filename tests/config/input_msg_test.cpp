// Messages and their operations: triggers, groups, sources, records and dispatch.

#include "common/metadata/msg_metadata.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/plugin_requirement.h"
#include "tests/config/hardware_config_fixture.h"

#include <memory>

using namespace pwr;

namespace {

/// Notes what it is told to do at once.
class NotingCollector : public CollectorPlugin {
public:
    NotingCollector() : CollectorPlugin("noting") {}
    const char* getDescription() const override { return "notes what it is told"; }
    std::vector<std::string> getCollectorTypes() const override { return {"FILE", "NOTE"}; }
    int open(const MsgMetadata&, MessageInstances&) override { return 0; }
    int read(const MsgMetadata&, CollectionData&) override { return 0; }
    int doImmediateRead(Operation* operation, const std::string& argument) override {
        return note_i("read " + operation->getName() + " " + argument);
    }
    int doImmediateWrite(Operation* operation, const std::string& argument) override {
        return note_i("write " + operation->getName() + " " + argument);
    }
    int doImmediateRead(const InputMsg* message,
                        const std::vector<std::pair<std::string, std::string>>& values) override {
        return note_i("read message " + message->getName() + " " + values.front().second);
    }
    int doImmediateWrite(const InputMsg* message) override {
        return note_i("write message " + message->getName());
    }

    std::string notes;

private:
    int note_i(const std::string& text) {
        notes += text + "\n";
        return 7;
    }
};

class InputMsgTest : public HardwareConfigTest {
protected:
    void described(const std::string& lines, const std::string& warnings = "") {
        good("ALL_C_CAPABILITY_COMMAND-LINE_VALUE=c\nALL_C_CAPABILITY_GROUP_VALUE=g\n" + lines, warnings);
    }
    void refused(const std::string& lines, const std::string& before, const std::string& problem) {
        TWConfigFileParser::destroy();
        parser().registerCollectorType("FILE", nullptr);
        parser().registerCollectorType("DEVICE", nullptr);
        bad(lines, before, problem);
    }
    NotingCollector m_collector;
};

TEST_F(InputMsgTest, refusesWhatDoesSomethingElse) {
    InputMsg message("M");
    EXPECT_EQ(TWOpCommand::UNSET, message.getCommand());
    EXPECT_EQ(0, message.addReadTrigger("INIT"));
    EXPECT_EQ(0, message.addReadTrigger("INIT"));
    testing::internal::CaptureStderr();
    EXPECT_EQ(-1, message.addWriteTrigger("INIT"));
    EXPECT_EQ("Commands are not compatible!\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(-1, message.addReadTrigger("POLL"));
    EXPECT_EQ(PWSet{"INIT"}, message.getTriggers());
    EXPECT_EQ(TWOpCommand::READ, message.getCommand());

    // An operation that cannot be written lets no write trigger in, and gets into no message that writes.
    class ReadOnly : public HWOperation {
    public:
        ReadOnly() : HWOperation("readOnly", "FILE") {}
        bool isValidCommand(TWOpCommand command) const override { return command == TWOpCommand::READ; }
    };
    InputMsg reading("R");
    EXPECT_EQ(0, reading.addOperation(new ReadOnly));
    InputMsg writing("W");
    EXPECT_EQ(0, writing.addWriteTrigger("POLL"));
    const auto second = std::make_unique<ReadOnly>();
    testing::internal::CaptureStderr();
    EXPECT_EQ(-1, reading.addWriteTrigger("POLL"));
    EXPECT_EQ(-1, writing.addOperation(second.get()));
    EXPECT_EQ("Commands are not compatible!\nCommands are not compatible!\n",
              testing::internal::GetCapturedStderr());
    EXPECT_TRUE(reading.getTriggers().empty());
    EXPECT_EQ(0U, writing.getOperationCount());
}

TEST_F(InputMsgTest, keepsConstantsInOrder) {
    CONSTANTOperation constants("metric");
    const CONSTANTOperationMetadata* const record = constants.getOperationMetadata();
    for (int i = 40; i > 0; --i) {
        EXPECT_EQ(0, constants.set("K" + std::to_string(i), "v"));
    }
    EXPECT_EQ(40, std::distance(record->begin(), record->end()));
    const std::unique_ptr<CONSTANTOperation> copy(constants.clone());
    EXPECT_EQ(0, copy->set("K0", "v"));
    for (const char* key : {"K40", "K1"}) {
        EXPECT_NE(0, copy->set(key, "w"));
        EXPECT_EQ(std::string("ERROR: key ") + key + " already set!\n", m_log.take());
    }
    EXPECT_EQ("K40", constants.begin()->first);
    EXPECT_EQ(41, std::distance(copy->begin(), copy->end()));
    EXPECT_EQ(40, std::distance(constants.begin(), constants.end()));
    EXPECT_EQ(40U, record->getValues().size());
}

TEST_F(InputMsgTest, namesThePartsOfItsWorkInKeys) {
    described("ALL_C_M_FILE_FIELD.b c=1\nALL_C_M_FILE_PATH=/a\nALL_C_M_FILE_FIELD.a=2\n"
              "ALL_C_M_FILE_PATH.a=/b\nALL_C_M_FILE_WIDTH.a=20\nALL_C_M_FILE_.c=3\nALL_C_M_CONSTANT_K.x=4\n");
    const std::unique_ptr<MsgMetadata> record = messages("X=ALL", "C")[0]->createMsgMetadata();
    ASSERT_EQ(3U, record->getMetaValues().size());
    const OperationMetadata& first = *record->getMetaValues()[0];
    const OperationMetadata& second = *record->getMetaValues()[1];
    EXPECT_EQ("b c FILE M", first.getName() + " " + first.getOperation() + " " + first.getOrgMsgTag());
    EXPECT_EQ((OperationMetadata::ValueList{{"PATH", "/a"}, {".c", "3"}, {"FIELD", "1"}}), first.getValues());
    EXPECT_EQ("a", second.getName());
    EXPECT_EQ(3U, second.getSize());
    EXPECT_EQ((OperationMetadata::ValueList{{".c", "3"}, {"FIELD", "2"}, {"PATH", "/b"}, {"WIDTH", "20"}}),
              second.getValues());
    EXPECT_EQ((OperationMetadata::ValueList{{"K.x", "4"}}), record->getMetaValues()[2]->getValues());
}

TEST_F(InputMsgTest, takesOperationsFromASource) {
    described(
        "ALL_C_S_MSG_READ-WHEN=POLL\nALL_C_S_FILE_PATH=/"
        "a\nALL_C_S_CONSTANT_UNIT=s\nALL_C_S_CONSTANT_SCALE=1\n"
        "ALL_C_M_MSG_SOURCE=S\nALL_C_M_MSG_READ-WHEN=BEGIN\nALL_C_M_CONSTANT_UNIT=m\n"
        "ALL_C_S_CONSTANT_LATE=1\n",
        "WARNING: message ALL_C_S was copied by a group or a source before this line; the copy stays as it "
        "was\n");
    EXPECT_EQ("S:S+S(POLL) M:S+S+M(BEGIN)", describe(messages("X=ALL", "C")));
    const std::unique_ptr<MsgMetadata> record = messages("X=ALL", "C")[1]->createMsgMetadata();
    ASSERT_EQ(2U, record->getMetaValues().size());
    EXPECT_EQ("c g M S FILE", record->getCapName() + " " + *record->getCapGroups().begin() + " " +
                                  record->getMsgName() + " " + record->getMetaValues()[0]->getOrgMsgTag() +
                                  " " + record->getMetaValues()[0]->getOperation());
    EXPECT_EQ(8U, record->getMetaValues()[0]->getSize());
    EXPECT_EQ((OperationMetadata::ValueList{{"UNIT", "m"}, {"SCALE", "1"}}),
              record->getMetaValues()[1]->getValues());

    const auto cannot = [](const char* name) {
        return "message M cannot take the operations of " + std::string(name) + " (rule msgSourceRule)";
    };
    refused("ALL_C_M_MSG_SOURCE=M", "WARNING: CANNOT self-source for message M!\n", cannot("M"));
    refused("ALL_C_M_MSG_SOURCE=S", "WARNING: CANNOT source from non-existant msg S!\n",
            "no message S stands before this line (rule msgSourceRule)");
    refused("ALL_C_S_CONSTANT_K=1\nALL_C_M_MSG_SOURCE=S",
            "WARNING: message S cannot be sourced since it doesn't contain any supported operations!\n",
            cannot("S"));
    refused("ALL_C_S_FILE_K=1\nALL_C_M_CONSTANT_K=1\nALL_C_M_MSG_SOURCE=S",
            "WARNING: CANNOT source to non-empty message M!\n", cannot("S"));
    refused("ALL_C_S_FILE_K=1\nALL_C_G_MSG_GROUP=S\nALL_C_M_MSG_SOURCE=S",
            "WARNING: message S cannot be sourced since it is part of a group!\n", cannot("S"));
}

TEST_F(InputMsgTest, groupsMessages) {
    described("ALL_C_A_FILE_K=1\nALL_C_A_MSG_READ-WHEN=POLL\nALL_C_A_MSG_READ-WHICH-CPU=1\n"
              "ALL_C_B_FILE_K=1\nALL_C_B_MSG_READ-WHEN=POLL\nALL_C_B_MSG_READ-WHICH-CPU=1\n"
              "ALL_C_G_MSG_GROUP=A, B\nALL_C_G_MSG_READ-WHEN=BEGIN\nALL_C_G_CONSTANT_K=1\n");
    EXPECT_EQ("G:A+B+G(BEGIN,POLL)", describe(messages("X=ALL", "C")));
    EXPECT_EQ("1", message().getCPUString());

    TWConfigFileParser::destroy();
    parser().registerCollectorType("FILE", nullptr);
    described("ALL_C_D_FILE_K=1\nALL_C_D_CONSTANT_K=1\nALL_C_A_MSG_GROUP=D, D\nALL_C_B_FILE_K=1\n"
              "ALL_C_B_MSG_GROUP=D\nALL_C_G_MSG_GROUP=A,B\n");
    EXPECT_EQ("G:D+D+B(INIT)", describe(messages("X=ALL", "C"))) << "the same work is carried out once";

    const std::string failed = "WARNING: couldn't append message A to message G!\n";
    const std::string problem = "message A cannot be a part of G (rule msgGroupList)";
    refused("ALL_C_G_MSG_GROUP=G", "told to add a group G to itself?!\n",
            "message G cannot be a part of G (rule msgGroupList)");
    refused("ALL_C_G_MSG_GROUP=A", "WARNING: couldn't get or create a message with name A!\n",
            "no message A stands before this line (rule msgGroupList)");
    refused("ALL_C_A_FILE_K=1\nALL_C_G_DEVICE_K=1\nALL_C_G_MSG_GROUP=A",
            "ERROR appending messages G and A; CANNOT append messages if collectors are different!\n" +
                failed,
            problem);
    const std::string different = "Msg G and msg A have incompatible read capabilities!\n";
    for (const char* lines : {"ALL_C_A_MSG_READ-WHEN=POLL\nALL_C_G_MSG_READ-WHEN=BEGIN\n",
                              "ALL_C_A_MSG_READ-WHEN=TRACEPOINT=t\nALL_C_G_MSG_READ-WHEN=TRACEPOINT=u\n",
                              "ALL_C_A_MSG_WRITE-WHEN=POLL\nALL_C_G_MSG_READ-WHEN=POLL\n",
                              "ALL_C_A_MSG_READ-WHICH-CPU=1\nALL_C_G_FILE_K=1\n"}) {
        refused(std::string(lines) + "ALL_C_G_MSG_GROUP=A", different + failed, problem);
    }
    refused("ALL_C_A_MSG_READ-WHEN=POLL\nALL_C_A_MSG_READ-WHEN-MAX-DETAIL=END\nALL_C_G_MSG_READ-WHEN=POLL\n"
            "ALL_C_G_MSG_GROUP=A",
            "Msg G and msg A have incompatible max-detail read capabilities!\n" + failed, problem);
    refused("ALL_C_A_FILE_K=1\nALL_C_G_FILE_K=1\nALL_C_H_MSG_GROUP=G\nALL_C_G_MSG_GROUP=A",
            "WARNING: message G is part of a group itself and takes no message any more!\n" + failed,
            problem);
}

TEST_F(InputMsgTest, isCarriedOutByItsCollector) {
    described("ALL_C_R_FILE_K=1\nALL_C_W_FILE_K=1\nALL_C_W_MSG_WRITE-WHEN=POLL\nALL_C_N_CONSTANT_K=1\n"
              "ALL_C_E_MSG_ID=1\n",
              "WARNING: message ALL_C_E has no operations\n");
    const std::vector<InputMsg*> all = messages("X=ALL", "C");
    InputMsg& reading = *all[0];
    Operation* const operation = *reading.begin();
    const std::vector<std::pair<std::string, std::string>> values = {{"name", "value"}};
    EXPECT_EQ(-1, Operation::dispatchRead(operation, "x"));
    EXPECT_EQ("ERROR: Trying to do immediate read of operation R with invalid type FILE?!\n", m_log.take());

    EXPECT_EQ(0, parser().registerCollectorType("FILE", &m_collector));
    EXPECT_EQ(7, Operation::dispatchRead(operation, "x"));
    EXPECT_EQ(7, Operation::dispatchWrite(operation, "y"));
    EXPECT_EQ(7, reading.execute(values));
    EXPECT_EQ(7, all[1]->execute(values));
    InputMsg unset("U");
    EXPECT_EQ(0, unset.addOperation(operation->clone()));
    EXPECT_EQ(7, unset.execute(values));
    EXPECT_EQ("read R x\nwrite R y\nread message R value\nwrite message W\nread message U value\n",
              m_collector.notes);
    EXPECT_EQ("", m_log.take());

    const EntityHandle* const none = nullptr;
    Operation plain("P");
    EXPECT_EQ(-1, Operation::dispatchRead(operation, none));
    EXPECT_EQ(-1, Operation::dispatchWrite(operation, none));
    EXPECT_EQ(-1, Operation::dispatchWrite(&plain, "x"));
    EXPECT_EQ(-1, all[2]->execute(values));
    EXPECT_EQ(-1, all[3]->execute(values));
    const std::unique_ptr<Operation> orphan(operation->clone());
    TWConfigFileParser::destroy();
    EXPECT_EQ(-1, Operation::dispatchRead(orphan.get(), "x"));
    EXPECT_EQ(nullptr, TWConfigFileParser::current());
    EXPECT_EQ("WARNING: pwr::Operation::dispatchRead functionality is TODO!\n"
              "WARNING: pwr::Operation::dispatchWrite functionality is TODO!\n"
              "ERROR: Trying to do immediate write of operation P without a valid packet?!\n"
              "ERROR: Trying to do immediate read/write of operation N without a valid packet?!\n"
              "WARNING: Message E has no operations defined!\n"
              "ERROR: Trying to do immediate read of operation R without a valid parser?!\n",
              m_log.take());
}

TEST_F(InputMsgTest, knowsWhoServesATypeOnceItsModuleIsLoaded) {
    NotingCollector other;
    const HWOperation file("a", "FILE");
    const HWOperation note("b", "NOTE");
    EXPECT_EQ(0, parser().registerCollectorType("NOTE", &m_collector));
    EXPECT_FALSE(file.hasCollectorOf(note));
    EXPECT_EQ(0, parser().registerCollectorType("FILE", &m_collector));
    EXPECT_TRUE(file.hasCollectorOf(note));
    EXPECT_EQ(1, parser().registerCollectorType("FILE", &other));
    for (const char* word : {"", "A_B", "MSG", "CONSTANT", "A:B"}) {
        EXPECT_EQ(1, parser().registerCollectorType(word, nullptr)) << word;
    }
    EXPECT_TRUE(file.isOperationSuitableFor(&m_collector));
    EXPECT_FALSE(HWOperation("c", "DEVICE").isOperationSuitableFor(&m_collector));
    EXPECT_TRUE(CONSTANTOperation("d").isOperationSuitableFor(&m_collector));
}

} // namespace
