#include <orvia/core/notify.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <string>

namespace {

constexpr const char* kFormat =
    "File:\t%s\nLine:\t%u\n\nYes\t= Continue\nNo\t= Debugger\nCancel\t= Skip Notification\n\n%s\n"
    "__________________________\n";

Orvia::NotifyAnswer AlwaysContinue(const char*, unsigned, const char*) {
    return Orvia::NotifyAnswer::Continue;
}

struct Location {
    std::string file;
    unsigned line = 0;
};

// The handler and the skip list are process-wide; a notification may come from any thread.
struct NotifyState {
    std::mutex mutex;
    Orvia::NotifyHandler handler = &AlwaysContinue;
    std::array<Location, Orvia::kNotifySkipListCapacity> skipped;
    unsigned skippedCount = 0;

    bool IsSkipped(const char* file, unsigned line) {
        for (unsigned i = 0; i < skippedCount; ++i)
            if (skipped[i].line == line && skipped[i].file == file) return true;
        return false;
    }
};

NotifyState& State() {
    static NotifyState state;
    return state;
}

// A tracer shows in /proc/self/status as a non-zero TracerPid.
bool DebuggerAttached() {
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        if (key == "TracerPid:") {
            long pid = 0;
            status >> pid;
            return pid != 0;
        }
        status.ignore(4096, '\n');
    }
    return false;
}

std::string Format(const char* file, unsigned line, const char* text) {
    int size = std::snprintf(nullptr, 0, kFormat, file, line, text);
    if (size <= 0) return {};
    std::string message(static_cast<size_t>(size), '\0');
    std::snprintf(message.data(), message.size() + 1, kFormat, file, line, text);
    return message;
}

}  // namespace

void CTCallNotify(const char* file, unsigned line, const char* text) {
    if (!file) file = "";
    if (!text) text = "";
    NotifyState& state = State();
    Orvia::NotifyHandler handler;
    {
        std::lock_guard lock(state.mutex);
        if (state.IsSkipped(file, line)) return;
        handler = state.handler;
    }
    const std::string message = Format(file, line, text);
    std::fputs(message.c_str(), stderr);
    std::fflush(stderr);

    switch (handler(file, line, message.c_str())) {
        case Orvia::NotifyAnswer::Continue:
            break;
        case Orvia::NotifyAnswer::Debugger:
            // Without a debugger SIGTRAP would end the process: carry on instead.
            if (DebuggerAttached()) std::raise(SIGTRAP);
            break;
        case Orvia::NotifyAnswer::Skip: {
            std::lock_guard lock(state.mutex);
            if (!state.IsSkipped(file, line) && state.skippedCount < Orvia::kNotifySkipListCapacity)
                state.skipped[state.skippedCount++] = Location{file, line};
            break;
        }
    }
}

namespace Orvia {

NotifyHandler SetNotifyHandler(NotifyHandler handler) {
    NotifyState& state = State();
    std::lock_guard lock(state.mutex);
    NotifyHandler previous = state.handler;
    state.handler = handler ? handler : &AlwaysContinue;
    return previous;
}

unsigned GetNotifySkipListSize() {
    NotifyState& state = State();
    std::lock_guard lock(state.mutex);
    return state.skippedCount;
}

void ClearNotifySkipList() {
    NotifyState& state = State();
    std::lock_guard lock(state.mutex);
    state.skippedCount = 0;
}

}  // namespace Orvia
