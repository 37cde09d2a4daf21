// The decisions of one compile that need no Windows.
#include "run/compile_text.h"

#include "core/text.h"
#include "files/path_text.h"
#include "settings/list_layouts.h"

namespace zorvi {
namespace {

constexpr std::string_view kLineBreak = "\r\n";
constexpr std::string_view kTempToken = "$temp$";

bool SameIgnoringCase(std::string_view a, std::string_view b) {
    return AsciiLower(a) == AsciiLower(b);
}

}  // namespace

std::string BuildScriptText(int lineCount, const std::function<std::string(int line)>& lineAt) {
    std::string script;
    const int lines = settings::EntriesToRead(lineCount);
    for (int line = 1; line <= lines; ++line) {
        script += lineAt(line);
        script += kLineBreak;
    }
    return script;
}

bool UseShortNames(bool forceShortName, std::string_view targetFile) {
    return forceShortName || mdlFile::GetFileName(targetFile).find(' ') != std::string::npos;
}

std::string AddStepPauses(std::string_view script) {
    std::string stepped;
    stepped.reserve(script.size() + script.size() / 4);
    for (;;) {
        const auto lineEnd = script.find(kLineBreak);
        if (lineEnd == std::string_view::npos) {
            stepped += script;
            return stepped;
        }
        stepped += script.substr(0, lineEnd);
        stepped += "\r\npause\r\n";
        script.remove_prefix(lineEnd + kLineBreak.size());
    }
}

std::string ScriptFileText(std::string_view script) {
    std::string text(script);
    if (!text.ends_with(kLineBreak)) text += kLineBreak;
    return text;
}

bool HasTempToken(std::string_view script) {
    return FindText(AsciiLower(script), kTempToken) != std::string::npos;
}

std::string ReplaceTempToken(std::string_view script, std::string_view tempFileName) {
    // Lower-casing keeps every byte in its place, so positions found in the
    // lowered copy are positions in the script.
    const std::string lowered = AsciiLower(script);
    std::string replaced;
    std::size_t from = 0;
    for (auto at = FindText(lowered, kTempToken); at != std::string::npos;
         at = FindText(lowered, kTempToken, from)) {
        replaced += script.substr(from, at - from);
        replaced += tempFileName;
        from = at + kTempToken.size();
    }
    replaced += script.substr(from);
    return replaced;
}

FilterCode DecideExtensionFilter(std::string_view file, const FilterFacts& facts,
                                 std::string& configurationName) {
    if (facts.itemCount == 0) return FilterCode::None;
    const std::string extension = AsciiLower(mdlFile::GetExtension(file));
    const int rows = settings::EntriesToRead(facts.itemCount);
    for (int row = 1; row <= rows; ++row) {
        // Whole characters only: "x" must not match the second byte of a double-byte one.
        if (FindText(AsciiLower(facts.extensions(row)), extension) == std::string::npos) continue;
        const std::string name = facts.configuration(row);
        if (name.empty()) return FilterCode::NoSwitch;
        configurationName = name;
        return facts.configurationExists(name) ? FilterCode::Found : FilterCode::MissingConfig;
    }
    return FilterCode::NoMatch;
}

std::optional<std::string> ChooseCompileConfiguration(const std::string& presetPath,
                                                      const ConfigurationChoiceFacts& facts) {
    if (!presetPath.empty()) {
        if (facts.fileExists(presetPath)) return presetPath;
        if (!facts.askUseDefault(mdlFile::GetFileName(presetPath))) return std::nullopt;
    }
    std::string name;
    if (facts.extensionFilter(name) == FilterCode::Found) {
        return facts.appFolder + "cfg\\" + name + ".ini";
    }
    return facts.activeConfigurationPath();
}

int CompileVerdict(const VerdictFacts& facts) {
    if (facts.renameBackDue && !facts.outputRenamedBack) return 1;
    if (!facts.detectError) return 0;
    if (!facts.output.exists) return 1;
    if (facts.output.size == 0) return 2;
    if (facts.output.lastWrite == facts.oldLastWrite) return 1;
    return 0;
}

bool PlaysGeneratedFile(std::string_view targetFile, bool useCUI, std::string_view extension) {
    return useCUI && !extension.empty() && extension != mdlFile::GetFileName(targetFile);
}

ShortNameOwner ClassifyShortName(std::string_view shortPath, std::string_view longFormOfShort,
                                 std::string_view expectedLong) {
    if (longFormOfShort.empty()) return ShortNameOwner::Missing;
    // The short path sits in the target's own folder, whatever form either
    // folder was written in, so the file names alone decide.
    const std::string found = mdlFile::GetFileName(longFormOfShort);
    // A name without a short form is its own "short" name: that file is then
    // simply the expected one.
    if (SameIgnoringCase(found, mdlFile::GetFileName(expectedLong))) return ShortNameOwner::Alias;
    if (SameIgnoringCase(found, mdlFile::GetFileName(shortPath))) return ShortNameOwner::Stray;
    return ShortNameOwner::Foreign;
}

std::string InterpreterProgram(const std::optional<std::string>& comSpec) {
    if (!comSpec || comSpec->empty()) return "cmd.exe";
    // The folder is dropped on purpose: the system's search finds the interpreter by name.
    return mdlFile::GetFileName(*comSpec);
}

std::string InterpreterCommandLine(std::string_view program, std::string_view scriptPath) {
    // After /C the interpreter drops the first and the last quote of the rest
    // of the line whenever that holds more than one pair: the outer pair goes,
    // the inner one keeps the path whole.
    return "\"" + std::string(program) + "\" /D /V:OFF /C \"\"" + std::string(scriptPath) +
           "\"\"";
}

bool IsAbsolutePath(std::string_view path) {
    if (path.empty()) return false;
    if (path[0] == '\\' || path[0] == '/') return true;
    return path.size() >= 3 && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
}

std::string RequiredToolPath(std::string_view folderWithBackslash, std::string_view entry) {
    if (IsAbsolutePath(entry)) return std::string(entry);
    return std::string(folderWithBackslash) + std::string(entry);
}

MissingTools CountMissingTools(int itemCount, const std::function<std::string(int item)>& itemAt,
                               const std::function<bool(const std::string& item)>& exists) {
    MissingTools result;
    if (itemCount <= 0) return result;
    result.count = 0;
    const int items = settings::EntriesToRead(itemCount);
    for (int item = 1; item <= items; ++item) {
        const std::string name = itemAt(item);
        // An empty entry names no tool: there is nothing to look for.
        if (name.empty() || exists(name)) continue;
        ++result.count;
        if (!result.missing.empty()) result.missing += " / ";
        result.missing += name;
    }
    return result;
}

}  // namespace zorvi
