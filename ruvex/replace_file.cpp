#include "replace_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

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
    const mode_t mode = exists ? existing.st_mode & 07777 : 0666 & ~CurrentUmask();

    const std::string directory = DirectoryOf(target);
    std::string temporary = directory + "/." + NameOf(target).substr(0, kMaxNameKept) + ".XXXXXX";
    int fd = ::mkstemp(temporary.data());
    if (fd < 0) {
        error = "cannot create a temporary file in \"" + directory + "\": " + Reason(errno);
        return false;
    }
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    auto fail = [&](const std::string& what, int code) {
        if (fd >= 0) ::close(fd);
        ::unlink(temporary.c_str());
        error = what + ": " + Reason(code);
        return false;
    };

    // The owner is kept when the process may give the file away; otherwise whoever saves becomes the owner,
    // as with any editor, and that is no failure.
    if (exists && (existing.st_uid != ::geteuid() || existing.st_gid != ::getegid())) {
        [[maybe_unused]] const int given = ::fchown(fd, existing.st_uid, existing.st_gid);
    }
    if (::fchmod(fd, mode) != 0) return fail("cannot set the permissions", errno);

    const char* next = content.data();
    size_t left = content.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, next, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return fail("cannot write the file", written < 0 ? errno : ENOSPC);
        next += written;
        left -= static_cast<size_t>(written);
    }
    if (SyncRetrying(fd) != 0) return fail("cannot write the file", errno);
    // Delayed write errors may surface only here; the descriptor is gone whatever close returns.
    const int closed = ::close(fd);
    fd = -1;
    if (closed != 0) return fail("cannot write the file", errno);
    if (::rename(temporary.c_str(), target.c_str()) != 0) return fail("cannot replace the file", errno);

    // The new name is durable once the directory is; a failure now cannot bring the old file back.
    const int dir = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir < 0 || (SyncRetrying(dir) != 0 && errno != EINVAL))
        warning = "saved, but the directory \"" + directory + "\" could not be synced: " + Reason(errno);
    if (dir >= 0) ::close(dir);
    return true;
}

}  // namespace Ruvex::detail
