#pragma once

// dialix-probe, the operator's diagnostic tool, as one function.

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <atomic>

// dialix-probe: lists the Dialix panels, tells a panel that cannot be opened for
// lack of rights apart from a missing one, shows the decoded events of a panel
// live, lights its LEDs one after the other and checks its report descriptor. The whole program is
// runProbe(); main() only adds the signal handler and the choice of hidapi back end.

// The exit codes, one row each: name, value, what it means. This table drives
// the enum, the --help text and the tests.
// clang-format off
#define DIALIX_PROBE_EXIT_CODES(X) \
    X(Ok,           0,  QT_TRANSLATE_NOOP("Probe", "success: every panel found could be opened")) \
    X(NoPanel,      1,  QT_TRANSLATE_NOOP("Probe", "no panel is connected, or the one chosen with --panel is not")) \
    X(NoPermission, 2,  QT_TRANSLATE_NOOP("Probe", "a panel is connected but you have no right to open it")) \
    X(DeviceError,  3,  QT_TRANSLATE_NOOP("Probe", "a panel could not be opened for another reason, or stopped answering")) \
    X(UsageError,   64, QT_TRANSLATE_NOOP("Probe", "the command line is wrong"))
// clang-format on

namespace probe {

enum class ExitCode {
#define DIALIX_PROBE_EXIT_ENUM(name, value, text) name = value,
    DIALIX_PROBE_EXIT_CODES(DIALIX_PROBE_EXIT_ENUM)
#undef DIALIX_PROBE_EXIT_ENUM
};

struct ExitCodeInfo
{
    ExitCode code;
    const char *name;
    const char *description; // untranslated; see Probe::tr()
};

// Every row of the table, in order.
const ExitCodeInfo *exitCodes(int *count);

// Whether a panel's hidraw node can be opened.
enum class Access {
    Ok, // opened (and closed again)
    NoPermission, // the node exists but the user may not open it
    Gone, // the node disappeared between listing and opening (unplugged)
    Failed, // any other failure
};

// Classifies a failed open. `nodeErrno` is the errno of opening the device
// node directly (0 when that worked or was not possible), `hidError` is
// hidapi's error text. errno is checked first because hidapi's text is
// strerror() in the user's language; the text is the fallback where there is
// no node to open.
Access classifyOpenFailure(int nodeErrno, const QString &hidError);

// What a HID report descriptor declares, as far as the panel's reports go.
struct ReportLayout
{
    int id = 0; // 0 where the device does not number its reports
    int inputBytes = 0; // data bytes of the input report (without the ID)
    int outputBytes = 0; // data bytes of the output report (without the ID)
};
struct DescriptorLayout
{
    bool valid = false; // false for an empty or truncated descriptor
    bool numbered = false; // a Report ID item is present
    QList<ReportLayout> reports; // in the order their IDs first appear
};

// Adds up the input and output fields of every report in `descriptor`.
DescriptorLayout parseReportDescriptor(const QByteArray &descriptor);

// The problems of a layout for the plug-in, one sentence each: a read that
// would not return ReportSize bytes, an LED report that is not one byte.
QStringList descriptorWarnings(const DescriptorLayout &layout);

// Runs the probe with the command line `arguments` (arguments[0] is the program
// name). Listings and events go to `out`, problems and their fixes to `err`.
// Returns the exit code. `stop`, when set, ends a running --events or --leds
// (main() sets it on SIGINT and SIGTERM).
int runProbe(const QStringList &arguments, QTextStream &out, QTextStream &err,
             const std::atomic<bool> *stop = nullptr);

} // namespace probe
