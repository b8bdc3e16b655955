#pragma once

// Code points and their UTF-8 form, as the reader and the writer both need them.

#include <cstddef>
#include <cstdint>
#include <string>

namespace Ruvex::detail {

inline constexpr uint32_t kReplacementCharacter = 0xFFFD;
// What DecodeUtf8 answers for bytes that are no well-formed sequence.
inline constexpr uint32_t kInvalidSequence = 0xFFFFFFFF;

// The characters an XML 1.0 document may hold, literally or as a reference.
constexpr bool IsXmlCharacter(uint32_t c) {
    if (c < 0x20) return c == 0x9 || c == 0xA || c == 0xD;
    return c <= 0xD7FF || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

// The code point of the well-formed UTF-8 sequence at `p` (of `left` bytes, at least one) and its length;
// kInvalidSequence and a length of 1 otherwise. Overlong forms, surrogates and values above U+10FFFF are
// not well-formed.
inline uint32_t DecodeUtf8(const unsigned char* p, size_t left, size_t& length) {
    const unsigned char lead = p[0];
    length = 1;
    if (lead < 0x80) return lead;
    size_t count;
    uint32_t code;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        count = 2;
        code = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        count = 3;
        code = lead & 0x0Fu;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;  // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        count = 4;
        code = lead & 0x07u;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
    } else {
        return kInvalidSequence;
    }
    if (left < count || p[1] < low || p[1] > high) return kInvalidSequence;
    for (size_t k = 1; k < count; ++k) {
        if ((p[k] & 0xC0) != 0x80) return kInvalidSequence;
        code = (code << 6) | (p[k] & 0x3Fu);
    }
    length = count;
    return code;
}

constexpr size_t Utf8Length(uint32_t code) {
    return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

// Writes `code` (a Unicode scalar value) at `out`; returns the byte count.
inline size_t EncodeUtf8(uint32_t code, char* out) {
    const size_t length = Utf8Length(code);
    if (length == 1) {
        out[0] = static_cast<char>(code);
        return 1;
    }
    static constexpr unsigned char kLeads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (size_t k = length - 1; k > 0; --k) {
        out[k] = static_cast<char>(0x80 | (code & 0x3F));
        code >>= 6;
    }
    out[0] = static_cast<char>(kLeads[length] | code);
    return length;
}

inline void AppendUtf8(uint32_t code, std::string& out) {
    char bytes[4];
    out.append(bytes, EncodeUtf8(code, bytes));
}

}  // namespace Ruvex::detail
