#include "common/plugin/logger.h"
#include "common/topology/id_scanner.h"
#include "common/topology/path_key.h"
#include "common/topology/radix_sort.h"
#include "common/topology/top_tree.h"

#include <atomic>
#include <iterator>
#include <vector>

namespace pwr {

namespace {

/// The six numbers that describe a logical processor, in the order of the text.
struct Processor {
    int thread = 0;
    int package = 0;
    int core = 0;
    pw_u32_t coreModel = 0;
    int die = 0;
    int module = 0;
};

constexpr std::size_t c_usualRecordSize = 16; ///< bytes, rather low
constexpr std::size_t c_usualThreadsPerCore = 2;

bool readProcessor(IdScanner& scanner, Processor& processor) {
    pw_u32_t thread = 0;
    pw_u32_t package = 0;
    pw_u32_t core = 0;
    pw_u32_t die = 0;
    pw_u32_t module = 0;
    if (!scanner.next(thread) || !scanner.next(package) || !scanner.next(core) ||
        !scanner.next(processor.coreModel) || !scanner.next(die) || !scanner.next(module)) {
        return false;
    }
    processor.thread = static_cast<int>(thread);
    processor.package = static_cast<int>(package);
    processor.core = static_cast<int>(core);
    processor.die = static_cast<int>(die);
    processor.module = static_cast<int>(module);
    return true;
}

void reportModuleAndDie() {
    static std::atomic<bool> reported{false};
    if (!reported.exchange(true)) {
        logWarning("Topology has both a module AND a die ID -- choosing to report module ID only\n");
    }
}

} // namespace

/// Adds processors to a tree. Entries of the node maps are only made together with their nodes: an
/// entry without one could not be told from none.
class TopTree::Builder {
public:
    Builder(TopTree& tree, std::size_t processors) : m_tree(tree) {
        m_threads.reserve(m_threads.size() + processors);
        m_highestKey = m_threads.size() == 0 ? 0 : std::prev(m_threads.end())->key;
        NodeMap& cores = m_tree.mapOf_i(top_node_type::CORE);
        cores.reserve(cores.size() + processors / c_usualThreadsPerCore);
    }

    void add(const Processor& processor) {
        // Threads of one core mostly stand together.
        if (m_core == nullptr || !isSameCore_i(processor)) {
            findCore_i(processor);
            m_last = processor;
        }
        const pw_u64_t key = pathKey(m_coreKey, processor.thread);
        if (m_late.empty() && key >= m_highestKey) {
            m_highestKey = key;
            TNode*& thread = m_threads.findOrInsert(key);
            if (thread == nullptr) {
                thread = &makeThread_i(*m_core, processor.thread);
            }
        } else {
            m_late.push_back({key, m_core, processor.thread});
        }
    }

    /// Puts maps and children in order and numbers the tree.
    void finish() {
        addLateThreads_i();
        for (NodeMap& map : m_tree.m_maps) {
            map.settle();
        }
        for (const TNode::UnsortedChildren& unsorted : m_unsorted) {
            unsorted.node->sortChildren_i(unsorted.sortedCount);
        }
        m_tree.number_i();
    }

private:
    /// A thread whose record does not follow in order. These are sorted before their nodes are made:
    /// no look-up for each, and the nodes of a core lie together.
    struct LateThread {
        pw_u64_t key;
        TNode* core;
        int id;
    };

    TNode& makeThread_i(TNode& core, int id) {
        TNode& thread = m_tree.m_nodes.emplace_back(id, top_node_type::THREAD);
        core.addChild_i(thread, m_unsorted);
        return thread;
    }

    void addLateThreads_i() {
        radixSort(m_late);
        std::vector<NodeMap::Entry> added;
        added.reserve(m_late.size());
        auto present = m_threads.begin();
        for (const LateThread& late : m_late) {
            while (present != m_threads.end() && present->key < late.key) {
                ++present;
            }
            const bool known = (present != m_threads.end() && present->key == late.key) ||
                               (!added.empty() && added.back().key == late.key);
            if (!known) {
                added.push_back({late.key, &makeThread_i(*late.core, late.id)});
            }
        }
        m_threads.merge(added);
    }

    bool isSameCore_i(const Processor& processor) const {
        return processor.core == m_last.core && processor.package == m_last.package &&
               processor.module == m_last.module && processor.die == m_last.die;
    }

    void findCore_i(const Processor& processor) {
        pw_u64_t parentKey = pathKey(processor.package);
        TNode*& package = m_tree.mapOf_i(top_node_type::PACKAGE).findOrInsert(parentKey);
        if (package == nullptr) {
            package = &m_tree.m_nodes.emplace_back(processor.package, top_node_type::PACKAGE);
        }
        TNode* parent = package;
        if (processor.module != c_absentId) {
            parent = enter_i(*parent, parentKey, processor.module, top_node_type::MODULE);
        } else if (processor.die != c_absentId) {
            parent = enter_i(*parent, parentKey, processor.die, top_node_type::DIE);
        }
        m_coreKey = pathKey(parentKey, processor.core);
        TNode*& core = m_tree.mapOf_i(top_node_type::CORE).findOrInsert(m_coreKey);
        if (core == nullptr) {
            core = &m_tree.m_cores.emplace_back(processor.core, processor.coreModel);
            parent->addChild_i(*core, m_unsorted);
        }
        m_core = core;
    }

    /// The module or die below the package; goes down with the key.
    TNode* enter_i(TNode& package, pw_u64_t& key, int id, top_node_type type) {
        key = pathKey(key, id);
        TNode*& node = m_tree.mapOf_i(type).findOrInsert(key);
        if (node == nullptr) {
            node = &m_tree.m_nodes.emplace_back(id, type);
            package.addChild_i(*node, m_unsorted);
        }
        return node;
    }

    TopTree& m_tree;
    NodeMap& m_threads = m_tree.mapOf_i(top_node_type::THREAD);
    std::vector<TNode::UnsortedChildren> m_unsorted;
    std::vector<LateThread> m_late;
    pw_u64_t m_highestKey = 0;
    Processor m_last;
    pw_u64_t m_coreKey = 0;
    TNode* m_core = nullptr;
};

void TopTree::buildTopology(std::string_view text, std::size_t coresPerModule) {
    Builder builder(*this, text.size() / c_usualRecordSize);
    IdScanner scanner(text);
    Processor processor;
    std::size_t records = 0;
    std::size_t skipped = 0;
    std::size_t firstSkipped = 0;
    while (readProcessor(scanner, processor)) {
        ++records;
        if (processor.thread < 0 || processor.package < 0 || processor.core < 0) {
            firstSkipped = skipped == 0 ? records : firstSkipped;
            ++skipped;
            continue;
        }
        if (coresPerModule != 0) {
            processor.module = static_cast<int>(static_cast<std::size_t>(processor.core) / coresPerModule);
        }
        if (processor.module != c_absentId && processor.die != c_absentId) {
            reportModuleAndDie();
            processor.die = c_absentId;
        }
        builder.add(processor);
    }
    if (skipped != 0) {
        logWarning(
            "WARNING: left out %zu processor(s) of the topology text with a negative thread, package or "
            "core id, the first is number %zu\n",
            skipped, firstSkipped);
    }
    builder.finish();
    dumpPackages();
}

} // namespace pwr
