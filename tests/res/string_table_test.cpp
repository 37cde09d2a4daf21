// The string table against the code: every id the program loads has its
// English text and its Japanese text at id + 1000, and the Japanese texts use
// the glossary's terms. Reads the sources themselves (ZORVI_SOURCE_DIR).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace zorvi {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = fs::path(ZORVI_SOURCE_DIR) / "src";

std::string ReadWhole(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// id -> text as it stands between the quotes of a STRINGTABLE line
// (`  123, "text"`, a quote in the text doubled).
std::map<int, std::string> Table(const char* name) {
    std::map<int, std::string> table;
    std::istringstream lines(ReadWhole(kSource / "res" / name));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        int id = 0;
        char comma = 0;
        char quote = 0;
        if (!(fields >> id >> comma >> quote) || comma != ',' || quote != '"') continue;
        std::string rest;
        std::getline(fields, rest);
        rest.erase(rest.find_last_not_of(" \t\r") + 1);
        if (rest.empty() || rest.back() != '"') continue;
        rest.pop_back();
        bool quotesDoubled = true;
        for (std::size_t at = 0; at < rest.size(); ++at) {
            if (rest[at] == '"') quotesDoubled = quotesDoubled && rest[++at] == '"';
        }
        if (quotesDoubled) table[id] = rest;
    }
    return table;
}

TEST(StringTable, EveryIdTheCodeLoadsHasBothTexts) {
    auto english = Table("strings_en.rc");
    auto japanese = Table("strings_ja.rc");
    ASSERT_FALSE(english.empty());
    // The tables are twins: nothing in one language only.
    for (const auto& [id, text] : english) EXPECT_EQ(japanese.contains(id + 1000), id != 2) << id;
    for (const auto& [id, text] : japanese) EXPECT_TRUE(english.contains(id - 1000)) << id;

    // The names of string_ids.h: the only ids the code can load.
    std::map<std::string, int> declared;
    const std::string ids = ReadWhole(kSource / "res" / "string_ids.h");
    std::istringstream declarations(ids);
    for (std::string line; std::getline(declarations, line);) {
        std::istringstream words(line.substr(std::min(line.find("int k"), line.size())));
        std::string type, name;
        char equals = 0;
        int id = 0;
        if (words >> type >> name >> equals >> id && equals == '=') declared[name] = id;
    }
    EXPECT_GT(declared.size(), 20u);

    // From here on a missing text reads as empty (and is added so).
    for (const auto& [name, id] : declared) {
        EXPECT_NE(english[id], "") << name;
        // Japanese 1001 holds both halves of the shortcut help: 1002 has no text.
        EXPECT_EQ(japanese[id + 1000].empty(), id == 2) << name;
    }
    for (const int id : {100, 108, 147, 170, 185, 216, 243, 259, 288, 289}) {
        EXPECT_EQ(english[id], "!") << id;
        EXPECT_EQ(japanese[id + 1000], "!") << id;
    }
}

TEST(StringTable, JapaneseTextsKeepToTheGlossary) {
    // Rows of glossary.md: | English | Japanese terms | forms not to use |.
    const std::string glossary = ReadWhole(kSource / "res" / "glossary.md");
    const auto items = [](const std::string& cell) {
        std::vector<std::string> found;
        std::istringstream words(cell);
        for (std::string word; std::getline(words, word, ',');) {
            std::istringstream parts(word);
            for (std::string part; parts >> part;) {
                if (!part.starts_with("-")) found.push_back(part);  // not the heading's rule
            }
        }
        return found;
    };
    const auto japanese = Table("strings_ja.rc");
    int forms = 0;
    std::istringstream rows(glossary);
    for (std::string line; std::getline(rows, line);) {
        std::vector<std::string> cells;
        std::istringstream split(line);
        for (std::string cell; std::getline(split, cell, '|');) cells.push_back(cell);
        if (!line.starts_with("|") || cells.size() < 4) continue;
        const auto terms = items(cells[2]);
        if (terms.empty() || terms.front() == "Japanese") continue;
        for (const auto& form : items(cells[3])) {
            ++forms;
            for (const auto& [id, text] : japanese) {
                // A form may be part of a term (フォルダ in フォルダー): terms go first.
                std::string rest = text;
                for (const auto& term : terms) {
                    for (auto at = rest.find(term); at != rest.npos; at = rest.find(term, at)) {
                        rest.erase(at, term.size());
                    }
                }
                EXPECT_EQ(rest.find(form), rest.npos) << id << " uses " << form << ", not "
                                                      << terms.front();
            }
        }
    }
    EXPECT_GT(forms, 10);
}

}  // namespace
}  // namespace zorvi
