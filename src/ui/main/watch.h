// The decisions of the target file and of watch mode that need no Windows:
// when to ask before taking a file, what a timer tick does, what follows a
// compile that a tick started, and the main window's caption.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorvi {

// Whether SetFile asks before taking a file, given the extension filter's
// code (0 no entries, 1 none matches, 2 missing configuration, 3 found,
// 4 no switch): with no entries only files other than MML, MUS and TXT
// (in any case) are asked about; when entries exist and none matches, every file is.
bool NeedsTargetConfirmation(int filterCode, std::string_view extension);

enum class TickAction {
    Nothing,  // no change, or a compile is running
    Release,  // the target has gone: let go of it
    Compile,  // the last-write time differs (later or earlier)
};
// How long the target has been missing. Editors that save by writing a new
// file, deleting the old one and renaming leave it missing for a moment:
// it is let go only when it is still missing on the second tick after the
// one that found it gone, and never sooner than kMissingGraceMs after that.
struct MissingTarget {
    int ticks = 0;                   // ticks that found it missing in a row
    std::uint64_t firstMissedMs = 0;  // when the first of them did
};
inline constexpr std::uint64_t kMissingGraceMs = 500;

// lastWrite is the target's last-write time now (nullopt: the target is gone);
// stored is the time last seen; nowMs a clock in milliseconds.
TickAction WatchTick(bool compiling, std::optional<std::uint64_t> lastWrite, std::uint64_t stored,
                     MissingTarget& missing, std::uint64_t nowMs);

// After a compile that a tick started, which the timer was off for.
struct AfterTickCompile {
    bool storeTime;    // remember the time read before the compile
    bool resumeTimer;  // watching goes on, with a new target set meanwhile too
};
AfterTickCompile AfterTickCompileRule(bool watchStillOn, std::string_view targetBefore,
                                      std::string_view targetNow);

// The timer period actually set: at least 10 ms, whatever the setting says,
// so that the watch timer never spins.
unsigned EffectiveTimerInterval(int milliseconds);

// "<file name> - <title> v<version>", or "<title> v<version>" without a target.
std::string MainCaption(std::string_view targetFile, std::string_view title,
                        std::string_view version);

}  // namespace zorvi
