// The check of the files a configuration needs, and its words.
#include "run/required_tools.h"

#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "res/string_ids.h"
#include "run/compile_text.h"
#include "settings/ini_win.h"
#include "settings/list_layouts.h"
#include "settings/schema.h"

namespace zorvi {

int RequiredToolsCheck(const IniFile& configuration, const std::string& folder,
                       std::string& missing) {
    try {
        const auto& block = settings::config_file::kRequired;
        const std::string base = mdlFile::AddBackslash(folder);
        const MissingTools result = CountMissingTools(
            configuration.ReadInt(block.section, block.countKey, 0),
            [&](int item) {
                return mdlFile::ExpandVariables(
                    configuration.Read(block.section,
                                       settings::NumberedKey(block.linePrefix, item), ""),
                    false, false, configuration);
            },
            // Only a file satisfies an entry: a folder of that name is no tool.
            [&](const std::string& item) {
                return mdlFile::FileExists(RequiredToolPath(base, item));
            });
        missing = result.missing;
        return result.count;
    } catch (...) {
        missing.clear();
        return -1;
    }
}

std::wstring RequiredToolsMessage(int count, const std::string& missing) {
    if (count < 0) return LoadText(ids::kNoRequiredToolsInfo);
    if (count == 0) return LoadText(ids::kRequiredToolsInstalled);
    return Widen(missing) + L" " + LoadText(ids::kNotInstalled);
}

}  // namespace zorvi
