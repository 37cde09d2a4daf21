// Visible texts from the string table, in the language of the user interface.
#pragma once

#include <string>

namespace zorvi {

// The text of id + language offset; empty when that id has no text.
std::wstring LoadText(int englishId);
// The English text of id, whatever the language: what access keys are chosen from.
std::wstring LoadEnglishText(int englishId);

// The language offset a Setting/Language value selects: only "Japanese",
// exactly so spelt, gives the Japanese texts.
int LanguageOffsetFor(const std::string& languageSetting);

}  // namespace zorvi
