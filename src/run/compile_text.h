// The decisions of one compile that need no Windows: the batch text, short
// names, $temp$, the extension filter, the choice of configuration, the
// verdict, the file to play and the required-tools count.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zorvi {

// The extension filter's answers; the numbers are those the settings and
// the main window have always used.
enum class FilterCode { None = 0, NoMatch = 1, MissingConfig = 2, Found = 3, NoSwitch = 4 };

// Script/Line1 .. Line<count>, each followed by CR LF. A negative count
// gives nothing, and no count reads more than the settings lists allow.
std::string BuildScriptText(int lineCount, const std::function<std::string(int line)>& lineAt);

// Short (8.3) names when forced, or when the target's file name has a blank.
bool UseShortNames(bool forceShortName, std::string_view targetFile);

// Step mode: a "pause" line after every script line, the last one included.
std::string AddStepPauses(std::string_view script);

// What Zorvi.bat holds: the script, ending with a line break.
std::string ScriptFileText(std::string_view script);

bool HasTempToken(std::string_view script);
// Every "$temp$", in any case, becomes tempFileName.
std::string ReplaceTempToken(std::string_view script, std::string_view tempFileName);

// What the extension filter reads from the main settings file, asked lazily
// and in the order the rows are tried.
struct FilterFacts {
    int itemCount = 0;
    std::function<std::string(int row)> extensions;     // Filter/Extension<row>
    std::function<std::string(int row)> configuration;  // Filter/Default<row>
    std::function<bool(const std::string& name)> configurationExists;
};
// The first row whose extension list holds the file's extension (ignoring
// case; an empty extension is held by every list) decides. configurationName
// is set for MissingConfig and Found only.
FilterCode DecideExtensionFilter(std::string_view file, const FilterFacts& facts,
                                 std::string& configurationName);

// How the command-line compile picks its configuration.
struct ConfigurationChoiceFacts {
    std::function<bool(const std::string& path)> fileExists;
    // The question "<preset file name> is not found. Use the default setup?"; true for Yes.
    std::function<bool(const std::string& presetFileName)> askUseDefault;
    std::function<FilterCode(std::string& configurationName)> extensionFilter;
    std::function<std::string()> activeConfigurationPath;
    std::string appFolder;  // with a trailing backslash
};
// The configuration file to use; nullopt when the user declined the default
// setup. The path may name a missing file: the caller reports that.
std::optional<std::string> ChooseCompileConfiguration(const std::string& presetPath,
                                                      const ConfigurationChoiceFacts& facts);

// The generated file as found after the run; times are FILETIME ticks.
struct OutputState {
    bool exists = false;
    std::uint64_t size = 0;
    std::uint64_t lastWrite = 0;
};
struct VerdictFacts {
    bool renameBackDue = false;
    bool outputRenamedBack = false;
    bool detectError = false;  // Option/DetectError is exactly 1
    OutputState output;
    std::uint64_t oldLastWrite = 0;  // 0: no output before the run
};
// 0 no error found, 1 compile error, 2 a 0-byte file.
int CompileVerdict(const VerdictFacts& facts);

// Whether the play command plays the generated file (the target with the
// configured extension) rather than the target itself. The extension is
// compared with the target's whole file name, not with its extension.
bool PlaysGeneratedFile(std::string_view targetFile, bool useCUI, std::string_view extension);

// What a file found under a short name is to the compile that expects expectedLong.
enum class ShortNameOwner {
    Missing,  // nothing there
    Alias,    // the expected long-named file itself, reached by its short name
    Stray,    // a file whose real name is the short name (what a tool wrote through it)
    Foreign,  // the short name of some other file: never touched
};
// longFormOfShort is the true long path of shortPath (empty when it does not
// exist); shortPath and expectedLong name files of one folder.
ShortNameOwner ClassifyShortName(std::string_view shortPath, std::string_view longFormOfShort,
                                 std::string_view expectedLong);

// The interpreter named by COMSPEC, without its folder; "cmd.exe" when unset or empty.
std::string InterpreterProgram(const std::optional<std::string>& comSpec);
// The interpreter's whole command line for running the script: AutoRun
// commands off (/D) and delayed expansion off (/V:OFF), so that the user's
// own set-up cannot change what the script does, and the script's path
// quoted so that any folder name works, blanks, "&" and double-byte
// characters included.
std::string InterpreterCommandLine(std::string_view program, std::string_view scriptPath);

// A drive path ("C:\x", "C:/x"), a network path or a rooted one ("\x").
bool IsAbsolutePath(std::string_view path);
// An absolute entry stands as it is; a relative one lives in the compiler's folder.
std::string RequiredToolPath(std::string_view folderWithBackslash, std::string_view entry);

struct MissingTools {
    int count = -1;       // -1: nothing listed, 0: all there, n: n missing
    std::string missing;  // the missing entries joined by " / "; empty entries are skipped
};
MissingTools CountMissingTools(int itemCount, const std::function<std::string(int item)>& itemAt,
                               const std::function<bool(const std::string& item)>& exists);

}  // namespace zorvi
