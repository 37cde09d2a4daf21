// What every fuzz target shares: the choice of code page, and a check that
// stops the run with a message when a property does not hold.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/text.h"

namespace zorvi::fuzz {

// The lead bytes of Shift-JIS (code page 932).
inline bool IsShiftJisLead(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// The first input byte picks the code page: odd bytes run the input as
// Shift-JIS text, even ones as single-byte text. Returns the rest of the input.
inline std::string_view UseCodePageOf(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        SetLeadByteTest(nullptr);
        return {};
    }
    SetLeadByteTest((data[0] & 1) != 0 ? IsShiftJisLead : nullptr);
    return {reinterpret_cast<const char*>(data) + 1, size - 1};
}

// A property that failed is a finding: libFuzzer keeps the input that broke it.
inline void Check(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "fuzz property failed: %s\n", property);
    std::abort();
}

}  // namespace zorvi::fuzz
