// dialix-probe: listing, permissions, live events, LEDs, report descriptors.

#include "tools/probe/probe.h"

#include "plugins/panels/dialix/source/dialix.h"
#include "tools/probe/nodeaccess.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QHash>
#include <QThread>

#include <hidapi.h>

#include <cerrno>

#ifndef DIALIX_VERSION
#define DIALIX_VERSION "unknown"
#endif

namespace probe {

namespace protocol = dialix::protocol;

namespace {

// clang-format off
const ExitCodeInfo exitCodeTable[] = {
#define DIALIX_PROBE_EXIT_ROW(name, value, text) {ExitCode::name, #name, text},
    DIALIX_PROBE_EXIT_CODES(DIALIX_PROBE_EXIT_ROW)
#undef DIALIX_PROBE_EXIT_ROW
};

// The LEDs in the order --leds lights them.
struct LedRow
{
    int bit;
    const char *name;
};
const LedRow ledTable[] = {
    {protocol::LedVfoB,      QT_TRANSLATE_NOOP("Probe", "VFO B")},
    {protocol::LedReceiver2, QT_TRANSLATE_NOOP("Probe", "second receiver")},
    {protocol::LedTransmit,  QT_TRANSLATE_NOOP("Probe", "transmit")},
    {protocol::LedDials,     QT_TRANSLATE_NOOP("Probe", "dial LEDs")},
    {protocol::LedKeys,      QT_TRANSLATE_NOOP("Probe", "key LEDs")},
};
// clang-format on

constexpr int ReadSliceMs = 50; // longest a read blocks before stop/duration are looked at

QString fromWide(const wchar_t *text)
{
    return text ? QString::fromWCharArray(text) : QString();
}

// What the listing shows of one enumerated panel.
struct Panel
{
    QByteArray path;
    QString serial;
    QString product;
    QString manufacturer;
    int interfaceNumber = -1;
    unsigned short release = 0;
};

class Probe
{
    Q_DECLARE_TR_FUNCTIONS(Probe)

public:
    Probe(QTextStream &out, QTextStream &err, const std::atomic<bool> *stop)
        : out(out)
        , err(err)
        , stop(stop)
    { }

    ExitCode list();
    ExitCode events(const QString &which, int count, qint64 durationMs, bool raw);
    ExitCode leds(const QString &which, int intervalMs);
    ExitCode descriptor(const QString &which);

private:
    QList<Panel> enumerate();
    Access tryOpen(const Panel &panel, hid_device **handle, QString *error);
    ExitCode open(const QString &which, hid_device **handle, Panel *chosen);
    void explain(Access access, const Panel &panel, const QString &error);
    void explainAbsent();
    bool stopped() const { return stop && stop->load(); }
    bool sleepMs(int ms);

    QTextStream &out;
    QTextStream &err;
    const std::atomic<bool> *stop;
    Dialix device; // enumerates and decodes exactly as the plug-in does; never opened
};

QList<Panel> Probe::enumerate()
{
    device.findDevices();
    QList<Panel> panels;
    for (const hid_device_info *info : device.devices()) {
        Panel panel;
        panel.path = QByteArray(info->path ? info->path : "");
        panel.serial = fromWide(info->serial_number);
        panel.product = fromWide(info->product_string);
        panel.manufacturer = fromWide(info->manufacturer_string);
        panel.interfaceNumber = info->interface_number;
        panel.release = info->release_number;
        panels.append(panel);
    }
    return panels;
}

Access Probe::tryOpen(const Panel &panel, hid_device **handle, QString *error)
{
    *handle = hid_open_path(panel.path.constData());
    if (*handle)
        return Access::Ok;
    *error = fromWide(hid_error(nullptr));
    return classifyOpenFailure(nodeOpenError(panel.path.constData()), *error);
}

void Probe::explainAbsent()
{
    err << tr("No Dialix panel found (USB vendor %1, product %2).")
               .arg(protocol::VendorId, 4, 16, QLatin1Char('0'))
               .arg(protocol::ProductId, 4, 16, QLatin1Char('0'))
        << '\n'
        << tr("Check the USB cable and the panel's power; 'lsusb -d 1fc9:0003' shows whether the "
              "system sees the panel at all.")
        << '\n';
}

void Probe::explain(Access access, const Panel &panel, const QString &error)
{
    const QString path = QString::fromLocal8Bit(panel.path);
    switch (access) {
    case Access::Ok:
        return;
    case Access::NoPermission:
        err << tr("No permission to open %1 (panel %2).").arg(path, panel.serial) << '\n'
            << tr("Fix: install the panel's udev rule (the dialix package does) and apply it to "
                  "the panel that is plugged in:")
            << '\n'
            << "    sudo udevadm control --reload-rules\n"
            << "    sudo udevadm trigger --subsystem-match=hidraw --action=change\n"
            << tr("or unplug the panel and plug it in again.") << '\n'
            << tr("The rule opens the panel to the user logged in at this computer's screen; from "
                  "a remote session,")
            << '\n'
            << tr("join the group plugdev ('sudo usermod -aG plugdev $USER', then log in again).")
            << '\n';
        return;
    case Access::Gone:
        err << tr("%1 disappeared while it was being opened: the panel was unplugged.").arg(path)
            << '\n';
        return;
    case Access::Failed:
        err << tr("Cannot open %1: %2").arg(path, error.isEmpty() ? tr("unknown error") : error)
            << '\n';
        return;
    }
}

ExitCode Probe::list()
{
    const QList<Panel> panels = enumerate();
    if (panels.isEmpty()) {
        explainAbsent();
        return ExitCode::NoPanel;
    }

    out << tr("Dialix panels found: %1").arg(panels.size()) << '\n';
    bool denied = false;
    bool failed = false;
    for (int i = 0; i < panels.size(); ++i) {
        const Panel &panel = panels.at(i);
        hid_device *handle = nullptr;
        QString error;
        const Access access = tryOpen(panel, &handle, &error);
        if (handle)
            hid_close(handle);

        QString state;
        switch (access) {
        case Access::Ok:
            state = tr("ok");
            break;
        case Access::NoPermission:
            state = tr("no permission");
            denied = true;
            break;
        case Access::Gone:
            state = tr("gone (unplugged)");
            failed = true;
            break;
        case Access::Failed:
            state = tr("cannot open: %1").arg(error);
            failed = true;
            break;
        }

        out << QStringLiteral("%1. %2\n").arg(i + 1).arg(QString::fromLocal8Bit(panel.path))
            << "   " << tr("serial number: %1").arg(panel.serial) << '\n'
            << "   " << tr("product:       %1").arg(panel.product) << '\n'
            << "   " << tr("manufacturer:  %1").arg(panel.manufacturer) << '\n'
            << "   " << tr("interface:     %1").arg(panel.interfaceNumber) << '\n'
            << "   " << tr("release:       %1").arg(panel.release, 4, 16, QLatin1Char('0')) << '\n'
            << "   " << tr("access:        %1").arg(state) << '\n';
        if (access != Access::Ok)
            explain(access, panel, error);
    }
    out.flush();
    if (denied)
        return ExitCode::NoPermission;
    return failed ? ExitCode::DeviceError : ExitCode::Ok;
}

ExitCode Probe::open(const QString &which, hid_device **handle, Panel *chosen)
{
    const QList<Panel> panels = enumerate();
    if (panels.isEmpty()) {
        explainAbsent();
        return ExitCode::NoPanel;
    }

    int index = which.isEmpty() ? 0 : -1;
    for (int i = 0; index < 0 && i < panels.size(); ++i) {
        if (QString::fromLocal8Bit(panels.at(i).path) == which || panels.at(i).serial == which)
            index = i;
    }
    bool isNumber = false;
    const int number = which.toInt(&isNumber);
    if (index < 0 && isNumber && number >= 1 && number <= panels.size())
        index = number - 1;
    if (index < 0) {
        err << tr("There is no panel '%1' (panels found: %2; see dialix-probe --list).")
                   .arg(which)
                   .arg(panels.size())
            << '\n';
        return ExitCode::NoPanel;
    }

    *chosen = panels.at(index);
    QString error;
    const Access access = tryOpen(*chosen, handle, &error);
    if (access != Access::Ok) {
        explain(access, *chosen, error);
        return access == Access::NoPermission ? ExitCode::NoPermission : ExitCode::DeviceError;
    }
    out << tr("Panel %1: %2, serial number %3")
               .arg(index + 1)
               .arg(QString::fromLocal8Bit(chosen->path), chosen->serial)
        << '\n';
    out.flush();
    return ExitCode::Ok;
}

bool Probe::sleepMs(int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (!stopped() && timer.elapsed() < ms)
        QThread::msleep(
            static_cast<unsigned long>(qMin<qint64>(ReadSliceMs, ms - timer.elapsed())));
    return !stopped();
}

ExitCode Probe::events(const QString &which, int count, qint64 durationMs, bool raw)
{
    hid_device *handle = nullptr;
    Panel panel;
    const ExitCode opened = open(which, &handle, &panel);
    if (opened != ExitCode::Ok)
        return opened;

    out << tr("Showing events; press Ctrl-C to stop.") << '\n';
    out.flush();

    QElapsedTimer clock;
    clock.start();
    int printed = 0;
    const auto print = [&](const QString &what) {
        out << QString::asprintf("%9.3f  ", double(clock.elapsed()) / 1000.0) << what << '\n';
        out.flush();
        ++printed;
    };
    const auto pressed = [](bool state) {
        return state ? tr("pressed") : tr("released");
    };

    // The same decoding as the plug-in's reader thread; the signals are emitted
    // on this thread, so direct connections print them in report order.
    QObject receiver;
    QObject::connect(
        &device, &Dialix::button, &receiver,
        [&](Dialix::Buttons key, bool state) {
            print(tr("key %1 %2").arg(int(key)).arg(pressed(state)));
        },
        Qt::DirectConnection);
    QObject::connect(
        &device, &Dialix::dialButton, &receiver,
        [&](Dialix::DialButtons key, bool state) {
            print(tr("dial %1 push %2").arg(int(key) - Dialix::KeyEnc0).arg(pressed(state)));
        },
        Qt::DirectConnection);
    QObject::connect(
        &device, &Dialix::dial, &receiver,
        [&](Dialix::Dials dial, int value) {
            print(tr("dial %1 turned %2").arg(int(dial)).arg(QString::asprintf("%+d", value)));
        },
        Qt::DirectConnection);
    QObject::connect(
        &device, &Dialix::ptt, &receiver,
        [&](bool state) { print(tr("PTT %1").arg(pressed(state))); }, Qt::DirectConnection);
    QObject::connect(
        &device, &Dialix::dash, &receiver,
        [&](bool state) { print(tr("paddle dash %1").arg(pressed(state))); }, Qt::DirectConnection);
    QObject::connect(
        &device, &Dialix::dot, &receiver,
        [&](bool state) { print(tr("paddle dot %1").arg(pressed(state))); }, Qt::DirectConnection);

    ExitCode result = ExitCode::Ok;
    unsigned char buffer[protocol::ReportSize];
    while (!stopped() && (count <= 0 || printed < count)
           && (durationMs <= 0 || clock.elapsed() < durationMs)) {
        const int got = hid_read_timeout(handle, buffer, sizeof buffer, ReadSliceMs);
        if (got < 0) {
            err << tr("The panel stopped answering (%1); it was probably unplugged.")
                       .arg(fromWide(hid_error(handle)))
                << '\n';
            result = ExitCode::DeviceError;
            break;
        }
        if (got == 0)
            continue;
        if (raw) {
            QByteArray bytes(reinterpret_cast<const char *>(buffer), got);
            out << QString::asprintf("%9.3f  ", double(clock.elapsed()) / 1000.0)
                << tr("report of %1 bytes: %2").arg(got).arg(QString::fromLatin1(bytes.toHex(' ')))
                << '\n';
            out.flush();
        }
        if (got != protocol::ReportSize && !raw)
            err << tr("Ignored a report of %1 bytes (a panel report has %2).")
                       .arg(got)
                       .arg(protocol::ReportSize)
                << '\n';
        device.processReport(buffer, got);
    }
    QObject::disconnect(&device, nullptr, &receiver, nullptr);
    hid_close(handle);
    return result;
}

ExitCode Probe::leds(const QString &which, int intervalMs)
{
    hid_device *handle = nullptr;
    Panel panel;
    const ExitCode opened = open(which, &handle, &panel);
    if (opened != ExitCode::Ok)
        return opened;

    // The panel's LED report: report id 0, then the mask.
    const auto write = [&](unsigned char mask) {
        const unsigned char report[protocol::LedReportSize] = {protocol::LedReportId, mask};
        if (hid_write(handle, report, sizeof report) >= 0)
            return true;
        err << tr("Writing the LED report failed: %1").arg(fromWide(hid_error(handle))) << '\n';
        return false;
    };

    ExitCode result = ExitCode::Ok;
    const int total = int(sizeof ledTable / sizeof ledTable[0]);
    for (int i = 0; i < total && !stopped(); ++i) {
        const unsigned char mask = static_cast<unsigned char>(1u << ledTable[i].bit);
        out << tr("LED %1 of %2: bit %3 (mask 0x%4), %5")
                   .arg(i + 1)
                   .arg(total)
                   .arg(ledTable[i].bit)
                   .arg(mask, 2, 16, QLatin1Char('0'))
                   .arg(tr(ledTable[i].name))
            << '\n';
        out.flush();
        if (!write(mask)) {
            result = ExitCode::DeviceError;
            break;
        }
        sleepMs(intervalMs);
    }
    if (write(0x00)) {
        out << tr("All LEDs off (mask 0x00).") << '\n';
        out.flush();
    } else {
        result = ExitCode::DeviceError;
    }
    hid_close(handle);
    return result;
}

ExitCode Probe::descriptor(const QString &which)
{
    const QList<Panel> panels = enumerate();
    if (panels.isEmpty()) {
        explainAbsent();
        return ExitCode::NoPanel;
    }
    ExitCode result = ExitCode::NoPanel;
    for (int i = 0; i < panels.size(); ++i) {
        const Panel &panel = panels.at(i);
        const QString path = QString::fromLocal8Bit(panel.path);
        if (!which.isEmpty() && which != path && which != panel.serial
            && which != QString::number(i + 1))
            continue;
        out << QStringLiteral("%1. %2\n").arg(i + 1).arg(path) << "   "
            << tr("serial number: %1").arg(panel.serial) << '\n';
        const QByteArray bytes = readReportDescriptor(panel.path.constData());
        const DescriptorLayout layout = parseReportDescriptor(bytes);
        if (bytes.isEmpty() || !layout.valid) {
            err << tr("Cannot read the report descriptor of %1.").arg(path) << '\n';
            result = ExitCode::DeviceError;
            continue;
        }
        out << "   "
            << (layout.numbered ? tr("report descriptor: %1 bytes, numbered reports")
                                : tr("report descriptor: %1 bytes, no report IDs"))
                   .arg(bytes.size())
            << '\n';
        for (const ReportLayout &report : layout.reports) {
            const QString id = layout.numbered ? tr("report ID %1").arg(report.id) : tr("report");
            if (report.inputBytes > 0)
                out << "   "
                    << tr("input %1: %2 bytes of data, a read returns %3 bytes")
                           .arg(id)
                           .arg(report.inputBytes)
                           .arg(report.inputBytes + (layout.numbered ? 1 : 0))
                    << '\n';
            if (report.outputBytes > 0)
                out << "   "
                    << (report.outputBytes == 1
                            ? tr("output %1: 1 byte of data").arg(id)
                            : tr("output %1: %2 bytes of data").arg(id).arg(report.outputBytes))
                    << '\n';
        }
        for (const QString &warning : descriptorWarnings(layout))
            err << tr("Warning: %1").arg(warning) << '\n';
        if (result != ExitCode::DeviceError)
            result = ExitCode::Ok;
    }
    if (result == ExitCode::NoPanel)
        err << tr("There is no panel '%1' (panels found: %2; see dialix-probe --list).")
                   .arg(which)
                   .arg(panels.size())
            << '\n';
    out.flush();
    return result;
}

QString exitCodeHelp()
{
    QString text = QCoreApplication::translate("Probe", "Exit codes:") + QLatin1Char('\n');
    int count = 0;
    const ExitCodeInfo *codes = exitCodes(&count);
    for (int i = 0; i < count; ++i) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(int(codes[i].code), 2)
                    .arg(QCoreApplication::translate("Probe", codes[i].description));
    }
    return text;
}

} // namespace

const ExitCodeInfo *exitCodes(int *count)
{
    *count = int(sizeof exitCodeTable / sizeof exitCodeTable[0]);
    return exitCodeTable;
}

DescriptorLayout parseReportDescriptor(const QByteArray &descriptor)
{
    DescriptorLayout layout;
    struct Globals
    {
        int id = 0;
        int size = 0; // bits per field
        int count = 0;
    };
    Globals globals;
    QList<Globals> stack; // Push and Pop
    QHash<int, int> inputBits, outputBits;
    const auto use = [&layout](int id) {
        for (const ReportLayout &report : qAsConst(layout.reports)) {
            if (report.id == id)
                return;
        }
        layout.reports.append(ReportLayout {id, 0, 0});
    };
    const int n = descriptor.size();
    int at = 0;
    while (at < n) {
        const auto prefix = quint8(descriptor.at(at));
        if (prefix == 0xFE) { // long item: size, tag, data
            if (at + 2 >= n)
                return layout;
            at += 3 + quint8(descriptor.at(at + 1));
            continue;
        }
        const int size = (prefix & 0x03) == 3 ? 4 : (prefix & 0x03);
        if (at + size >= n && size > 0)
            return layout;
        quint32 value = 0;
        for (int i = 0; i < size; ++i)
            value |= quint32(quint8(descriptor.at(at + 1 + i))) << (8 * i);
        at += 1 + size;
        const int type = (prefix >> 2) & 0x03;
        const int tag = prefix >> 4;
        if (type == 1) { // global
            if (tag == 7)
                globals.size = int(value);
            else if (tag == 8) {
                globals.id = int(value);
                layout.numbered = true;
            } else if (tag == 9)
                globals.count = int(value);
            else if (tag == 10)
                stack.append(globals);
            else if (tag == 11 && !stack.isEmpty())
                globals = stack.takeLast();
        } else if (type == 0 && (tag == 8 || tag == 9)) { // Input, Output
            use(globals.id);
            (tag == 8 ? inputBits : outputBits)[globals.id] += globals.size * globals.count;
        }
    }
    for (ReportLayout &report : layout.reports) {
        report.inputBytes = (inputBits.value(report.id) + 7) / 8;
        report.outputBytes = (outputBits.value(report.id) + 7) / 8;
    }
    layout.valid = n > 0;
    return layout;
}

QStringList descriptorWarnings(const DescriptorLayout &layout)
{
    const auto tr = [](const char *text) {
        return QCoreApplication::translate("Probe", text);
    };
    QStringList warnings;
    bool output = false;
    for (const ReportLayout &report : layout.reports) {
        const int read = report.inputBytes + (layout.numbered ? 1 : 0);
        if (report.inputBytes > 0 && read != protocol::ReportSize)
            warnings << tr("a read returns %1 bytes, not %2: the plug-in ignores these reports, "
                           "so the panel's keys and dials do nothing.")
                            .arg(read)
                            .arg(protocol::ReportSize);
        output = output || report.outputBytes > 0;
        if (report.outputBytes > 0 && report.outputBytes != protocol::LedReportSize - 1)
            warnings << tr("the output report has %1 bytes of data, not 1: the LEDs may not "
                           "follow the plug-in's LED byte.")
                            .arg(report.outputBytes);
    }
    if (!output)
        warnings << tr("the panel declares no output report: its LEDs stay dark.");
    return warnings;
}

Access classifyOpenFailure(int nodeErrno, const QString &hidError)
{
    if (nodeErrno == EACCES || nodeErrno == EPERM)
        return Access::NoPermission;
    // Where no node could be checked (Windows, or a path that is no file), the
    // text is all there is: hidapi on Linux appends strerror(EACCES), the
    // Windows back end the system's message for ERROR_ACCESS_DENIED.
    if (hidError.contains(QLatin1String("Permission denied"), Qt::CaseInsensitive)
        || hidError.contains(QLatin1String("Access is denied"), Qt::CaseInsensitive))
        return Access::NoPermission;
    if (nodeErrno == ENOENT || nodeErrno == ENODEV || nodeErrno == ENXIO)
        return Access::Gone;
    return Access::Failed;
}

int runProbe(const QStringList &arguments, QTextStream &out, QTextStream &err,
             const std::atomic<bool> *stop)
{
    const auto tr = [](const char *text) {
        return QCoreApplication::translate("Probe", text);
    };

    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Lists the Dialix USB control panels, tells whether they can be opened, shows their "
           "events live and lights their LEDs."));
    const QCommandLineOption helpOption({"h", "help"}, tr("Show this help and exit."));
    const QCommandLineOption versionOption({"V", "version"}, tr("Show the version and exit."));
    const QCommandLineOption listOption(
        {"l", "list"},
        tr("List every panel with its path, serial number, product, interface and "
           "whether it can be opened (the default)."));
    const QCommandLineOption eventsOption(
        {"e", "events"},
        tr("Open a panel and print its keys, dial pushes, dial turns, PTT and "
           "paddle with time stamps until Ctrl-C."));
    const QCommandLineOption ledsOption(
        {"L", "leds"}, tr("Open a panel and light its five LEDs one after the other."));
    const QCommandLineOption panelOption(
        {"p", "panel"},
        tr("The panel to open: its number in the list, serial number or path "
           "(default: the first)."),
        tr("panel"));
    const QCommandLineOption countOption(
        {"n", "count"}, tr("With --events: stop after this many events."), tr("n"));
    const QCommandLineOption durationOption(
        {"d", "duration"}, tr("With --events: stop after this many seconds."), tr("seconds"));
    const QCommandLineOption intervalOption(
        {"i", "interval"}, tr("With --leds: how long each LED stays lit (default 700 ms)."),
        tr("ms"), QStringLiteral("700"));
    const QCommandLineOption descriptorOption(
        {"D", "descriptor"},
        tr("Read each panel's report descriptor (no access to the panel needed), print its "
           "report lengths and warn when they do not fit the plug-in."));
    const QCommandLineOption rawOption(
        {"r", "raw"}, tr("With --events: also print every report as read, in hex."));
    parser.addOptions({helpOption, versionOption, listOption, eventsOption, ledsOption, panelOption,
                       countOption, durationOption, intervalOption, rawOption, descriptorOption});

    const auto usage = [&](const QString &message) {
        err << arguments.value(0, QStringLiteral("dialix-probe")) << ": " << message << '\n'
            << tr("Try --help.") << '\n';
        err.flush();
        return int(ExitCode::UsageError);
    };

    if (!parser.parse(arguments))
        return usage(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return usage(tr("unexpected argument '%1'").arg(parser.positionalArguments().first()));
    if (parser.isSet(helpOption)) {
        out << parser.helpText() << '\n' << exitCodeHelp();
        out.flush();
        return int(ExitCode::Ok);
    }
    if (parser.isSet(versionOption)) {
        out << "dialix-probe " << DIALIX_VERSION << '\n';
        out.flush();
        return int(ExitCode::Ok);
    }
    const int modes = int(parser.isSet(listOption)) + int(parser.isSet(eventsOption))
        + int(parser.isSet(ledsOption)) + int(parser.isSet(descriptorOption));
    if (modes > 1)
        return usage(tr("choose one of --list, --events, --leds and --descriptor"));

    bool ok = true;
    int count = 0;
    if (parser.isSet(countOption)) {
        count = parser.value(countOption).toInt(&ok);
        if (!ok || count < 1)
            return usage(tr("--count wants a whole number of 1 or more"));
    }
    qint64 durationMs = 0;
    if (parser.isSet(durationOption)) {
        const double seconds = parser.value(durationOption).toDouble(&ok);
        if (!ok || seconds <= 0)
            return usage(tr("--duration wants a number of seconds above 0"));
        durationMs = qint64(seconds * 1000.0);
    }
    const int intervalMs = parser.value(intervalOption).toInt(&ok);
    if (!ok || intervalMs < 0)
        return usage(tr("--interval wants a whole number of milliseconds, 0 or more"));

    Probe probe(out, err, stop);
    ExitCode result;
    if (parser.isSet(eventsOption))
        result =
            probe.events(parser.value(panelOption), count, durationMs, parser.isSet(rawOption));
    else if (parser.isSet(ledsOption))
        result = probe.leds(parser.value(panelOption), intervalMs);
    else if (parser.isSet(descriptorOption))
        result = probe.descriptor(parser.value(panelOption));
    else
        result = probe.list();
    out.flush();
    err.flush();
    return int(result);
}

} // namespace probe
