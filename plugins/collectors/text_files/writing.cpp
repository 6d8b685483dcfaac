#include "plugins/collectors/text_files/writing.h"

#include <array>
#include <string_view>

#include "common/metadata/operation_metadata.h"
#include "plugins/collectors/binary_file.h"
#include "plugins/collectors/message_keys.h"
#include "plugins/collectors/path_expansion.h"

namespace text_files {

namespace {

using collectors::complaint;
using collectors::keyOf;
using pwr::MachineFiles;
using pwr::MachineStatus;
using pwr::MsgMetadata;
using pwr::OperationMetadata;

constexpr std::array<std::string_view, 2> WRITTEN_KEYS{"PATH", "VALUE"};

int addTargets(const MachineFiles& machine, const MsgMetadata& message, const OperationMetadata& operation,
               Writing& writing) {
    std::vector<collectors::ExpandedPath> paths;
    std::string what;
    if (expandPath(machine, keyOf(message, operation, "PATH"), paths, what) != 0) {
        writing.error = complaint(message, operation, "PATH", what);
        return 1;
    }
    const std::string& value = keyOf(message, operation, "VALUE");
    if (value.empty()) {
        writing.error = complaint(message, operation, "VALUE", "what to write is missing");
        return 1;
    }
    for (const collectors::ExpandedPath& found : paths) {
        if (machine.exists(found.path)) {
            writing.targets.push_back({found.path, value + "\n"});
        }
    }
    return 0;
}

} // namespace

Writing planWriting(const MachineFiles& machine, const MsgMetadata& message) {
    Writing writing;
    if (collectors::checkKeys(message, WRITTEN_KEYS, writing.error) != 0) {
        return writing;
    }
    for (const OperationMetadata* operation : message.getMetaValues()) {
        if (!collectors::isConstant(*operation) && addTargets(machine, message, *operation, writing) != 0) {
            writing.targets.clear();
            break;
        }
    }
    return writing;
}

std::vector<std::string> carryOut(const MachineFiles& machine, const Writing& writing) {
    std::vector<std::string> complaints;
    for (const Writing::Target& target : writing.targets) {
        const MachineStatus status = machine.write(target.path, target.text);
        if (status == MachineStatus::DENIED) {
            complaints.push_back(target.path +
                                 " may not be written (run as root, or let this user write that file)");
        } else if (status != MachineStatus::OK) {
            complaints.push_back(target.path + " does not take \"" +
                                 target.text.substr(0, target.text.size() - 1) + "\" (" + toText(status) +
                                 ")");
        }
    }
    return complaints;
}

} // namespace text_files
