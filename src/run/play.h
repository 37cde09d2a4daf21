// Playing the generated file and opening the target in the editor.
#pragma once

#include <windows.h>

#include <string>

namespace zorvi {

// Plays the output of the target (or the target itself) with the configured
// player or the associated program. An empty configurationPath means the
// active configuration, an empty targetFile the current target file.
void CMD_DoPlay(const std::string& configurationPath, HWND owner,
                const std::string& targetFile = {});

// Opens the target in the editor when Option/AutoOpen is 1: the associated
// program or Setting/Editor, started in the program's folder.
void StartEditor(HWND owner);

// Opens the target in the editor at a line, whatever AutoOpen says: the user
// asked for it from the log. With Setting/EditorLineArgs the editor gets
// those arguments ("$line$" the line, then the other tokens); without them,
// or with the associated program, it opens the target as StartEditor does.
void OpenEditorAtLine(HWND owner, int line);

}  // namespace zorvi
