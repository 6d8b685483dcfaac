#include "common/plugin/plugin_environment.h"

#include "common/platform/file.h"
#include "common/platform/module.h"
#include "common/plugin/environment_registries.h"

#include <memory>

namespace {

constinit PluginEnvironment theEnvironment;

constexpr pw_u8_t TRACE_REGISTRATION = 0x01;
constexpr pw_u8_t TRACE_FEATURE = 0x02;

void* handleOf(std::uintptr_t bits) {
    return reinterpret_cast<void*>(bits); // NOLINT(performance-no-int-to-ptr): "no handle" is a number
}

} // namespace

constinit PluginEnvironment* g_pluginEnvironment = &theEnvironment;

PluginEnvironment::~PluginEnvironment() {
    delete m_ownedStream;
    delete m_registries;
    // A static object of another module may still look here after the library's own are gone.
    m_ownedStream = nullptr;
    m_registries = nullptr;
}

PluginEnvironment::Registries& PluginEnvironment::registries_i() const {
    if (m_registries == nullptr) {
        m_registries = new Registries;
    }
    return *m_registries;
}

void PluginEnvironment::setVerbosity(pwr::PWLogLevel level) {
    m_verbosity = static_cast<int>(level) > static_cast<int>(pwr::PWLogLevel::WARNING)
                      ? pwr::PWLogLevel::WARNING
                      : level;
}

pwr::Logger* PluginEnvironment::getLogger(pwr::PWLogLevel level) const {
    const bool severe = level == pwr::PWLogLevel::FATAL || level == pwr::PWLogLevel::ERROR;
    return severe ? m_errorLogger : m_debugLogger;
}

const char* PluginEnvironment::getLoggerPrefix(pwr::PWLogLevel level) {
    switch (level) {
    case pwr::PWLogLevel::FATAL: return "FATAL";
    case pwr::PWLogLevel::ERROR: return "ERROR";
    case pwr::PWLogLevel::WARNING: return "WARNING";
    case pwr::PWLogLevel::DEBUG: return "DEBUG";
    case pwr::PWLogLevel::INFO: break;
    }
    return "INFO";
}

pwr::Logger* PluginEnvironment::getFileOutputHandle(const char* name) const {
    if (name == nullptr) {
        return nullptr;
    }
    return m_fileOutputHandle != nullptr ? m_fileOutputHandle
                                         : std::make_unique<pwr::FileLogger>(name).release();
}

void PluginEnvironment::addCondLogTagForDebugLogging(const std::string& tag) {
    registries_i().condLogTags.insert(tag);
}

bool PluginEnvironment::isDebugLoggingEnabledFor(const std::string& tag) const {
    return m_registries != nullptr && m_registries->condLogTags.count(tag) != 0;
}

void PluginEnvironment::queueMessage(const char* text) {
    if (text != nullptr) {
        registries_i().queuedMessages.emplace_back(text);
    }
}

std::deque<std::string>& PluginEnvironment::getQueuedMessages() {
    return registries_i().queuedMessages;
}

void PluginEnvironment::setDefaultClockToTSCRatio(float clockMHz, float tscMHz) {
    m_defaultClockMHz = clockMHz;
    m_defaultClockToTSCRatio = clockMHz / tscMHz;
}

float PluginEnvironment::getSecFromTimestamp(pw_u64_t ticks) const {
    // Two divisions, both in single precision: reports of old collections were made this way.
    const float microseconds = static_cast<float>(ticks) / m_defaultClockMHz;
    return microseconds / 1000000.0F;
}

void* PluginEnvironment::getTarnwellDrvHandle() const {
    return handleOf(m_tarnwellDrvHandle);
}

void PluginEnvironment::setTarnwellDrvHandle(void* handle) {
    m_tarnwellDrvHandle = reinterpret_cast<std::uintptr_t>(handle);
}

void* PluginEnvironment::getQmonDrvHandle() const {
    return handleOf(m_qmonDrvHandle);
}

void PluginEnvironment::setQmonDrvHandle(void* handle) {
    m_qmonDrvHandle = reinterpret_cast<std::uintptr_t>(handle);
}

void PluginEnvironment::setQmonEnable() {
    m_traceFlags = static_cast<pw_u8_t>(m_traceFlags | TRACE_REGISTRATION);
}

bool PluginEnvironment::isQmonRegister() const {
    return (m_traceFlags & TRACE_REGISTRATION) != 0;
}

void PluginEnvironment::setQmonFeatureEnabled() {
    m_traceFlags = static_cast<pw_u8_t>(m_traceFlags | TRACE_FEATURE);
}

bool PluginEnvironment::isQmonFeatureEnabled() const {
    return (m_traceFlags & TRACE_FEATURE) != 0;
}

void PluginEnvironment::setResultFilePrefix(const std::string& prefix) {
    registries_i().resultFilePrefix = prefix;
}

const std::string& PluginEnvironment::getResultFilePrefix() const {
    return registries_i().resultFilePrefix;
}

void PluginEnvironment::insertMetricSwitch(const std::string& name) {
    registries_i().metricSwitches.insert(name);
}

bool PluginEnvironment::hasMetricSwitch(const std::string& name) const {
    return m_registries != nullptr && m_registries->metricSwitches.count(name) != 0;
}

const std::string& PluginEnvironment::getTarnwellDirectory() const {
    return registries_i().tarnwellDirectory;
}

void PluginEnvironment::setTarnwellDirectory() {
    std::string error;
    // An address of the library's code, not of the program's: what ships with the library lies beside it.
    const std::string path =
        pwr::platform::modulePath(reinterpret_cast<const void*>(&pwr::logMessage), error);
    const char separator = pwr::platform::pathSeparator();
    const std::size_t last = path.rfind(separator);
    if (last == std::string::npos) {
        pwr::logError("ERROR: Cannot get full pathname for tarnwell executable. Error: %s\n", error.c_str());
        return;
    }
    const std::string folder = path.substr(0, last);
    registries_i().tarnwellDirectory = folder + separator;
    pwr::platform::addModuleSearchFolders(folder, folder + separator + "plugins");
}
