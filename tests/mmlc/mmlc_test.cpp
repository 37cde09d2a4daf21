// mmlc: what each command plays, every diagnostic and its place, the command
// line's files, a MIDI reader's view of the output, and the shipped examples.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "mmlc/mml_parse.h"
#include "mmlc/mmlc_main.h"
#include "settings/config_save.h"
#include "support/rows.h"

namespace mmlc {
namespace {

namespace fs = std::filesystem;
using zorvi::testing::ExpectRows;
using S = std::string;

// "t150@0 | A0: 60@0+480 62@480+480v90 p5@960" : tempos, then each track with
// its channel, its notes (key@start+duration, and the velocity when it is not
// the default) and programs (p).
std::string Describe(const Song& song) {
    std::ostringstream text;
    for (const TempoChange& tempo : song.tempos)
        text << "t" << tempo.bpm << "@" << tempo.tick << " ";
    text << "|";
    for (const Track& track : song.tracks) {
        text << " " << track.name << track.channel << ":";
        for (const Event& e : track.events) {
            if (e.kind == EventKind::Note) {
                text << " " << e.value << "@" << e.tick << "+" << e.duration;
                if (e.velocity != kDefaultVelocity) text << "v" << e.velocity;
            } else {
                text << " p" << e.value << "@" << e.tick;
            }
        }
    }
    return text.str();
}

// "2:5 error: text" for each diagnostic.
std::vector<std::string> Describe(const std::vector<Diagnostic>& diagnostics) {
    std::vector<std::string> lines;
    for (const Diagnostic& d : diagnostics) {
        lines.push_back(std::to_string(d.line) + ":" + std::to_string(d.column) +
                        (d.severity == Severity::Error ? " error: " : " warning: ") + d.text);
    }
    return lines;
}

TEST(MmlParse, CommandsPlayTheirEvents) {
    ExpectRows<S, S>([](const S& source) {
        const ParseResult result = ParseMml(source);
        EXPECT_FALSE(result.HasErrors()) << testing::PrintToString(Describe(result.diagnostics));
        return Describe(result.song);
    }, {
        {"A c", "t120@0 | A0: 60@0+480"},
        {"A o5 c o0 c", "t120@0 | A0: 72@0+480 12@480+480"},
        {"A c+ d- e# b--", "t120@0 | A0: 61@0+480 61@480+480 65@960+480 69@1440+480"},
        {"A > c < < c", "t120@0 | A0: 72@0+480 48@480+480"},
        {"A l8 c d16 e", "t120@0 | A0: 60@0+240 62@240+120 64@360+240"},
        {"A c1 c4. c4.. l2. c", "t120@0 | A0: 60@0+1920 60@1920+720 60@2640+840 60@3480+1440"},
        {"A c r8 d r2.", "t120@0 | A0: 60@0+480 62@720+480"},
        {"A v64 c @10 d v0 e v127 f",
         "t120@0 | A0: 60@0+480v64 p10@480 62@480+480v64 65@1440+480v127"},
        {"A t150 c t90 d", "t150@0 t90@480 | A0: 60@0+480 62@480+480"},
        {"A c t60\nB r4 r4 t200", "t120@0 t60@480 t200@960 | A0: 60@0+480 B1:"},
        // Ties: the same pitch sounds once; another pitch is struck anew.
        {"A c4&c8 d", "t120@0 | A0: 60@0+720 62@720+480"},
        {"A c4&8. d", "t120@0 | A0: 60@0+840 62@840+480"},
        {"A c & d", "t120@0 | A0: 60@0+480 62@480+480"},
        {"A [c&]3", "t120@0 | A0: 60@0+1440"},
        // Loops: default count 2, nesting, commands that change state on every pass.
        {"A [c d]3",
         "t120@0 | A0: 60@0+480 62@480+480 60@960+480 62@1440+480 60@1920+480 62@2400+480"},
        {"A [c [d]]2 e", "t120@0 | A0: 60@0+480 62@480+480 62@960+480 60@1440+480 62@1920+480 "
                         "62@2400+480 64@2880+480"},
        {"A o2 [>c]3", "t120@0 | A0: 48@0+480 60@480+480 72@960+480"},
        {"A [c\nd]2", "t120@0 | A0: 60@0+480 62@480+480 60@960+480 62@1440+480"},
        // Lines: several tracks at once, continuation, comments, track order and channels.
        {"AB c\n  d\nB e", "t120@0 | A0: 60@0+480 62@480+480 B1: 60@0+480 62@480+480 64@960+480"},
        {"B c\nA d", "t120@0 | A0: 62@0+480 B1: 60@0+480"},
        {"A c ; d\n/* e\n f */ g", "t120@0 | A0: 60@0+480 67@480+480"},
        {"\xEF\xBB\xBFZ c d", "t120@0 | Z0: 60@0+480 62@480+480"},
        {"ABCDEFGHIJK r", "t120@0 | A0: B1: C2: D3: E4: F5: G6: H7: I8: J10: K11:"},
        {"", "t120@0 |"},
    });
}

TEST(MmlParse, TitleBytesAreKept) {
    // UTF-8 and Shift-JIS (0x95 0x5C ends in the byte of "\") alike.
    for (const std::string title : {"Morning", "Caf\xC3\xA9 \xE6\x9C\x9D", "\x95\x5C \x83\x5C"}) {
        EXPECT_EQ(ParseMml("#title  " + title + "\r\nA c").song.title, title);
    }
}

TEST(MmlParse, EveryFaultIsReportedAtItsPlace) {
    using Lines = std::vector<S>;
    const auto diagnose = [](const S& source, bool small) {
        const Limits tight{.maxSourceBytes = 64, .maxEvents = 10, .maxWork = 1000,
                           .maxTicks = 100'000, .maxErrors = 3};
        const ParseResult result = ParseMml(source, small ? tight : Limits{});
        EXPECT_EQ(result.stoppedEarly, source == "A xxxxx");
        return Describe(result.diagnostics);
    };
    ExpectRows<std::tuple<S, bool>, Lines>(diagnose, {
        {{"A o9 c0 d1000 x", false},
         {"1:4 error: octave 9 is out of range (0 to 8)",
          "1:7 error: length 0 is out of range (1 to 192)",
          "1:10 error: length 1000 is out of range (1 to 192)", "1:15 error: unknown command 'x'"}},
        {{"A o0 < o8 > o", false},
         {"1:6 error: '<' goes below octave 0", "1:11 error: '>' goes above octave 8",
          "1:13 error: 'o' needs an octave (0 to 8)"}},
        {{"A t0 t1000 v128 @128 l", false},
         {"1:4 error: tempo 0 is out of range (1 to 999)",
          "1:7 error: tempo 1000 is out of range (1 to 999)",
          "1:13 error: velocity 128 is out of range (0 to 127)",
          "1:18 error: program 128 is out of range (0 to 127)",
          "1:22 error: 'l' needs a length (1 to 192)"}},
        {{"A [c]0 [d]1000000000000000", false},
         {"1:6 error: loop count 0 is out of range (1 to 255)",
          "1:11 error: loop count 100000000000... is out of range (1 to 255)"}},
        {{"A [[[[[[[[[c]]]]]]]]]", false}, {"1:11 error: loops nest deeper than 8"}},
        {{"A [c\nB d]\nB [e", false},
         {"1:3 error: '[' is never closed with ']'", "2:4 error: ']' has no '[' before it",
          "3:3 error: '[' is never closed with ']'"}},
        {{"c\nA + 4 . a B \x01 /* x", false},
         {"1:1 error: music before any track name: begin the line with a track name, A to Z",
          "2:3 error: accidental '+' must follow a note name",
          "2:5 error: a number must follow a command",
          "2:7 error: a dot must follow a note, a rest or a length",
          "2:11 error: track name 'B' must stand at the start of a line",
          "2:13 error: unexpected byte 0x01",
          "2:15 error: comment '/*' is never closed with '*/'"}},
        {{"ABCDEFGHIJKLMNOP c", false},
         {"1:18 error: track P is one too many: a MIDI file has 15 channels for melodies"}},
        {{"#title a\n#Title b\n#tempo 1\nA c7 c8..... & r c & d t3", false},
         {"2:1 warning: a second #title replaces the first",
          "3:1 warning: unknown directive '#tempo' is ignored",
          "4:4 warning: length 7 is no whole number of ticks; it is cut to 274",
          "4:12 warning: this dot adds no whole number of ticks; it is cut to 7",
          "4:14 warning: '&' is followed by a rest; nothing is tied",
          "4:20 warning: '&' joins notes of different pitch; the second is struck anew",
          "4:24 warning: a MIDI file holds no tempo below 3.58; it plays at that"}},
        {{"A & &8 c&", false},
         {"1:3 warning: '&' has no note before it to tie",
          "1:5 warning: '&' has no note before it; its length is a rest",
          "1:9 warning: '&' at the end of the track ties to nothing"}},
        {{"; nothing\n", false},
         {"1:1 warning: the song has no music: the MIDI file will hold no notes"}},
        // The limits: each is blamed on the outermost loop, or on the command that crossed it.
        {{S(65, ' '), true}, {"1:1 error: the file is too large: more than 64 bytes"}},
        {{"A c\nB [[c]4]4", true},
         {"2:3 error: more than 10 notes and program changes once the loops are played"}},
        {{"A [[r1]255]255", true}, {"1:3 error: the track is longer than 100000 ticks"}},
        {{"A [[[o4]255]255]255", true},
         {"1:3 error: the loops repeat too much: more than 1000 bytes to read again"}},
        {{"A [[x]9]9", true},  // a message given again costs what it took to make
         {"1:3 error: the loops repeat too much: more than 1000 bytes to read again",
          "1:5 error: unknown command 'x'"}},
        {{"A xxxxx", true},
         {"1:3 error: unknown command 'x'", "1:4 error: unknown command 'x'",
          "1:5 error: unknown command 'x'"}},
    });
}

// A dotted default length set again in a loop doubles each time: it stops at a
// cap, far beyond any track, instead of overflowing.
TEST(MmlParse, DefaultLengthsGrowingInALoopStopAtACap) {
    const ParseResult result = ParseMml("A [l.......]255 c");
    ASSERT_FALSE(result.diagnostics.empty());
    EXPECT_EQ(Describe(result.diagnostics).back(),
              "1:17 error: the track is longer than 268435455 ticks");
}

// A fresh folder for one test, removed afterwards.
struct Folder {
    fs::path path =
        fs::temp_directory_path() / ("mmlc-test-" + std::to_string(std::random_device{}()));
    Folder() { fs::create_directories(path); }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    std::string operator/(const std::string& name) const { return (path / name).string(); }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path / name, std::ios::binary) << bytes;
    }
};

TEST(MmlcMain, WritesTheFileOnlyWithoutErrors) {
    const struct {
        std::vector<std::string> args;  // "@" stands for the folder
        int exitCode;
        std::string written;  // the file in the folder afterwards, besides the sources
        std::string shown;    // a line of out or err
    } cases[] = {
        {{"@/good.mml"}, kExitOk, "good.mid", "  track B: 1 note, 1440 ticks"},
        {{"-o", "@/other.mid", "@/good.mml"}, kExitOk, "other.mid",
         "mmlc: 2 tracks, 4 notes, 1440 ticks (0+ bars of 4/4), 0:01.5"},
        {{"@/bad.mml"}, kExitFailed, "", "@/bad.mml(2,3): error: unknown command 'x'"},
        {{"@/missing.mml"}, kExitFailed, "",
         "@/missing.mml(1,1): error: cannot read the file: No such file or directory"},
        {{"-o", "@/no/such/folder.mid", "@/good.mml"}, kExitFailed, "",
         "mmlc: error: cannot write @/no/such/folder.mid: No such file or directory"},
        {{"@/song.mid"}, kExitFailed, "",
         "@/song.mid(1,1): error: the output would overwrite the song; name another with -o"},
        {{}, kExitUsage, "", "mmlc: error: no song named"},
        {{"@/good.mml", "@/bad.mml"}, kExitUsage, "", "mmlc: error: more than one song: @/bad.mml"},
        {{"-x", "@/good.mml"}, kExitUsage, "", "mmlc: error: unknown option or repeated -o: -x"},
    };
    for (const auto& c : cases) {
        const Folder folder;
        folder.Write("good.mml", "A c d e\nB r4 c2");
        folder.Write("bad.mml", "A c\nB x");
        folder.Write("song.mid", "A c");
        const auto atFolder = [&](std::string text) {
            for (auto at = text.find('@'); at != std::string::npos; at = text.find('@', at + 1)) {
                text.replace(at, 2, folder / "");
            }
            return text;
        };
        std::vector<std::string> args;
        for (const auto& arg : c.args) args.push_back(atFolder(arg));
        SCOPED_TRACE(testing::PrintToString(args));
        std::ostringstream out, err;
        EXPECT_EQ(MmlcMain(args, out, err), c.exitCode);
        std::string written;
        for (const auto& entry : fs::directory_iterator(folder.path)) {
            const std::string name = entry.path().filename().string();
            if (!name.ends_with(".mml") && name != "song.mid") written += name;
        }
        EXPECT_EQ(written, c.written);
        // Whole lines, built by appending: GCC 12 warns falsely about "\n" + a temporary.
        std::string shown = "\n", line = "\n";
        shown += out.str() + err.str();
        line += atFolder(c.shown) + "\n";
        EXPECT_NE(shown.find(line), std::string::npos) << shown;
    }
    ExpectRows<S, S>(DefaultOutputPath, {
        {"song.mml", "song.mid"}, {"a.b/song", "a.b/song.mid"},
        {"C:\\x.y\\s.t.mml", "C:\\x.y\\s.t.mid"}, {".mml", ".mml.mid"}, {"C:song", "C:song.mid"},
    });
}

#ifdef ZORVI_MIDICSV
// An independent reader, Debian's midicsv, sees what the song says.
TEST(MmlcMidicsv, ReadsWhatTheSongSays) {
    const struct {
        const char* song;
        std::vector<std::string> records;  // title, tempo and note records, in file order
    } cases[] = {
        {"#title Tune\nA t150 l8 o4 c d&d4 @3 e2",
         {"1, 0, Title_t, \"Tune\"", "1, 0, Tempo, 400000", "2, 0, Note_on_c, 0, 60, 100",
          "2, 240, Note_off_c, 0, 60, 0", "2, 240, Note_on_c, 0, 62, 100",
          "2, 960, Note_off_c, 0, 62, 0", "2, 960, Program_c, 0, 3",
          "2, 960, Note_on_c, 0, 64, 100", "2, 1920, Note_off_c, 0, 64, 0"}},
        // A repeated note ends before it starts again; a delta of two bytes.
        {"A v90 [c1]2 t90\nB o5 r1 c8",
         {"1, 0, Tempo, 500000", "1, 3840, Tempo, 666667", "2, 0, Note_on_c, 0, 60, 90",
          "2, 1920, Note_off_c, 0, 60, 0", "2, 1920, Note_on_c, 0, 60, 90",
          "2, 3840, Note_off_c, 0, 60, 0", "3, 1920, Note_on_c, 1, 72, 100",
          "3, 2160, Note_off_c, 1, 72, 0"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.song);
        const Folder folder;
        folder.Write("song.mml", c.song);
        std::ostringstream out, err;
        ASSERT_EQ(MmlcMain({folder / "song.mml"}, out, err), kExitOk) << err.str();
        const std::string command = std::string(ZORVI_MIDICSV) + " \"" + (folder / "song.mid") +
                                    "\" \"" + (folder / "song.csv") + "\"";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        std::ifstream csv(folder.path / "song.csv");
        // The tracks' names are one letter long: only the song's title is kept.
        const auto kept = [](const std::string& line) {
            const std::size_t title = line.find("Title_t, \"");
            if (title != S::npos) return line.find('"', title + 10) > title + 11;
            return line.find("Tempo") != S::npos || line.find("Note_") != S::npos ||
                   line.find("Program_c") != S::npos;
        };
        std::vector<std::string> records;
        for (std::string line; std::getline(csv, line);) {
            if (kept(line)) records.push_back(line);
        }
        EXPECT_EQ(records, c.records);
    }
}
#endif

#ifdef ZORVI_SOURCE_DIR
std::string ReadShipped(const std::string& name) {
    std::ifstream file(fs::path(ZORVI_SOURCE_DIR) / "dist" / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(MmlcExamples, CleanCompilesAndBrokenShowsItsOneError) {
    const ParseResult clean = ParseMml(ReadShipped("examples/clean.mml"));
    EXPECT_EQ(Describe(clean.diagnostics), std::vector<std::string>{});
    EXPECT_FALSE(clean.song.title.empty());
    EXPECT_GE(clean.song.tracks.size(), 2u);
    const ParseResult broken = ParseMml(ReadShipped("examples/broken.mml"));
    EXPECT_EQ(Describe(broken.diagnostics),
              std::vector<std::string>{"9:23 error: '[' is never closed with ']'"});
}

// The example configuration is exactly what the configuration window would
// save for it: every key, each section's keys in the order of their writes.
TEST(MmlcExamples, ConfigurationIsWhatTheWindowSaves) {
    zorvi::settings::ConfigurationValues values;
    values.name = "Example";
    values.useCUI = true;
    values.console = "$hp$mmlc.exe";
    values.cuiWindowState = 2;
    values.extension = "mid";
    values.detectError = true;
    values.useGUI = true;
    values.useAssociated = true;
    values.script = "\"$hp$mmlc.exe\" \"$fp$$fn$\" > \"$fp$$fn2$.log\" 2>&1";
    values.required = "mmlc.exe";
    std::vector<std::string> sections;
    std::map<std::string, std::string> keys;
    for (const auto& planned : zorvi::settings::PlanConfigurationSave(values, {}).writes) {
        if (planned.file != zorvi::settings::SettingsFileRole::Configuration) continue;
        const std::string& section = planned.write.section;
        if (!keys.contains(section)) sections.push_back(section);
        keys[section] += planned.write.key + "=" + planned.write.value + "\r\n";
    }
    std::string expected;
    for (const auto& section : sections) expected += "[" + section + "]\r\n" + keys[section];
    EXPECT_EQ(ReadShipped("cfg/Example.ini"), expected);
}
#endif

}  // namespace
}  // namespace mmlc
