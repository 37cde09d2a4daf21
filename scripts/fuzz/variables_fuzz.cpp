// Fuzzes $variable$ expansion and the escaping of values in batch scripts.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <optional>
#include <string>

#include "core/text.h"
#include "files/variables.h"
#include "fuzz_support.h"

using namespace zorvi;
using namespace zorvi::mdlFile;
using zorvi::fuzz::Check;

namespace {

bool IsSpecialOutsideQuotes(char c) { return std::string_view("&|<>^()!").find(c) != std::string_view::npos; }

// The text the command interpreter hands on for a script, or nullopt when the
// script was not escaped: first "%%" becomes "%" (a lone "%" would start a
// variable); then, outside double quotes, which each line counts afresh, "^"
// makes the next character plain and a bare & | < > ^ ( ) ! would act.
std::optional<std::string> ReadAsBatch(std::string_view script, bool startsInsideQuotes) {
    std::string percentRead;
    for (std::size_t at = 0; at < script.size();) {
        const std::size_t length = CharLength(script, at);
        if (length == 1 && script[at] == '%') {
            if (at + 1 >= script.size() || script[at + 1] != '%') return std::nullopt;
            percentRead += '%';
            at += 2;
            continue;
        }
        percentRead.append(script.substr(at, length));
        at += length;
    }
    std::string read;
    bool inside = startsInsideQuotes;
    const std::string_view text = percentRead;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t length = CharLength(text, at);
        const char c = text[at];
        if (length == 1 && (c == '\r' || c == '\n')) {
            inside = false;
        } else if (length == 1 && c == '"') {
            inside = !inside;
        } else if (length == 1 && !inside && c == '^') {
            if (at + 1 >= text.size()) return std::nullopt;
            ++at;
            length = CharLength(text, at);
        } else if (length == 1 && !inside && IsSpecialOutsideQuotes(c)) {
            return std::nullopt;
        }
        read.append(text.substr(at, length));
        at += length;
    }
    return read;
}

// Any value of one line, escaped for either place, reads back as itself.
// Values are paths, and no name holds a double quote (Windows forbids it):
// the escaping relies on that, since a quote in a value would move what
// follows it to the other place.
void EscapeRoundTrip(FuzzedDataProvider& provider) {
    const bool insideQuotes = provider.ConsumeBool();
    std::string value = provider.ConsumeRemainingBytesAsString();
    std::erase_if(value, [](char c) { return c == '\r' || c == '\n' || c == '"'; });
    const std::string escaped = EscapeForBatch(value, insideQuotes);
    Check(ReadAsBatch(escaped, insideQuotes) == value, "an escaped value reads back as itself");
}

// Anything at all: no crash, each fact asked at most once, and a text
// without "$" comes back as it is.
void ExpandAnything(FuzzedDataProvider& provider) {
    int asked[7] = {};
    std::string values[7];
    for (auto& value : values) value = provider.ConsumeRandomLengthString(64);
    const auto fact = [&](int index) {
        return [&, index] {
            ++asked[index];
            return values[index];
        };
    };
    const bool shortFolders = provider.ConsumeBool();
    const bool shortNames = provider.ConsumeBool();
    const bool forBatch = provider.ConsumeBool();
    const VariableFacts facts{
        SystemFacts{fact(0), fact(1), fact(2), fact(3), fact(4)},
        [](const std::string& path) { return AsciiUpper(path); },
        fact(5),
        fact(6),
    };
    const std::string text = provider.ConsumeRemainingBytesAsString();
    const std::string expanded = ExpandVariablesWith(text, shortFolders, shortNames, facts, forBatch);
    for (const int count : asked) Check(count <= 1, "each fact is asked at most once");
    if (text.find('$') == std::string::npos) Check(expanded == text, "no token, no change");
    ExpandSystemVariablesWith(text, facts.system);
}

// A name as a file system allows it: no separator, quote, colon, line break
// or NUL, no "$" that could start a token, and in Shift-JIS only whole
// characters whose second byte lies in 0x40-0xFC.
std::string FileNameFrom(FuzzedDataProvider& provider, std::size_t maxLength) {
    const std::string raw = provider.ConsumeRandomLengthString(maxLength);
    std::string name;
    for (std::size_t at = 0; at < raw.size(); ++at) {
        const auto byte = static_cast<unsigned char>(raw[at]);
        if (IsLeadByte(byte)) {
            if (at + 1 >= raw.size()) break;
            auto trail = static_cast<unsigned char>(0x40 + static_cast<unsigned char>(raw[++at]) % 0xBD);
            if (trail == 0x7F) trail = 0x80;
            name += static_cast<char>(byte);
            name += static_cast<char>(trail);
        } else if (std::string_view("\\\":$\r\n", 7).find(raw[at]) == std::string_view::npos) {
            name += raw[at];
        }
    }
    return name;
}

// A script line of plain words, quotes and line breaks around $fp$ and $fn$:
// after expansion the interpreter reads the folder and the name exactly.
void ScriptRoundTrip(FuzzedDataProvider& provider) {
    // An empty folder name would make "C:\\" a root, which $fp$ gives as "C:\".
    std::string folder = FileNameFrom(provider, 100);
    if (folder.empty()) folder = "d";
    const std::string name = FileNameFrom(provider, 100);
    const std::string folderValue = "C:\\" + folder + "\\";
    VariableFacts facts;
    facts.targetFile = [&] { return folderValue + name; };
    std::string script;
    std::string expected;
    while (provider.remaining_bytes() > 0) {
        switch (provider.ConsumeIntegralInRange<int>(0, 7)) {
            case 0: script += "$fn$"; expected += name; break;
            case 1: script += "$fp$"; expected += folderValue; break;
            case 2: script += '"'; expected += '"'; break;
            case 3: script += "\r\n"; expected += "\r\n"; break;
            default: {
                static constexpr char kPlain[] = "a .x=-_,;";
                const char c = kPlain[provider.ConsumeIntegralInRange<std::size_t>(0, sizeof kPlain - 2)];
                script += c;
                expected += c;
            }
        }
    }
    const std::string expanded = ExpandVariablesWith(script, false, false, facts, true);
    Check(ReadAsBatch(expanded, false) == expected, "a script reads back with the values as they are");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::UseCodePageOf(data, size);
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    switch (provider.ConsumeIntegralInRange<int>(0, 2)) {
        case 0: EscapeRoundTrip(provider); break;
        case 1: ExpandAnything(provider); break;
        default: ScriptRoundTrip(provider); break;
    }
    return 0;
}
