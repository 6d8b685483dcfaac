#include "tarnwell/check_config.h"

#include "common/config/config_lint.h"
#include "common/config/config_text_reader.h"
#include "common/config/input_msg.h"
#include "common/config/offered_cap.h"
#include "common/config/platform.h"
#include "common/config/statement.h"
#include "common/config/tw_configfile_parser.h"
#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/msg_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "tarnwell/complaints.h"
#include "tarnwell/configuration_texts.h"
#include "tarnwell/hardware_texts.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/message_check.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <array>

namespace tarnwell {
namespace {

using pwr::TWConfigFileParser;
using pwr::WriterInterfaceConfigFileParser;

/// Which language a file is in: by the first statement that only one of them has. Tables have these keys.
bool isOutputConfiguration(const std::string& path) {
    static constexpr std::array<std::string_view, 6> kTableKeys = {
        "TITLE", "PRE-TABLE-TEXT", "POST-TABLE-TEXT", "TABLE", "TRANSPOSE", "SUPPRESS-TOTAL"};
    std::string text;
    pwr::readConfigFileText(path, text);
    pwr::StatementReader reader(text);
    pwr::Statement statement;
    for (auto read = reader.next(statement); read != pwr::StatementReader::Result::END;
         read = reader.next(statement)) {
        const auto& fields = statement.fields;
        if (read != pwr::StatementReader::Result::STATEMENT) {
            continue;
        }
        if ((fields[2] == "TAG" && fields[4] == "ORDER") ||
            (fields[4] == "VALUE" &&
             std::find(kTableKeys.begin(), kTableKeys.end(), fields[3]) != kTableKeys.end())) {
            return true;
        }
        if (fields[1] == "MODEL" || fields[2] == "CAPABILITY" || fields[3] == "MSG" ||
            fields[3] == "CONSTANT") {
            return false;
        }
    }
    return false;
}

struct SortedFiles {
    std::vector<std::string> hardware;
    std::vector<std::string> output;
};

SortedFiles sortFiles(const std::vector<std::string>& files) {
    SortedFiles sorted;
    for (const std::string& file : files) {
        (isOutputConfiguration(file) ? sorted.output : sorted.hardware).push_back(file);
    }
    return sorted;
}

/// Looks at the messages that the files declare, whichever machine this is. What a platform inherits is looked at
/// where it is declared.
class MessageChecks {
public:
    explicit MessageChecks(const ConfigurationTexts& texts) : m_texts(texts), m_places(texts) {}

    int checkAll() {
        for (const std::string& name : platformsIn(m_texts)) {
            const pwr::Platform* const platform = TWConfigFileParser::instance()->findPlatform(name);
            if (platform != nullptr) {
                for (const auto& capability : platform->getDeclaredCaps()) {
                    checkCapability_i(*platform, *capability);
                }
            }
        }
        complain(m_warnings);
        complain(m_complaints);
        return m_complaints.empty() ? 0 : 1;
    }

private:
    void checkCapability_i(const pwr::Platform& platform, const pwr::DeclaredCap& declared) {
        pwr::OfferedCap offered;
        if (platform.getMessagesFor(offered, declared.prefix) != 0) {
            return;
        }
        std::erase_if(offered.messages,
                      [](const pwr::InputMsg* message) { return message->isGroupMember(); });
        for (const auto& message : declared.messages) {
            if (!message->isGroupMember()) {
                checkMessage_i(*message, offered.messages);
            }
        }
    }

    void checkMessage_i(const pwr::InputMsg& message, const std::vector<pwr::InputMsg*>& capability) {
        const auto record = message.createMsgMetadata();
        const std::string lead = "message " + message.getName() + ": ";
        for (const std::string& warning : pwr::listUnsavable(*record)) {
            note_i(m_warnings, "warning: ", message, lead + warning);
        }
        for (const std::string& complaint : complaintsOf(message, *record, capability)) {
            note_i(m_complaints, "", message, lead + complaint);
        }
        const auto work = std::find_if(message.begin(), message.end(), [](const pwr::Operation* operation) {
            return !operation->getCollectorType().empty();
        });
        CollectorPlugin* const collector =
            work == message.end() ? nullptr
                                  : TWConfigFileParser::instance()->getCollector((*work)->getCollectorType());
        if (collector == nullptr) {
            return;
        }
        const MessageAvailability seen =
            isRead(message) ? collector->probe(*record) : collector->probeWrite(*record);
        if (seen.state == MessageAvailability::State::INVALID) {
            note_i(m_complaints, "", message, seen.reason);
        }
    }

    /// What is not in the checked files is not theirs to mend.
    void note_i(std::vector<std::string>& notes, const std::string& kind, const pwr::InputMsg& message,
                const std::string& text) const {
        const std::string place = m_places.find(message, text);
        if (!place.empty()) {
            notes.push_back(kind + place + ": " + text);
        }
    }

    const ConfigurationTexts& m_texts;
    StatementPlaces m_places;
    std::vector<std::string> m_warnings;
    std::vector<std::string> m_complaints;
};

int checkHardware(const std::vector<std::string>& checked, const std::vector<std::string>& shipped) {
    std::vector<std::string> files = shipped;
    std::copy_if(checked.begin(), checked.end(), std::back_inserter(files), [&](const std::string& file) {
        return std::find(shipped.begin(), shipped.end(), file) == shipped.end();
    });
    const int parsed = TWConfigFileParser::instance()->parse(files);
    pwr::ConfigLint lint;
    ConfigurationTexts texts;
    for (const std::string& file : checked) {
        texts.push_back(namedText(file));
        lint.checkText(texts.back().first, texts.back().second);
    }
    for (const pwr::ConfigFinding& finding : lint.getFindings()) {
        complain({"warning: " + finding.file + ":" + std::to_string(finding.line) + ": " + finding.text});
    }
    return parsed | MessageChecks(texts).checkAll();
}

int checkOutput(const std::vector<std::string>& files) {
    const int result = files.empty() ? 0 : WriterInterfaceConfigFileParser::instance()->parse(files);
    WriterInterfaceConfigFileParser::destroy();
    return result;
}

constexpr CommandOption kOptions[] = {
    {.text = {.name = "FILE",
              .description = "Hardware descriptions and output configurations [default the shipped ones]",
              .argType = "file"},
     .apply = [](Settings& s, const std::string& v) { s.checkedFiles.push_back(v); },
     .mayRepeat = true},
};

} // namespace

std::span<const CommandOption> checkConfigOptions() {
    return kOptions;
}

int runCheckConfig(const Settings& settings) {
    HostEnvironment environment({});
    PluginSet plugins;
    plugins.load(environment.folder() + "plugins", collectingOptions(settings));
    complain(plugins.problems());
    const std::vector<std::string> shipped =
        shippedFiles(environment.folder(), "hardware", "files are checked by themselves");
    SortedFiles files = sortFiles(settings.checkedFiles);
    if (settings.checkedFiles.empty()) {
        files = {shipped, shippedFiles(environment.folder(), "output", "there is none to check")};
    }
    const int result = checkHardware(files.hardware, shipped) | checkOutput(files.output);
    TWConfigFileParser::destroy();
    if (result != 0) {
        return fail(ExitCode::FAILED, "the configuration has errors (see above)");
    }
    std::printf("%zu files, no errors\n", files.hardware.size() + files.output.size());
    return toInt(plugins.problems().empty() ? ExitCode::DONE : ExitCode::FAILED);
}

} // namespace tarnwell
