// File path helpers on UTF-8 strings. All are lexical (no symbolic link is resolved) except FileExist and the
// fixCase option of AbsoluteFilename, which read the file system. A backslash counts as a separator
// everywhere, since files written on other systems use it; results use forward slashes only.
#pragma once

#include <string>

namespace vek {

// dir/path lexically normalised (".", ".." and doubled separators removed), or path normalised if it is
// already absolute; "" for an empty path. With fixCase, each component that does not exist as spelled is
// replaced by the directory entry matching it case-insensitively (ASCII letters) when exactly one does;
// components after one that matches nothing are kept as given. A relative dir gives a relative result.
std::string AbsoluteFilename(const std::string& dir, const std::string& path, bool fixCase);

// Path of path relative to the directory dir, lexical, with "../" steps as needed ("." when they are the
// same). A relative path, an empty dir, or a path that shares no root with dir is returned unchanged.
std::string RelativeFilename(const std::string& dir, const std::string& path);

// Lexically normal form with forward slashes and no trailing slash (except the root "/"); "" stays "".
std::string NormalizePath(const std::string& path);

// Directory part of path, without trailing slash ("/" for a file at the root); "" when path has no directory.
std::string JustDirName(const std::string& path);

// True when path names an existing regular file or directory (symbolic links followed); false for "".
bool FileExist(const std::string& path);

}  // namespace vek
