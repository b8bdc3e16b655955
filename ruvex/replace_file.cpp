#include "replace_file.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ruvex::detail {

namespace {

// The kernel's own bound on links followed in one path walk.
constexpr int kMaxSymbolicLinks = 40;
// Room left in a file name for the temporary name's dot and random suffix (NAME_MAX is 255).
constexpr size_t kMaxNameKept = 200;

std::string Reason(int error) {
    return std::generic_category().message(error);
}

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The file that `path` finally names once symbolic links are followed; it need not exist.
bool FollowLinks(std::string path, std::string& target, std::string& error) {
    for (int hops = 0; hops <= kMaxSymbolicLinks; ++hops) {
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) {
            target = std::move(path);
            return true;
        }
        std::string link(
            static_cast<size_t>(info.st_size) + 1 < 256 ? 256 : static_cast<size_t>(info.st_size) + 1, '\0');
        for (;;) {
            const ssize_t length = ::readlink(path.c_str(), link.data(), link.size());
            if (length < 0) {
                error = "cannot read the symbolic link \"" + path + "\": " + Reason(errno);
                return false;
            }
            if (static_cast<size_t>(length) < link.size()) {
                link.resize(static_cast<size_t>(length));
                break;
            }
            link.resize(link.size() * 2);
        }
        path = !link.empty() && link[0] == '/' ? link : DirectoryOf(path) + "/" + link;
    }
    error = "too many levels of symbolic links";
    return false;
}

// The process's umask, read without changing it when /proc tells it.
mode_t CurrentUmask() {
    if (std::FILE* status = std::fopen("/proc/self/status", "re")) {
        char line[256];
        unsigned mask = 0;
        bool found = false;
        while (!found && std::fgets(line, sizeof line, status))
            found = std::sscanf(line, "Umask: %o", &mask) == 1;
        std::fclose(status);
        if (found) return static_cast<mode_t>(mask);
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

int SyncRetrying(int fd) {
    int result;
    do
        result = ::fsync(fd);
    while (result != 0 && errno == EINTR);
    return result;
}

// Temporary names beside the target: ".<name>.<pid>.orvia-<suffix>". The process id tells a later save
// whether the process that made it is gone.
std::string TemporaryPrefix(const std::string& target) {
    return "." + NameOf(target).substr(0, kMaxNameKept) + ".";
}
constexpr std::string_view kTemporaryMark = ".orvia-";

std::string TemporaryName(const std::string& directory, const std::string& target) {
    static unsigned counter = 0;
    return directory + "/" + TemporaryPrefix(target) + std::to_string(::getpid()) +
           std::string(kTemporaryMark) + std::to_string(++counter) + "-" +
           std::to_string(static_cast<unsigned>(::time(nullptr)));
}

// Removes what saves of `target` that were killed left beside it (a save without anonymous files, or one
// stopped between naming its file and renaming it).
void RemoveLeftovers(const std::string& directory, const std::string& target) {
    DIR* dir = ::opendir(directory.c_str());
    if (!dir) return;
    const std::string prefix = TemporaryPrefix(target);
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (!name.starts_with(prefix)) continue;
        const std::string_view rest = name.substr(prefix.size());
        const size_t mark = rest.find(kTemporaryMark);
        if (mark == std::string_view::npos || mark == 0) continue;
        long pid = 0;
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + mark, pid);
        if (error != std::errc() || end != rest.data() + mark || pid <= 0) continue;
        if (pid == ::getpid() || ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        ::unlinkat(::dirfd(dir), entry->d_name, 0);
    }
    ::closedir(dir);
}

// Writes all of `content` to `fd`; an errno value, or 0.
int WriteAll(int fd, std::string_view content) {
    const char* next = content.data();
    size_t left = content.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, next, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : ENOSPC;
        next += written;
        left -= static_cast<size_t>(written);
    }
    return SyncRetrying(fd) != 0 ? errno : 0;
}

}  // namespace

bool ReplaceFile(const std::string& path, std::string_view content, std::string& error,
                 std::string& warning) {
    std::string target;
    if (!FollowLinks(path, target, error)) return false;
    struct stat existing {};
    const bool exists = ::stat(target.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
        error = "it is a directory";
        return false;
    }
    // A device or a pipe would be replaced by a plain file, not written to.
    if (exists && !S_ISREG(existing.st_mode)) {
        error = "it is not a regular file";
        return false;
    }
    // The directory may allow a new file where the file itself says no: its bits are taken as meant.
    if (exists &&
        ((existing.st_mode & 0222) == 0 || ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)) {
        error = "the file is read-only";
        return false;
    }
    const mode_t mode = exists ? existing.st_mode & 07777 : 0666 & ~CurrentUmask();

    const std::string directory = DirectoryOf(target);
    RemoveLeftovers(directory, target);
    // An anonymous file leaves nothing behind if the process dies before it is linked; without one, a named
    // file is removed by the next save.
    int fd = ::open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    const bool anonymous = fd >= 0;
    std::string temporary;
    if (!anonymous) {
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
            error = "cannot create a temporary file in \"" + directory + "\": " + Reason(errno);
            return false;
        }
        temporary = TemporaryName(directory, target) + "XXXXXX";
        fd = ::mkstemp(temporary.data());
        if (fd < 0) {
            error = "cannot create a temporary file in \"" + directory + "\": " + Reason(errno);
            return false;
        }
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    }
    auto fail = [&](const std::string& what, int code) {
        if (fd >= 0) ::close(fd);
        if (!temporary.empty()) ::unlink(temporary.c_str());
        error = what + ": " + Reason(code);
        return false;
    };

    // The owner is kept when the process may give the file away; otherwise whoever saves becomes the owner,
    // as with any editor, and that is no failure.
    if (exists && (existing.st_uid != ::geteuid() || existing.st_gid != ::getegid())) {
        [[maybe_unused]] const int given = ::fchown(fd, existing.st_uid, existing.st_gid);
    }
    if (::fchmod(fd, mode) != 0) return fail("cannot set the permissions", errno);
    if (const int code = WriteAll(fd, content)) return fail("cannot write the file", code);

    if (anonymous) {
        // A new file is linked in place at once; an existing one is replaced through a name of its own.
        const std::string self = "/proc/self/fd/" + std::to_string(fd);
        bool linked =
            !exists && ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) == 0;
        if (!linked) {
            temporary = TemporaryName(directory, target);
            if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, temporary.c_str(), AT_SYMLINK_FOLLOW) != 0) {
                temporary.clear();
                return fail("cannot link the file into place", errno);
            }
        }
    }
    // Delayed write errors may surface only here; the descriptor is gone whatever close returns.
    const int closed = ::close(fd);
    fd = -1;
    if (closed != 0) return fail("cannot write the file", errno);
    if (!temporary.empty() && ::rename(temporary.c_str(), target.c_str()) != 0)
        return fail("cannot replace the file", errno);

    // The new name is durable once the directory is; a failure now cannot bring the old file back.
    const int dir = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir < 0 || (SyncRetrying(dir) != 0 && errno != EINVAL))
        warning = "saved, but the directory \"" + directory + "\" could not be synced: " + Reason(errno);
    if (dir >= 0) ::close(dir);
    return true;
}

}  // namespace Ruvex::detail
