// dialix-probe: the signal handler and the run.

#include "tools/probe/backend.h"
#include "tools/probe/probe.h"

#include <QCoreApplication>

#include <hidapi.h>

#include <atomic>
#include <csignal>
#include <cstdio>

namespace {

std::atomic<bool> stopRequested {false};

extern "C" void requestStop(int)
{
    stopRequested.store(true);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("dialix-probe"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DIALIX_VERSION));

    // Ctrl-C ends --events and --leds cleanly: the panel is closed and the
    // LEDs are turned off.
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);

    QTextStream out(stdout);
    QTextStream err(stderr);
    if (!prepareBackend(err))
        return int(probe::ExitCode::DeviceError);
    if (hid_init() != 0) {
        err << QCoreApplication::translate("Probe", "Cannot start the HID library.") << '\n';
        return int(probe::ExitCode::DeviceError);
    }
    const int result = probe::runProbe(QCoreApplication::arguments(), out, err, &stopRequested);
    finishBackend(err);
    hid_exit();
    return result;
}
