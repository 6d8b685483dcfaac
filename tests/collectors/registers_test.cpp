#include "tests/collectors/collector_fixture.h"

namespace {

class RegistersTest : public tests::CollectorFixture {
protected:
    RegistersTest() {
        // Two packages of one core with two threads each; processor 1 is offline.
        setTopology("0 0 0 0 -1 -1\n1 0 0 0 -1 -1\n2 1 0 0 -1 -1\n3 1 0 0 -1 -1\n");
        loadEntries(fileEntry("/dev/cpu/0/msr", binary({100, 0xFFFFFFFF80000001, 0x8000}) + "x") +
                        "fail /dev/cpu/1/msr no-answer\n" + fileEntry("/dev/cpu/2/msr", binary({300, 0, 0})) +
                        fileEntry("/dev/cpu/3/msr", binary({400, 0, 0})) +
                        "fail /denied/0/msr denied\nfail /silent/0/msr no-answer\n",
                    "registers");
    }
    std::string readKeys(const Keys& operation, const Keys& constants = {}) {
        m_message = makeMessage(operation, constants, 7);
        return openAndRead(*m_message);
    }
    std::unique_ptr<pwr::MsgMetadata> m_message;
};

TEST_F(RegistersTest, bitsOfTheProcessorsRegisters) {
    struct Case {
        Keys operation, constants;
        std::string seen;
    };
    for (const Case& c : {
             Case{{{"REGISTER", "0"}}, {}, "Thread_0=100 Thread_1=- Thread_2=300 Thread_3=400"},
             {{{"REGISTER", "0"}}, {{"ENTITY", "{package}"}}, "Package_0=100 Package_1=300"},
             {{{"REGISTER", "0x8"}, {"PATH", "/dev/cpu/0/msr"}}, {}, "SYSTEM=18446744071562067969"},
             {{{"REGISTER", "8"}, {"PATH", "/dev/cpu/0/msr"}, {"WIDTH", "32"}},
              {{"SOURCE", "COUNTER"}},
              "SYSTEM=2147483649"},
             {{{"REGISTER", "16"}, {"PATH", "/dev/cpu/0/msr"}, {"BIT-RANGE", "12,15"}}, {}, "SYSTEM=8"},
             {{{"REGISTER", "16"}, {"PATH", "/dev/cpu/0/msr"}, {"BIT-RANGE", "12,15"}},
              {{"RAW-TYPE", "INT"}},
              "SYSTEM=18446744073709551608"},
             {{{"REGISTER", "16"}, {"PATH", "/dev/cpu/0/msr"}, {"BIT-RANGE", "12,15"}},
              {{"VALUE-TYPE", "REAL"}},
              "SYSTEM=" + std::to_string(std::bit_cast<std::uint64_t>(8.0))},
         }) {
        EXPECT_EQ(c.seen, readKeys(c.operation, c.constants));
    }
    plugin().close(*m_message);
    EXPECT_EQ("nothing read", read(*m_message));
}

TEST(RegistersOfAFolder, fileIsReadAtTheRegistersNumber) {
    const std::filesystem::path root = std::filesystem::temp_directory_path() / "kr_registers";
    std::filesystem::create_directories(root / "dev/cpu/0");
    {
        std::ofstream file(root / "dev/cpu/0/msr", std::ios::binary); // sparse: only this register is there
        file.seekp(0x40000);
        file << tests::CollectorFixture::binary({0x1122334455667788});
    }
    tests::CollectorFixture::setTopology("0 0 0 0 -1 -1\n");
    pwr::PluginLoader loader;
    loader.setOption("machine", root.string());
    ASSERT_EQ(0, tests::loadModule(loader, "registers"));
    CollectorPlugin& plugin = *loader.getPlugins<CollectorPlugin>().front();
    for (const auto& [number, seen] :
         {std::pair("0x40000", 0x1122334455667788U), {"0x3fffc", 0x5566778800000000U}}) {
        const auto message = tests::CollectorFixture::makeMessage({{"REGISTER", number}}, {}, 1);
        MessageInstances instances;
        CollectionData data;
        ASSERT_EQ(0, plugin.open(*message, instances)) << instances.reason;
        EXPECT_EQ(0, plugin.read(*message, data));
        EXPECT_EQ(seen, data.getBits(0)) << number;
    }
    loader.unload();
    std::filesystem::remove_all(root);
}

TEST_F(RegistersTest, whatIsWrongHasAReason) {
    const std::string lead = "MSG, operation op: ";
    struct Case {
        Keys operation, constants;
        std::string reason;
    };
    for (const Case& c : {
             Case{{}, {}, lead + "REGISTER \"\": expected a register's number of up to 32 bits | "},
             {{{"REGISTER", "0x100000000"}},
              {},
              lead + "REGISTER \"0x100000000\": expected a register's number of up to "
                     "32 bits | "},
             {{{"REGISTER", "0"}, {"BITS", "0,3"}},
              {},
              lead +
                  "BITS \"0,3\": unknown key; there are REGISTER, PATH, BIT-RANGE, WIDTH, RAW-TYPE, ENTITY, "
                  "ENTITY-FILE, DESCRIPTOR, DESCRIPTOR-FILE | "},
             {{{"REGISTER", "0"}, {"BIT-RANGE", "0,64"}},
              {},
              lead + "BIT-RANGE \"0,64\": expected the lowest and the highest bit, from 0 to 63, as \"0,31\" "
                     "| "},
             {{{"REGISTER", "0"}, {"BIT-RANGE", "0,31"}},
              {{"SOURCE", "COUNTER"}},
              lead + "WIDTH \"\": the counter has 32 bits, and its width must say so | "},
             {{{"REGISTER", "0"}, {"PATH", "/dev/{moon}"}},
              {},
              lead + "PATH \"/dev/{moon}\": unknown variable {moon} | "},
             {{{"REGISTER", "0"}, {"PATH", "/denied/{cpu}/msr"}},
              {},
              "/denied/0/msr may not be read | run as root; or let this user read that file and give the "
              "program the "
              "capability CAP_SYS_RAWIO (setcap cap_sys_rawio+ep)"},
             {{{"REGISTER", "0"}, {"PATH", "/silent/{cpu}/msr"}},
              {},
              "message MSG: /silent/0/msr does not answer: it has no such register, or its processor is "
              "offline | "},
             {{{"REGISTER", "0x611"}, {"PATH", "/nowhere/{cpu}/msr"}},
              {},
              "message MSG: no file of processor registers matches | load the kernel's driver for them "
              "(modprobe msr)"},
         }) {
        EXPECT_EQ(c.reason, readKeys(c.operation, c.constants));
        EXPECT_TRUE(m_instances.instances.empty());
    }
}

} // namespace
