#pragma once

#include "common/export.h"
#include "common/plugin/plugin.h"
#include "common/writer/table_class.h"

#include <deque>
#include <set>
#include <string>

namespace pwr {
class DataHandle;
class EntityHandle;
class IdMessage;
class Metric;
class MetricContainerInfoMessage;
class SystemMessage;
class SystemMetadata;
class TableMessage;
class TextMessage;
} // namespace pwr

/// Base of the plug-ins that write results. A writer overrides the writeMessage overloads of the kinds that it
/// renders, and flushResults(), which the host calls once at the end. A message is the sender's and is valid only
/// during the call; a table's data is gone afterwards, so a writer that orders tables copies what it needs.
/// Threads:  everything is called on the thread that pushes; no locks.
class KRCOMMON_API WriterPlugin : public Plugin {
public:
    explicit WriterPlugin(const std::string& name);
    ~WriterPlugin() override;

    /// As Plugin::addCapability; also notes the table classes that the capability's groups name
    /// ("table-class:summary", "table-class:over-time", "table-class:trace", "table-class:static-info").
    int addCapability(PluginCapability* capability) override;

    /// Writes out what is still held; 0, or nonzero when the results are not (wholly) written.
    virtual int flushResults() = 0;

    /// Writes an intermediate report of a running collection; false: this writer makes none.
    virtual bool flushContinuousResults(const pwr::SystemMetadata& metadata);

    /// The table classes noted by addCapability, for WriterStreamHost::addSupportedTableClass.
    const std::set<pwr::TableClass>& getTableClasses() const { return m_tableClasses; }

private:
    friend class WriterStream;

    // Each returns 0 for success; the base versions take nothing and say so with 0.
    virtual int writeMessage(const pwr::MetricContainerInfoMessage& message);
    virtual int writeMessage(const pwr::Metric& metric);
    virtual int writeMessage(const pwr::IdMessage& message);
    virtual int writeMessage(const pwr::SystemMessage& message);
    virtual int writeMessage(const pwr::TextMessage& message);
    virtual int writeMessage(const pwr::TableMessage& message);

protected:
    /// Replaces titles by the table's column titles, in the order of getTableColumns() (table_columns.h), each
    /// with its unit: "Min (MHz)". Prints any table; needs no knowledge of who made it.
    virtual void getColumnTitles(const pwr::TableMessage& table, std::deque<std::string>& titles) const;

    /// Replaces values by the texts of all cells, row after row (row-major): the number of columns is that of
    /// getColumnTitles(), rows stand in the table's entity order. Shared fields are repeated in every row, an
    /// unset cell is "<N/A>", an entity is given by its qualified name.
    virtual void getRowValues(const pwr::TableMessage& table, std::deque<std::string>& values) const;

    /// The title of a field's column, with unit; the row's entity does not matter (null is allowed).
    std::string getFieldNameFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle* entity,
                                       const pwr::DataHandle* field) const;

    /// The text of a cell; a null entity reads a shared field (or the only row of a table without entities).
    std::string getFieldValueFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle* entity,
                                        const pwr::DataHandle* field) const;

private:
    std::set<pwr::TableClass> m_tableClasses;
};
