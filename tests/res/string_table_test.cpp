// The string table against the code: every id the program loads has its
// English text and its Japanese text at id + 1000, and the Japanese texts use
// the glossary's terms. Reads the sources themselves (ZORVI_SOURCE_DIR).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
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

// id -> text as it stands between the quotes of a STRINGTABLE line.
std::map<int, std::string> Table(const char* name) {
    static const std::regex entry(R"re(^\s*(\d+),\s*"((?:[^"]|"")*)"\s*\r?$)re");
    std::map<int, std::string> table;
    std::istringstream lines(ReadWhole(kSource / "res" / name));
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, entry)) table[std::stoi(match[1])] = match[2];
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

    // The names of string_ids.h, and every name the code uses from it.
    std::map<std::string, int> declared;
    static const std::regex declaration(R"(constexpr int (k\w+)\s*=\s*(\d+);)");
    const std::string ids = ReadWhole(kSource / "res" / "string_ids.h");
    for (std::sregex_iterator it(ids.begin(), ids.end(), declaration), end; it != end; ++it) {
        declared[(*it)[1]] = std::stoi((*it)[2]);
    }
    std::set<std::string> used;
    static const std::regex use(R"(ids::(k\w+))");
    for (const auto& file : fs::recursive_directory_iterator(kSource)) {
        const auto extension = file.path().extension();
        if (extension != ".cpp" && extension != ".h") continue;
        const std::string code = ReadWhole(file.path());
        for (std::sregex_iterator it(code.begin(), code.end(), use), end; it != end; ++it) {
            used.insert((*it)[1]);
        }
    }
    EXPECT_GT(used.size(), 20u);
    for (const auto& name : used) EXPECT_TRUE(declared.contains(name)) << name;

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
    static const std::regex row(R"(\n\|[^|\n]*\|([^|\n]*)\|([^|\n]*)\|)"), item("[^, ]+");
    const auto items = [](const std::string& cell) {
        std::vector<std::string> found;
        for (std::sregex_iterator it(cell.begin(), cell.end(), item), end; it != end; ++it) {
            if (!it->str().starts_with("-")) found.push_back(it->str());  // not the heading's rule
        }
        return found;
    };
    const auto japanese = Table("strings_ja.rc");
    int forms = 0;
    for (std::sregex_iterator it(glossary.begin(), glossary.end(), row), end; it != end; ++it) {
        const auto terms = items((*it)[1]);
        if (terms.empty() || terms.front() == "Japanese") continue;
        for (const auto& form : items((*it)[2])) {
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
