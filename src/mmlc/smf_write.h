// A parsed song as the bytes of a Standard MIDI File: format 1, 480 ticks per
// quarter note, a conductor track with the title and the tempo map, then one
// track per MML track.
#pragma once

#include <cstdint>
#include <vector>

#include "mmlc/mml_parse.h"

namespace mmlc {

std::vector<std::uint8_t> WriteSmf(const Song& song);

}  // namespace mmlc
