#pragma once

#include "common/export.h"
#include "common/writer/table_class.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

class WriterPlugin;

namespace pwr {
class Metric;
class TableMessage;
class WriterMessage;
class WriterStreamHost;
} // namespace pwr

/// Hands every result to every writer plug-in, at once and on the caller's thread; it queues nothing.
/// Made and ended by pwr::WriterStreamHost. The set of plug-ins stays the host's: plug-ins that the host adds
/// later are served too. A copy shares the set; copies made on the heap end through WriterStreamHost::destroy.
/// Threads:  no lock; pushes come from one thread at a time.
/// Failure:  one plug-in's failure never keeps a message from the others.
class KRCOMMON_API WriterStream {
public:
    WriterStream(const WriterStream& other) = default;
    WriterStream& operator=(const WriterStream& other) = default;

    /// Delivers the message by its kind; the plug-ins' results are ignored. A table is emptied of its data
    /// afterwards (fields, entities and layout stay), so read its cells before the push.
    /// 0 when delivered; -1 without a plug-in set; 1 when a message of the table kind is no table.
    int pushMessage(pwr::WriterMessage& message);

    /// Delivers a metric with its current sampling point. 1 when it is null, when there is no plug-in set or
    /// when a plug-in refused it (the others still get it), else 0.
    int pushMessage(const pwr::Metric* metric);

    /// Delivers a new text message through the stream held by the environment, whichever stream this one is.
    /// Throws the character string "ERROR: Writer stream is not initialized" when the environment holds none.
    int pushTextMessage(const std::string& text);

    bool isSupportedTableClass(pwr::TableClass tableClass) const;

private:
    friend class pwr::WriterStreamHost;

    explicit WriterStream(const std::set<WriterPlugin*>* plugins);
    ~WriterStream();

    /// Counts the deliveries that are under way, also when a plug-in throws.
    struct CallCount {
        explicit CallCount(std::uint32_t& calls) : m_count(calls) { ++m_count; }
        ~CallCount() { --m_count; }
        CallCount(const CallCount&) = delete;
        CallCount& operator=(const CallCount&) = delete;
        std::uint32_t& m_count;
    };

    bool renewArray_i();
    template <class Operation> void forEach_i(Operation operation);
    template <class Message> void deliver_i(const Message* message);
    int pushByKind_i(pwr::WriterMessage& message);
    int pushTable_i(pwr::TableMessage* table);
    int flush();

    const std::set<WriterPlugin*>* m_plugins;
    std::set<pwr::TableClass> m_tableClasses;
    std::vector<WriterPlugin*> m_array; ///< the set's plug-ins, as long as the set cannot have changed
    std::uint64_t m_arrayChanges = 0;   ///< the census of writers that the array was made under; 0: none
    std::uint32_t m_calls = 0;          ///< deliveries under way
};
