#pragma once

// Writing a whole file so that readers see either the old content or the new, never a mix.

#include <string>
#include <string_view>

namespace Ruvex::detail {

// Replaces the file at `path` with `content`. Symbolic links are followed to the file they name, which is
// replaced while the links stay links. The content goes to a temporary file beside the target, is synced,
// takes the target's permission bits (0666 less the umask for a new file) and is renamed over it; the
// directory is then synced. False with `error` set when the target is a directory or not a regular file, or
// the temporary file cannot be made, written in full or renamed: the target is then untouched and the
// temporary file removed. `warning` is set when only the final directory sync failed (the file is in place).
bool ReplaceFile(const std::string& path, std::string_view content, std::string& error, std::string& warning);

}  // namespace Ruvex::detail
