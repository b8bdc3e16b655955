#pragma once

// Writing a whole file so that readers see either the old content or the new, never a mix.

#include <string>
#include <string_view>

namespace Ruvex::detail {

// Replaces the file at `path` with `content`. Symbolic links are followed to the file they name, which is
// replaced while the links stay links. The content goes to an anonymous file in the target's directory (a
// named temporary file where the file system has none), is synced, takes the target's permission bits (0666
// less the umask for a new file), and is then linked in place: directly for a new file, through a temporary
// name renamed over an existing one. A save killed before that leaves nothing; temporary files that killed
// saves of the same target left (named after their dead process) are removed first. The directory is then
// synced. False with `error` set when the target is a directory, not a regular file, or read-only (by its
// permission bits, even for a process that could write it), or the content cannot be written in full or put
// in place: the target is then untouched and nothing is left beside it. `warning` is set when only the final
// directory sync failed (the file is in place).
bool ReplaceFile(const std::string& path, std::string_view content, std::string& error, std::string& warning);

}  // namespace Ruvex::detail
