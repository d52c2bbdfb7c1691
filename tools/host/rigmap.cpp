// The table from the panel's commands to rigctld's commands.

#include "rigmap.h"

#include <QStringList>

#include <array>
#include <cstring>
#include <iterator>

namespace rig {
namespace {

// clang-format off
constexpr Mapping rows[] = {
    // Panel commands
    {"panelVFO",            Action::Tune,        "F", "",        10,   "VFO A or B (the radio switches to the tuned VFO), 10 Hz a step"},
    {"panelBandUp",         Action::BandUp,      "F", "",        1,    "start of the next band of the host's band table"},
    {"panelBandDown",       Action::BandDown,    "F", "",        1,    "start of the band below"},
    {"panelModeUp",         Action::ModeUp,      "M", "",        1,    "next mode: LSB USB CW CWR AM FM PKTUSB PKTLSB RTTY"},
    {"panelModeDown",       Action::ModeDown,    "M", "",        1,    "mode before"},
    {"panelFilterWidth",    Action::Passband,    "M", "",        10,   "passband, 10 Hz a step"},
    {"panelFilterUp",       Action::Passband,    "M", "",        100,  "passband 100 Hz wider"},
    {"panelFilterDown",     Action::Passband,    "M", "",        -100, "passband 100 Hz narrower"},
    {"panelFilterShift",    Action::Level,       "L", "IF",      10,   "IF shift, 10 Hz a step"},
    {"panelIF",             Action::Level,       "L", "IF",      10,   "IF shift, 10 Hz a step"},
    {"panelVolume",         Action::Level,       "L", "AF",      1.0 / 60, "AF gain, 1 dB of the -60..0 dB range a step"},
    {"panelRF",             Action::Level,       "L", "RF",      0.01, "RF gain, 1 % a step"},
    {"panelSql",            Action::Level,       "L", "SQL",     0.01, "squelch, 1 % a step"},
    {"panelMicGain",        Action::Level,       "L", "MICGAIN", 0.01, "mic gain, 1 % a step"},
    {"panelDrive",          Action::Level,       "L", "RFPOWER", 0.01, "drive, 1 % a step"},
    {"panelCwSpeed",        Action::Level,       "L", "KEYSPD",  1,    "CW speed, 1 WPM a step"},
    {"panelAgcUp",          Action::LevelIndex,  "L", "AGC",     1,    "next AGC setting"},
    {"panelAgcDown",        Action::LevelIndex,  "L", "AGC",     -1,   "AGC setting before"},
    {"panelSqlChange",      Action::Toggle,      "U", "SQL",     1,    "squelch on/off"},
    {"panelMuteChange",     Action::Toggle,      "U", "MUTE",    1,    "mute on/off"},
    {"panelNb1Change",      Action::Toggle,      "U", "NB",      1,    "noise blanker on/off"},
    {"panelNb2Change",      Action::Toggle,      "U", "NB2",     1,    "second noise blanker on/off"},
    {"panelNrChange",       Action::Toggle,      "U", "NR",      1,    "noise reduction on/off"},
    {"panelAnfChange",      Action::Toggle,      "U", "ANF",     1,    "auto notch on/off"},
    {"panelRitEnable",      Action::Toggle,      "U", "RIT",     1,    "RIT on/off"},
    {"panelXitEnable",      Action::Toggle,      "U", "XIT",     1,    "XIT on/off"},
    {"panelRitValue",       Action::Offset,      "J", "",        10,   "RIT offset, 10 Hz a step"},
    {"panelRitFromIfValue", Action::Offset,      "J", "",        10,   "RIT offset, 10 Hz a step"},
    {"panelRitReset",       Action::OffsetReset, "J", "",        0,    "RIT offset 0"},
    {"panelXitValue",       Action::Offset,      "Z", "",        10,   "XIT offset, 10 Hz a step"},
    {"panelXitFromIfValue", Action::Offset,      "Z", "",        10,   "XIT offset, 10 Hz a step"},
    {"panelXitReset",       Action::OffsetReset, "Z", "",        0,    "XIT offset 0"},
    {"panelSplitSw",        Action::Split,       "S", "",        1,    "split on/off, transmitting on VFO B"},
    {"panelEnableVFOB",     Action::SubRx,       "V", "",        1,    "VFO A/B"},
    {"panelMox",            Action::Ptt,         "T", "",        1,    "transmit on/off, before anything queued"},
    {"panelTone",           Action::VfoOp,       "G", "TUNE",    1,    "start the tuner"},
    {"panelPreampUp",       Action::NotPassed,   "",  "",        0,    ""},
    {"panelPreampDown",     Action::NotPassed,   "",  "",        0,    ""},
    {"panelStepUp",         Action::NotPassed,   "",  "",        0,    ""},
    {"panelStepDown",       Action::NotPassed,   "",  "",        0,    ""},
    {"panelZoomUp",         Action::NotPassed,   "",  "",        0,    ""},
    {"panelZoomDown",       Action::NotPassed,   "",  "",        0,    ""},
    {"panelPowerChange",    Action::NotPassed,   "",  "",        0,    ""},
    {"panelFilterLow",      Action::NotPassed,   "",  "",        0,    ""},
    {"panelFilterHigh",     Action::NotPassed,   "",  "",        0,    ""},
    {"panelPaChange",       Action::NotPassed,   "",  "",        0,    ""},
    {"panelBinChange",      Action::NotPassed,   "",  "",        0,    ""},
    {"panelWideFilter",     Action::NotPassed,   "",  "",        0,    ""},
    {"panelMoxVoicePlay",   Action::NotPassed,   "",  "",        0,    ""},
    {"panelVoiceRec",       Action::NotPassed,   "",  "",        0,    ""},
    {"panelRxAntSwitch",    Action::NotPassed,   "",  "",        0,    ""},
    // Device-manager operations the plug-in calls
    {"setMainVolume",       Action::Volume,      "L", "AF",      0,    "AF gain: -60..0 dB as 0..1"},
    {"setLock",             Action::SetFunction, "U", "LOCK",    0,    "dial lock"},
    {"setVox",              Action::SetFunction, "U", "VOX",     0,    "VOX"},
    {"setMute",             Action::SetFunction, "U", "MUTE",    0,    "mute"},
    {"setVfoaToVfob",       Action::VfoOp,       "G", "CPY",     0,    "A->B"},
    {"setVfobToVfoa",       Action::CopyBToA,    "G", "CPY",     0,    "B->A: V VFOB; G CPY; V VFOA"},
    {"setVfoaSwapVfob",     Action::VfoOp,       "G", "XCHG",    0,    "A<->B"},
    {"setMox",              Action::Ptt,         "T", "",        0,    "PTT from the panel's PTT input"},
    {"setMixerMode",        Action::NotPassed,   "",  "",        0,    ""},
};
// clang-format on

struct Band
{
    double low;
    double start;
};
// Lower edges and start frequencies.
constexpr std::array<Band, 13> bands = {{{1800000, 1840000},
                                         {3500000, 3573000},
                                         {5250000, 5357000},
                                         {7000000, 7074000},
                                         {10100000, 10136000},
                                         {14000000, 14074000},
                                         {18068000, 18100000},
                                         {21000000, 21074000},
                                         {24890000, 24915000},
                                         {28000000, 28074000},
                                         {50000000, 50313000},
                                         {144000000, 144174000},
                                         {430000000, 432174000}}};
constexpr std::array<const char *, 9> modes = {"LSB", "USB",    "CW",     "CWR", "AM",
                                               "FM",  "PKTUSB", "PKTLSB", "RTTY"};

} // namespace

const Mapping *table()
{
    return rows;
}

std::size_t tableSize()
{
    return std::size(rows);
}

const Mapping *find(const char *name)
{
    for (const Mapping &m : rows) {
        if (std::strcmp(m.name, name) == 0)
            return &m;
    }
    return nullptr;
}

QString hamlibText(const Mapping &m)
{
    if (m.action == Action::NotPassed)
        return QStringLiteral("(not passed to the radio)");
    if (m.action == Action::CopyBToA)
        return QStringLiteral("V VFOB; G CPY; V VFOA");
    if (m.action == Action::Split)
        return QStringLiteral("S 0|1 VFOB");
    if (m.action == Action::SubRx)
        return QStringLiteral("V VFOA|VFOB");
    const QString arg = QString::fromLatin1(m.arg);
    return arg.isEmpty() ? QString::fromLatin1(m.hamlib)
                         : QString::fromLatin1(m.hamlib) + QLatin1Char(' ') + arg;
}

QString tableText()
{
    QStringList lines;
    for (const Mapping &m : rows) {
        lines << QStringLiteral("%1 %2 %3")
                     .arg(QString::fromLatin1(m.name), -20)
                     .arg(hamlibText(m), -24)
                     .arg(QString::fromUtf8(m.note))
                     .trimmed();
    }
    return lines.join(QLatin1Char('\n'));
}

double bandStep(double hz, int direction)
{
    const int n = int(bands.size());
    int at = -1;
    for (int i = 0; i < n; ++i) {
        if (bands[size_t(i)].low <= hz)
            at = i;
    }
    int next;
    if (at < 0)
        next = direction > 0 ? 0 : n - 1;
    else
        next = ((at + (direction > 0 ? 1 : -1)) % n + n) % n;
    return bands[size_t(next)].start;
}

QString modeStep(const QString &mode, int direction)
{
    const int n = int(modes.size());
    int at = -1;
    for (int i = 0; i < n; ++i) {
        if (mode == QLatin1String(modes[size_t(i)]))
            at = i;
    }
    if (at < 0)
        return QString::fromLatin1(modes[0]);
    return QString::fromLatin1(modes[size_t(((at + (direction > 0 ? 1 : -1)) % n + n) % n)]);
}

} // namespace rig
