// Tests of dialix-probe over the virtual panel.

#include "tools/probe/backend.h"
#include "tools/probe/probe.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <cerrno>
#include <thread>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

Q_DECLARE_METATYPE(probe::Access)

namespace {

struct Run
{
    int code = -1;
    QString out;
    QString err;
};

// Plugs the panels of `scenario` (the virtual build's scenario language) and runs
// the probe in this process, as dialix-probe-virtual would. Panel ids are not
// reused within a process, so paths are written as a fresh process would see
// them: "virtualpanel:N" for the N-th panel plugged, in the arguments and the
// output alike.
Run runScenario(const QString &scenario, QStringList args, const std::atomic<bool> *stop = nullptr)
{
    VirtualPanel::reset();
    qputenv("DIALIX_PROBE_SCENARIO", scenario.toUtf8());
    Run run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    if (!prepareBackend(err)) {
        err.flush();
        return run;
    }
    const QList<int> panels = VirtualPanel::panels();
    const auto freshPath = [](int n) {
        return QStringLiteral("virtualpanel:%1").arg(n);
    };
    for (QString &arg : args) {
        for (int i = 0; i < panels.size(); ++i) {
            if (arg == freshPath(i + 1))
                arg = QString::fromLatin1(VirtualPanel::path(panels.at(i)));
        }
    }
    args.prepend(QStringLiteral("dialix-probe"));
    run.code = probe::runProbe(args, out, err, stop);
    finishBackend(err);
    out.flush();
    err.flush();
    for (int i = 0; i < panels.size(); ++i) {
        const QRegularExpression real(QRegularExpression::escape(VirtualPanel::path(panels.at(i)))
                                      + QStringLiteral("\\b"));
        run.out.replace(real, freshPath(i + 1));
        run.err.replace(real, freshPath(i + 1));
    }
    return run;
}

// The event lines of an --events run, without their time stamps.
QStringList eventLines(const QString &out)
{
    static const QRegularExpression stamped(QStringLiteral("^ *\\d+\\.\\d{3}  (.*)$"));
    QStringList lines;
    for (const QString &line : out.split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch match = stamped.match(line);
        if (match.hasMatch())
            lines << match.captured(1);
    }
    return lines;
}

QString readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QString();
    return QString::fromUtf8(file.readAll());
}

} // namespace

class TestProbe : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { VirtualPanel::reset(); }

    void exitCodes_data();
    void exitCodes();
    void listShowsEveryPanel();
    void eventsAreDecodedInOrder();
    void eventsEnd_data();
    void eventsEnd();
    void ledsLightOneAfterTheOther_data();
    void ledsLightOneAfterTheOther();
    void classifyOpenFailure_data();
    void classifyOpenFailure();
    void reportDescriptors_data();
    void reportDescriptors();
    void everyExitCodeIsDocumented();
    void programs_data();
    void programs();
};

void TestProbe::exitCodes_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("errText"); // a line that must be on stderr

    const int ok = int(probe::ExitCode::Ok);
    const int absent = int(probe::ExitCode::NoPanel);
    const int denied = int(probe::ExitCode::NoPermission);
    const int device = int(probe::ExitCode::DeviceError);
    const int usage = int(probe::ExitCode::UsageError);
    const QString fix =
        QStringLiteral("    sudo udevadm trigger --subsystem-match=hidraw --action=change");
    const QString none = QStringLiteral("No Dialix panel found (USB vendor 1fc9, product 0003).");

    // clang-format off
    QTest::newRow("list, no panel") << "" << QStringList{} << absent << none;
    QTest::newRow("list, one panel") << "plug A" << QStringList{"--list"} << ok << "";
    QTest::newRow("list, one of two denied") << "plug A; plug B; deny 2" << QStringList{} << denied << fix;
    QTest::newRow("events, no panel") << "" << QStringList{"--events"} << absent << none;
    QTest::newRow("events, no such panel") << "plug A; plug B" << QStringList{"-e", "-p", "3"} << absent
        << "There is no panel '3' (panels found: 2; see dialix-probe --list).";
    QTest::newRow("events, denied") << "plug A; deny 1" << QStringList{"-e"} << denied << fix;
    QTest::newRow("events, read fails") << "plug A; readerror 1" << QStringList{"-e"} << device
        << "The panel stopped answering (hid_read_timeout: read error); it was probably unplugged.";
    QTest::newRow("leds, writes fail") << "plug A; writesfail 1" << QStringList{"--leds", "-i", "0"}
        << device << "Writing the LED report failed: hid_write: write failed";
    QTest::newRow("unknown option") << "plug A" << QStringList{"--bogus"} << usage << "Try --help.";
    QTest::newRow("two modes") << "plug A" << QStringList{"--list", "--leds"} << usage
        << "dialix-probe: choose one of --list, --events, --leds and --descriptor";
    // clang-format on
}

void TestProbe::exitCodes()
{
    QFETCH(QString, scenario);
    QFETCH(QStringList, args);
    QFETCH(int, code);
    QFETCH(QString, errText);

    const Run run = runScenario(scenario, args);
    QCOMPARE(run.code, code);
    if (errText.isEmpty())
        QVERIFY2(run.err.isEmpty(), qPrintable(run.err));
    else
        QVERIFY2(run.err.split(QLatin1Char('\n')).contains(errText), qPrintable(run.err));
    // Whatever happened, no handle stays open.
    QCOMPARE(VirtualPanel::openHandles(), 0);
}

void TestProbe::listShowsEveryPanel()
{
    const Run run =
        runScenario(QStringLiteral("plug DLX0001; plug DLX0002 Dialix Mk 2; deny 2"), {});
    QCOMPARE(run.code, int(probe::ExitCode::NoPermission));
    const QStringList expected = {
        "Dialix panels found: 2",
        "1. virtualpanel:1",
        "   serial number: DLX0001",
        "   product:       Dialix",
        "   manufacturer:  Brindlecraft",
        "   interface:     0",
        "   release:       0100",
        "   access:        ok",
        "2. virtualpanel:2",
        "   serial number: DLX0002",
        "   product:       Dialix Mk 2",
        "   manufacturer:  Brindlecraft",
        "   interface:     0",
        "   release:       0100",
        "   access:        no permission",
        "",
    };
    QCOMPARE(run.out.split(QLatin1Char('\n')), expected);
    QVERIFY(run.err.startsWith(
        QStringLiteral("No permission to open virtualpanel:2 (panel DLX0002).")));
}

void TestProbe::eventsAreDecodedInOrder()
{
    // Every kind of line pressed in one report (rising bit order, then the
    // dials), then all released.
    const QString zeros = QStringLiteral(" 00 00 00 00 00 00 00 00 00");
    const Run run = runScenario(QStringLiteral("plug A; raw 1 00 02 80 38") + zeros
                                    + QStringLiteral(" ff 00 00 01; raw 1 00 00 00 00") + zeros
                                    + QStringLiteral(" 00 00 00 00"),
                                {"--events", "--count", "12"});
    QCOMPARE(run.code, int(probe::ExitCode::Ok));
    QVERIFY(run.out.startsWith(QStringLiteral("Panel 1: virtualpanel:1, serial number A\n"
                                              "Showing events; press Ctrl-C to stop.\n")));
    QCOMPARE(eventLines(run.out),
             (QStringList {"key 1 pressed", "dial 0 push pressed", "PTT pressed",
                           "paddle dash pressed", "paddle dot pressed", "dial 0 turned -1",
                           "dial 3 turned +1", "key 1 released", "dial 0 push released",
                           "PTT released", "paddle dash released", "paddle dot released"}));
}

void TestProbe::eventsEnd_data()
{
    QTest::addColumn<bool>("unplug"); // else Ctrl-C (the stop flag)
    QTest::newRow("unplugged") << true;
    QTest::newRow("stopped") << false;
}

void TestProbe::eventsEnd()
{
    // The probe is waiting for input when the panel goes away or is stopped.
    QFETCH(bool, unplug);
    VirtualPanel::reset();
    const int panel = VirtualPanel::plug(QStringLiteral("A"));
    std::atomic<bool> stop {false};
    int code = -1;
    QString out, err;
    std::thread runner([&] {
        QTextStream outStream(&out), errStream(&err);
        code = probe::runProbe({"dialix-probe", "--events"}, outStream, errStream, &stop);
    });
    QTRY_VERIFY_WITH_TIMEOUT(VirtualPanel::readCalls(panel) > 0, 10000);
    VirtualPanel::pressKey(panel, 7);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::pendingReports(panel), 0, 10000);
    if (unplug)
        VirtualPanel::unplug(panel);
    else
        stop = true;
    runner.join();

    QCOMPARE(code, int(unplug ? probe::ExitCode::DeviceError : probe::ExitCode::Ok));
    QCOMPARE(eventLines(out), QStringList {"key 7 pressed"});
    QVERIFY2(unplug ? err.contains(QStringLiteral("it was probably unplugged")) : err.isEmpty(),
             qPrintable(err));
    QCOMPARE(VirtualPanel::openHandles(), 0);
}

void TestProbe::ledsLightOneAfterTheOther_data()
{
    QTest::addColumn<QString>("panelArg");
    QTest::addColumn<int>("lit"); // index of the panel that must receive the reports

    QTest::newRow("default is the first") << QString() << 0;
    QTest::newRow("by number") << "2" << 1;
    QTest::newRow("by serial") << "DLX0002" << 1;
    QTest::newRow("by path") << "virtualpanel:2" << 1;
}

void TestProbe::ledsLightOneAfterTheOther()
{
    QFETCH(QString, panelArg);
    QFETCH(int, lit);

    QStringList args {"--leds", "--interval", "0"};
    if (!panelArg.isEmpty())
        args << "--panel" << panelArg;
    const Run run = runScenario(QStringLiteral("plug DLX0001; plug DLX0002"), args);
    QCOMPARE(run.code, int(probe::ExitCode::Ok));

    const QList<int> panels = VirtualPanel::panels();
    // Each LED alone, in bit order, then all off; each report is id 0 + mask.
    QCOMPARE(VirtualPanel::ledMasks(panels.at(lit)),
             (QList<quint8> {0x01, 0x02, 0x04, 0x08, 0x10, 0x00}));
    for (const QByteArray &report : VirtualPanel::writes(panels.at(lit)))
        QCOMPARE(report.size(), 2);
    QCOMPARE(VirtualPanel::writeCount(panels.at(1 - lit)), 0);
    QVERIFY(run.out.contains(QStringLiteral("LED 3 of 5: bit 2 (mask 0x04), transmit\n")));
    QVERIFY(run.out.endsWith(QStringLiteral("All LEDs off (mask 0x00).\n")));
}

void TestProbe::classifyOpenFailure_data()
{
    QTest::addColumn<int>("nodeErrno");
    QTest::addColumn<QString>("hidError");
    QTest::addColumn<probe::Access>("expected");

    const QString linuxDenied =
        QStringLiteral("Failed to open a device with path '/dev/hidraw0': Permission denied");
    // clang-format off
    QTest::newRow("EACCES") << EACCES << QString() << probe::Access::NoPermission;
    // hidapi's text is localised; errno decides even when the text says otherwise.
    QTest::newRow("EACCES, German text") << EACCES << "Keine Berechtigung" << probe::Access::NoPermission;
    QTest::newRow("no node, Linux text") << ENOENT << linuxDenied << probe::Access::NoPermission;
    QTest::newRow("no check, Windows text") << 0 << "hid_open_path: Access is denied." << probe::Access::NoPermission;
    QTest::newRow("ENOENT: unplugged") << ENOENT << QString() << probe::Access::Gone;
    QTest::newRow("EBUSY") << EBUSY << "Device or resource busy" << probe::Access::Failed;
    QTest::newRow("nothing known") << 0 << QString() << probe::Access::Failed;
    // clang-format on
}

void TestProbe::classifyOpenFailure()
{
    QFETCH(int, nodeErrno);
    QFETCH(QString, hidError);
    QFETCH(probe::Access, expected);
    QCOMPARE(probe::classifyOpenFailure(nodeErrno, hidError), expected);
}

void TestProbe::reportDescriptors_data()
{
    QTest::addColumn<QByteArray>("descriptor");
    QTest::addColumn<QString>("layout"); // per report: id:input bytes/output bytes
    QTest::addColumn<int>("warnings");

    // Vendor page, 8-bit fields; the panel variants the kernel rig makes.
    const QByteArray head = QByteArray::fromHex("0600ff0901a101");
    const QByteArray bytes = QByteArray::fromHex("150026ff007508");
    const QByteArray in16 = QByteArray::fromHex("951009018102"),
                     out1 = QByteArray::fromHex("950109029102c0");
    // clang-format off
    QTest::newRow("17 bytes, no IDs") << head + bytes + QByteArray::fromHex("951109018102") + out1 << "0:17/1" << 0;
    QTest::newRow("ID 1, 16 bytes") << head + QByteArray::fromHex("8501") + bytes + in16 + out1 << "1:16/1" << 0;
    QTest::newRow("16 bytes, no IDs") << head + bytes + in16 + out1 << "0:16/1" << 1;
    QTest::newRow("2-byte LED report, pushed size") << head + bytes + QByteArray::fromHex("951109018102a4751095010902910295017508b4") << "0:17/2" << 1;
    QTest::newRow("no output report") << head + bytes + QByteArray::fromHex("951109018102c0") << "0:17/0" << 1;
    QTest::newRow("truncated") << QByteArray::fromHex("0600") << "invalid" << 1;
    // clang-format on
}

void TestProbe::reportDescriptors()
{
    QFETCH(QByteArray, descriptor);
    QFETCH(QString, layout);
    QFETCH(int, warnings);
    const probe::DescriptorLayout parsed = probe::parseReportDescriptor(descriptor);
    QStringList reports;
    for (const probe::ReportLayout &r : parsed.reports)
        reports << QStringLiteral("%1:%2/%3").arg(r.id).arg(r.inputBytes).arg(r.outputBytes);
    QCOMPARE(parsed.valid ? reports.join(QLatin1Char(' ')) : QStringLiteral("invalid"), layout);
    QCOMPARE(probe::descriptorWarnings(parsed).size(), warnings);
}

void TestProbe::everyExitCodeIsDocumented()
{
    // --help, the manual page and the guide all list every code of the table.
    const Run help = runScenario(QString(), {"--help"});
    QCOMPARE(help.code, int(probe::ExitCode::Ok));
    const QString man = readFile(QStringLiteral(DIALIX_SOURCE_DIR "/packaging/man/dialix-probe.1"));
    const QString guide = readFile(QStringLiteral(DIALIX_SOURCE_DIR "/docs/guide.md"));
    QVERIFY(!man.isEmpty());
    QVERIFY(!guide.isEmpty());

    int count = 0;
    const probe::ExitCodeInfo *codes = probe::exitCodes(&count);
    QCOMPARE(count, 5);
    for (int i = 0; i < count; ++i) {
        const int code = int(codes[i].code);
        const QString line = QStringLiteral("  %1  %2\n").arg(code, 2).arg(codes[i].description);
        QVERIFY2(help.out.contains(line), qPrintable(line));
        QVERIFY2(man.contains(QStringLiteral(".B %1\n").arg(code)), codes[i].name);
        QVERIFY2(guide.contains(QStringLiteral("| %1 |").arg(code)), codes[i].name);
    }
}

void TestProbe::programs_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<int>("code"); // as documented
    QTest::addColumn<QString>("errStart");
    // The virtual build as a program: its main(), its scenario and its exit code.
    QTest::newRow("virtual") << PROBE_VIRTUAL << "plug A; deny 1" << 2
                             << "No permission to open virtualpanel:1 (panel A).";
    // The installed build, against the system's hidapi. Under Wine hidapi's
    // Windows back end does not start (Wine's cfgmgr32 lacks
    // CM_Get_Device_Interface_PropertyW), and the probe says so.
#ifdef Q_OS_WIN
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    if (ntdll && GetProcAddress(ntdll, "wine_get_version")) {
        QTest::newRow("real, Wine") << PROBE_REAL << "" << int(probe::ExitCode::DeviceError)
                                    << "Cannot start the HID library.";
        return;
    }
#endif
    QTest::newRow("real") << PROBE_REAL << "" << 1 << "No Dialix panel found";
}

void TestProbe::programs()
{
    QFETCH(QString, program);
    QFETCH(QString, scenario);
    QFETCH(int, code);
    QFETCH(QString, errStart);
    const QDir hidraw(QStringLiteral("/sys/class/hidraw"));
    for (const QString &node : hidraw.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (program == PROBE_REAL
            && readFile(hidraw.filePath(node + QStringLiteral("/device/uevent")))
                   .contains(QStringLiteral("HID_ID=0003:00001FC9:00000003")))
            QSKIP("a Dialix panel is plugged into this machine");
    }
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DIALIX_PROBE_SCENARIO"), scenario);
    process.setProcessEnvironment(env);
    process.start(program, QStringList());
    QVERIFY2(process.waitForFinished(30000), qPrintable(process.errorString()));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), code);
    QVERIFY(QString::fromLocal8Bit(process.readAllStandardError()).startsWith(errStart));
}

QTEST_GUILESS_MAIN(TestProbe)
#include "tst_probe.moc"
