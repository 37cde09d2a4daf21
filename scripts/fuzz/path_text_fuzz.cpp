// Fuzzes the path text helpers on single-byte and Shift-JIS text.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/text.h"
#include "files/path_text.h"
#include "fuzz_support.h"

using namespace zorvi;
using namespace zorvi::mdlFile;
using zorvi::fuzz::Check;

namespace {

bool IsCharStart(std::string_view text, std::size_t at) {
    std::size_t start = 0;
    while (start < at) start += CharLength(text, start);
    return start == at;
}

// Whether c stands anywhere in text as a character of its own.
bool HoldsChar(std::string_view text, char c) { return FindChar(text, c) != std::string_view::npos; }

void Names(const std::string& path) {
    const std::string name = GetFileName(path);
    Check(std::string_view(path).ends_with(name), "the file name ends the path");
    Check(!HoldsChar(name, '\\'), "the file name holds no backslash");
    const std::string extension = GetExtension(path);
    Check(std::string_view(name).ends_with(extension) && !HoldsChar(extension, '.'),
          "the extension ends the name and holds no dot");
    const std::string base = GetBaseName(path);
    Check(name.starts_with(base) && (name.empty() || base.size() < name.size()),
          "the base name starts the name and is shorter");
    const std::string safe = MakeSafeFileName(path);
    Check(safe.size() == path.size(), "a safe name keeps its length");
    for (const char c : InvalidFileNameChars) Check(!HoldsChar(safe, c), "a safe name is safe");
}

void Twins(const std::string& path, const std::string& extension) {
    const std::string text = TrimNull(path);
    const std::string added = AppendBackslash(path);
    if (text.size() >= 260 || text.empty()) {
        Check(added.empty(), "an empty or too long path gets nothing");
    } else {
        Check(added == (EndsWithChar(text, '\\') ? text : text + "\\"),
              "a backslash is added unless one ends the path");
    }
    const std::string stripped = StripBackslash(path);
    Check(stripped == text || stripped + "\\" == text, "at most the last backslash goes");
    const std::string folder = StripFileSpec(path);
    Check(text.starts_with(folder), "the folder starts the path");
    const std::string changed = ChangeExtension(path, extension);
    Check(extension.empty() || std::string_view(changed).ends_with("." + extension),
          "a changed path ends with the new extension");
    const std::string shortened = ShortenPathForDisplay(path);
    Check(shortened.size() < 48 || shortened.size() <= path.size() + 3, "shortening does not grow");
    for (std::size_t limit : {std::size_t{0}, std::size_t{1}, path.size() / 2, std::size_t{300}}) {
        const std::size_t cut = CharBoundaryCut(path, limit, IsLeadByte);
        Check(cut <= path.size() && (path.size() <= limit ? cut == path.size()
                                                          : cut <= limit && cut + 1 >= limit),
              "a cut takes as much as fits");
        Check(IsCharStart(path, cut), "a cut never splits a character");
    }
    const std::string filter = NulSeparatedFilter(path);
    Check(!filter.empty() && filter.back() == '\0' && !HoldsChar(filter, '|'),
          "a filter ends with NUL and holds no bar");
}

void Lists(FuzzedDataProvider& provider) {
    std::vector<std::string> list;
    while (provider.remaining_bytes() > 0 && list.size() < 64) {
        list.push_back(provider.ConsumeRandomLengthString(16));
    }
    const bool sortFirst = provider.ConsumeBool();
    const bool keepBlanks = provider.ConsumeBool();
    std::vector<std::string> cleaned = list;
    RemoveDuplicates(cleaned, sortFirst, keepBlanks);
    std::set<std::string> seen;
    std::size_t blanks = 0;
    for (const auto& entry : cleaned) {
        if (entry.empty()) {
            ++blanks;
        } else {
            Check(seen.insert(entry).second, "no entry is left twice");
        }
    }
    Check(keepBlanks ? cleaned.size() == list.size() : blanks == 0, "blanks are kept or dropped");
    std::vector<FilterEntry> entries;
    for (std::size_t i = 0; i + 1 < list.size(); i += 2) entries.push_back({list[i], list[i + 1]});
    Check(!HoldsChar(BuildFilterText(entries), '|'), "a filter holds no bar");
}

void LongPath(const std::string& path, FuzzedDataProvider& provider) {
    // The disk knows every component but those holding the chosen byte, and
    // stores names in lower case.
    const char missing = provider.ConsumeIntegral<char>();
    int asked = 0;
    const std::string longPath = LongPathOf(path, [&](const std::string& component) {
        ++asked;
        const std::string name = GetFileName(component);
        if (name.find(missing) != std::string::npos) return std::optional<std::string>();
        return std::optional<std::string>(AsciiLower(name));
    });
    Check(asked <= static_cast<int>(path.size()) + 1, "the disk is asked once per component");
    const std::size_t existing = provider.ConsumeIntegralInRange<std::size_t>(0, 1100);
    const std::string temp = UniqueTempName("C:\\t", [&](const std::string& candidate) {
        return std::stoul(candidate.substr(candidate.size() - 3)) < existing;
    });
    const std::size_t number = std::min<std::size_t>(existing, 999);
    Check(temp == "C:\\t\\MML" + std::string(number < 10 ? "00" : number < 100 ? "0" : "") +
                      std::to_string(number),
          "the first free temporary name is taken");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::UseCodePageOf(data, size);
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    switch (provider.ConsumeIntegralInRange<int>(0, 3)) {
        case 0: Names(provider.ConsumeRemainingBytesAsString()); break;
        case 1: {
            const std::string extension = provider.ConsumeRandomLengthString(8);
            Twins(provider.ConsumeRemainingBytesAsString(), extension);
            break;
        }
        case 2: Lists(provider); break;
        default: {
            const std::string path = provider.ConsumeRandomLengthString(512);
            LongPath(path, provider);
        }
    }
    return 0;
}
