#include "common/plugin/plugin_loader.h"

#include "common/config/config_text_reader.h"
#include "common/config/tw_configfile_parser.h"
#include "common/platform/file.h"
#include "common/platform/module.h"
#include "common/platform/raw_file.h"
#include "common/plugin/collector_plugin.h"
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

constexpr const char* MANIFEST_SUFFIX = ".manifest";

std::string joined(const std::set<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text.empty() ? "none" : text;
}

std::set<std::string> typesOf(const CollectorPlugin& collector) {
    const std::vector<std::string> types = collector.getCollectorTypes();
    return {types.begin(), types.end()};
}

/// Tells the parser whom the types belong to; the first type that it refuses, or "".
std::string registerCollector(Plugin& plugin) {
    auto* const collector = dynamic_cast<CollectorPlugin*>(&plugin);
    if (collector == nullptr) {
        return {};
    }
    for (const std::string& type : typesOf(*collector)) {
        if (TWConfigFileParser::instance()->registerCollectorType(type, collector) != 0) {
            TWConfigFileParser::instance()->forgetCollector(collector);
            return type;
        }
    }
    return {};
}

void forgetCollector(const Plugin& plugin) {
    const auto* const collector = dynamic_cast<const CollectorPlugin*>(&plugin);
    if (collector != nullptr && TWConfigFileParser::current() != nullptr) {
        TWConfigFileParser::current()->forgetCollector(collector);
    }
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
        if (endsWith(name, MANIFEST_SUFFIX) && !readManifest_i(folder + PathOps::getPathSeparator() + name)) {
            result = 1;
        }
    }
    for (const std::string& name : names) {
        if (endsWith(name, platform::moduleSuffix()) &&
            loadFile(folder + PathOps::getPathSeparator() + name) != 0) {
            result = 1;
        }
    }
    return result;
}

bool PluginLoader::readManifest_i(const std::string& path) {
    const std::string name = stemOf(path);
    std::string text;
    std::string error;
    PluginManifest manifest;
    if (!readConfigFileText(path, text)) {
        error = "its manifest " + path + " cannot be read";
    } else if (manifest.parse(name, text, error) == 0) {
        for (const auto& [type, categories] : manifest.types) {
            TWConfigFileParser::instance()->registerCollectorType(type, nullptr, categories);
        }
        m_manifests.insert_or_assign(name, std::move(manifest));
        return true;
    }
    PluginFile& file = m_files.emplace_back();
    file.path = path;
    file.name = name;
    file.error = "plug-in " + name + ": " + error;
    return false;
}

int PluginLoader::loadFile(const std::string& path) {
    const std::string stem = stemOf(path);
    const std::string manifest = path.substr(0, path.rfind('.')) + MANIFEST_SUFFIX;
    if (m_manifests.count(stem) == 0 && platform::pathExists(manifest)) {
        readManifest_i(manifest);
    }
    PluginFile& file = m_files.emplace_back();
    file.path = path;
    file.name = stem;
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
    if (!create_i(file, *info) || !checkManifest_i(file, stemOf(file.path))) {
        return false;
    }
    if (const std::string type = registerCollector(*file.plugin); !type.empty()) {
        file.error = "its collector type " + type + " is served by another plug-in or is no word for one";
        return false;
    }
    return true;
}

/// Makes the object, gives it its options and initialises it.
bool PluginLoader::create_i(PluginFile& file, const KRPluginInfo& info) const {
    if (!callGuarded("create", file.error, [&] {
            file.plugin.reset(info.create());
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

/// Whether the module is what its manifest says, which others have gone by already.
bool PluginLoader::checkManifest_i(PluginFile& file, const std::string& stem) const {
    const auto manifest = m_manifests.find(stem);
    if (manifest == m_manifests.end()) {
        return true;
    }
    if (manifest->second.kind != file.kind) {
        file.error = "its manifest names another kind of plug-in";
        return false;
    }
    std::set<std::string> declared;
    for (const auto& [type, categories] : manifest->second.types) {
        declared.insert(type);
    }
    std::set<std::string> served;
    const auto* const collector = dynamic_cast<const CollectorPlugin*>(file.plugin.get());
    if (collector != nullptr && !callGuarded("getCollectorTypes", file.error, [&] {
            served = typesOf(*collector);
            return 0;
        })) {
        return false;
    }
    if (served != declared) {
        file.error = "it serves the collector types " + joined(served) + ", its manifest names " +
                     joined(declared) + ": install both from one release";
    }
    return served == declared;
}

void PluginLoader::unload() {
    while (!m_files.empty()) {
        PluginFile& file = m_files.back();
        std::string error;
        if (file.plugin) {
            forgetCollector(*file.plugin);
        }
        if (file.plugin && !callGuarded("shutdown", error, [&] { return file.plugin->shutdown(); })) {
            logWarning("WARNING: plug-in %s: %s\n", file.name.c_str(), error.c_str());
        }
        m_files.pop_back();
    }
}

} // namespace pwr
