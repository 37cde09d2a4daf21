// Standard MIDI File bytes for a parsed song. Times are kept absolute until
// the last moment and turned into deltas as each track is written.
#include "mmlc/smf_write.h"

#include <algorithm>
#include <string_view>

namespace mmlc {
namespace {

constexpr std::uint8_t kNoteOff = 0x80;
constexpr std::uint8_t kNoteOn = 0x90;
constexpr std::uint8_t kProgramChange = 0xC0;
constexpr std::uint8_t kMeta = 0xFF;
constexpr std::uint8_t kMetaTrackName = 0x03;
constexpr std::uint8_t kMetaEndOfTrack = 0x2F;
constexpr std::uint8_t kMetaTempo = 0x51;
constexpr std::int64_t kMicrosecondsPerMinute = 60'000'000;
constexpr std::int64_t kSlowestTempo = 0xFFFFFF;  // microseconds a quarter; three bytes

using Bytes = std::vector<std::uint8_t>;

void PutBigEndian(Bytes& out, std::uint64_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
        out.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

// A variable-length quantity: seven bits a byte, the high bit on all but the last.
void PutVarLength(Bytes& out, std::uint64_t value) {
    std::uint8_t groups[10];
    int count = 0;
    do {
        groups[count++] = static_cast<std::uint8_t>(value & 0x7F);
        value >>= 7;
    } while (value != 0);
    while (count > 1) out.push_back(static_cast<std::uint8_t>(groups[--count] | 0x80));
    out.push_back(groups[0]);
}

// One track chunk; the caller adds events in time order.
class TrackChunk {
public:
    explicit TrackChunk(Bytes& out) : out_(out) {
        out_.insert(out_.end(), {'M', 'T', 'r', 'k', 0, 0, 0, 0});
        start_ = out_.size();
    }

    void Message(std::int64_t tick, std::initializer_list<std::uint8_t> bytes) {
        Delta(tick);
        out_.insert(out_.end(), bytes);
    }

    void Meta(std::int64_t tick, std::uint8_t type, std::string_view data) {
        Delta(tick);
        out_.push_back(kMeta);
        out_.push_back(type);
        PutVarLength(out_, data.size());
        out_.insert(out_.end(), data.begin(), data.end());
    }

    void End(std::int64_t tick) {
        Meta(std::max(tick, last_), kMetaEndOfTrack, {});
        const std::uint64_t length = out_.size() - start_;
        for (int i = 0; i < 4; ++i) {
            out_[start_ - 4 + i] = static_cast<std::uint8_t>(length >> (8 * (3 - i)));
        }
    }

private:
    void Delta(std::int64_t tick) {
        PutVarLength(out_, static_cast<std::uint64_t>(tick - last_));
        last_ = tick;
    }

    Bytes& out_;
    std::size_t start_ = 0;
    std::int64_t last_ = 0;
};

// A channel message at its absolute time. At one tick, notes end before
// programs change, and programs change before new notes start, so a note
// repeated without a gap is heard twice and in its new sound.
struct Timed {
    std::int64_t tick;
    int order;
    std::uint8_t status;
    std::uint8_t data1;
    std::uint8_t data2;
};

void WriteTrack(Bytes& out, const Track& track) {
    std::vector<Timed> messages;
    messages.reserve(2 * track.events.size());
    const auto channel = static_cast<std::uint8_t>(track.channel);
    for (const Event& event : track.events) {
        const auto value = static_cast<std::uint8_t>(event.value);
        if (event.kind == EventKind::Program) {
            messages.push_back({event.tick, 1, static_cast<std::uint8_t>(kProgramChange | channel),
                                value, 0});
        } else {
            messages.push_back({event.tick, 2, static_cast<std::uint8_t>(kNoteOn | channel), value,
                                static_cast<std::uint8_t>(event.velocity)});
            messages.push_back({event.tick + event.duration, 0,
                                static_cast<std::uint8_t>(kNoteOff | channel), value, 0});
        }
    }
    std::stable_sort(messages.begin(), messages.end(), [](const Timed& a, const Timed& b) {
        return a.tick != b.tick ? a.tick < b.tick : a.order < b.order;
    });

    TrackChunk chunk(out);
    chunk.Meta(0, kMetaTrackName, std::string_view(&track.name, 1));
    for (const Timed& m : messages) {
        if (m.status >= kProgramChange) {
            chunk.Message(m.tick, {m.status, m.data1});
        } else {
            chunk.Message(m.tick, {m.status, m.data1, m.data2});
        }
    }
    chunk.End(track.endTick);
}

}  // namespace

std::vector<std::uint8_t> WriteSmf(const Song& song) {
    // Format 1: the header's length (6), then the format.
    Bytes out = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1};
    PutBigEndian(out, song.tracks.size() + 1, 2);
    PutBigEndian(out, kTicksPerQuarter, 2);

    std::int64_t songEnd = 0;
    for (const Track& track : song.tracks) songEnd = std::max(songEnd, track.endTick);

    TrackChunk conductor(out);
    if (!song.title.empty()) conductor.Meta(0, kMetaTrackName, song.title);
    for (const TempoChange& tempo : song.tempos) {
        const std::int64_t microseconds =
            std::min((kMicrosecondsPerMinute + tempo.bpm / 2) / tempo.bpm, kSlowestTempo);
        Bytes data;
        PutBigEndian(data, static_cast<std::uint64_t>(microseconds), 3);
        conductor.Meta(tempo.tick, kMetaTempo,
                       std::string_view(reinterpret_cast<const char*>(data.data()), data.size()));
    }
    conductor.End(songEnd);

    for (const Track& track : song.tracks) WriteTrack(out, track);
    return out;
}

}  // namespace mmlc
