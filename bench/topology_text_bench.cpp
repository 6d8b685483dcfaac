// The text of a machine with 4,096 processors, built into a tree, beside loops without any of the
// tree's classes. Goal: 4 x the loop that tokenises and links plain nodes, in any order of records.

#include "bench/interleaved.h"
#include "common/topology/top_tree.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned c_coresPerPackage = 1024;
constexpr unsigned c_threadsPerCore = 2;
constexpr unsigned c_coresPerModule = 4;
constexpr std::size_t c_rounds = 20;

struct Shape {
    const char* name;
    bool modules;
    bool shuffled;
};

std::string makeText(unsigned processors, const Shape& shape) {
    std::vector<std::string> records;
    for (unsigned cpu = 0; cpu < processors; ++cpu) {
        const unsigned core = cpu / c_threadsPerCore % c_coresPerPackage;
        const unsigned package = cpu / c_threadsPerCore / c_coresPerPackage;
        records.push_back(std::to_string(cpu) + " " + std::to_string(package) + " " + std::to_string(core) +
                          " 1073741825 -1 " +
                          (shape.modules ? std::to_string(core / c_coresPerModule) : "-1") + "\n");
    }
    if (shape.shuffled) {
        std::shuffle(records.begin(), records.end(), std::mt19937(1));
    }
    std::string text;
    for (const std::string& record : records) {
        text += record;
    }
    return text;
}

struct PlainNode {
    std::int32_t id;
    std::uint32_t parent;
};

/// The limit: one scan, no copies; ordered records linked into arrays of nodes by looking at the last
/// one only.
bench::Nanoseconds buildLimit(const std::string& text, bool link, std::size_t expected) {
    return bench::timed([&] {
        for (std::size_t round = 0; round < c_rounds; ++round) {
            std::vector<PlainNode> packages;
            std::vector<PlainNode> modules;
            std::vector<PlainNode> cores;
            std::vector<PlainNode> threads;
            std::int32_t sum = 0;
            const char* at = text.data();
            const char* const end = at + text.size();
            while (at != end) {
                std::int32_t fields[6];
                for (std::int32_t& field : fields) {
                    const bool negative = *at == '-';
                    at += negative ? 1 : 0;
                    std::int32_t number = 0;
                    while (*at >= '0') {
                        number = number * 10 + (*at++ - '0');
                    }
                    ++at;
                    field = negative ? -number : number;
                    sum += field;
                }
                if (!link) {
                    continue;
                }
                if (packages.empty() || packages.back().id != fields[1]) {
                    packages.push_back({fields[1], 0});
                }
                const auto package = static_cast<std::uint32_t>(packages.size() - 1);
                if (modules.empty() || modules.back().id != fields[5] || modules.back().parent != package) {
                    modules.push_back({fields[5], package});
                }
                const auto module = static_cast<std::uint32_t>(modules.size() - 1);
                if (cores.empty() || cores.back().id != fields[2] || cores.back().parent != module) {
                    cores.push_back({fields[2], module});
                }
                threads.push_back({fields[0], static_cast<std::uint32_t>(cores.size() - 1)});
            }
            benchmark::DoNotOptimize(sum);
            benchmark::DoNotOptimize(threads.data());
            if (link && threads.size() != expected) {
                std::exit(1);
            }
        }
    });
}

bench::Nanoseconds buildTree(const std::string& text, std::size_t expected) {
    return bench::timed([&] {
        for (std::size_t round = 0; round < c_rounds; ++round) {
            pwr::TopTree tree;
            tree.buildTopology(text, 0);
            if (tree.getNumThreads() != expected) {
                std::fprintf(stderr, "topology_text_bench: %zu threads\n", tree.getNumThreads());
                std::exit(1);
            }
        }
    });
}

void compare(unsigned processors) {
    const std::string ordered = makeText(processors, {"", true, false});
    bench::Interleaved comparison(std::to_string(processors) + " processors, cost of one");
    const std::size_t items = processors * c_rounds;
    comparison.add("limit, tokenise and link", items, [&] { return buildLimit(ordered, true, processors); });
    comparison.add("limit, tokenise", items, [&] { return buildLimit(ordered, false, processors); });
    for (const Shape& shape :
         {Shape{"TopTree, modules, in order", true, false}, Shape{"TopTree, modules, shuffled", true, true},
          Shape{"TopTree, cores below packages, in order", false, false},
          Shape{"TopTree, cores below packages, shuffled", false, true}}) {
        comparison.add(shape.name, items, [text = makeText(processors, shape), processors] {
            return buildTree(text, processors);
        });
    }
    comparison.report();
}

} // namespace

int main() {
    for (const unsigned processors : {512U, 4096U, 32768U}) {
        compare(processors);
    }
    return 0;
}
