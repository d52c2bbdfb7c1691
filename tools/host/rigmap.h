#pragma once

// The one table from the panel's commands to Hamlib's rigctld protocol.

#include <QString>

#include <cstddef>

namespace rig {

// How the Hamlib radio carries out one panel command or host operation.
enum class Action {
    Tune, // F: the dial's steps added to the tuned VFO's frequency
    BandUp, // F: start of the next band of the band table
    BandDown,
    ModeUp, // M: next mode of the mode table, the radio's default passband
    ModeDown,
    Passband, // M: the current mode with the passband moved by the steps
    Level, // L NAME: the level moved by the steps
    LevelIndex, // L NAME: a level that is a list index (AGC), moved by one
    Toggle, // U NAME: the function switched over
    SetFunction, // U NAME: the function set as the host asks
    Offset, // J or Z: the RIT or XIT offset moved by the steps
    OffsetReset, // J 0 or Z 0
    Split, // S: split switched over, transmitting on VFO B
    SubRx, // V: VFO B switched over
    VfoOp, // G OP: one of the radio's VFO operations
    CopyBToA, // V VFOB, G CPY, V VFOA
    Ptt, // T: transmit switched over (or set by the host)
    Volume, // L AF from the host's volume in dB
    NotPassed, // no Hamlib counterpart: said once in the log
};

struct Mapping
{
    const char *name; // the panel command or the device-manager operation
    Action action;
    const char *hamlib; // rigctld's command name (F, M, L, U, ...)
    const char *arg; // its level, function or operation name, or ""
    double perStep; // units of the value per dial step or press
    const char *note; // what the operator sees, for the table in the guide
};

const Mapping *table();
std::size_t tableSize();
// The row of a panel command or host operation by name, or null.
const Mapping *find(const char *name);
// The row's rigctld command as the guide shows it, e.g. "L AF", "U NB".
QString hamlibText(const Mapping &m);
// The whole table as text lines, for --rig-map and the guide.
QString tableText();

// The band table: the start frequency of the band above or below `hz`
// (wrapping round at the ends).
double bandStep(double hz, int direction);
// The mode table: the mode after or before `mode` (Hamlib's names); an
// unknown mode steps to the first one.
QString modeStep(const QString &mode, int direction);

} // namespace rig
