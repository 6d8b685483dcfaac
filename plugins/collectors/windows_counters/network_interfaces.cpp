#include "plugins/collectors/windows_counters/counter_source.h"

#include <algorithm>
#include <array>

// The order is the system's own: its network headers need those before them.
#include <winsock2.h>

#include <ws2ipdef.h>

#include <iphlpapi.h>
#include <netioapi.h>

namespace windows_counters {

namespace {

struct TableCloser {
    void operator()(MIB_IF_TABLE2* table) const { FreeMibTable(table); }
};

std::string narrow(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) {
        return {};
    }
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back(); // the end mark
    return result;
}

class NetworkInterfaces : public CounterSource {
public:
    bool refresh() override {
        MIB_IF_TABLE2* table = nullptr;
        if (GetIfTable2(&table) != NO_ERROR) {
            m_table.reset();
            return false;
        }
        m_table.reset(table);
        return true;
    }

    std::vector<Owner> owners() const override {
        std::vector<Owner> owners;
        for (const MIB_IF_ROW2& row : rows_i()) {
            // A filter counts what the interface below it counts already.
            const bool isUsed = row.InOctets != 0 || row.OutOctets != 0;
            if (isUsed && row.InterfaceAndOperStatusFlags.FilterInterface == 0) {
                const std::string alias = narrow(row.Alias);
                owners.push_back({row.InterfaceLuid.Value, alias.empty() ? narrow(row.Description) : alias});
            }
        }
        return owners;
    }

    std::span<const char* const> counters() const override {
        static constexpr std::array<const char*, 4> NAMES{"bytes-in", "bytes-out", "packets-in",
                                                          "packets-out"};
        return NAMES;
    }

    bool value(std::uint64_t key, std::size_t counter, std::uint64_t& out) const override {
        const auto rows = rows_i();
        const auto row = std::find_if(rows.begin(), rows.end(),
                                      [key](const MIB_IF_ROW2& r) { return r.InterfaceLuid.Value == key; });
        if (row == rows.end()) {
            return false;
        }
        const std::array<std::uint64_t, 4> counts{row->InOctets, row->OutOctets,
                                                  row->InUcastPkts + row->InNUcastPkts,
                                                  row->OutUcastPkts + row->OutNUcastPkts};
        out = counts.at(counter);
        return true;
    }

private:
    std::span<const MIB_IF_ROW2> rows_i() const {
        return m_table ? std::span<const MIB_IF_ROW2>(&m_table->Table[0], m_table->NumEntries)
                       : std::span<const MIB_IF_ROW2>();
    }

    std::unique_ptr<MIB_IF_TABLE2, TableCloser> m_table;
};

} // namespace

std::unique_ptr<CounterSource> makeNetworkInterfaces() {
    return std::make_unique<NetworkInterfaces>();
}

} // namespace windows_counters
