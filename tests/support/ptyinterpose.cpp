// Interposes ioctl(), open()/open64() and close() to emulate the modem lines
// of pseudo-terminal slaves. No Qt in here: these functions run inside every
// open and close of the process, Qt's own included.

#undef _FORTIFY_SOURCE

#include "tests/support/ptyinterpose_p.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <map>
#include <mutex>

namespace {

// TIOCM_OUT1, TIOCM_OUT2 and TIOCM_LOOP come from <asm/termios.h>, which
// clashes with glibc's <termios.h>.
constexpr int kOut1 = 0x2000;
constexpr int kOut2 = 0x4000;
constexpr int kLoop = 0x8000;
constexpr int kOutputs = TIOCM_DTR | TIOCM_RTS | kOut1 | kOut2 | kLoop;
constexpr int kInputs = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR | TIOCM_RNG;

// UNIX98 pty slaves: majors 136 to 143, 256 minors each.
constexpr unsigned kPtySlaveMajor = 136;
constexpr unsigned kPtySlaveMajors = 8;

using IoctlFn = int (*)(int, unsigned long, ...);
using OpenFn = int (*)(const char *, int, ...);
using CloseFn = int (*)(int);
using TcgetattrFn = int (*)(int, struct termios *);
using TcsetattrFn = int (*)(int, int, const struct termios *);

template<typename Fn>
Fn next(const char *name)
{
    void *symbol = dlsym(RTLD_NEXT, name);
    if (!symbol) {
        fprintf(stderr, "ptylines: no next definition of %s\n", name);
        abort();
    }
    return reinterpret_cast<Fn>(symbol);
}

IoctlFn realIoctl()
{
    static const IoctlFn fn = next<IoctlFn>("ioctl");
    return fn;
}

OpenFn realOpen()
{
    static const OpenFn fn = next<OpenFn>("open");
    return fn;
}

OpenFn realOpen64()
{
    static const OpenFn fn = next<OpenFn>("open64");
    return fn;
}

CloseFn realClose()
{
    static const CloseFn fn = next<CloseFn>("close");
    return fn;
}

TcgetattrFn realTcgetattr()
{
    static const TcgetattrFn fn = next<TcgetattrFn>("tcgetattr");
    return fn;
}

TcsetattrFn realTcsetattr()
{
    static const TcsetattrFn fn = next<TcsetattrFn>("tcsetattr");
    return fn;
}

int ptyOfDevice(dev_t device)
{
    const unsigned maj = major(device);
    if (maj < kPtySlaveMajor || maj >= kPtySlaveMajor + kPtySlaveMajors)
        return -1;
    return static_cast<int>((maj - kPtySlaveMajor) * 256 + minor(device));
}

struct State
{
    std::mutex mutex;
    std::map<int, int> lines; // pty -> line bits
    std::map<int, int> descriptors; // descriptor opened by path -> pty
    std::map<int, struct termios> settings; // pty -> settings last set
    std::vector<PtyLineState::Change> log;
};

State &state()
{
    // Never destroyed: open and close may run during static destruction.
    static State *s = new State;
    return *s;
}

// DIALIX_PTYLINES_SHARED=<dir> shares the line state among every process that
// loads this library with it (LD_PRELOAD): under Wine the wineserver opens the
// port and the program sets its lines. <dir>/<pty> holds a pty's line bits,
// <dir>/log one line per change: "<pty> <cause> <before> <after>" in hex, the
// causes being open, write, hangup and farend.
const char *sharedDir()
{
    static const char *dir = getenv("DIALIX_PTYLINES_SHARED");
    return dir && *dir ? dir : nullptr;
}

int sharedFile(const char *name, int flags)
{
    char path[PATH_MAX];
    snprintf(path, sizeof path, "%s/%s", sharedDir(), name);
    return realOpen()(path, flags | O_CLOEXEC, 0644);
}

// The pty's bits, refreshed from the shared state when there is one.
int &currentLines(State &s, int pty)
{
    int &current = s.lines[pty];
    char name[16], text[16] = {};
    snprintf(name, sizeof name, "%d", pty);
    const int fd = sharedDir() ? sharedFile(name, O_RDONLY) : -1;
    if (fd >= 0) {
        if (read(fd, text, sizeof text - 1) > 0)
            current = int(strtol(text, nullptr, 16));
        realClose()(fd);
    }
    return current;
}

void record(State &s, int pty, PtyLineState::Cause cause, int after)
{
    int &current = currentLines(s, pty);
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    s.log.push_back({pty, cause, current, after, now.tv_sec * 1000000000LL + now.tv_nsec});
    if (sharedDir()) {
        static const char *const causes[] = {"open", "write", "hangup", "farend"};
        char name[16], text[64];
        snprintf(name, sizeof name, "%d", pty);
        int fd = sharedFile(name, O_WRONLY | O_CREAT | O_TRUNC);
        if (fd >= 0) {
            const int n = snprintf(text, sizeof text, "%x\n", unsigned(after));
            (void)!write(fd, text, size_t(n));
            realClose()(fd);
        }
        fd = sharedFile("log", O_WRONLY | O_CREAT | O_APPEND);
        if (fd >= 0) {
            const int n = snprintf(text, sizeof text, "%d %s %x %x\n", pty, causes[int(cause)],
                                   unsigned(current), unsigned(after));
            (void)!write(fd, text, size_t(n));
            realClose()(fd);
        }
    }
    current = after;
}

bool isMachineSerialPort(const char *path)
{
    if (strncmp(path, "/dev/ttyS", 9) == 0)
        return true;
    char resolved[PATH_MAX];
    return realpath(path, resolved) && strncmp(resolved, "/dev/ttyS", 9) == 0;
}

int afterOpen(int fd)
{
    if (fd < 0)
        return fd;
    const int pty = PtyLineState::ptyOfDescriptor(fd);
    if (pty < 0)
        return fd;
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.descriptors[fd] = pty;
    record(s, pty, PtyLineState::Cause::Open, currentLines(s, pty) | TIOCM_DTR | TIOCM_RTS);
    return fd;
}

int interposedOpen(OpenFn real, const char *path, int flags, mode_t mode)
{
    if (path && isMachineSerialPort(path)) {
        fprintf(stderr, "ptylines: refused to open %s, a serial port of this machine\n", path);
        errno = EACCES;
        return -1;
    }
    return afterOpen(real(path, flags, mode));
}

mode_t modeArgument(int flags, va_list args)
{
    if ((flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE)
        return static_cast<mode_t>(va_arg(args, int));
    return 0;
}

} // namespace

namespace PtyLineState {

int ptyOfDescriptor(int fd)
{
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISCHR(st.st_mode))
        return -1;
    return ptyOfDevice(st.st_rdev);
}

int ptyOfPath(const char *path)
{
    struct stat st;
    if (stat(path, &st) != 0 || !S_ISCHR(st.st_mode))
        return -1;
    return ptyOfDevice(st.st_rdev);
}

int lines(int pty)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    const auto it = s.lines.find(pty);
    return it == s.lines.end() ? 0 : it->second;
}

void setInputs(int pty, int bits)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    record(s, pty, Cause::FarEnd, (s.lines[pty] & ~kInputs) | (bits & kInputs));
}

std::vector<Change> changes()
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return s.log;
}

void forget(int pty)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.lines.erase(pty);
    s.settings.erase(pty);
    std::vector<Change> kept;
    for (const Change &change : s.log) {
        if (change.pty != pty)
            kept.push_back(change);
    }
    s.log.swap(kept);
}

} // namespace PtyLineState

extern "C" {

int ioctl(int fd, unsigned long request, ...) __THROW
{
    va_list args;
    va_start(args, request);
    void *argument = va_arg(args, void *);
    va_end(args);

    if (request != TIOCMGET && request != TIOCMSET && request != TIOCMBIS && request != TIOCMBIC)
        return realIoctl()(fd, request, argument);
    const int pty = PtyLineState::ptyOfDescriptor(fd);
    if (pty < 0)
        return realIoctl()(fd, request, argument);
    if (!argument) {
        errno = EFAULT;
        return -1;
    }

    int *bits = static_cast<int *>(argument);
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    const int current = currentLines(s, pty);
    switch (request) {
    case TIOCMGET:
        *bits = current;
        return 0;
    case TIOCMSET:
        record(s, pty, PtyLineState::Cause::Write, (current & ~kOutputs) | (*bits & kOutputs));
        return 0;
    case TIOCMBIS:
        record(s, pty, PtyLineState::Cause::Write, current | (*bits & kOutputs));
        return 0;
    default: // TIOCMBIC
        record(s, pty, PtyLineState::Cause::Write, current & ~(*bits & kOutputs));
        return 0;
    }
}

int open(const char *path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = modeArgument(flags, args);
    va_end(args);
    return interposedOpen(realOpen(), path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = modeArgument(flags, args);
    va_end(args);
    return interposedOpen(realOpen64(), path, flags, mode);
}

int close(int fd)
{
    State &s = state();
    {
        std::lock_guard<std::mutex> lock(s.mutex);
        const auto it = s.descriptors.find(fd);
        if (it != s.descriptors.end()) {
            const int pty = it->second;
            s.descriptors.erase(it);
            bool last = true;
            for (const auto &entry : s.descriptors)
                last = last && entry.second != pty;
            const auto settings = s.settings.find(pty);
            struct termios current;
            const bool hangUp = settings != s.settings.end()
                ? (settings->second.c_cflag & HUPCL)
                : realTcgetattr()(fd, &current) == 0 && (current.c_cflag & HUPCL);
            if (last && hangUp)
                record(s, pty, PtyLineState::Cause::HangUp,
                       currentLines(s, pty) & ~(TIOCM_DTR | TIOCM_RTS));
        }
    }
    return realClose()(fd);
}

// A pty forces 8 data bits and no parity whatever is asked for; a serial line
// keeps what was set. The settings last set on a pty are answered back, so a
// port reads back the line it configured.
//
// glibc's tcsetattr() reads the settings back and fails with EINVAL when the
// pty changed CSIZE or PARENB; on a pty slave that failure is the pty's
// doing, not the caller's, and counts as success.
int tcsetattr(int fd, int action, const struct termios *settings) __THROW
{
    const int saved = errno;
    int result = realTcsetattr()(fd, action, settings);
    const int pty = settings ? PtyLineState::ptyOfDescriptor(fd) : -1;
    if (pty >= 0 && result != 0 && errno == EINVAL) {
        errno = saved;
        result = 0;
    }
    if (pty >= 0 && result == 0) {
        State &s = state();
        std::lock_guard<std::mutex> lock(s.mutex);
        s.settings[pty] = *settings;
    }
    return result;
}

int tcgetattr(int fd, struct termios *settings) __THROW
{
    const int result = realTcgetattr()(fd, settings);
    const int pty = result == 0 ? PtyLineState::ptyOfDescriptor(fd) : -1;
    if (pty >= 0) {
        State &s = state();
        std::lock_guard<std::mutex> lock(s.mutex);
        const auto it = s.settings.find(pty);
        if (it != s.settings.end())
            *settings = it->second;
    }
    return result;
}

} // extern "C"
