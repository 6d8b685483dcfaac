#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/machine_bundle.h"
#include "common/machine_bundle_node.h"

namespace pwr {

namespace {

constexpr std::string_view MAGIC = "tarnwell-machine 1";
constexpr std::size_t MAX_COMPONENTS = 64;
constexpr std::size_t MAX_PATH_SIZE = 4096;

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

bool parseNumber(std::string_view text, std::uint64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

/// Cuts the text up to the first blank off the front of `rest`.
std::string_view takeWord(std::string_view& rest) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return word;
}

} // namespace

/// Reads a bundle's text line by line. Every complaint goes through fail_i, which names the
/// line, so that no message can lack the place.
class BundleParser {
public:
    BundleParser(const std::string& name, std::string_view text, std::string& reason)
        : m_name(name), m_rest(text), m_reason(reason) {}

    std::unique_ptr<MachineBundle> parse() {
        std::string_view line;
        if (!takeLine_i(line) || line != MAGIC) {
            fail_i("not a machine bundle: the first line must be \"" + std::string(MAGIC) + "\"");
            return nullptr;
        }
        while (takeLine_i(line)) {
            if (line == "end") {
                return finish_i();
            }
            if (!line.starts_with('#') && parseLine_i(line) != 0) {
                return nullptr;
            }
        }
        if (m_reason.empty()) {
            fail_i("the bundle stops without the line \"end\"");
        }
        return nullptr;
    }

private:
    using Version = MachineBundle::Version;
    using Node = MachineBundle::Node;

    struct Row {
        std::string_view word;
        int (BundleParser::*entry)(Node&, std::string_view);
    };

    static constexpr std::size_t ROW_COUNT = 5;
    static const std::array<Row, ROW_COUNT> ROWS;

    int fail_i(const std::string& what) {
        m_reason = m_name + ":" + std::to_string(m_line) + ": " + what;
        return 1;
    }

    bool takeLine_i(std::string_view& line) {
        if (m_rest.empty()) {
            return false;
        }
        ++m_line;
        const std::size_t end = m_rest.find('\n');
        if (end == std::string_view::npos) {
            fail_i("the last line has no line end");
            return false;
        }
        line = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        return true;
    }

    int parseLine_i(std::string_view line) {
        if (line.starts_with('@')) {
            return parseMoment_i(line.substr(1));
        }
        const std::string_view word = takeWord(line);
        for (const Row& row : ROWS) {
            if (row.word == word) {
                return parseEntry_i(row, line);
            }
        }
        return fail_i("unknown entry \"" + std::string(word) +
                      "\"; known are @, line, file, link, fail, gone, end");
    }

    int parseMoment_i(std::string_view text) {
        std::uint64_t moment = 0;
        if (!parseNumber(text, moment)) {
            return fail_i("\"@\" needs a number of nanoseconds, got \"" + std::string(text) + "\"");
        }
        if (!m_bundle->m_moments.empty() && moment <= m_bundle->m_moments.back()) {
            return fail_i("moment " + std::to_string(moment) + " is not later than the one before");
        }
        m_bundle->m_moments.push_back(moment);
        return 0;
    }

    int parseEntry_i(const Row& row, std::string_view rest) {
        if (m_bundle->m_moments.empty()) {
            return fail_i("an entry stands before the first moment");
        }
        const std::string_view path = takeWord(rest);
        Node* node = nullptr;
        if (findNode_i(path, row.word != "gone", node) != 0) {
            return 1;
        }
        if (!node->versions.empty() && node->versions.back().moment == moment_i()) {
            return fail_i("path " + std::string(path) + " has two entries in one moment");
        }
        return (this->*row.entry)(*node, rest);
    }

    int decodePath_i(std::string_view text, std::string& path) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '%') {
                path.push_back(text[i]);
                continue;
            }
            const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
            const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
            if (low < 0) {
                return fail_i("\"%\" in a path needs two upper-case hexadecimal digits");
            }
            path.push_back(static_cast<char>(high * 16 + low));
            i += 2;
        }
        return 0;
    }

    int findNode_i(std::string_view text, bool make, Node*& node) {
        std::string path;
        if (text.empty() || text.front() != '/' || text.size() > MAX_PATH_SIZE) {
            return fail_i("a path must start with \"/\" and be at most " + std::to_string(MAX_PATH_SIZE) +
                          " bytes long");
        }
        if (decodePath_i(text, path) != 0) {
            return 1;
        }
        node = m_bundle->m_root.get();
        std::string_view rest = std::string_view(path).substr(1);
        for (std::size_t count = 1;; ++count) {
            const std::size_t end = std::min(rest.find('/'), rest.size());
            const std::string name(rest.substr(0, end));
            if (name.empty() || name == "." || name == ".." || count > MAX_COMPONENTS) {
                return fail_i("path " + std::string(text) +
                              " has an empty, \".\" or \"..\" component or more than " +
                              std::to_string(MAX_COMPONENTS));
            }
            std::unique_ptr<Node>& child = node->children[name];
            if (!child && !make) {
                return fail_i("path " + std::string(text) + " cannot go: it was never there");
            }
            if (!child) {
                child = std::make_unique<Node>();
            }
            node = child.get();
            if (end == rest.size()) {
                return 0;
            }
            rest.remove_prefix(end + 1);
        }
    }

    std::size_t moment_i() const { return m_bundle->m_moments.size() - 1; }

    int add_i(Node& node, Version::Kind kind, std::string_view content,
              MachineStatus status = MachineStatus::OK) {
        node.versions.push_back({moment_i(), kind, status, std::string(content)});
        return 0;
    }

    int parseOneLine_i(Node& node, std::string_view rest) {
        add_i(node, Version::Kind::FILE, rest);
        node.versions.back().content += '\n';
        return 0;
    }

    int parseFile_i(Node& node, std::string_view rest) {
        std::uint64_t size = 0;
        if (!parseNumber(rest, size)) {
            return fail_i("\"file\" needs a path and a number of bytes, got \"" + std::string(rest) + "\"");
        }
        if (size >= m_rest.size()) {
            return fail_i("content of " + std::to_string(size) + " bytes, but only " +
                          std::to_string(m_rest.size()) + " bytes are left");
        }
        const std::string_view content = m_rest.substr(0, static_cast<std::size_t>(size));
        if (m_rest[content.size()] != '\n') {
            return fail_i("content of " + std::to_string(size) + " bytes is not followed by a line end");
        }
        m_rest.remove_prefix(content.size() + 1);
        m_line += static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n')) + 1;
        return add_i(node, Version::Kind::FILE, content);
    }

    int parseLink_i(Node& node, std::string_view rest) {
        if (rest.empty() || rest.size() > MAX_PATH_SIZE) {
            return fail_i("\"link\" needs a path and a target");
        }
        return add_i(node, Version::Kind::LINK, rest);
    }

    int parseFailure_i(Node& node, std::string_view rest) {
        for (const MachineStatus status :
             {MachineStatus::DENIED, MachineStatus::NO_ANSWER, MachineStatus::FAILED}) {
            if (rest == toText(status)) {
                return add_i(node, Version::Kind::UNREADABLE, "", status);
            }
        }
        return fail_i("\"fail\" needs one of denied, no-answer, failed, got \"" + std::string(rest) + "\"");
    }

    int parseGone_i(Node& node, std::string_view rest) {
        if (!rest.empty()) {
            return fail_i("\"gone\" needs only a path, got also \"" + std::string(rest) + "\"");
        }
        std::vector<Node*> pending{&node};
        bool any = false;
        while (!pending.empty()) {
            Node& next = *pending.back();
            pending.pop_back();
            if (next.at(moment_i()) != nullptr) {
                any = true;
                add_i(next, Version::Kind::GONE, "");
            }
            for (auto& [name, child] : next.children) {
                pending.push_back(child.get());
            }
        }
        return any ? 0 : fail_i("nothing is there that could go");
    }

    std::unique_ptr<MachineBundle> finish_i() {
        if (!m_rest.empty()) {
            ++m_line;
            fail_i("text after the line \"end\"");
            return nullptr;
        }
        if (m_bundle->m_moments.empty()) {
            fail_i("the bundle has no moment");
            return nullptr;
        }
        return std::move(m_bundle);
    }

    const std::string& m_name;
    std::string_view m_rest;
    std::string& m_reason;
    std::size_t m_line = 0;
    std::unique_ptr<MachineBundle> m_bundle{new MachineBundle};
};

const std::array<BundleParser::Row, BundleParser::ROW_COUNT> BundleParser::ROWS{
    Row{"line", &BundleParser::parseOneLine_i}, Row{"file", &BundleParser::parseFile_i},
    Row{"link", &BundleParser::parseLink_i},    Row{"fail", &BundleParser::parseFailure_i},
    Row{"gone", &BundleParser::parseGone_i},
};

std::unique_ptr<MachineBundle> MachineBundle::parse(const std::string& name, std::string_view text,
                                                    std::string& reason) {
    reason.clear();
    return BundleParser(name, text, reason).parse();
}

} // namespace pwr
