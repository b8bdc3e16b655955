#pragma once

// What an unknown element holds (its attributes and the whole subtree below it) packed in one block of text:
// a file's unknown parts then cost about their own size in memory, and a few allocations instead of some per
// attribute and per node. The block is opened into preserved content only when someone asks for it.
//
// Layout, in document order: an attribute is kAttribute, name, value; an element is kElement, tag, its own
// content, kEnd; text, CDATA and comments are their kind and value; a processing instruction is kInstruction,
// target, body. A text is its length (7 bits a byte, low bits first) and its bytes, as read (UTF-8).

#include "xml_writer.h"

#include <orvia/ruvex/element.h>

#include <pugixml.hpp>

#include <string>
#include <string_view>

namespace Ruvex::detail {

// Appends the attributes and child nodes of `node` to `out` (nodes that no element can hold, such as a
// doctype, are left out as a load leaves them).
void PackContent(pugi::xml_node node, std::string& out);

// Adds the packed attributes and nodes to `into`; every element becomes a GenericElement holding its own
// content packed. Anchors are 0: an unknown element takes none of its children.
void UnpackContent(std::string_view packed, PreservedContent& into);

// Writes the packed content under `element`. The document refers to the packed text, which must outlive it.
// Attributes of the same name replace the earlier one, as everywhere else on save.
void WritePackedContent(std::string_view packed, WriteDocument& document, WriteNode* element);

}  // namespace Ruvex::detail
