// The page about the language is true: its examples parse without a word, and every statement kind has one.

#include "tests/config/hardware_config_fixture.h"

#include <cstdlib>
#include <fstream>

using namespace pwr;

namespace {

TEST_F(HardwareConfigTest, readsTheExamplesOfItsPage) {
    const char* const data = std::getenv("KR_TEST_DATA");
    ASSERT_NE(nullptr, data);
    std::ifstream page(std::string(data) + "/../docs/configuration.md");
    std::string examples;
    bool isExample = false;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("```", 0) == 0) {
            isExample = line.rfind("```config", 0) == 0;
        } else if (isExample) {
            examples += line + "\n";
        }
    }
    for (const char* word : {"_FMS_",
                             "_PCI_",
                             "_TAF_",
                             "_DEPRECATED-GUIDS_",
                             "_RANGE=",
                             "_HELP-STRING_",
                             "_COMMAND-LINE_",
                             "_HIDDEN_",
                             "_CAPABILITY_GROUP_",
                             "_INHERIT_MODE_",
                             "_MSG_GROUP=",
                             "_MSG_ID=",
                             "_MSG_SOURCE=",
                             "_READ-WHEN=",
                             "_WRITE-WHEN=",
                             "_READ-WHEN-MAX-DETAIL=",
                             "_WRITE-WHEN-MAX-DETAIL=",
                             "_READ-WHICH-CPU=",
                             "_WRITE-WHICH-CPU=",
                             "TRACEPOINT=",
                             "NOTIFIER=",
                             "_CONSTANT_",
                             "_TEXT-FILE_",
                             "_AGGR-TELEM_"}) {
        EXPECT_NE(std::string::npos, examples.find(word)) << word;
    }
    parser().registerCollectorType("TEXT-FILE", nullptr);
    good(examples);
    EXPECT_EQ("IN:IN+IN(BEGIN,END,POLL) BOTH:BOTH(INIT) LIMIT:LIMIT(BEGIN,NOTIFIER) "
              "ZONES:ZONE-A+ZONE-B+ZONES(POLL) "
              "IN-AT-END:IN+IN(END) FAULTS:FAULTS(INIT)",
              describe(messages("CPU=ORCA-MOBILE", "SWAP")));
}

} // namespace
