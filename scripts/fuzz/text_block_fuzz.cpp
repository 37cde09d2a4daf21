// Fuzzes the text-block layout of settings lists: splitting, writing, reading
// back and normalising the script and required-files blocks.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "settings/list_layouts.h"

using namespace zorvi::settings;
using zorvi::fuzz::Check;

namespace {

// What a reader of the settings file gets back from the writes: keys 1 to
// the count, each with CR LF after it.
std::string ReadBack(const std::vector<IniWrite>& writes, const TextBlock& block) {
    const int count = EntriesToRead(std::stoi(writes.front().value));
    std::string text;
    for (int i = 1; i <= count; ++i) {
        const IniWrite& write = writes[static_cast<std::size_t>(i)];
        Check(write.section == block.section && write.key == NumberedKey(block.linePrefix, i),
              "line keys are numbered from 1 in order");
        text += write.value;
        text += "\r\n";
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const TextBlock& block = config_file::kScript;

    const std::vector<std::string> lines = SplitTextBlock(text);
    Check(JoinTextBlockLines(lines) == std::string(text) + "\r\n",
          "split lines joined again give the text and one line break");
    for (const auto& line : lines) {
        Check(line.find("\r\n") == std::string::npos, "no line holds a line break");
    }

    const std::vector<IniWrite> writes = TextBlockWrites(block, text);
    Check(writes.size() == lines.size() + 1, "one write for the count and one per line");
    Check(writes.front().key == block.countKey &&
              writes.front().value == std::to_string(lines.size() - 1),
          "the count is the index of the last line");
    for (std::size_t j = 0; j < lines.size(); ++j) {
        Check(writes[j + 1].value == lines[j], "each line is written as it is");
    }

    // Normalising drops the empty lines between others and keeps the first
    // and the last line, empty or not.
    const std::string normal = NormaliseTextBlock(text);
    std::vector<std::string> kept{lines.front()};
    for (std::size_t j = 1; j + 1 < lines.size(); ++j) {
        if (!lines[j].empty()) kept.push_back(lines[j]);
    }
    if (lines.size() > 1) kept.push_back(lines.back());
    Check(SplitTextBlock(normal) == kept, "normalising drops exactly the inner empty lines");
    Check(NormaliseTextBlock(normal) == normal, "normalising twice changes nothing");

    // What a save stores is what the next load reads.
    const std::string saved = TextBlockForSaving(text);
    Check(saved.empty() || saved.ends_with("\r\n"), "a saved block ends with a line break");
    const std::vector<IniWrite> savedWrites = TextBlockWrites(block, saved);
    if (std::stoi(savedWrites.front().value) <= kMaxListEntries) {
        Check(ReadBack(savedWrites, block) == saved, "a saved block reads back as itself");
    }
    return 0;
}
