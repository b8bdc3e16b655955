#pragma once

// Reporting of broken internal assumptions. A notification is written to standard error, then a handler that
// the host installs decides what happens next (in place of an interactive prompt).

// Formats the notification for `file` and `line` with `text` (null pointers read as empty), writes it to
// standard error and asks the installed handler: Continue returns, Debugger raises SIGTRAP when a debugger is
// attached (otherwise it continues), Skip silences this (file, line) for the rest of the process. A location
// already silenced returns at once without output.
void CTCallNotify(const char* file, unsigned line, const char* text);

#define ORVIA_NOTIFY(text) ::CTCallNotify(__FILE__, __LINE__, (text))

namespace Orvia {

enum class NotifyAnswer { Continue, Debugger, Skip };

// Decides what to do after a notification; receives the location and the formatted message. Must not throw.
using NotifyHandler = NotifyAnswer (*)(const char* file, unsigned line, const char* message);

// Installs `handler` (null restores the default, which always answers Continue); returns the previous one.
NotifyHandler SetNotifyHandler(NotifyHandler handler);

// At most this many locations are silenced; a Skip beyond it is treated as Continue.
inline constexpr unsigned kNotifySkipListCapacity = 256;

// Number of silenced locations; ClearNotifySkipList lets them notify again.
unsigned GetNotifySkipListSize();
void ClearNotifySkipList();

}  // namespace Orvia
