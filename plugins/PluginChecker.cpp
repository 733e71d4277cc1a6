#include "plugins/PluginChecker.h"

#include <algorithm>
#include <functional>

#include "core/media/AppLocations.h"
#include "core/media/Factories.h"
#include "core/media/OglManager.h"
#include "core/media/PluginFactories.h"
#include "core/support/Constants.h"
#include "core/support/ExceptionText.h"
#include "core/support/Text.h"
#include "core/support/ioPath.h"
#include "reporting/Logging.h"

namespace Tarnex::Core::Utils {
namespace {

using Loader = std::function<void(const std::string&)>;

/// Empty for an unknown factory.
Loader GetLoader(const std::string& factory) {
    if (factory == CODEC_FACTORY) {
        return [](const std::string& plugin) { Proc::CodecFactoryImpl::TryToLoadModule(plugin); };
    }
    if (factory == EFFECT_FACTORY) {
        return [](const std::string& plugin) { Proc::EffectFactory::TryToLoadModule(plugin); };
    }
    if (factory == FILTER_FACTORY) {
        return [](const std::string& plugin) { Proc::FilterFactory::TryToLoadModule(plugin); };
    }
    if (factory == ANALYZER_FACTORY) {
        return [](const std::string& plugin) { Proc::AnalyzerFactory::TryToLoadModule(plugin); };
    }
    if (factory == MUXER_FACTORY) {
        return [](const std::string& plugin) { Proc::MuxerFactoryImpl::TryToLoadModule(plugin); };
    }
    if (factory == PARSER_FACTORY) {
        return [](const std::string& plugin) { Proc::ParserFactoryImpl::TryToLoadModule(plugin); };
    }
    if (factory == OGL_MANAGER) {
        // Needs no module from a list: it shows whether this machine's OpenGL starts and stops.
        return [](const std::string&) {
            Ogl::OglManager& manager = Ogl::OglManager::GetInstance();
            manager.Initialize();
            manager.Deinitialize();
        };
    }
    return {};
}

}  // namespace

void PluginChecker::SetKnownBrokenPlugins(const std::vector<std::string>& plugins) {
    knownBrokenPlugins = {plugins.begin(), plugins.end()};
}

void PluginChecker::SetLastFailedLoadPlugin(const std::string& plugin) {
    lastFailedLoadPlugin = plugin;
}

std::vector<std::string> PluginChecker::GetAllPlugins() const {
    std::vector<std::string> names;
    for (const PluginRecord& record : CollectPlugins()) {
        names.push_back(record.name);
    }
    return names;
}

void PluginChecker::Check() {
    for (const PluginRecord& record : SelectPluginsToCheck()) {
        CheckPlugin(record);
    }
    LogTagged(LOADED_PLUGINS_TAG, "true");
    SeparateWhitePlugins();
}

std::vector<PluginChecker::PluginRecord> PluginChecker::CollectPlugins() {
    std::vector<PluginRecord> records{{OGL_MANAGER, OGL_MANAGER}};
    const auto append = [&](const char* factory, const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            records.push_back({name, factory});
        }
    };
    append(EFFECT_FACTORY, Proc::EffectFactory::GetPluginList());
    append(FILTER_FACTORY, Proc::FilterFactory::GetPluginList());
    append(CODEC_FACTORY, Proc::CodecFactoryImpl::GetPluginList());
    append(MUXER_FACTORY, Proc::MuxerFactoryImpl::GetPluginList());
    append(PARSER_FACTORY, Proc::ParserFactoryImpl::GetPluginList());
    append(ANALYZER_FACTORY, Proc::AnalyzerFactory::GetPluginList());
    return records;
}

std::vector<PluginChecker::PluginRecord> PluginChecker::SelectPluginsToCheck() const {
    const std::vector<PluginRecord> records = CollectPlugins();
    auto from = records.begin();
    if (!lastFailedLoadPlugin.empty() && !records.empty()) {
        from = std::find_if(from, records.end(), [this](const PluginRecord& record) {
            return record.name == lastFailedLoadPlugin;
        });
        if (from != records.end()) {
            ++from;
        }
    }
    std::vector<PluginRecord> selection;
    std::for_each(from, records.end(), [&](const PluginRecord& record) {
        if (FindModuleFile(record.name).exists()) {
            selection.push_back(record);
        } else {
            // Contract: parents match this text; keep it verbatim.
            LogTagged(WARNING_TAG, "Can't find plugin " + record.name);
        }
    });
    return selection;
}

// Contract: parents match the texts below; keep them verbatim.
void PluginChecker::CheckPlugin(const PluginRecord& record) {
    if (knownBrokenPlugins.contains(record.name)) {
        RecordFailure(record.name, record.name + ": \nTest Error\n");
        return;
    }
    const Loader load = GetLoader(record.factory);
    if (!load) {
        RecordFailure(record.name, "There is no loader for the factory: " + record.factory);
        return;
    }
    LogTagged(LOAD_PLUGIN_NAME_TAG, record.name);
    try {
        load(record.name);
    } catch (...) {
        RecordFailure(record.name, GetCurrentExceptionText());
    }
}

void PluginChecker::RecordFailure(const std::string& name, const std::string& text) {
    brokenPlugins.push_back(name);
    failedPlugins.push_back(name);
    if (!Contains(WHITE_PLUGIN_LIST_FF, name)) {
        LogTagged(PLUGINS_TAG, name);
    }
    LogTagged(ERROR_TAG, text);
    errorInfo += text;
}

void PluginChecker::SeparateWhitePlugins() {
    if (brokenPlugins.empty()) {
        return;
    }
    whiteBrokenPlugins.clear();
    for (const std::string& white : WHITE_PLUGIN_LIST_FF) {
        const auto count = std::erase(brokenPlugins, white);
        whiteBrokenPlugins.insert(whiteBrokenPlugins.end(), count, white);
    }
}

}  // namespace Tarnex::Core::Utils
