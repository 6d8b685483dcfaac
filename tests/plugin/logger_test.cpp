#include "common/pw_utils.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>
#include <sstream>
#include <thread>

namespace pwr {
namespace {

class RecordingLogger : public Logger {
public:
    void emit(const char* bytes, std::size_t size) override {
        m_pieces.emplace_back(bytes, size);
        if (m_pieces.back() == "again") {
            log("nested");
        }
    }
    std::vector<std::string> take() { return std::exchange(m_pieces, {}); }

private:
    std::vector<std::string> m_pieces;
};

std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

TEST(Logger, emitsWholePiecesOnly) {
    RecordingLogger logger;
    const std::string longText(100'000, 'x');
    logger << longText << 1.5;
    EXPECT_THAT(logger.take(), testing::IsEmpty());
    logger.flush();
    EXPECT_THAT(logger.take(), testing::ElementsAre(longText + "1.5"));
    logger.flush();
    EXPECT_THAT(logger.take(), testing::IsEmpty());

    logger << "begun ";
    EXPECT_EQ(0, logger.log(PWLogLevel::ERROR, "%s and done"));
    EXPECT_THAT(logger.take(), testing::ElementsAre("begun %s and done"));

    EXPECT_EQ(1, logger.log(static_cast<const char*>(nullptr)));
    logger.log("again");
    EXPECT_THAT(logger.take(), testing::ElementsAre("again", "nested"));
}

TEST(Logger, itsAddressPrintsAsAnAddress) {
    RecordingLogger logger;
    logger << "content";
    std::ostringstream out;
    out << static_cast<Logger*>(&logger);
    EXPECT_EQ(std::string::npos, out.str().find("content"));
}

TEST(FileLogger, writesAtFlushCloseAndEnd) {
    const std::string path = tw_temp_directory_path() + "/kr_logger_test.txt";
    {
        FileLogger logger(path.c_str());
        logger.log("a\n");
        EXPECT_EQ("a\n", contentOf(path));
        logger << "b";
        EXPECT_EQ("a\n", contentOf(path));
    }
    EXPECT_EQ("a\nb", contentOf(path));
    {
        FileLogger logger(path.c_str());
        EXPECT_EQ("", contentOf(path));
        logger << "c";
        EXPECT_EQ(0, logger.close());
        EXPECT_EQ("c", contentOf(path));
        logger.log("after the end");
        EXPECT_EQ("c", contentOf(path));
        EXPECT_EQ(1, logger.close());
        EXPECT_TRUE(logger.fail());
    }
    std::remove(path.c_str());
}

TEST(FileLogger, unopenedFileDiscards) {
    FileLogger logger((tw_temp_directory_path() + "/nowhere/at/all.txt").c_str());
    EXPECT_TRUE(logger.fail());
    EXPECT_EQ(0, logger.log("lost"));
}

TEST(LogMessage, verbosityAndLoggerDecide) {
    struct Case {
        int verbosity;
        int level;
        const char* error;
        const char* debug;
    };
    // The levels beyond the named ones are information, and go to the debug logger.
    const Case cases[] = {{0, 0, "0", ""},    {0, 1, "", ""},  {1, 1, "1", ""},   {1, 2, "", ""},
                          {2, 2, "", "2"},    {4, 3, "", ""},  {2, -1, "", "-1"}, {-1, 0, "", ""},
                          {-1, -1, "", "-1"}, {-2, -1, "", ""}};
    const LogCapture restoreAtTheEnd;
    RecordingLogger error;
    RecordingLogger debug;
    g_pluginEnvironment->setErrorLogger(&error);
    g_pluginEnvironment->setDebugLogger(&debug);
    const auto piece = [](const char* text) {
        return *text == '\0' ? std::vector<std::string>() : std::vector<std::string>{text};
    };
    for (const Case& c : cases) {
        g_pluginEnvironment->setVerbosity(static_cast<PWLogLevel>(c.verbosity));
        logMessage(static_cast<PWLogLevel>(c.level), "%d", c.level);
        EXPECT_EQ(piece(c.error), error.take()) << c.verbosity << " " << c.level;
        EXPECT_EQ(piece(c.debug), debug.take()) << c.verbosity << " " << c.level;
    }
    g_pluginEnvironment->setVerbosity(PWLogLevel::WARNING);
    g_pluginEnvironment->setErrorLogger(nullptr);
    EXPECT_FALSE(isLogEnabled(PWLogLevel::ERROR));
    logError("to nobody");
}

TEST(LogMessage, formatsOnceAndAnyLength) {
    LogCapture log;
    const std::string longText(70'000, '%');
    logWarning("WARNING: %s %llu%%\n", longText.c_str(), ~0ULL);
    EXPECT_EQ("WARNING: " + longText + " 18446744073709551615%\n", log.take());
    logPrefixed(PWLogLevel::ERROR, "%s", "ERROR parsing");
    EXPECT_EQ("ERROR: ERROR parsing", log.take());
    logDebug("never %d", 1);
    logTrace("kr-logger-test", "not asked for\n");
    g_pluginEnvironment->addCondLogTagForDebugLogging("kr-logger-test");
    logTrace("kr-logger-test", "asked for\n");
    EXPECT_EQ("asked for\n", log.take());
}

TEST(LogMessage, messagesOfThreadsStayWhole) {
    LogCapture log;
    const auto work = [] {
        for (int i = 0; i < 500; ++i) {
            logWarning("%s\n", "0123456789");
        }
    };
    std::thread other(work);
    work();
    other.join();
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        expected += "0123456789\n";
    }
    EXPECT_EQ(expected, log.text());
}

} // namespace
} // namespace pwr
