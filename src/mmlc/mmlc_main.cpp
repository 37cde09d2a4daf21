// The mmlc command line: reads the source, reports every diagnostic as
// "file(line,column): error: text", and writes the MIDI file only when the
// song has no error. Plain C stdio for files, so that on Windows a path goes
// to the system in the ANSI code page exactly as it came on the command line.
#include "mmlc/mmlc_main.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include "mmlc/mml_parse.h"
#include "mmlc/smf_write.h"

namespace mmlc {
namespace {

constexpr const char* kUsage =
    "usage: mmlc [-o out.mid] song.mml\n"
    "Compiles an MML song into a Standard MIDI File (default: the song's name with .mid).\n";

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

std::string Reason() { return std::strerror(errno); }

// At most one buffer more than the limit is read: enough for the parser to
// see that the file is too large, without holding a file of any size.
std::optional<std::string> ReadSource(const std::string& path, std::size_t limit,
                                      std::string& reason) {
    File file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        reason = Reason();
        return std::nullopt;
    }
    std::string text;
    char buffer[1 << 16];
    while (text.size() <= limit) {
        const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get());
        if (count == 0) break;
        text.append(buffer, count);
    }
    if (std::ferror(file.get())) {
        reason = Reason();
        return std::nullopt;
    }
    return text;
}

// The file is written in one go from memory; a file left half written (a
// full disk) is removed, so that no broken song is ever played.
bool WriteOutput(const std::string& path, const std::vector<std::uint8_t>& bytes,
                 std::string& reason) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        reason = Reason();
        return false;
    }
    bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    written = std::fflush(file) == 0 && written;
    if (!written) reason = Reason();
    if (std::fclose(file) != 0 && written) {
        reason = Reason();
        written = false;
    }
    if (!written) std::remove(path.c_str());
    return written;
}

std::string Plural(long long count, const char* word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

// The playing time under the song's own tempo map.
double Seconds(const Song& song, std::int64_t endTick) {
    double seconds = 0;
    for (std::size_t i = 0; i < song.tempos.size() && song.tempos[i].tick < endTick; ++i) {
        const std::int64_t until =
            i + 1 < song.tempos.size() ? std::min(song.tempos[i + 1].tick, endTick) : endTick;
        seconds += static_cast<double>(until - song.tempos[i].tick) / kTicksPerQuarter * 60.0 /
                   song.tempos[i].bpm;
    }
    return seconds;
}

std::string Clock(double seconds) {
    const auto tenths = static_cast<long long>(seconds * 10 + 0.5);
    char text[48];
    std::snprintf(text, sizeof text, "%lld:%02lld.%lld", tenths / 600, tenths / 10 % 60,
                  tenths % 10);
    return text;
}

void Summarise(const Song& song, std::ostream& out) {
    std::int64_t endTick = 0;
    long long notes = 0;
    for (const Track& track : song.tracks) {
        out << "  track " << track.name << ": " << Plural(track.noteCount, "note") << ", "
            << Plural(track.endTick, "tick") << "\n";
        endTick = std::max(endTick, track.endTick);
        notes += track.noteCount;
    }
    out << "mmlc: " << Plural(static_cast<long long>(song.tracks.size()), "track") << ", "
        << Plural(notes, "note") << ", " << Plural(endTick, "tick") << " ("
        << endTick / kTicksPerWhole << (endTick % kTicksPerWhole ? "+" : "")
        << " bars of 4/4), " << Clock(Seconds(song, endTick)) << "\n";
}

}  // namespace

std::string DefaultOutputPath(const std::string& source) {
    const std::size_t nameStart = source.find_last_of("\\/:") + 1;  // npos + 1 is 0
    const std::size_t dot = source.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > nameStart;
    return (hasExtension ? source.substr(0, dot) : source) + ".mid";
}

int MmlcMain(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    std::string source;
    std::string output;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "-h" || arg == "--help" || arg == "/?") {
            out << kUsage;
            return kExitOk;
        }
        if (arg == "-o" && i + 1 < args.size() && output.empty()) {
            output = args[++i];
        } else if (arg.size() > 1 && arg[0] == '-') {
            err << "mmlc: error: unknown option or repeated -o: " << arg << "\n" << kUsage;
            return kExitUsage;
        } else if (source.empty()) {
            source = arg;
        } else {
            err << "mmlc: error: more than one song: " << arg << "\n" << kUsage;
            return kExitUsage;
        }
    }
    if (source.empty()) {
        err << "mmlc: error: no song named\n" << kUsage;
        return kExitUsage;
    }
    if (output.empty()) output = DefaultOutputPath(source);
    out << "mmlc: " << source << " -> " << output << std::endl;
    if (output == source) {
        err << source
            << "(1,1): error: the output would overwrite the song; name another with -o\n";
        return kExitFailed;
    }

    const Limits limits;
    std::string reason;
    const std::optional<std::string> text = ReadSource(source, limits.maxSourceBytes, reason);
    if (!text) {
        err << source << "(1,1): error: cannot read the file: " << reason << "\n";
        return kExitFailed;
    }

    const ParseResult result = ParseMml(*text, limits);
    for (const Diagnostic& d : result.diagnostics) {
        err << source << "(" << d.line << "," << d.column << "): "
            << (d.severity == Severity::Error ? "error: " : "warning: ") << d.text << "\n";
    }
    if (result.stoppedEarly) {
        err << "mmlc: more than " << limits.maxErrors << " errors; stopped looking for more\n";
    }
    err.flush();
    if (result.HasErrors()) {
        out << "mmlc: " << Plural(result.errorCount, "error") << ", "
            << Plural(result.warningCount, "warning") << "; " << output << " not written\n";
        return kExitFailed;
    }

    const std::vector<std::uint8_t> bytes = WriteSmf(result.song);
    if (!WriteOutput(output, bytes, reason)) {
        err << "mmlc: error: cannot write " << output << ": " << reason << "\n";
        return kExitFailed;
    }
    Summarise(result.song, out);
    out << "mmlc: wrote " << output << " (" << Plural(static_cast<long long>(bytes.size()), "byte")
        << ", " << Plural(result.warningCount, "warning") << ")\n";
    return kExitOk;
}

}  // namespace mmlc
