#include "common/plugin/plugin_loader.h"

#include "common/platform/module.h"
#include "common/platform/raw_file.h"
#include "common/plugin/logger.h"
#include "common/pw_utils.h"
#include "common/values/data.h"

#include <algorithm>
#include <cstring>
#include <exception>

namespace pwr {

namespace {

constexpr const char* SYMBOL = "krPluginInfo";
constexpr const char* LIBRARY_ABI = PluginAbi<sizeof(Data)>::text.data();

std::string textOrNone(const char* text) {
    return text == nullptr ? "unknown" : text;
}

/// Runs code of a plug-in that gives 0 on success. What else it gives, or throws, ends here as the words in
/// `error`: "initialize() failed with 7", "throws in create(): why". Whether there is none.
template <typename Call> bool callGuarded(const char* what, std::string& error, Call&& call) {
    const std::string name = std::string(what) + "()";
    try {
        const int result = call();
        if (result == 0) {
            return true;
        }
        error = name + " failed with " + std::to_string(result);
    } catch (const std::exception& exception) {
        error = "throws in " + name + ": " + exception.what();
    } catch (const char* text) {
        error = "throws in " + name + ": " + textOrNone(text);
    } catch (...) {
        error = "throws in " + name;
    }
    return false;
}

std::string numbersApart(const char* of, std::uint32_t theirs, std::uint32_t ours) {
    return std::string("built for ") + of + " " + std::to_string(theirs) + ", this is " +
           std::to_string(ours) + ": rebuild it";
}

/// Why a manifest does not fit this library; "" when it does. What stands behind the interface version is
/// read only when that fits, and the texts only when the size does.
std::string misfitOf(const KRPluginInfo& info) {
    if (info.interfaceVersion != KR_PLUGIN_INTERFACE_VERSION) {
        return numbersApart("interface", info.interfaceVersion, KR_PLUGIN_INTERFACE_VERSION);
    }
    if (info.size != sizeof(KRPluginInfo)) {
        return numbersApart("a manifest of size", info.size, sizeof(KRPluginInfo));
    }
    if (info.compilerAbi == nullptr || std::strcmp(info.compilerAbi, LIBRARY_ABI) != 0) {
        return "built as " + textOrNone(info.compilerAbi) + ", this is " + LIBRARY_ABI + ": rebuild it";
    }
    if (info.name == nullptr || *info.name == '\0') {
        return "its manifest has no name";
    }
    if (info.create == nullptr) {
        return "its manifest has no create()";
    }
    if (info.kind < KR_PLUGIN_COLLECTOR || info.kind > KR_PLUGIN_WRITER) {
        return "of the unknown kind " + std::to_string(info.kind);
    }
    return "";
}

const KRPluginInfo* manifestOf(const std::string& path, std::string& error) {
    void* const module = platform::loadModule(path, error);
    if (module == nullptr) {
        return nullptr;
    }
    const auto function = reinterpret_cast<KRPluginInfoFunction>(platform::findSymbol(module, SYMBOL));
    if (function == nullptr) {
        error = std::string("no plug-in: it has no symbol ") + SYMBOL;
        return nullptr;
    }
    const KRPluginInfo* info = nullptr;
    const bool returned = callGuarded(SYMBOL, error, [&] {
        info = function();
        return 0;
    });
    if (returned && info == nullptr) {
        error = "it has no manifest";
    }
    return info;
}

std::string stemOf(const std::string& path) {
    const std::string name = PathOps::getFilenameFromPath(path);
    return name.substr(0, name.rfind('.'));
}

bool endsWith(const std::string& name, const std::string& suffix) {
    return name.size() > suffix.size() &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

} // namespace

PluginLoader::PluginLoader() = default;

PluginLoader::~PluginLoader() {
    unload();
}

int PluginLoader::loadFolder(const std::string& folder) {
    std::vector<std::string> names;
    if (platform::listFolder(folder, names) != 0) {
        return 1;
    }
    std::sort(names.begin(), names.end());
    int result = 0;
    for (const std::string& name : names) {
        if (endsWith(name, platform::moduleSuffix()) &&
            loadFile(folder + PathOps::getPathSeparator() + name) != 0) {
            result = 1;
        }
    }
    return result;
}

int PluginLoader::loadFile(const std::string& path) {
    PluginFile& file = m_files.emplace_back();
    file.path = path;
    file.name = stemOf(path);
    if (load_i(file)) {
        return 0;
    }
    file.plugin.reset();
    file.error = "plug-in " + file.name + ": " + file.error;
    return 1;
}

/// Fills the entry; on false its error tells why, without naming the plug-in.
bool PluginLoader::load_i(PluginFile& file) const {
    const KRPluginInfo* const info = manifestOf(file.path, file.error);
    if (info == nullptr) {
        return false;
    }
    file.error = misfitOf(*info);
    if (!file.error.empty()) {
        return false;
    }
    file.name = info->name;
    file.libraryVersion = info->libraryVersion == nullptr ? "" : info->libraryVersion;
    file.kind = info->kind;
    if (!callGuarded("create", file.error, [&] {
            file.plugin.reset(info->create());
            return 0;
        })) {
        return false;
    }
    if (!file.plugin) {
        file.error = "create() made no object";
        return false;
    }
    return callGuarded("setOption", file.error,
                       [&] {
                           for (const auto& [key, value] : m_options) {
                               file.plugin->setOption(key, value); // an option is for those that know it
                           }
                           return 0;
                       }) &&
           callGuarded("initialize", file.error, [&] { return file.plugin->initialize(); });
}

void PluginLoader::unload() {
    while (!m_files.empty()) {
        PluginFile& file = m_files.back();
        std::string error;
        if (file.plugin && !callGuarded("shutdown", error, [&] { return file.plugin->shutdown(); })) {
            logWarning("WARNING: plug-in %s: %s\n", file.name.c_str(), error.c_str());
        }
        m_files.pop_back();
    }
}

} // namespace pwr
