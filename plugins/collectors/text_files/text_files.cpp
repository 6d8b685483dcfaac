#include "plugins/collectors/text_files/text_files.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <utility>

#include "common/config/input_msg.h"
#include "common/metadata/msg_metadata.h"
#include "common/platform/system_info.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_loader.h"
#include "common/values/data.h"
#include "plugins/collectors/binary_file.h"
#include "plugins/collectors/message_keys.h"
#include "plugins/collectors/pattern.h"
#include "plugins/collectors/reading_time.h"
#include "plugins/collectors/text_files/writing.h"

namespace text_files {

namespace {

using pwr::MsgMetadata;
using State = MessageAvailability::State;

/// One pattern of a list such as "loop*,ram*": a name, or the start of one.
bool isListed(std::string_view name, std::string_view patterns) {
    while (!patterns.empty()) {
        const std::size_t end = std::min(patterns.find(','), patterns.size());
        std::string_view pattern = patterns.substr(0, end);
        patterns.remove_prefix(std::min(end + 1, patterns.size()));
        const bool isStart = pattern.ends_with('*');
        pattern.remove_suffix(isStart ? 1 : 0);
        if (isStart ? name.starts_with(pattern) : name == pattern) {
            return true;
        }
    }
    return false;
}

} // namespace

TextFiles::TextFiles() : CollectorPlugin("text_files") {}

TextFiles::~TextFiles() = default;

int TextFiles::setOption(const std::string& key, const std::string& value) {
    if (key != "machine" || value.empty()) {
        return 1;
    }
    m_where = value;
    return 0;
}

const char* TextFiles::getDescription() const {
    return "Counters from the text files of the system (/proc, /sys)";
}

std::vector<std::string> TextFiles::getCollectorTypes() const {
    return {COLLECTOR_TYPE};
}

int TextFiles::initialize() {
    std::string reason;
    m_machine = pwr::openMachine(m_where, reason);
    if (!m_machine) {
        pwr::logError("ERROR: %s\n", reason.c_str());
        return 1;
    }
    return 0;
}

MessageAvailability TextFiles::probe(const MsgMetadata& message) {
    if (!m_machine) {
        return {State::NOT_HERE, {}, {}};
    }
    Expansion expansion = expandMessage(*m_machine, message);
    if (!expansion.error.empty()) {
        return {State::INVALID, expansion.error, {}}; // wherever it is checked
    }
    if (!isMachineOfFiles_i()) {
        return {State::NOT_HERE, {}, {}};
    }
    leaveOutUnused_i(collectors::constantOf(message, "SKIP-UNUSED"), expansion.places);
    if (!expansion.places.empty()) {
        return {};
    }
    if (!expansion.denied.empty()) {
        return {State::ABSENT, expansion.denied + " may not be read", collectors::DENIED_FIX};
    }
    return {State::ABSENT, {}, {}};
}

MessageAvailability TextFiles::probeWrite(const MsgMetadata& message) {
    if (!m_machine) {
        return {State::NOT_HERE, {}, {}};
    }
    const Writing writing = planWriting(*m_machine, message);
    if (!writing.error.empty()) {
        return {State::INVALID, writing.error, {}};
    }
    const State lacking = isMachineOfFiles_i() ? State::ABSENT : State::NOT_HERE;
    return {isMachineOfFiles_i() && !writing.targets.empty() ? State::AVAILABLE : lacking, {}, {}};
}

/// Another collector reads the counters of a system that has none in files. What lies at "/proc" there, as it does
/// below an emulation of the system, is not this system's and must not be counted twice.
bool TextFiles::isMachineOfFiles_i() const {
    return m_where != "/" || pwr::platform::keepsCountersInFiles();
}

std::vector<std::string> TextFiles::getFiles(const MsgMetadata& message) const {
    std::vector<std::string> files;
    for (const pwr::OperationMetadata* operation : message.getMetaValues()) {
        for (const char* key : {"PATH", "ENTITY-FILE", "DESCRIPTOR-FILE"}) {
            collectors::Pattern path;
            std::string ignored;
            if (!collectors::isConstant(*operation) &&
                path.parse(collectors::keyOf(message, *operation, key), ignored) == 0) {
                files.push_back(path.wildcard());
            }
        }
    }
    std::erase_if(files, [](const std::string& file) { return !file.starts_with('/'); });
    return files;
}

int TextFiles::open(const MsgMetadata& message, MessageInstances& out) {
    out = MessageInstances();
    std::vector<Place> places;
    if (expand_i(message, places, out) != 0 || m_names.makeInstances(places, out) != 0) {
        out.instances.clear();
        return 1;
    }
    m_plans[message.getMsgID()] = std::make_unique<ReadPlan>(*m_machine, places, m_handles);
    return 0;
}

int TextFiles::expand_i(const MsgMetadata& message, std::vector<Place>& places, MessageInstances& out) {
    if (!m_machine) {
        out.reason = "the machine's files could not be opened";
        return 1;
    }
    Expansion expansion = expandMessage(*m_machine, message);
    places = std::move(expansion.places);
    if (!expansion.error.empty()) {
        out.reason = expansion.error;
        return 1;
    }
    leaveOutUnused_i(collectors::constantOf(message, "SKIP-UNUSED"), places);
    if (places.empty() && !expansion.denied.empty()) {
        out.reason = expansion.denied + " may not be read";
        out.fix = collectors::DENIED_FIX;
    } else if (places.empty()) {
        out.reason = "message " + message.getMsgName() + ": nothing on this machine matches";
    }
    const int result = places.empty() ? 1 : 0;
    // What is known under another message's name is no loss, even when that is everything.
    if (collectors::constantOf(message, "SKIP-KNOWN") == "YES") {
        std::erase_if(places, [this](const Place& place) { return m_names.isNameTaken(place); });
    }
    return result;
}

void TextFiles::leaveOutUnused_i(const std::string& patterns, std::vector<Place>& places) const {
    if (patterns.empty()) {
        return;
    }
    std::size_t handles = std::numeric_limits<std::size_t>::max() / 2; // keeps no file open for one reading
    ReadPlan plan(*m_machine, places, handles);
    plan.read();
    std::set<std::string> used;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const RawValue& value = plan.values()[i];
        if (value.kind == RawValue::Kind::TEXT || value.bits != 0) {
            used.insert(places[i].entity);
        }
    }
    std::erase_if(places, [&](const Place& place) {
        return isListed(place.entity, patterns) && !used.contains(place.entity);
    });
}

int TextFiles::read(const MsgMetadata& message, CollectionData& out) {
    const auto plan = m_plans.find(message.getMsgID());
    if (plan == m_plans.end()) {
        return 1;
    }
    collectors::stampReading(out, [&] { plan->second->read(); });
    const bool hasText =
        std::any_of(plan->second->values().begin(), plan->second->values().end(),
                    [](const RawValue& value) { return value.kind == RawValue::Kind::TEXT; });
    out.header().flags = hasText ? tw_driver_msg_flag::TEXT : 0;
    return plan->second->store(out);
}

int TextFiles::doImmediateWrite(pwr::Operation* operation, const std::string& argument) {
    if (operation == nullptr) {
        return -1;
    }
    pwr::MsgMetadata message(0, 0, 0, {}, operation->getOrgMsgTag());
    for (const auto& part : operation->createAllMetadata()) {
        pwr::OperationMetadata::ValueList keys = part->getValues();
        if (!argument.empty()) {
            std::erase_if(keys, [](const auto& pair) { return pair.first == "VALUE"; });
            keys.emplace_back("VALUE", argument);
        }
        message.addMetaValue(pwr::OperationMetadata(part->getName(), part->getOperation(), part->getSize(),
                                                    {}, std::move(keys)));
    }
    std::set<std::string> told;
    return write_i(message, told);
}

int TextFiles::doImmediateWrite(const pwr::InputMsg* message) {
    return message == nullptr ? -1 : write_i(*message->createMsgMetadata(), m_told);
}

int TextFiles::write_i(const MsgMetadata& message, std::set<std::string>& told) {
    if (!m_machine || !isMachineOfFiles_i()) {
        return -1;
    }
    const Writing writing = planWriting(*m_machine, message);
    std::vector<std::string> complaints = carryOut(*m_machine, writing);
    if (!writing.error.empty()) {
        complaints.push_back(writing.error);
    } else if (writing.targets.empty()) {
        complaints.push_back("message " + message.getMsgName() + ": nothing on this machine matches");
    }
    for (const std::string& complaint : complaints) {
        if (told.insert(complaint).second) {
            pwr::logError("ERROR: %s\n", complaint.c_str());
        }
    }
    return complaints.empty() ? 0 : -1;
}

void TextFiles::close(const MsgMetadata& message) {
    m_plans.erase(message.getMsgID());
}

} // namespace text_files

KRCOMMON_PLUGIN("text_files", KR_PLUGIN_COLLECTOR, text_files::TextFiles);
