#include "common/machine_bundle.h"

#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

#include "common/machine_bundle_node.h"
#include "common/platform/file.h"
#include "common/tw_clock.h"

namespace pwr {

namespace {

// As many as a real kernel follows before it calls a chain of links a loop.
constexpr unsigned MAX_LINKS = 40;

/// Puts the components of a path in front of those that are still to be walked. Components
/// are kept in reverse, so that the next one is at the back.
void pushComponents(std::vector<std::string>& pending, std::string_view path) {
    std::vector<std::string> parts;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0 && path.substr(0, end) != ".") {
            parts.emplace_back(path.substr(0, end));
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    pending.insert(pending.end(), std::make_move_iterator(parts.rbegin()),
                   std::make_move_iterator(parts.rend()));
}

} // namespace

/// A handle into a bundle: finds its path once per moment, not once per read.
class BundleFile : public MachineFile {
public:
    BundleFile(const MachineBundle& bundle, std::string path) : m_bundle(bundle), m_path(std::move(path)) {}

    MachineStatus read(std::string& out) override {
        out.clear();
        if (!find_i()) {
            return MachineStatus::MISSING;
        }
        out.assign(m_version->content);
        return m_version->status;
    }

    MachineStatus readAt(std::uint64_t offset, std::span<char> bytes) override {
        if (!find_i()) {
            return MachineStatus::MISSING;
        }
        const std::string_view content = m_version->content;
        if (m_version->status != MachineStatus::OK) {
            return m_version->status;
        }
        if (bytes.size() > content.size() || offset > content.size() - bytes.size()) {
            return MachineStatus::MISSING;
        }
        content.copy(bytes.data(), bytes.size(), static_cast<std::size_t>(offset));
        return MachineStatus::OK;
    }

private:
    /// What the path holds now; false when there is no file.
    bool find_i() {
        const std::size_t moment = m_bundle.currentMoment_i();
        if (moment != m_moment) {
            const MachineBundle::Node* node = m_bundle.find_i(m_path, moment, true);
            m_version = node == nullptr ? nullptr : node->at(moment);
            m_moment = moment;
        }
        return m_version != nullptr && m_version->kind != MachineBundle::Version::Kind::LINK;
    }

    const MachineBundle& m_bundle;
    std::string m_path;
    std::size_t m_moment = static_cast<std::size_t>(-1);
    const MachineBundle::Version* m_version = nullptr;
};

MachineBundle::MachineBundle() : m_root(std::make_unique<Node>()) {}

MachineBundle::~MachineBundle() = default;

std::unique_ptr<MachineBundle> MachineBundle::load(const std::string& file, std::string& reason) {
    std::ifstream stream(platform::nativePath(file), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) {
        reason = file + ": cannot be read";
        return nullptr;
    }
    return parse(file, text, reason);
}

const std::vector<std::uint64_t>& MachineBundle::moments() const {
    return m_moments;
}

std::size_t MachineBundle::currentMoment_i() const {
    const auto next = std::upper_bound(m_moments.begin(), m_moments.end(), getTWATimestamp());
    return next == m_moments.begin() ? 0 : static_cast<std::size_t>(next - m_moments.begin()) - 1;
}

bool MachineBundle::isPresent_i(const Node& node, std::size_t moment) {
    // Depth is bounded by the parser's limit on path components; the stack keeps it off ours.
    std::vector<const Node*> pending{&node};
    while (!pending.empty()) {
        const Node& next = *pending.back();
        pending.pop_back();
        if (next.at(moment) != nullptr) {
            return true;
        }
        for (const auto& [name, child] : next.children) {
            pending.push_back(child.get());
        }
    }
    return false;
}

const MachineBundle::Node* MachineBundle::find_i(const std::string& path, std::size_t moment,
                                                 bool followLast) const {
    std::vector<const Node*> walked{m_root.get()};
    std::vector<std::string> pending;
    pushComponents(pending, path);
    unsigned links = 0;
    while (!pending.empty()) {
        const std::string name = std::move(pending.back());
        pending.pop_back();
        if (name == "..") {
            if (walked.size() > 1) {
                walked.pop_back();
            }
            continue;
        }
        const auto child = walked.back()->children.find(name);
        if (child == walked.back()->children.end()) {
            return nullptr;
        }
        const Node& node = *child->second;
        const Version* version = node.at(moment);
        const bool isLink = version != nullptr && version->kind == Version::Kind::LINK;
        const bool hasBelow = !pending.empty() && node.children.contains(pending.back());
        if (!isLink || hasBelow || (pending.empty() && !followLast)) {
            walked.push_back(&node);
            continue;
        }
        if (++links > MAX_LINKS) {
            return nullptr;
        }
        if (version->content.starts_with('/')) {
            walked.resize(1);
        }
        pushComponents(pending, version->content);
    }
    return isPresent_i(*walked.back(), moment) ? walked.back() : nullptr;
}

MachineStatus MachineBundle::read(const std::string& path, std::string& out) const {
    return BundleFile(*this, path).read(out);
}

MachineStatus MachineBundle::list(const std::string& path, std::vector<std::string>& names) const {
    names.clear();
    const std::size_t moment = currentMoment_i();
    // What was recorded through a link to a folder lies below the link's own name.
    const Node* node = find_i(path, moment, false);
    if (node != nullptr && node->children.empty()) {
        node = find_i(path, moment, true);
    }
    if (node == nullptr || node->children.empty()) {
        return MachineStatus::MISSING;
    }
    for (const auto& [name, child] : node->children) {
        if (isPresent_i(*child, moment)) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end(), naturalLess);
    return names.empty() ? MachineStatus::MISSING : MachineStatus::OK;
}

MachineStatus MachineBundle::readLink(const std::string& path, std::string& target) const {
    target.clear();
    const std::size_t moment = currentMoment_i();
    const Node* node = find_i(path, moment, false);
    const Version* version = node == nullptr ? nullptr : node->at(moment);
    if (version == nullptr || version->kind != Version::Kind::LINK) {
        return MachineStatus::MISSING;
    }
    target = version->content;
    return MachineStatus::OK;
}

bool MachineBundle::exists(const std::string& path) const {
    return find_i(path, currentMoment_i(), false) != nullptr;
}

std::unique_ptr<MachineFile> MachineBundle::open(const std::string& path, MachineStatus& status) const {
    auto file = std::make_unique<BundleFile>(*this, path);
    std::string content;
    status = file->read(content);
    return status == MachineStatus::OK ? std::move(file) : nullptr;
}

} // namespace pwr
