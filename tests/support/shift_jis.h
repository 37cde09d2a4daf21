// Shift-JIS (code page 932) for tests of the path text: its lead bytes set as
// the process's for one test and taken back afterwards. In it 表 is 0x95 0x5C
// and ソ is 0x83 0x5C: both end in the byte of "\".
#pragma once

#include "core/text.h"

namespace zorvi::testing {

inline bool ShiftJisLeadByte(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

class ShiftJisCodePage {
public:
    ShiftJisCodePage() { SetLeadByteTest(ShiftJisLeadByte); }
    ~ShiftJisCodePage() { SetLeadByteTest(nullptr); }
    ShiftJisCodePage(const ShiftJisCodePage&) = delete;
    ShiftJisCodePage& operator=(const ShiftJisCodePage&) = delete;
};

}  // namespace zorvi::testing
