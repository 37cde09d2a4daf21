// The MML interpreter of mmlc. Each track reads the source from the start,
// playing the lines that name it; a loop is played by going back to the text
// after its "[" as often as its count says, the way a musician repeats. So
// nothing is held but the events themselves, and what bounds the time is the
// number of bytes read, counted across every pass.
#include "mmlc/mml_parse.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

namespace mmlc {
namespace {

constexpr int kMaxOctave = 8;
constexpr int kMaxLengthNumber = 192;
constexpr int kMaxTempo = 999;
constexpr int kSlowestMidiTempo = 4;  // whole beats a minute; 3.58 is the true floor
constexpr int kMaxMidiValue = 127;
constexpr int kTrackNames = 26;
constexpr int kChannels = 16;
constexpr int kDrumChannel = 9;  // channel 10: General MIDI plays drums there
// Numbers stop growing here: anything larger is out of every range anyway.
constexpr std::int64_t kNumberCap = 1'000'000'000;
// Lengths stop growing here: dotted default lengths set again and again in a
// loop would otherwise double past what 64 bits hold. Far beyond any track's
// limit, and sums of a few such lengths stay far from overflow.
constexpr std::int64_t kLengthCap = std::int64_t{1} << 40;
// A number as written is quoted in a message up to this many digits.
constexpr std::size_t kQuotedDigits = 12;

struct Position {
    int line;
    int column;
};

std::string Num(std::int64_t value) { return std::to_string(value); }

// A command character for a message: printable ASCII as itself, any other
// byte as its value, so a binary file cannot put control bytes into the log.
std::string Quoted(char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 0x20 && byte < 0x7F) return std::string("'") + c + "'";
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", byte);
    return text;
}

std::string QuotedText(std::string_view text) {
    constexpr std::size_t kShown = 32;
    std::string quoted = "'";
    for (const char c : text.substr(0, kShown)) {
        quoted += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
    }
    if (text.size() > kShown) quoted += "...";
    return quoted + "'";
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsTrackName(char c) { return c >= 'A' && c <= 'Z'; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

// Collects diagnostics once each: loops and lines shared by several tracks
// read the same text more than once, and each reading finds the same faults.
class Reporter {
public:
    Reporter(const Limits& limits, ParseResult& result) : limits_(limits), result_(result) {}

    void Error(Position at, std::string text) { Add(Severity::Error, at, std::move(text)); }
    void Warning(Position at, std::string text) { Add(Severity::Warning, at, std::move(text)); }
    bool Stopped() const { return result_.stoppedEarly; }
    // A diagnostic a loop gives again is dropped, but what it took counts as
    // bytes read again: loops of bad bytes would otherwise spend the whole
    // budget on messages, seconds of them.
    void ChargeRepeatsTo(std::uint64_t& work) { repeatWork_ = &work; }

private:
    static constexpr std::uint64_t kRepeatCost = 256;

    void Add(Severity severity, Position at, std::string text) {
        if (result_.stoppedEarly) return;
        auto key = std::make_tuple(at.line, at.column, severity, std::move(text));
        if (seen_.contains(key)) {
            if (repeatWork_ != nullptr) *repeatWork_ += kRepeatCost;
            return;
        }
        if (severity == Severity::Error) {
            if (result_.errorCount >= limits_.maxErrors) {
                result_.stoppedEarly = true;
                return;
            }
            ++result_.errorCount;
        } else {
            if (result_.warningCount >= limits_.maxWarnings) return;
            ++result_.warningCount;
        }
        result_.diagnostics.push_back({severity, at.line, at.column, std::get<3>(key)});
        seen_.insert(std::move(key));
    }

    const Limits& limits_;
    ParseResult& result_;
    std::set<std::tuple<int, int, Severity, std::string>> seen_;
    std::uint64_t* repeatWork_ = nullptr;
};

// Where reading stands: enough to come back to it for the next pass of a loop.
struct ScanState {
    std::size_t pos = 0;
    std::size_t lineStart = 0;
    int line = 1;
    std::uint32_t tracks = 0;  // the tracks of the line being read, one bit each
    bool atLineHead = true;
};

enum class Item { Command, Directive, End };

// Steps over what is not music: blanks, line ends, comments and the track
// names at the heads of lines. A line that names no track continues the
// tracks of the line before it.
class Scanner {
public:
    Scanner(std::string_view source, std::size_t start, std::uint64_t& work)
        : source_(source), work_(work) {
        state.pos = start;
        state.lineStart = start;
    }

    ScanState state;

    // Stops at a command character (of any track) or at a directive line.
    Item Next(Reporter& report) {
        const std::size_t from = state.pos;
        Item item = Item::End;
        while (!AtEnd()) {
            const char c = source_[state.pos];
            if (state.atLineHead) {
                state.atLineHead = false;
                if (c == '#') {
                    item = Item::Directive;
                    break;
                }
                if (IsTrackName(c)) {
                    std::uint32_t named = 0;
                    for (; !AtEnd() && IsTrackName(source_[state.pos]); ++state.pos) {
                        named |= 1u << (source_[state.pos] - 'A');
                    }
                    state.tracks = named;
                    continue;
                }
            }
            if (c == '\n') {
                NewLine();
            } else if (IsBlank(c)) {
                ++state.pos;
            } else if (c == ';') {
                state.pos = std::min(source_.find('\n', state.pos), source_.size());
            } else if (c == '/' && state.pos + 1 < source_.size() &&
                       source_[state.pos + 1] == '*') {
                SkipBlockComment(report);
            } else {
                item = Item::Command;
                break;
            }
        }
        work_ += state.pos - from;
        return item;
    }

    bool AtEnd() const { return state.pos >= source_.size(); }
    bool PeekIs(char c) const { return !AtEnd() && source_[state.pos] == c; }
    bool PeekDigit() const { return !AtEnd() && IsDigit(source_[state.pos]); }
    char Take() {
        ++work_;
        return source_[state.pos++];
    }
    Position Here() const {
        return {state.line, static_cast<int>(state.pos - state.lineStart) + 1};
    }
    std::string_view Since(std::size_t from) const {
        return source_.substr(from, state.pos - from);
    }

    // Another track's music: up to where a comment or the line ends.
    void SkipOtherTrack() {
        const std::size_t from = state.pos++;
        while (!AtEnd() && source_[state.pos] != '\n' && source_[state.pos] != ';' &&
               source_[state.pos] != '/') {
            ++state.pos;
        }
        work_ += state.pos - from;
    }

    // The rest of the line, without its line end; reading stops before the "\n".
    std::string_view TakeLine() {
        const std::size_t from = state.pos;
        state.pos = std::min(source_.find('\n', from), source_.size());
        work_ += state.pos - from;
        std::string_view line = Since(from);
        if (line.ends_with('\r')) line.remove_suffix(1);
        return line;
    }

private:
    void NewLine() {
        ++state.pos;
        ++state.line;
        state.lineStart = state.pos;
        state.atLineHead = true;
    }

    // The music after the comment continues the line the comment began on.
    void SkipBlockComment(Reporter& report) {
        const Position open = Here();
        state.pos += 2;
        while (!AtEnd()) {
            if (source_[state.pos] == '*' && state.pos + 1 < source_.size() &&
                source_[state.pos + 1] == '/') {
                state.pos += 2;
                return;
            }
            if (source_[state.pos] == '\n') {
                ++state.line;
                state.lineStart = state.pos + 1;
            }
            ++state.pos;
        }
        report.Error(open, "comment '/*' is never closed with '*/'");
    }

    std::string_view source_;
    std::uint64_t& work_;
};

// What one reading of the whole source finds before any track plays.
struct Survey {
    std::uint32_t used = 0;                       // tracks that have music
    std::array<Position, kTrackNames> firstUse{};  // where each begins
    std::string title;
};

void ReadDirective(Scanner& scan, Survey& survey, bool& hasTitle, Reporter& report) {
    const Position at = scan.Here();
    const std::string_view line = scan.TakeLine();
    std::size_t nameEnd = 1;
    while (nameEnd < line.size() && !IsBlank(line[nameEnd])) ++nameEnd;
    std::string name(line.substr(1, nameEnd - 1));
    for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (name != "title") {
        report.Warning(at, "unknown directive " + QuotedText(line.substr(0, nameEnd)) +
                               " is ignored");
        return;
    }
    std::string_view value = line.substr(nameEnd);
    while (!value.empty() && IsBlank(value.front())) value.remove_prefix(1);
    if (hasTitle) report.Warning(at, "a second #title replaces the first");
    if (value.empty()) report.Warning(at, "#title has no text");
    // The bytes go into the file as they are, whatever their encoding.
    survey.title = value;
    hasTitle = true;
}

Survey SurveySource(std::string_view source, std::size_t start, std::uint64_t& work,
                    Reporter& report) {
    Survey survey;
    bool hasTitle = false;
    Scanner scan(source, start, work);
    int reportedLine = 0;
    while (!report.Stopped()) {
        const Item item = scan.Next(report);
        if (item == Item::End) break;
        if (item == Item::Directive) {
            ReadDirective(scan, survey, hasTitle, report);
            continue;
        }
        if (scan.state.tracks == 0) {
            if (scan.state.line != reportedLine) {
                report.Error(scan.Here(),
                             "music before any track name: begin the line with a track "
                             "name, A to Z");
                reportedLine = scan.state.line;
            }
        } else if ((scan.state.tracks & ~survey.used) != 0) {
            for (int index = 0; index < kTrackNames; ++index) {
                const std::uint32_t bit = 1u << index;
                if ((scan.state.tracks & bit) && !(survey.used & bit)) {
                    survey.firstUse[index] = scan.Here();
                }
            }
            survey.used |= scan.state.tracks;
        }
        scan.Take();
    }
    return survey;
}

// What all tracks share while they play.
struct Shared {
    const Limits& limits;
    Reporter& report;
    std::uint64_t& work;
    std::uint64_t workBudget;  // one reading of the source per track, and Limits::maxWork more
    std::size_t events = 0;
    std::vector<TempoChange> tempos;
    bool aborted = false;  // a limit was reached: nothing more is played
};

struct Number {
    bool present = false;
    std::int64_t value = 0;
    Position at{};
    std::string_view digits;
};

// The number as written, shortened for a message.
std::string Written(const Number& number) {
    std::string written(number.digits.substr(0, kQuotedDigits));
    if (number.digits.size() > kQuotedDigits) written += "...";
    return written;
}

class TrackPlayer {
public:
    TrackPlayer(std::string_view source, std::size_t start, Shared& shared, Track& track)
        : scan_(source, start, shared.work),
          shared_(shared),
          limits_(shared.limits),
          report_(shared.report),
          track_(track),
          bit_(1u << (track.name - 'A')) {}

    void Play() {
        while (!stopped_ && !shared_.aborted && !report_.Stopped()) {
            if (shared_.work > shared_.workBudget) {
                LimitReached(scan_.Here(), "the loops repeat too much: more than " +
                                               Num(static_cast<std::int64_t>(limits_.maxWork)) +
                                               " bytes to read again");
                break;
            }
            const Item item = scan_.Next(report_);
            if (item == Item::End) break;
            if (item == Item::Directive) {
                scan_.TakeLine();
            } else if ((scan_.state.tracks & bit_) == 0) {
                scan_.SkipOtherTrack();
            } else {
                Command();
            }
        }
        if (!stopped_ && !shared_.aborted) {
            for (const Loop& loop : loops_) {
                report_.Error(loop.open, "'[' is never closed with ']'");
            }
            if (tiePending_) report_.Warning(tieAt_, "'&' at the end of the track ties to nothing");
        }
        track_.endTick = tick_;
    }

private:
    struct Loop {
        ScanState body;  // just after the "["
        Position open;
        int remaining = -1;  // passes still to play; known once the "]" is read
    };

    void Command() {
        const Position at = scan_.Here();
        const char c = scan_.Take();
        switch (c) {
        case 'c': case 'd': case 'e': case 'f': case 'g': case 'a': case 'b':
            Note(c, at);
            return;
        case 'r':
            Rest(ReadLength(false, at), at);
            return;
        case 'o':
            if (auto octave = ReadValue(c, at, "an octave", "octave", 0, kMaxOctave)) {
                octave_ = *octave;
            }
            return;
        case '<':
            if (octave_ == 0) return report_.Error(at, "'<' goes below octave 0");
            --octave_;
            return;
        case '>':
            if (octave_ == kMaxOctave) return report_.Error(at, "'>' goes above octave 8");
            ++octave_;
            return;
        case 'l':
            defaultLength_ = ReadLength(true, at);
            return;
        case 't':
            if (auto bpm = ReadValue(c, at, "a tempo", "tempo", 1, kMaxTempo)) {
                if (*bpm < kSlowestMidiTempo) {
                    report_.Warning(at, "a MIDI file holds no tempo below 3.58; it plays at that");
                }
                shared_.tempos.push_back({tick_, *bpm});
            }
            return;
        case 'v':
            if (auto velocity = ReadValue(c, at, "a velocity", "velocity", 0, kMaxMidiValue)) {
                velocity_ = *velocity;
            }
            return;
        case '@':
            if (auto program = ReadValue(c, at, "a program", "program", 0, kMaxMidiValue)) {
                AddEvent({EventKind::Program, tick_, 0, *program, 0}, at);
            }
            return;
        case '&':
            Tie(at);
            return;
        case '[':
            if (static_cast<int>(loops_.size()) >= limits_.maxLoopDepth) {
                report_.Error(at, "loops nest deeper than " + Num(limits_.maxLoopDepth));
                stopped_ = true;  // the brackets after this one no longer pair up
                return;
            }
            loops_.push_back({scan_.state, at});
            return;
        case ']':
            CloseLoop(at);
            return;
        default:
            Unexpected(c, at);
        }
    }

    void Unexpected(char c, Position at) {
        if (c == '+' || c == '#' || c == '-') {
            report_.Error(at, "accidental " + Quoted(c) + " must follow a note name");
        } else if (IsDigit(c)) {
            while (scan_.PeekDigit()) scan_.Take();
            report_.Error(at, "a number must follow a command");
        } else if (c == '.') {
            report_.Error(at, "a dot must follow a note, a rest or a length");
        } else if (IsTrackName(c)) {
            report_.Error(at, "track name " + Quoted(c) + " must stand at the start of a line");
        } else if (static_cast<unsigned char>(c) > 0x20 && c != 0x7F) {
            report_.Error(at, "unknown command " + Quoted(c));
        } else {
            report_.Error(at, "unexpected byte " + Quoted(c));
        }
    }

    Number ReadNumber() {
        Number number;
        number.at = scan_.Here();
        const std::size_t from = scan_.state.pos;
        while (scan_.PeekDigit()) {
            number.present = true;
            number.value = std::min(number.value * 10 + (scan_.Take() - '0'), kNumberCap);
        }
        number.digits = scan_.Since(from);
        return number;
    }

    // Messages are made only when needed: these commands may run millions of times in loops.
    std::optional<int> ReadValue(char command, Position commandAt, const char* needs,
                                 const char* name, int low, int high) {
        const Number number = ReadNumber();
        const auto range = [&] { return " (" + Num(low) + " to " + Num(high) + ")"; };
        if (!number.present) {
            report_.Error(commandAt, Quoted(command) + " needs " + needs + range());
            return std::nullopt;
        }
        if (number.value < low || number.value > high) {
            report_.Error(number.at,
                          std::string(name) + " " + Written(number) + " is out of range" + range());
            return std::nullopt;
        }
        return static_cast<int>(number.value);
    }

    // A length number (1 whole, 4 quarter, ... 192) and any dots; each dot
    // adds half of what the one before it added.
    std::int64_t ReadLength(bool needsNumber, Position commandAt) {
        const Number number = ReadNumber();
        std::int64_t base = defaultLength_;
        if (number.present) {
            if (number.value < 1 || number.value > kMaxLengthNumber) {
                report_.Error(number.at, "length " + Written(number) + " is out of range (1 to " +
                                             Num(kMaxLengthNumber) + ")");
            } else {
                base = kTicksPerWhole / number.value;
                if (kTicksPerWhole % number.value != 0) {
                    report_.Warning(number.at, "length " + Written(number) +
                                                   " is no whole number of ticks; it is cut to " +
                                                   Num(base));
                }
            }
        } else if (needsNumber) {
            report_.Error(commandAt, "'l' needs a length (1 to " + Num(kMaxLengthNumber) + ")");
        }
        std::int64_t total = base;
        for (std::int64_t part = base; scan_.PeekIs('.');) {
            const Position dot = scan_.Here();
            scan_.Take();
            if (part % 2 != 0) {
                report_.Warning(dot, "this dot adds no whole number of ticks; it is cut to " +
                                         Num(part / 2));
            }
            part /= 2;
            total = std::min(total + part, kLengthCap);
        }
        return total;
    }

    void Note(char name, Position at) {
        // c d e f g a b, from a (index 0).
        static constexpr std::array<int, 7> kSemitones = {9, 11, 0, 2, 4, 5, 7};
        int key = 12 * (octave_ + 1) + kSemitones[name - 'a'];
        while (scan_.PeekIs('+') || scan_.PeekIs('#') || scan_.PeekIs('-')) {
            key += scan_.Take() == '-' ? -1 : 1;
        }
        const std::int64_t length = ReadLength(false, at);
        if (key < 0 || key > kMaxMidiValue) {
            report_.Error(at, "the note is outside the MIDI keys 0 to 127");
            return Rest(length, at);
        }
        if (tiePending_) {
            tiePending_ = false;
            Event& tied = track_.events[lastNote_];
            if (tied.value == key) {
                tied.duration += length;
                return Advance(length, at);
            }
            report_.Warning(tieAt_,
                            "'&' joins notes of different pitch; the second is struck anew");
        }
        if (velocity_ == 0) {  // v0: the note keeps its time but sounds nothing
            lastNote_ = -1;
            return Advance(length, at);
        }
        if (!AddEvent({EventKind::Note, tick_, length, key, velocity_}, at)) return;
        lastNote_ = static_cast<std::ptrdiff_t>(track_.events.size()) - 1;
        ++track_.noteCount;
        Advance(length, at);
    }

    void Rest(std::int64_t length, Position at) {
        if (tiePending_) {
            report_.Warning(tieAt_, "'&' is followed by a rest; nothing is tied");
            tiePending_ = false;
        }
        lastNote_ = -1;
        Advance(length, at);
    }

    // "c4&c8" holds one c for both lengths; "c4&8" says the same more briefly.
    void Tie(Position at) {
        if (scan_.PeekDigit()) {
            const std::int64_t length = ReadLength(false, at);
            if (lastNote_ >= 0) {
                track_.events[lastNote_].duration += length;
            } else {
                report_.Warning(at, "'&' has no note before it; its length is a rest");
            }
            return Advance(length, at);
        }
        if (lastNote_ < 0) return report_.Warning(at, "'&' has no note before it to tie");
        tiePending_ = true;
        tieAt_ = at;
    }

    void CloseLoop(Position at) {
        const Number count = ReadNumber();
        int passes = 2;
        if (count.present) {
            if (count.value < 1 || count.value > limits_.maxLoopCount) {
                report_.Error(count.at, "loop count " + Written(count) + " is out of range (1 to " +
                                            Num(limits_.maxLoopCount) + ")");
                passes = 1;
            } else {
                passes = static_cast<int>(count.value);
            }
        }
        if (loops_.empty()) return report_.Error(at, "']' has no '[' before it");
        Loop& loop = loops_.back();
        if (loop.remaining < 0) loop.remaining = passes - 1;
        if (loop.remaining > 0) {
            --loop.remaining;
            scan_.state = loop.body;
        } else {
            loops_.pop_back();
        }
    }

    bool AddEvent(const Event& event, Position at) {
        if (shared_.events >= limits_.maxEvents) {
            LimitReached(at, "more than " + Num(static_cast<std::int64_t>(limits_.maxEvents)) +
                                 " notes and program changes once the loops are played");
            return false;
        }
        ++shared_.events;
        track_.events.push_back(event);
        return true;
    }

    void Advance(std::int64_t length, Position at) {
        tick_ += length;
        if (tick_ > limits_.maxTicks) {
            LimitReached(at, "the track is longer than " + Num(limits_.maxTicks) + " ticks");
        }
    }

    // A limit is blamed on the outermost loop being played, which is what
    // made the music too large, or else on the command that crossed it.
    void LimitReached(Position at, std::string text) {
        report_.Error(loops_.empty() ? at : loops_.front().open, std::move(text));
        shared_.aborted = true;
    }

    Scanner scan_;
    Shared& shared_;
    const Limits& limits_;
    Reporter& report_;
    Track& track_;
    const std::uint32_t bit_;
    bool stopped_ = false;

    int octave_ = kDefaultOctave;
    std::int64_t defaultLength_ = kTicksPerQuarter;
    int velocity_ = kDefaultVelocity;
    std::int64_t tick_ = 0;
    std::ptrdiff_t lastNote_ = -1;  // the note that ends where the track stands, if any
    bool tiePending_ = false;
    Position tieAt_{};
    std::vector<Loop> loops_;
};

}  // namespace

ParseResult ParseMml(std::string_view source, const Limits& limits) {
    ParseResult result;
    Reporter report(limits, result);
    if (source.size() > limits.maxSourceBytes) {
        report.Error({1, 1}, "the file is too large: more than " +
                                 Num(static_cast<std::int64_t>(limits.maxSourceBytes)) + " bytes");
        return result;
    }
    // Windows editors often begin a UTF-8 file with a byte-order mark.
    const std::size_t start = source.starts_with("\xEF\xBB\xBF") ? 3 : 0;

    std::uint64_t work = 0;
    report.ChargeRepeatsTo(work);
    const Survey survey = SurveySource(source, start, work, report);
    result.song.title = survey.title;

    int channel = 0;
    for (int index = 0; index < kTrackNames; ++index) {
        if (!(survey.used & (1u << index))) continue;
        if (channel == kDrumChannel) ++channel;
        if (channel >= kChannels) {
            report.Error(survey.firstUse[index],
                         "track " + std::string(1, static_cast<char>('A' + index)) +
                             " is one too many: a MIDI file has 15 channels for melodies");
            continue;
        }
        Track& track = result.song.tracks.emplace_back();
        track.name = static_cast<char>('A' + index);
        track.channel = channel++;
    }

    const std::uint64_t oneReading = source.size() - start;
    Shared shared{limits, report, work,
                  work + limits.maxWork + oneReading * result.song.tracks.size(), 0, {}, false};
    for (Track& track : result.song.tracks) {
        if (shared.aborted || report.Stopped()) break;
        TrackPlayer(source, start, shared, track).Play();
    }

    // Tempo changes of all tracks make one map; at the same tick the later
    // track's change wins, as it comes later in the file.
    std::stable_sort(shared.tempos.begin(), shared.tempos.end(),
                     [](const TempoChange& a, const TempoChange& b) { return a.tick < b.tick; });
    if (shared.tempos.empty() || shared.tempos.front().tick > 0) {
        shared.tempos.insert(shared.tempos.begin(), {0, kDefaultTempo});
    }
    result.song.tempos = std::move(shared.tempos);

    if (result.song.tracks.empty() && !result.HasErrors()) {
        report.Warning({1, 1}, "the song has no music: the MIDI file will hold no notes");
    }
    std::stable_sort(result.diagnostics.begin(), result.diagnostics.end(),
                     [](const Diagnostic& a, const Diagnostic& b) {
                         return std::tie(a.line, a.column) < std::tie(b.line, b.column);
                     });
    return result;
}

}  // namespace mmlc
