#pragma once

// The process-wide line state behind ModemLines, kept by ptyinterpose.cpp.
// Ptys are named by their index N in /dev/pts/N.

#include <vector>

namespace PtyLineState {

enum class Cause { Open, Write, HangUp, FarEnd };

struct Change
{
    int pty;
    Cause cause;
    int before;
    int after;
    long long nanoseconds; // steady clock
};

// The pty index of a slave descriptor, or -1.
int ptyOfDescriptor(int fd);
// The pty index of a path (symlinks followed), or -1.
int ptyOfPath(const char *path);

int lines(int pty);
void setInputs(int pty, int bits);
std::vector<Change> changes();
// Forgets the state and log of one pty (its index is being reused).
void forget(int pty);

} // namespace PtyLineState
