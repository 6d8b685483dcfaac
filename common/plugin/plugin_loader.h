#pragma once

#include "common/export.h"
#include "common/plugin/plugin.h"
#include "common/plugin/plugin_manifest.h"
#include "common/version.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Raised whenever a plug-in built against the headers of before could no longer work.
inline constexpr std::uint32_t KR_PLUGIN_INTERFACE_VERSION = 3;

/// What a module holds. Persistent: never renumber.
inline constexpr std::uint32_t KR_PLUGIN_COLLECTOR = 1;
inline constexpr std::uint32_t KR_PLUGIN_METRIC = 2;
inline constexpr std::uint32_t KR_PLUGIN_WRITER = 3;

/// A module's manifest, which its one C symbol krPluginInfo() gives. Plain types only, so that it can be
/// read before anything is known of the module; size and interfaceVersion never move.
/// All texts live as long as the module. create() gives an object that the loader destroys.
extern "C" struct KRPluginInfo {
    std::uint32_t size;
    std::uint32_t interfaceVersion;
    const char* name;
    const char* libraryVersion;
    const char* compilerAbi;
    std::uint32_t kind;
    Plugin* (*create)();
};

extern "C" using KRPluginInfoFunction = const KRPluginInfo * (*)();

namespace pwr {

/// The text that must be equal in library and plug-in: what their compilers make of the same headers, as
/// "itanium-1016-strings1-value72". The size of the value type stands for all settings that change the
/// layout of classes.
template <std::size_t ValueSize> struct PluginAbi {
#if defined(__GXX_ABI_VERSION)
    static constexpr std::size_t CLASSES = __GXX_ABI_VERSION;
#else
    static constexpr std::size_t CLASSES = 0;
#endif
#if defined(_GLIBCXX_USE_CXX11_ABI)
    static constexpr std::size_t STRINGS = _GLIBCXX_USE_CXX11_ABI;
#else
    static constexpr std::size_t STRINGS = 2;
#endif

    static constexpr std::array<char, 64> make() {
        std::array<char, 64> made{};
        std::size_t length = 0;
        const auto append = [&](std::string_view word, std::size_t number) {
            for (const char character : word) {
                made[length++] = character;
            }
            std::size_t unit = 1;
            while (number / unit >= 10) {
                unit *= 10;
            }
            for (; unit > 0; unit /= 10) {
                made[length++] = static_cast<char>('0' + number / unit % 10);
            }
        };
        append(CLASSES > 0 ? "itanium-" : "other-", CLASSES);
        append("-strings", STRINGS);
        append("-value", ValueSize);
        return made;
    }
    static constexpr std::array<char, 64> text = make();
};

/// One module file that the loader met: a plug-in, or the reason why it is none.
struct PluginFile {
    std::string path;
    std::string name;           ///< the manifest's, or the file's while that is not known
    std::string libraryVersion; ///< of the headers it was built against; "" when not known
    std::uint32_t kind = 0;
    std::unique_ptr<Plugin> plugin; ///< null when there is an error
    std::string error;              ///< for the user, without line end; "" when it is loaded
};

/// Loads plug-in modules and owns the objects that they make. A module that is missing something, was
/// built for another interface or throws is an entry with an error text: the others go on.
/// The hardware description's parser gets to know the collector types of all manifests, and the collector of each
/// type once its module is loaded; unload() makes it forget the collectors again.
/// Modules stay loaded for the life of the process, because handles and formatters have their code in
/// them. Threads: the host's thread. Objects are shut down and destroyed in reverse order of loading.
class KRCOMMON_API PluginLoader {
public:
    PluginLoader();
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    /// An option for every plug-in that is loaded from now on: given to it before initialize(), because
    /// what a plug-in offers may depend on it. A plug-in that does not know the key is not asked again.
    void setOption(const std::string& key, const std::string& value) { m_options.emplace_back(key, value); }

    /// Reads all manifests of a folder, then loads every module in order of file names, and initialises each. 1 when
    /// the folder cannot be listed or anything failed.
    int loadFolder(const std::string& folder);
    /// Loads one module; its manifest lies beside it. 1 when it failed; its entry tells why. A collector without a
    /// manifest brings its types along; one with a manifest must serve exactly those that stand there.
    int loadFile(const std::string& path);

    /// All files in order of loading, failed ones included.
    const std::vector<PluginFile>& getFiles() const { return m_files; }
    /// The manifests by the names of their files, with or without a module.
    const std::map<std::string, PluginManifest>& getManifests() const { return m_manifests; }
    /// The loaded plug-ins of one class (CollectorPlugin, MetricPlugin, WriterPlugin), in order.
    template <typename PluginClass> std::vector<PluginClass*> getPlugins() const {
        std::vector<PluginClass*> found;
        for (const PluginFile& file : m_files) {
            if (auto* const plugin = dynamic_cast<PluginClass*>(file.plugin.get())) {
                found.push_back(plugin);
            }
        }
        return found;
    }

    /// Shuts down and destroys all plug-ins, the last loaded first, and forgets all files.
    void unload();

private:
    bool readManifest_i(const std::string& path);
    bool load_i(PluginFile& file) const;
    bool create_i(PluginFile& file, const KRPluginInfo& info) const;
    bool checkManifest_i(PluginFile& file, const std::string& stem) const;

    std::vector<std::pair<std::string, std::string>> m_options;
    std::map<std::string, PluginManifest> m_manifests;
    std::vector<PluginFile> m_files;
};

} // namespace pwr

/// Makes a module a plug-in: defines its one symbol, with a manifest that names it and makes an object of
/// the class (which needs a default constructor). Stands once in a module, at top level, in a file that
/// includes "common/values/data.h".
#define KRCOMMON_PLUGIN(pluginName, pluginKind, PluginClass)                                                 \
    extern "C" KRCOMMON_PLUGIN_EXPORT const KRPluginInfo* krPluginInfo() {                                   \
        static constexpr KRPluginInfo info = {                                                               \
            sizeof(KRPluginInfo),                                                                            \
            KR_PLUGIN_INTERFACE_VERSION,                                                                     \
            pluginName,                                                                                      \
            KRCOMMON_VERSION,                                                                                \
            ::pwr::PluginAbi<sizeof(::pwr::Data)>::text.data(),                                              \
            pluginKind,                                                                                      \
            []() -> Plugin* { return new PluginClass(); },                                                   \
        };                                                                                                   \
        return &info;                                                                                        \
    }                                                                                                        \
    static_assert(true, "a semicolon follows the macro")
