#include "common/plugin/logger.h"
#include "common/topology/id_scanner.h"
#include "common/topology/path_key.h"
#include "common/topology/top_tree.h"

#include <atomic>

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
        NodeMap& cores = m_tree.mapOf_i(top_node_type::CORE);
        cores.reserve(cores.size() + processors / c_usualThreadsPerCore);
    }

    void add(const Processor& processor) {
        // Threads of one core mostly stand together.
        if (m_core == nullptr || !isSameCore_i(processor)) {
            findCore_i(processor);
            m_last = processor;
        }
        TNode*& thread = m_threads.findOrInsert(pathKey(m_coreKey, processor.thread));
        if (thread == nullptr) {
            thread = &m_tree.m_nodes.emplace_back(processor.thread, top_node_type::THREAD);
            m_core->addChild_i(*thread, m_unsorted);
        }
    }

    /// Puts maps and children in order and numbers the tree.
    void finish() {
        for (NodeMap& map : m_tree.m_maps) {
            map.settle();
        }
        for (const TNode::UnsortedChildren& unsorted : m_unsorted) {
            unsorted.node->sortChildren_i(unsorted.sortedCount);
        }
        m_tree.number_i();
    }

private:
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
