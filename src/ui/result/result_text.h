// The text the result window shows for a compiler's log: the verdict, the
// dashed rule and the log itself, built from the log's bytes as they are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zorvi {

// The text box holds at most this many characters; longer texts are cut.
inline constexpr std::size_t kResultTextLimit = 65535;
// The rule under the verdict line.
inline constexpr std::size_t kResultRuleLength = 78;

// Result modes: what the last compile found.
inline constexpr int kResultPlain = 0;
inline constexpr int kResultCompileError = 1;
inline constexpr int kResultZeroByteOutput = 2;
inline constexpr int kResultStopped = 4;  // the user stopped the compile

// The texts of the current language that frame a log.
struct ResultTexts {
    std::wstring title;           // the application title
    std::wstring compileError;    // "Detect compiling error."
    std::wstring zeroByteOutput;  // "Generated 0 byte file."
    std::wstring logNotFound;     // "Log file not found."
    std::wstring stopped;         // "Compiling was stopped."
};

// Turns bytes of the log (one line's worth, never split inside a line) into
// the characters shown, in the log's encoding (see log_decode.h). A line cut
// where nothing more of it can show may end inside a character.
using DecodeLogBytes = std::function<std::wstring(std::string_view bytes)>;

// What the window shows when the log file does not exist.
std::wstring MissingLogText(int mode, const ResultTexts& texts);
// The verdict line and the rule that stand before the log in modes 1, 2
// and 4 (stopped); empty in every other mode.
std::wstring VerdictHeader(int mode, const ResultTexts& texts);

// Builds the shown text from the log's bytes, fed in pieces of any size.
// Only what can still appear on screen is kept: at most the text box's limit
// in characters and a bounded tail of the line being read, however big the log.
//
// Lines end at LF; a CR right before the LF belongs to the line end, a CR
// anywhere else (the log's last byte included) is an ordinary character of
// the line, as a text-mode read has it. Each line is written with CR LF into
// a buffer of twice the log's length, at the buffer's first NUL, so a NUL
// byte inside a line is where the next line starts; what passes the buffer's
// end is lost. The shown text ends at the buffer's first NUL. Modes other
// than 0, 1, 2 and 4 show the last line read instead, up to its first NUL.
// A text never ends on the first unit of a pair (half a character).
class ResultTextBuilder {
public:
    ResultTextBuilder(int mode, const ResultTexts& texts, std::uint64_t logLength,
                      DecodeLogBytes decode);

    void Feed(std::string_view bytes);
    // False once no further byte can change the shown text; reading may stop.
    bool WantsMore() const;
    // The shown text, the last line included even when it has no line end.
    std::wstring Finish();

private:
    void EndLine(bool atLineFeed);
    void WriteLine(const std::wstring& line);
    std::size_t CharactersWanted() const;

    bool lastLineOnly_;              // modes other than 0, 1, 2 and 4 show the last line
    std::wstring header_;
    DecodeLogBytes decode_;
    std::uint64_t capacity_;         // the buffer: twice the log's length, in characters
    std::size_t kept_;               // buffer characters that can still be shown
    std::wstring buffer_;            // buffer_[0, kept_); everything beyond its size is NUL
    std::uint64_t firstNul_ = 0;     // where the next line is written
    bool settled_ = false;           // firstNul_ has reached kept_: nothing more can show
    std::string line_;               // the line being read, as much of it as can show
    bool lineStarted_ = false;
    bool lineCut_ = false;
    std::wstring lastLine_;
};

// The whole text for a log held in memory.
std::wstring BuildResultText(int mode, const ResultTexts& texts, std::string_view log,
                             const DecodeLogBytes& decode);

}  // namespace zorvi
