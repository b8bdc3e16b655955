#pragma once

// A second parser's opinion of what the library writes.

#include <expat.h>

#include <string>

// Empty when expat reads `text` as well-formed XML; otherwise "line:column: what it found".
inline std::string NotWellFormed(const std::string& text) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    std::string error;
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
        error = std::to_string(XML_GetCurrentLineNumber(parser)) + ":" +
                std::to_string(XML_GetCurrentColumnNumber(parser) + 1) + ": " +
                XML_ErrorString(XML_GetErrorCode(parser));
    XML_ParserFree(parser);
    return error;
}
