#pragma once

#include "common/export.h"
#include "common/metadata/platform_metadata.h"
#include "common/pw_types.h"
#include "common/topology/top_tree.h"
#include "common/topology/topology_change.h"

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

namespace pwr {

/// The processor that a collection ran on: its family, model and stepping (FMS), its frequencies
/// in MHz, its topology, and the processors that came or went while collecting.
class KRCOMMON_API CPUMetadata : public PlatformMetadata {
public:
    float busFreq = 0.0F;           ///< bus (reference) frequency, MHz
    float lfmFreq = 0.0F;           ///< lowest operating frequency, MHz
    float hfmFreq = 0.0F;           ///< highest guaranteed operating frequency, MHz
    float baseOpFreq = 0.0F;        ///< base operating frequency, MHz
    pw_u32_t platformId = 0;        ///< platform id bits of the processor, 0 when unknown
    pw_u32_t microcodeRevision = 0; ///< revision of the processor's microcode, 0 when unknown

    CPUMetadata();

    pw_u8_t getFamily() const { return m_family; }
    pw_u8_t getModel() const { return m_model; }
    pw_u8_t getStepping() const { return m_stepping; }
    void setFMS(pw_u8_t family, pw_u8_t model, pw_u8_t stepping);

    /// Replaces the FMS by "family.model" or "family.model.stepping", numbers decimal or, where
    /// they contain "0x", hexadecimal; each is cut to 8 bits and a missing stepping is 0.
    /// False and a warning for any other text; nothing is changed then.
    bool setSpoofedFMS(const std::string& text);

    // Processors are compared by (family, model, stepping) only.
    bool operator<(const CPUMetadata& other) const { return fms_i() < other.fms_i(); }
    bool operator<=(const CPUMetadata& other) const { return fms_i() <= other.fms_i(); }
    bool operator==(const CPUMetadata& other) const { return fms_i() == other.fms_i(); }

    TopTree& getCPUTopology() { return m_topology; }
    const TopTree& getCPUTopology() const { return m_topology; }
    /// As TopTree::buildTopology and TopTree::buildHWQMapping, on this processor's topology.
    void buildTopology(const std::string& text, std::size_t coresPerModule);
    void buildHWQFeedbackMapping(const std::string& text);

    /// Processors that came or went, in the order of adding.
    const std::vector<TopologyChange>& getTopologyChanges() const { return m_topologyChanges; }
    void addTopologyChange(const TopologyChange& change);

    void serializePlatformMetadata(Serializer& out) const override;
    /// As the base says. A broken topology fails the object too: what stands behind it is not found.
    int deserializePlatformMetadata(Serializer& in) override;

protected:
    /// "family.model.stepping", unless there are specifier values. Also gives the processor a code name (metadata
    /// value "CODE-NAME") and its display name, where they are missing.
    int initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values) override;

private:
    std::tuple<pw_u8_t, pw_u8_t, pw_u8_t> fms_i() const { return {m_family, m_model, m_stepping}; }

    pw_u8_t m_family = 0;
    pw_u8_t m_model = 0;
    pw_u8_t m_stepping = 0;
    TopTree m_topology;
    std::vector<TopologyChange> m_topologyChanges;
};

} // namespace pwr
