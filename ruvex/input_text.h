#pragma once

// A document's bytes made into the UTF-8 text the parser takes, and places in that text mapped back to the
// file's lines and columns.
//
// The encoding comes from the byte-order mark and the declaration together. A byte-order mark wins over a
// declaration that names another encoding (with a warning): it is written by whatever wrote the bytes, where
// a declaration is often copied along from another file. Without one, bytes that start "<?" in 16-bit units
// are UTF-16; otherwise the declaration decides, and UTF-8 is the default. UTF-8, UTF-16 and ISO-8859-1 are
// read (US-ASCII as the UTF-8 it is a part of); a declaration naming anything else is an error at its place.
//
// What XML cannot hold becomes U+FFFD with a warning at its place: byte sequences that are not valid in the
// encoding, characters outside XML's set, and character references to them (a reference to U+0000 would
// otherwise end the text it stands in). An entity reference to no predefined entity, and a '&' that starts
// no reference, are kept as text with a warning.
//
// Columns count the file's code units from the start of the line: bytes for UTF-8 and ISO-8859-1, 16-bit
// units for UTF-16; a byte-order mark is not counted.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ruvex::detail {

// Text for pugixml to parse in place: `size` bytes and a NUL after them.
struct ParseBuffer {
    std::unique_ptr<char[]> data;
    size_t size = 0;
};

// Where a parsed text came from. Line numbers are then counted from there, and only when a problem needs one:
// the original text (valid while the document is in use, `size` bytes like the buffer), or else the file,
// read again.
struct TextOrigin {
    const char* text = nullptr;
    const char* path = nullptr;
};

enum class FileEncoding : uint8_t { UTF8, Latin1, UTF16LE, UTF16BE };

// Whether `name`, as a declaration gives it, is the registered name of `encoding` ("UTF-8", "ISO-8859-1",
// "UTF-16", in any case). Other parsers know aliases such as "latin1" less well, and US-ASCII cannot hold
// all that may be written in its place: a declaration that is written names the encoding so.
bool NamesEncoding(std::string_view name, FileEncoding encoding);

// A problem found in the text; `offset` is one of the decoded text (before references are replaced).
struct TextProblem {
    size_t offset;
    std::string message;
    bool warning;
};

class InputText {
public:
    // Takes the file's bytes. False when they cannot be read as a document (problems() says why and where).
    bool Prepare(ParseBuffer file, TextOrigin origin);

    // The UTF-8 text to parse in place, NUL-terminated.
    char* parseText() { return m_parse ? m_parse : nullptr; }
    size_t parseSize() const { return m_parseSize; }

    // Line and column (1-based) in the file of an offset into the parse text; {0, 0} when unknown.
    std::pair<size_t, size_t> PlaceOfParsed(size_t offset) const;
    // The same for an offset of a problem's.
    std::pair<size_t, size_t> PlaceOfDecoded(size_t offset) const;

    FileEncoding encoding() const { return m_encoding; }
    bool byteOrderMark() const { return m_byteOrderMark; }
    const std::vector<TextProblem>& problems() const { return m_problems; }

private:
    // Where a line of the decoded text starts in the file.
    struct Line {
        size_t decoded;
        size_t file;
    };
    // A reference replaced by U+FFFD: `length` bytes at `decoded` became 3 at `parsed`.
    struct Edit {
        size_t parsed;
        size_t decoded;
        size_t length;
    };

    bool Sniff();
    void Transcode();
    void CheckReferences(const char* text, size_t size);
    void ReplaceReferences(const char* text, size_t size);
    size_t DecodedOffset(size_t parsed) const;

    ParseBuffer m_file;
    TextOrigin m_origin;
    FileEncoding m_encoding = FileEncoding::UTF8;
    bool m_byteOrderMark = false;
    size_t m_skipped = 0;  // byte-order mark bytes, when the file is parsed as it stands
    // Decoded text, when the file's bytes could not be parsed as they stand; then lines map it to the file.
    ParseBuffer m_decoded;
    std::vector<Line> m_lines;
    // The text with references replaced, when there were any to replace.
    ParseBuffer m_replaced;
    std::vector<Edit> m_edits;
    char* m_parse = nullptr;
    size_t m_parseSize = 0;
    // Line starts in the file when it is parsed as it stands: counted on first need, or before parsing when
    // there is no origin to count them from afterwards.
    mutable std::vector<size_t> m_fileLineStarts;
    bool m_parsedInPlace = false;
    std::vector<TextProblem> m_problems;
    // Where the declaration names the encoding, in the decoded text (for the problems it raises).
    size_t m_encodingOffset = 0;
};

}  // namespace Ruvex::detail
