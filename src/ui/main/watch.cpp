// Target-file and watch-mode rules of the main window.
#include "ui/main/watch.h"

#include <climits>

#include "core/text.h"
#include "files/path_text.h"

namespace zorvi {

bool NeedsTargetConfirmation(int filterCode, std::string_view extension) {
    if (filterCode == 1) return true;
    if (filterCode != 0) return false;
    const std::string upper = AsciiUpper(extension);
    return upper != "MML" && upper != "MUS" && upper != "TXT";
}

TickAction WatchTick(bool compiling, std::optional<std::uint64_t> lastWrite, std::uint64_t stored,
                     MissingTarget& missing, std::uint64_t nowMs) {
    // A change seen while any compile runs waits for the first tick after it.
    if (compiling) return TickAction::Nothing;
    if (!lastWrite) {
        if (missing.ticks == 0) missing.firstMissedMs = nowMs;
        ++missing.ticks;
        const bool longGone =
            missing.ticks >= 3 && nowMs - missing.firstMissedMs >= kMissingGraceMs;
        return longGone ? TickAction::Release : TickAction::Nothing;
    }
    // Back after a safe save: its new time compiles it once.
    missing = {};
    return *lastWrite != stored ? TickAction::Compile : TickAction::Nothing;
}

AfterTickCompile AfterTickCompileRule(bool watchStillOn, std::string_view targetBefore,
                                      std::string_view targetNow) {
    if (targetBefore == targetNow) {
        // The time read before the compile, so a save made meanwhile compiles on the next tick.
        return {.storeTime = true, .resumeTimer = watchStillOn};
    }
    // Another file was set meanwhile and its own time is already stored: the
    // watch goes on with it.
    return {.storeTime = false, .resumeTimer = watchStillOn};
}

unsigned EffectiveTimerInterval(int milliseconds) {
    // A period of 0 would tick as fast as the message queue runs, reading the
    // target's time in a busy loop, and a negative one, turned into the
    // platform's unsigned period, would hardly ever tick. 10 ms is also the
    // shortest period Windows keeps for any timer.
    constexpr int kShortest = 10;
    return static_cast<unsigned>(milliseconds < kShortest ? kShortest : milliseconds);
}

std::string MainCaption(std::string_view targetFile, std::string_view title,
                        std::string_view version) {
    std::string caption = std::string(title) + " v" + std::string(version);
    if (targetFile.empty()) return caption;
    return mdlFile::GetFileName(targetFile) + " - " + caption;
}

}  // namespace zorvi
