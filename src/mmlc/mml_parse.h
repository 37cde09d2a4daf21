// The MML language of mmlc: source text in, the timed events of every track
// and every diagnostic out. No files, no output: the command line does those.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mmlc {

inline constexpr int kTicksPerQuarter = 480;
inline constexpr int kTicksPerWhole = 4 * kTicksPerQuarter;
inline constexpr int kDefaultTempo = 120;
inline constexpr int kDefaultVelocity = 100;
inline constexpr int kDefaultOctave = 4;

enum class Severity { Error, Warning };

struct Diagnostic {
    Severity severity;
    int line;    // from 1
    int column;  // from 1, counted in bytes
    std::string text;

    bool operator==(const Diagnostic&) const = default;
};

enum class EventKind { Note, Program };

struct Event {
    EventKind kind;
    std::int64_t tick;
    std::int64_t duration;  // notes only
    int value;              // the key (60 is o4 c) or the program
    int velocity;           // notes only

    bool operator==(const Event&) const = default;
};

struct TempoChange {
    std::int64_t tick;
    int bpm;

    bool operator==(const TempoChange&) const = default;
};

struct Track {
    char name;                  // 'A' to 'Z'
    int channel;                // 0 to 15; 9 (channel 10, drums) is never given
    std::vector<Event> events;  // in time order
    std::int64_t endTick = 0;   // where the last note or rest ends
    int noteCount = 0;
};

struct Song {
    std::string title;                // the bytes after "#title", as written
    std::vector<TempoChange> tempos;  // in time order; the first is at tick 0
    std::vector<Track> tracks;        // in the order of their names
};

// What keeps any input, however large or hostile, to bounded time and memory.
struct Limits {
    std::size_t maxSourceBytes = std::size_t{16} << 20;
    std::size_t maxEvents = 1'000'000;      // all tracks, after loops
    std::uint64_t maxWork = 100'000'000;  // bytes read again by loops, beyond one reading a track
    std::int64_t maxTicks = (std::int64_t{1} << 28) - 1;  // the longest time a MIDI delta holds
    int maxErrors = 100;
    int maxWarnings = 100;
    int maxLoopDepth = 8;
    int maxLoopCount = 255;
};

struct ParseResult {
    Song song;
    std::vector<Diagnostic> diagnostics;  // in the order of their places
    int errorCount = 0;
    int warningCount = 0;
    bool stoppedEarly = false;  // maxErrors reached: later errors were not looked for

    bool HasErrors() const { return errorCount > 0; }
};

ParseResult ParseMml(std::string_view source, const Limits& limits = {});

}  // namespace mmlc
