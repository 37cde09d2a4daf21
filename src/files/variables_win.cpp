// $variable$ expansion with the facts that Windows and the settings supply;
// every rule of it lives in variables.cpp.
#include "files/variables_win.h"

#include <windows.h>
#include <shlobj.h>

#include <functional>
#include <utility>

#include "core/mdlMain.h"
#include "files/path_win.h"
#include "files/variables.h"
#include "settings/ini_win.h"
#include "settings/schema.h"

namespace zorvi::mdlFile {
namespace {

SystemFacts SystemFactsOfThisMachine() {
    return {
        [] { return GetWindowsFolder(); },
        [] { return GetShortPath(GetSpecialFolderPath(CSIDL_DESKTOP)); },
        [] { return GetShortPath(GetSpecialFolderPath(CSIDL_PERSONAL)); },
        [] { return GetAppFolder(); },
        [] { return GetShortPath(GetAppFolder()); },
    };
}

}  // namespace

std::string ExpandSystemVariables(const std::string& text) {
    return ExpandSystemVariablesWith(text, SystemFactsOfThisMachine());
}

namespace {

VariableFacts FactsFor(std::function<std::string()> console) {
    return VariableFacts{
        SystemFactsOfThisMachine(),
        [](const std::string& path) { return GetShortPath(path); },
        std::move(console),
        [] { return mdlMain::TargetFile(); },
    };
}

VariableFacts FactsFor(const std::string& configurationPath) {
    return FactsFor([configurationPath] {
        const std::string file = configurationPath.empty() ? GetDefaultPreset() : configurationPath;
        return ReadIni(settings::config_file::kConsole, file);
    });
}

VariableFacts FactsFor(const IniFile& configuration) {
    return FactsFor(
        [&configuration] { return configuration.Read(settings::config_file::kConsole); });
}

}  // namespace

std::string ExpandVariables(const std::string& text, bool shortFolders, bool shortNames,
                            const std::string& configurationPath) {
    return ExpandVariablesWith(text, shortFolders, shortNames, FactsFor(configurationPath));
}

std::string ExpandVariables(const std::string& text, bool shortFolders, bool shortNames,
                            const IniFile& configuration) {
    return ExpandVariablesWith(text, shortFolders, shortNames, FactsFor(configuration));
}

std::string ExpandScriptVariables(const std::string& script, bool shortNames,
                                  const IniFile& configuration) {
    return ExpandVariablesWith(script, true, shortNames, FactsFor(configuration), true);
}

}  // namespace zorvi::mdlFile
