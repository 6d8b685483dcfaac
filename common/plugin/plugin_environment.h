#pragma once

#include "common/driver_interface.h"
#include "common/export.h"
#include "common/plugin/logger.h"

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pwr {
class TWClockSource;
}

/// What the host, the library and every plug-in share: loggers and verbosity, the default clock, the
/// writer stream, driver handles, and the registries of power-state events and telemetry endpoints.
/// The library holds the one instance that everybody uses, behind g_pluginEnvironment; it is usable
/// before main(), whatever the order in which modules are initialised.
/// Ownership: everything handed over by pointer stays the host's.
/// Threads:   no lock. The host fills it before plug-ins run; logMessage() alone may be called from
///            any thread, so loggers and verbosity are set before threads start.
class KRCOMMON_API PluginEnvironment {
public:
    constexpr PluginEnvironment() = default;
    ~PluginEnvironment();
    PluginEnvironment(const PluginEnvironment&) = delete;
    PluginEnvironment& operator=(const PluginEnvironment&) = delete;

    pwr::PWLogLevel getVerbosity() const { return m_verbosity; }
    /// Levels above WARNING are stored as WARNING: debug output is switched on by tag. A level below
    /// FATAL silences everything.
    void setVerbosity(pwr::PWLogLevel level);

    /// The error logger for FATAL and ERROR, the debug logger for every other level; may be null.
    pwr::Logger* getLogger(pwr::PWLogLevel level) const;
    /// "FATAL", "ERROR", "WARNING", "DEBUG", and "INFO" for every other number.
    static const char* getLoggerPrefix(pwr::PWLogLevel level);

    pwr::Logger* getErrorLogger() const { return m_errorLogger; }
    void setErrorLogger(pwr::Logger* logger) { m_errorLogger = logger; }
    pwr::Logger* getDebugLogger() const { return m_debugLogger; }
    void setDebugLogger(pwr::Logger* logger) { m_debugLogger = logger; }
    /// A sink that discards what it is given.
    pwr::Logger* getNullLogger() const { return m_nullLogger; }
    void setNullLogger(pwr::Logger* logger) { m_nullLogger = logger; }
    /// Where formatted result data is written.
    pwr::Logger* getDataOutputHandle() const { return m_dataOutputHandle; }
    void setDataOutputHandle(pwr::Logger* logger) { m_dataOutputHandle = logger; }
    /// The preset file output if one was set, whatever the name; otherwise a new FileLogger on the
    /// name, which is not kept and belongs to the caller. Null for a null name.
    pwr::Logger* getFileOutputHandle(const char* name) const;
    void setFileOutputHandle(pwr::Logger* logger) { m_fileOutputHandle = logger; }

    /// Debug logging is switched on for exactly the tags added here; see logTrace().
    void addCondLogTagForDebugLogging(const std::string& tag);
    bool isDebugLoggingEnabledFor(const std::string& tag) const;

    /// Keeps a copy of the text for the host to print later; a null text is ignored.
    void queueMessage(const char* text);
    /// The queue itself, oldest first, to be printed and drained by the host.
    std::deque<std::string>& getQueuedMessages();

    pwr::TWClockSource* getDefaultClock() const { return m_defaultClock; }
    void setDefaultClock(pwr::TWClockSource* clock) { m_defaultClock = clock; }
    /// Stores the default clock's frequency, and its ratio to the time-stamp counter's; both in MHz.
    void setDefaultClockToTSCRatio(float clockMHz, float tscMHz);
    float getDefaultClockToTSCRatio() const { return m_defaultClockToTSCRatio; }
    /// 0 until setDefaultClockToTSCRatio().
    float getDefaultClockMHz() const { return m_defaultClockMHz; }
    /// Seconds of a count of default-clock ticks, all in single precision: the ticks divided by the
    /// frequency in MHz, then by a million. Infinity or NaN while the frequency is unset.
    float getSecFromTimestamp(pw_u64_t ticks) const;

    /// Untyped driver handles; all bits are set (no valid handle) until the host sets them.
    void* getTarnwellDrvHandle() const;
    void setTarnwellDrvHandle(void* handle);
    void* getQmonDrvHandle() const;
    void setQmonDrvHandle(void* handle);
    pw_u32_t getTarnwellDrvVersion() const { return m_tarnwellDrvVersion; }
    void setTarnwellDrvVersion(pw_u32_t version) { m_tarnwellDrvVersion = version; }
    /// Registration of the trace driver is asked for, and its feature is on; neither can be undone.
    void setQmonEnable();
    bool isQmonRegister() const;
    void setQmonFeatureEnabled();
    bool isQmonFeatureEnabled() const;

    /// Stored untyped, so that plug-ins need not see the type: the WriterStream.
    void* getWriterStream() const { return m_writerStream; }
    void setWriterStream(void* stream) { m_writerStream = stream; }
    /// The entity topology of the machine; null means no topology.
    void* getTopologyManager() const { return m_topologyManager; }
    void setTopologyManager(void* topology) { m_topologyManager = topology; }
    /// The topology captured before the collection started.
    void* getPreCollectionTopology() const { return m_preCollectionTopology; }
    void setPreCollectionTopology(void* topology) { m_preCollectionTopology = topology; }

    /// The prefix of the name of every result file.
    void setResultFilePrefix(const std::string& prefix);
    const std::string& getResultFilePrefix() const;
    /// Set once a hibernation was seen, and never cleared.
    void setHybernationEventDetected() { m_hybernationEventDetected = true; }
    bool getHybernationEventDetected() const { return m_hybernationEventDetected; }
    /// Names of metrics that the user switched on; compared exactly.
    void insertMetricSwitch(const std::string& name);
    bool hasMetricSwitch(const std::string& name) const;

    /// The folder of the module that holds the library's code, with a separator at the end; "" until
    /// setTarnwellDirectory() found it. That call also puts its "plugins" folder on the search path
    /// for modules, where the platform has one. On failure it logs an error and changes nothing.
    const std::string& getTarnwellDirectory() const;
    void setTarnwellDirectory();

    /// Power states of the machine, each from a timestamp (default-clock ticks) on; state 1 is
    /// running, and is assumed before the first event.
    void addSystemStateEvent(pw_u64_t timestamp, pw_u32_t state);
    const std::map<pw_u64_t, pw_u32_t>& getSystemStateEvents() const;
    void removeLastSystemStateEvent();
    /// To be called for each sample of an identity: whether the machine was reset since the one
    /// before, in which case the reset is recorded with the state. Never for the first sample.
    bool checkAndRecordReset(id_config_t id, pw_u64_t timestamp);
    bool checkResetOccurred() const;
    /// The state recorded at a reset of this identity at this time, 0 when none was recorded.
    pw_u32_t isSystemReset(pw_u8_t plugin, pw_u8_t metric, pw_u8_t message, pw_u64_t timestamp) const;
    /// The span (start, end) of the last non-running state known at a time, or (0, 0).
    std::pair<pw_u64_t, pw_u64_t> getLastResetEvent(pw_u64_t timestamp) const;
    void addTAFDevResetEvent(pw_u64_t timestamp, pw_u32_t device);
    /// The devices reset exactly at the message's time; null when there are none.
    const std::vector<pw_u32_t>* getTAFDevResetsForMsg(const tw_driver_msg* message) const;

    /// The telemetry endpoints in loading order. Of two records with one endpoint id the later counts,
    /// but both stay in the list of their GUID. Look-ups give copies: 0, "", empty or an all-zero
    /// record for what is unknown.
    void addLoadedTAF(const _tw_aggregator_info& info);
    std::set<pw_u32_t> getLoadedTAFGUIDs() const;
    std::vector<_tw_aggregator_info> getLoadedTAFEndpoints(pw_u32_t guid) const;
    _tw_aggregator_info getLoadedTAFEndpoint(pw_u16_t endpointId) const;
    pw_u16_t getLoadedTAFCollectionType(pw_u32_t guid) const;
    std::map<pw_u16_t, _tw_aggregator_info> getLoadedAggrTelemInfo() const;

    /// The GUIDs that a platform's telemetry may carry. A platform without any gets those of the
    /// first name that contains the asked name and a hyphen.
    void addTAFPlatformGUID(const std::string& platform, pw_u32_t guid);
    std::vector<pw_u32_t> getTAFPlatformGUIDs(const std::string& platform) const;
    pw_u32_t getTAFPlatformGUID(pw_u16_t endpointId) const;
    static pw_u32_t getTAFPlatformGUID(const _tw_aggregator_info* info);
    /// An unknown GUID gives "" and is entered with that name.
    std::string getTAFPlatformName(pw_u32_t guid);

    /// The GUID to use in place of a real one; 0 when there is none.
    void setTAFEmulatedGUID(pw_u32_t guid, pw_u32_t emulatedGuid);
    pw_u32_t getTAFEmulatedGUID(pw_u32_t guid) const;
    /// Replaces the deprecated GUIDs of one name; the getter joins all, in the order of the names.
    void setDeprecatedTAFGUIDs(const std::string& name, const std::vector<pw_u32_t>& guids);
    std::vector<pw_u32_t> getDeprecatedTAFGUIDs() const;

private:
    struct Registries;

    pw_u32_t getCurrentSystemState(pw_u64_t timestamp) const;
    bool checkPendingSystemStateEvent(pw_u64_t from, pw_u64_t to) const;
    Registries& registries_i() const;

    pwr::PWLogLevel m_verbosity = static_cast<pwr::PWLogLevel>(1);
    pwr::Logger* m_errorLogger = nullptr;
    pwr::Logger* m_debugLogger = nullptr;
    pwr::Logger* m_nullLogger = nullptr;
    pwr::Logger* m_dataOutputHandle = nullptr;
    pwr::Logger* m_fileOutputHandle = nullptr;
    std::ostream* m_ownedStream = nullptr;
    pwr::TWClockSource* m_defaultClock = nullptr;
    void* m_writerStream = nullptr;
    void* m_topologyManager = nullptr;
    void* m_preCollectionTopology = nullptr;
    std::uintptr_t m_tarnwellDrvHandle = UINTPTR_MAX;
    std::uintptr_t m_qmonDrvHandle = UINTPTR_MAX;
    pw_u32_t m_tarnwellDrvVersion = 0;
    float m_defaultClockToTSCRatio = 1.0F;
    float m_defaultClockMHz = 0.0F;
    pw_u8_t m_traceFlags = 0;
    bool m_hybernationEventDetected = false;
    /// Texts and containers, made when first asked for: so the object needs no code to run before it
    /// is used, and a static initialiser of any module may use it.
    mutable Registries* m_registries = nullptr;
};

extern KRCOMMON_API PluginEnvironment* g_pluginEnvironment;
