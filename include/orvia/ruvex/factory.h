#pragma once

#include <orvia/ruvex/element.h>

#include <string>
#include <string_view>
#include <vector>

namespace Ruvex {

// Decides which object stands for each tag met while loading. The base creates the data class registered for
// the tag and a GenericElement (which keeps everything) for any other tag; hosts install a factory of their
// own.
class Factory : public CountedObject {
public:
    // A new element with count 0; never null.
    virtual Element* Create(const std::string& tag);
    // The function that Create(tag) calls every time for this tag, which a load may then call directly; null
    // when Create must be asked each time. The base answers null: a factory that overrides Create and not
    // this is asked for every element.
    virtual Element* (*FindCreator(std::string_view tag) const)();
};

// Changes whenever a factory is installed or removed: what a factory's FindCreator answered holds while it
// stays the same.
uint64_t FactoryEpoch();

// The process-wide factory (null when none is installed: the base behaviour applies).
Factory* GetFactory();
// Installs `factory` (taking a reference); null uninstalls.
void SetFactory(Factory* factory);
// A new element for `tag` from the installed factory, or from the base one.
Element* CreateElement(const std::string& tag);

// Something wrong with a document, with the place where it was found (line and column 1-based, 0 when
// unknown).
struct Problem {
    std::string file;
    size_t line = 0;
    size_t column = 0;
    std::string message;
    // A warning did not stop the load: the value it names was left at its default.
    bool warning = false;
};
// "file:line:column: message", with "warning: " before the message of a warning.
std::string ToString(const Problem& problem);

// Deepest nesting of elements a document may have, the "Ruvex" root counting as level 1. Real files nest
// about a dozen levels; the bound keeps loading, saving and destruction, which recurse once per level, far
// within any thread's stack.
inline constexpr size_t kMaxNestingDepth = 256;

// Parses a document (a file path, or with fromMemory the NUL-terminated text itself) and builds its object
// tree through the factory. Returns the element under the "Ruvex" root, or null when the text is not
// well-formed, the root is not "Ruvex", or elements nest deeper than kMaxNestingDepth. The caller owns the
// result (count 0).
Element* Load(const char* pathOrText, bool fromMemory);
// Writes `root` as a document at `path`, following symbolic links to the file they name: to a temporary file
// beside it first, synced and renamed over it only when complete, keeping its permission bits. False, with
// the reason in GetLastProblems(), when the tree cannot be written (a value that is not finite, nesting
// deeper than kMaxNestingDepth) or the file cannot be (no such directory, no permission, disk full, not a
// regular file); the existing file is then left byte for byte as it was and no temporary file remains.
bool Save(Element* root, const char* path);
// The document text that Save would write; empty when Save would fail before writing.
std::string SaveToString(Element* root);
// Problems (errors and warnings) of the last Load or Save on this thread.
const std::vector<Problem>& GetLastProblems();

}  // namespace Ruvex
