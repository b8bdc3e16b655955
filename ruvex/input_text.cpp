#include "input_text.h"

#include "unicode.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace Ruvex::detail {

namespace {

const char* EncodingName(FileEncoding encoding) {
    switch (encoding) {
        case FileEncoding::Latin1:
            return "ISO-8859-1";
        case FileEncoding::UTF16LE:
        case FileEncoding::UTF16BE:
            return "UTF-16";
        default:
            return "UTF-8";
    }
}

bool IsUtf16(FileEncoding encoding) {
    return encoding == FileEncoding::UTF16LE || encoding == FileEncoding::UTF16BE;
}

// The character at `p` in the file's encoding and the bytes it takes; kInvalidSequence when they are not
// valid there.
uint32_t DecodeAt(FileEncoding encoding, const unsigned char* p, size_t left, size_t& length) {
    switch (encoding) {
        case FileEncoding::UTF8:
            return DecodeUtf8(p, left, length);
        case FileEncoding::Latin1:
            length = 1;
            return p[0];
        default:
            break;
    }
    const bool little = encoding == FileEncoding::UTF16LE;
    auto unit = [&](size_t at) { return little ? p[at] | (p[at + 1] << 8u) : (p[at] << 8u) | p[at + 1]; };
    if (left < 2) {
        length = left;
        return kInvalidSequence;
    }
    length = 2;
    const uint32_t first = unit(0);
    if (first >= 0xDC00 && first <= 0xDFFF) return kInvalidSequence;
    if (first < 0xD800 || first > 0xDBFF) return first;
    if (left < 4) return kInvalidSequence;
    const uint32_t second = unit(2);
    if (second < 0xDC00 || second > 0xDFFF) return kInvalidSequence;
    length = 4;
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

// What the decoded text holds for a character read from the file.
uint32_t Kept(uint32_t code) {
    return code != kInvalidSequence && IsXmlCharacter(code) ? code : kReplacementCharacter;
}

// True when the UTF-8 text holds only well-formed sequences of characters XML allows: it is then parsed as
// it stands. Eight bytes at a time while they are printable ASCII.
bool CleanUtf8(const unsigned char* p, size_t size) {
    constexpr uint64_t kOnes = 0x0101010101010101u;
    constexpr uint64_t kHigh = 0x8080808080808080u;
    size_t i = 0;
    while (i < size) {
#ifdef __SSE2__
        // Sixteen bytes at a time, line ends and tabs included: a byte at or above 0x80 compares below 0x20
        // as a signed one.
        if (size - i >= 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            const int outside = _mm_movemask_epi8(_mm_cmplt_epi8(v, _mm_set1_epi8(0x20)));
            const int blank = _mm_movemask_epi8(_mm_or_si128(
                _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\n')), _mm_cmpeq_epi8(v, _mm_set1_epi8('\r'))),
                _mm_cmpeq_epi8(v, _mm_set1_epi8('\t'))));
            if ((outside & ~blank) == 0) {
                i += 16;
                continue;
            }
        }
#endif
        if (size - i >= 8) {
            uint64_t word;
            std::memcpy(&word, p + i, 8);
            // No byte at or above 0x80, none below 0x20.
            if ((word & kHigh) == 0 && ((word - 0x20 * kOnes) & ~word & kHigh) == 0) {
                i += 8;
                continue;
            }
        }
        const unsigned char c = p[i];
        if (c >= 0x20 && c < 0x80) {
            ++i;
            continue;
        }
        size_t length = 1;
        const uint32_t code = DecodeUtf8(p + i, size - i, length);
        if (code == kInvalidSequence || !IsXmlCharacter(code)) return false;
        i += length;
    }
    return true;
}

std::string Lowered(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

enum class Declared { None, UTF8, Latin1, UTF16, Unsupported };

Declared Classify(std::string_view name) {
    const std::string lowered = Lowered(name);
    for (const char* utf8 : {"utf-8", "utf8", "us-ascii", "ascii"})
        if (lowered == utf8) return Declared::UTF8;
    for (const char* utf16 : {"utf-16", "utf16", "utf-16le", "utf-16be"})
        if (lowered == utf16) return Declared::UTF16;
    for (const char* latin1 : {"iso-8859-1", "iso_8859-1", "iso8859-1", "iso_8859-1:1987", "latin1",
                               "latin-1", "l1", "cp819", "ibm819", "iso-ir-100"})
        if (lowered == latin1) return Declared::Latin1;
    return Declared::Unsupported;
}

Declared FamilyOf(FileEncoding encoding) {
    return encoding == FileEncoding::Latin1 ? Declared::Latin1
           : IsUtf16(encoding)              ? Declared::UTF16
                                            : Declared::UTF8;
}

// The value of the declaration's encoding attribute in `head` (the start of the text, as ASCII) and where
// it starts; empty when there is none.
std::string_view DeclaredEncoding(std::string_view head, size_t& at) {
    if (head.substr(0, 5) != "<?xml") return {};
    head = head.substr(0, head.find("?>"));
    size_t key = head.find("encoding");
    if (key == std::string_view::npos) return {};
    size_t i = key + 8;
    auto skipBlanks = [&] {
        while (i < head.size() && (head[i] == ' ' || head[i] == '\t' || head[i] == '\r' || head[i] == '\n'))
            ++i;
    };
    skipBlanks();
    if (i >= head.size() || head[i] != '=') return {};
    ++i;
    skipBlanks();
    if (i >= head.size() || (head[i] != '"' && head[i] != '\'')) return {};
    const size_t close = head.find(head[i], i + 1);
    if (close == std::string_view::npos) return {};
    at = i + 1;
    return head.substr(i + 1, close - i - 1);
}

std::string Times(size_t count) {
    return count > 1 ? " (" + std::to_string(count) + " times in all; the first here)" : "";
}

// The end of the comment, CDATA section, processing instruction or doctype that starts at `at` (a '<'), or
// 0 when something else starts there. A construct left open runs to the end of the text.
size_t EndOfSpecial(const char* text, size_t size, size_t at) {
    const std::string_view rest(text + at, size - at);
    auto after = [&](size_t from, std::string_view close) {
        const size_t found = rest.find(close, from);
        return found == std::string_view::npos ? size : at + found + close.size();
    };
    if (rest.starts_with("<!--")) return after(4, "-->");
    if (rest.starts_with("<![CDATA[")) return after(9, "]]>");
    if (rest.starts_with("<?")) return after(2, "?>");
    if (rest.starts_with("<!")) {
        // A doctype ends at the first '>' outside its internal subset.
        int depth = 0;
        for (size_t i = 2; i < rest.size(); ++i) {
            if (rest[i] == '[') ++depth;
            if (rest[i] == ']') --depth;
            if (rest[i] == '>' && depth <= 0) return at + i + 1;
        }
        return size;
    }
    return 0;
}

enum class Reference { Fine, BadCharacter, Undefined, Bare };

// What the '&' at the start of `text` starts, and its length through the ';'.
Reference ClassifyReference(std::string_view text, size_t& length) {
    length = 1;
    if (text.size() > 1 && text[1] == '#') {
        const bool hex = text.size() > 2 && text[2] == 'x';
        size_t i = hex ? 3 : 2;
        const size_t first = i;
        uint32_t code = 0;
        for (; i < text.size(); ++i) {
            const char c = text[i];
            unsigned digit;
            if (c >= '0' && c <= '9')
                digit = static_cast<unsigned>(c - '0');
            else if (hex && c >= 'a' && c <= 'f')
                digit = static_cast<unsigned>(c - 'a' + 10);
            else if (hex && c >= 'A' && c <= 'F')
                digit = static_cast<unsigned>(c - 'A' + 10);
            else
                break;
            code = std::min<uint32_t>(code * (hex ? 16 : 10) + digit, 0x110000);
        }
        if (i == first || i == text.size() || text[i] != ';') return Reference::Bare;
        length = i + 1;
        return IsXmlCharacter(code) ? Reference::Fine : Reference::BadCharacter;
    }
    size_t i = 1;
    for (; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool nameCharacter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                   (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.' || c == ':' ||
                                   c >= 0x80;
        if (!nameCharacter) break;
    }
    if (i == 1 || i == text.size() || text[i] != ';') return Reference::Bare;
    length = i + 1;
    const std::string_view name = text.substr(1, i - 1);
    for (std::string_view known : {"amp", "lt", "gt", "quot", "apos"})
        if (name == known) return Reference::Fine;
    return Reference::Undefined;
}

// The longest reference looked at: a character reference with leading zeros may be longer, and is then
// taken for a bare '&'.
constexpr size_t kMaxReference = 40;

// Calls visit(at, kind, reference) for every '&' of the text outside comments, CDATA sections, instructions
// and doctypes, with the reference as far as it goes (the '&' alone when it is bare).
template <class Visit>
void ForEachReference(const char* text, size_t size, Visit visit) {
    size_t known = 0;  // text before it is outside comments, CDATA sections, instructions and doctypes
    for (size_t from = 0; from < size;) {
        const auto* amp = static_cast<const char*>(std::memchr(text + from, '&', size - from));
        if (!amp) break;
        const auto at = static_cast<size_t>(amp - text);
        bool inside = false;
        while (known < at) {
            const auto* open = static_cast<const char*>(std::memchr(text + known, '<', at - known));
            if (!open) break;
            const auto start = static_cast<size_t>(open - text);
            const size_t end = EndOfSpecial(text, size, start);
            known = end ? end : start + 1;
            if (end > at) inside = true;
        }
        if (inside) {
            from = known;
            continue;
        }
        known = at + 1;
        size_t length = 1;
        const std::string_view rest(text + at, std::min(size - at, kMaxReference));
        const Reference kind = ClassifyReference(rest, length);
        visit(at, kind, rest.substr(0, length));
        from = at + length;
    }
}

}  // namespace

bool NamesEncoding(std::string_view name, FileEncoding encoding) {
    return Lowered(name) == Lowered(EncodingName(encoding));
}

bool InputText::Sniff() {
    const auto* p = reinterpret_cast<const unsigned char*>(m_file.data.get());
    const size_t size = m_file.size;
    auto startsWith = [&](std::initializer_list<unsigned char> bytes) {
        return size >= bytes.size() && std::equal(bytes.begin(), bytes.end(), p);
    };
    if (startsWith({0xFF, 0xFE, 0, 0}) || startsWith({0, 0, 0xFE, 0xFF}) || startsWith({'<', 0, 0, 0}) ||
        startsWith({0, 0, 0, '<'})) {
        m_problems.push_back(
            {0, "UTF-32 documents are not supported (UTF-8, UTF-16 and ISO-8859-1 are)", false});
        return false;
    }
    std::string_view mark;
    if (startsWith({0xEF, 0xBB, 0xBF})) {
        m_encoding = FileEncoding::UTF8;
        m_skipped = 3;
        mark = "UTF-8";
    } else if (startsWith({0xFF, 0xFE})) {
        m_encoding = FileEncoding::UTF16LE;
        m_skipped = 2;
        mark = "UTF-16";
    } else if (startsWith({0xFE, 0xFF})) {
        m_encoding = FileEncoding::UTF16BE;
        m_skipped = 2;
        mark = "UTF-16";
    } else if (startsWith({'<', 0, '?', 0})) {
        m_encoding = FileEncoding::UTF16LE;
    } else if (startsWith({0, '<', 0, '?'})) {
        m_encoding = FileEncoding::UTF16BE;
    }
    m_byteOrderMark = m_skipped > 0;

    // The declaration, in ASCII whatever the code units.
    std::string head;
    const size_t unit = IsUtf16(m_encoding) ? 2 : 1;
    for (size_t i = m_skipped; i + unit <= size && head.size() < 512; i += unit) {
        uint32_t c = p[i];
        if (unit == 2)
            c = m_encoding == FileEncoding::UTF16LE ? p[i] | (p[i + 1] << 8u) : (p[i] << 8u) | p[i + 1];
        head.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    }
    size_t at = 0;
    const std::string_view name = DeclaredEncoding(head, at);
    const Declared declared = name.empty() ? Declared::None : Classify(name);
    m_encodingOffset = at;

    if (!m_byteOrderMark && !IsUtf16(m_encoding) && declared == Declared::Latin1) {
        m_encoding = FileEncoding::Latin1;
        return true;
    }
    if (declared == Declared::Unsupported && !m_byteOrderMark && !IsUtf16(m_encoding)) {
        m_problems.push_back(
            {at,
             "the encoding \"" + std::string(name) + "\" is not supported (UTF-8, UTF-16 and ISO-8859-1 are)",
             false});
        return false;
    }
    if (declared != Declared::None && declared != FamilyOf(m_encoding)) {
        const std::string says = mark.empty() ? std::string("the text is ") + EncodingName(m_encoding)
                                              : "the byte-order mark says " + std::string(mark);
        m_problems.push_back({at,
                              "the declaration names the encoding \"" + std::string(name) + "\", but " +
                                  says + "; read as " + EncodingName(m_encoding),
                              true});
    }
    return true;
}

void InputText::Transcode() {
    const auto* p = reinterpret_cast<const unsigned char*>(m_file.data.get());
    const size_t size = m_file.size;
    std::string out;
    out.reserve(m_encoding == FileEncoding::UTF8 ? size : IsUtf16(m_encoding) ? size * 3 / 2 : size * 2);
    m_lines.push_back({0, m_skipped});
    size_t invalid = 0;
    size_t invalidAt = 0;
    size_t disallowed = 0;
    size_t disallowedAt = 0;
    uint32_t firstDisallowed = 0;
    for (size_t i = m_skipped; i < size;) {
        size_t length = 1;
        const uint32_t code = DecodeAt(m_encoding, p + i, size - i, length);
        const uint32_t kept = Kept(code);
        if (code == kInvalidSequence) {
            if (invalid++ == 0) invalidAt = out.size();
        } else if (kept != code) {
            if (disallowed++ == 0) {
                disallowedAt = out.size();
                firstDisallowed = code;
            }
        }
        AppendUtf8(kept, out);
        i += length;
        if (kept == '\n') m_lines.push_back({out.size(), i});
    }
    if (invalid)
        m_problems.push_back({invalidAt,
                              std::string("bytes that are not valid ") + EncodingName(m_encoding) +
                                  " were read as U+FFFD" + Times(invalid),
                              true});
    if (disallowed) {
        char code[16];
        std::snprintf(code, sizeof code, "U+%04X", firstDisallowed);
        m_problems.push_back({disallowedAt,
                              std::string("the character ") + code +
                                  " is not allowed in XML; read as U+FFFD" + Times(disallowed),
                              true});
    }
    m_decoded.size = out.size();
    m_decoded.data = std::make_unique_for_overwrite<char[]>(out.size() + 1);
    std::memcpy(m_decoded.data.get(), out.data(), out.size());
    m_decoded.data[out.size()] = '\0';
}

void InputText::CheckReferences(const char* text, size_t size) {
    struct Kind {
        size_t count = 0;
        size_t at = 0;
        std::string first;
    } bad, undefined, bare;
    auto note = [](Kind& kind, size_t at, std::string_view reference) {
        if (kind.count++ == 0) {
            kind.at = at;
            kind.first = reference;
        }
    };
    ForEachReference(text, size, [&](size_t at, Reference kind, std::string_view reference) {
        switch (kind) {
            case Reference::BadCharacter:
                note(bad, at, reference);
                break;
            case Reference::Undefined:
                note(undefined, at, reference);
                break;
            case Reference::Bare:
                note(bare, at, {});
                break;
            default:
                break;
        }
    });
    if (bad.count) {
        m_problems.push_back({bad.at,
                              "the character reference \"" + bad.first +
                                  "\" names a character XML does not allow; read as U+FFFD" +
                                  Times(bad.count),
                              true});
        ReplaceReferences(text, size);
    }
    if (undefined.count)
        m_problems.push_back({undefined.at,
                              "the entity reference \"" + undefined.first +
                                  "\" names no predefined entity; kept as text" + Times(undefined.count),
                              true});
    if (bare.count)
        m_problems.push_back(
            {bare.at, "a '&' that starts no reference is kept as text" + Times(bare.count), true});
}

void InputText::ReplaceReferences(const char* text, size_t size) {
    // A second walk, as rare as the references it replaces.
    std::string out;
    out.reserve(size);
    size_t copied = 0;
    ForEachReference(text, size, [&](size_t at, Reference kind, std::string_view reference) {
        if (kind != Reference::BadCharacter) return;
        out.append(text + copied, at - copied);
        m_edits.push_back({out.size(), at, reference.size()});
        AppendUtf8(kReplacementCharacter, out);
        copied = at + reference.size();
    });
    out.append(text + copied, size - copied);
    m_replaced.size = out.size();
    m_replaced.data = std::make_unique_for_overwrite<char[]>(out.size() + 1);
    std::memcpy(m_replaced.data.get(), out.data(), out.size());
    m_replaced.data[out.size()] = '\0';
}

namespace {

// Offsets where lines start in `text`.
std::vector<size_t> LineStarts(const char* text, size_t size) {
    std::vector<size_t> starts{0};
    for (const char* p = text;
         (p = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(text + size - p)))) !=
         nullptr;
         ++p)
        starts.push_back(static_cast<size_t>(p - text) + 1);
    return starts;
}

}  // namespace

bool InputText::Prepare(ParseBuffer file, TextOrigin origin) {
    m_file = std::move(file);
    m_origin = origin;
    if (!Sniff()) return false;
    const char* text = m_file.data.get() + m_skipped;
    size_t size = m_file.size - m_skipped;
    if (m_encoding != FileEncoding::UTF8 || !CleanUtf8(reinterpret_cast<const unsigned char*>(text), size)) {
        Transcode();
        text = m_decoded.data.get();
        size = m_decoded.size;
    }
    CheckReferences(text, size);
    if (m_replaced.data) {
        m_parse = m_replaced.data.get();
        m_parseSize = m_replaced.size;
    } else if (m_decoded.data) {
        m_parse = m_decoded.data.get();
        m_parseSize = m_decoded.size;
    } else {
        // The file's own bytes are parsed, and overwritten in places: without an origin to read them again,
        // lines are counted first.
        m_parse = m_file.data.get() + m_skipped;
        m_parseSize = size;
        m_parsedInPlace = true;
        if (!m_origin.text && !m_origin.path) {
            m_fileLineStarts = LineStarts(m_file.data.get(), m_file.size);
            m_fileLineStarts[0] = m_skipped;
        }
    }
    for (const TextProblem& problem : m_problems)
        if (!problem.warning) return false;
    return true;
}

size_t InputText::DecodedOffset(size_t parsed) const {
    auto it = std::upper_bound(m_edits.begin(), m_edits.end(), parsed,
                               [](size_t offset, const Edit& edit) { return offset < edit.parsed; });
    if (it == m_edits.begin()) return parsed;
    const Edit& edit = *--it;
    constexpr size_t kReplacementLength = 3;
    if (parsed < edit.parsed + kReplacementLength) return edit.decoded;
    return parsed - edit.parsed - kReplacementLength + edit.decoded + edit.length;
}

std::pair<size_t, size_t> InputText::PlaceOfParsed(size_t offset) const {
    return PlaceOfDecoded(DecodedOffset(offset));
}

std::pair<size_t, size_t> InputText::PlaceOfDecoded(size_t offset) const {
    if (!m_lines.empty()) {
        // Decoded again from the start of the line up to the offset.
        auto it = std::upper_bound(m_lines.begin(), m_lines.end(), offset,
                                   [](size_t at, const Line& line) { return at < line.decoded; });
        const Line& line = *--it;
        const auto* p = reinterpret_cast<const unsigned char*>(m_file.data.get());
        size_t out = line.decoded;
        size_t i = line.file;
        while (i < m_file.size) {
            size_t length = 1;
            const size_t produced = Utf8Length(Kept(DecodeAt(m_encoding, p + i, m_file.size - i, length)));
            if (out + produced > offset) break;
            out += produced;
            i += length;
        }
        const size_t unit = IsUtf16(m_encoding) ? 2 : 1;
        return {static_cast<size_t>(it - m_lines.begin()) + 1, (i - line.file) / unit + 1};
    }
    if (m_fileLineStarts.empty()) {
        // Counted from where the text came from when it was parsed in place; a file that changed since is no
        // help.
        if (!m_parsedInPlace) {
            m_fileLineStarts = LineStarts(m_file.data.get(), m_file.size);
        } else if (m_origin.text) {
            m_fileLineStarts = LineStarts(m_origin.text, m_file.size);
        } else if (m_origin.path) {
            std::FILE* in = std::fopen(m_origin.path, "rb");
            if (in) {
                std::string again(m_file.size + 1, '\0');
                const size_t read = std::fread(again.data(), 1, again.size(), in);
                std::fclose(in);
                if (read == m_file.size) m_fileLineStarts = LineStarts(again.data(), read);
            }
        }
        if (m_fileLineStarts.empty()) return {0, 0};
        m_fileLineStarts[0] = m_skipped;
    }
    const size_t at = offset + m_skipped;
    auto it = std::upper_bound(m_fileLineStarts.begin(), m_fileLineStarts.end(), at);
    const auto line = static_cast<size_t>(it - m_fileLineStarts.begin());
    return {line, at - m_fileLineStarts[line - 1] + 1};
}

}  // namespace Ruvex::detail
