// libFuzzer target: any bytes through the MML parser and, when they make a
// song, the MIDI writer; traps when a promise of the parser is broken. The
// limits are small so that every one of them is reached by short inputs and
// each input takes well under a millisecond.
//   cmake -S . -B build/fuzz -DCMAKE_CXX_COMPILER=clang++ -DZORVI_FUZZ=ON -DZORVI_SANITIZE=ON
//   cmake --build build/fuzz --target mml_parse_fuzz
//   build/fuzz/mml_parse_fuzz -max_total_time=60 CORPUS_FOLDER
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mmlc/mml_parse.h"
#include "mmlc/smf_write.h"

namespace {

void Check(bool promise) {
    if (!promise) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    mmlc::Limits limits;
    limits.maxSourceBytes = 1 << 16;
    limits.maxEvents = 2'000;
    limits.maxWork = 100'000;
    limits.maxErrors = 20;
    limits.maxWarnings = 20;
    const mmlc::ParseResult result = mmlc::ParseMml(
        std::string_view(reinterpret_cast<const char*>(data), size), limits);

    Check(result.errorCount <= limits.maxErrors && result.warningCount <= limits.maxWarnings);
    for (const mmlc::Diagnostic& d : result.diagnostics) Check(d.line >= 1 && d.column >= 1);
    if (result.HasErrors()) return 0;
    Check(!result.song.tempos.empty() && result.song.tempos.front().tick == 0);
    for (const mmlc::Track& track : result.song.tracks) {
        std::int64_t tick = 0;
        for (const mmlc::Event& event : track.events) {
            Check(event.tick >= tick && event.value >= 0 && event.value <= 127);
            Check(event.tick + event.duration <= track.endTick);
            Check(track.endTick <= limits.maxTicks);
            tick = event.tick;
        }
    }
    const std::vector<std::uint8_t> bytes = mmlc::WriteSmf(result.song);
    Check(bytes.size() >= 14 && bytes[0] == 'M' && bytes[1] == 'T');
    return 0;
}
