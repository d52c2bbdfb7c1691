// Soak and fault tests of the whole plug-in, loaded through Qt's plug-in loader
// over virtual panels: hot-plug storms, unplugs while LED reports are queued or
// a write blocks, a panel that sends garbage, and broken "/options.ini" files.
//
// DIALIX_SOAK_SCALE scales the work: the default (0.05) is the short form that
// CI runs in a few seconds; 1 is the long form (1000 hot-plug cycles, a minute
// of garbage).

#include "bench/measure.h"
#include "interfaces/dialixabstract.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QPluginLoader>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>

namespace vp = VirtualPanel;
using measure::residentKb;

namespace {

constexpr int CmdBandUp = 110;

double soakScale()
{
    bool ok = false;
    const double s = qEnvironmentVariable("DIALIX_SOAK_SCALE").toDouble(&ok);
    return ok && s > 0 ? s : 0.05;
}

int threadCount()
{
    return QDir(QStringLiteral("/proc/self/task"))
        .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
        .size();
}

// The sanitizers' allocators keep freed memory resident (ASan's quarantine,
// TSan's shadow); a resident-memory figure means nothing under them.
bool underSanitizer()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return true;
#endif
#endif
    return false;
}

QString optionsPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini");
}

// Every key of both controllers sends Band Up, and both panels are enabled.
QByteArray cleanOptions()
{
    QByteArray text;
    for (int c = 1; c <= 2; ++c) {
        text += "[Dialix" + QByteArray::number(c) + "]\n";
        for (int n = 0; n < 17; ++n)
            text += "FunctionButton" + QByteArray::number(n) + "=1\n";
        for (int j = -1; j < 3; ++j)
            text += "FunctionDial" + QByteArray::number(j) + "=0\n";
        text += "Options\\Enable=true\n\n";
    }
    return text;
}

void removeOptions()
{
    const QString path = optionsPath();
    QFileInfo info(path);
    if (info.isDir())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
}

void writeOptions(const QByteArray &text)
{
    removeOptions();
    QFile f(optionsPath());
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(text);
}

} // namespace

// What the host sees of the plug-in's messages.
class CommandLog : public QObject
{
    Q_OBJECT
public:
    std::atomic<int> bandUp {0};
    QList<int> ids; // GUI thread only

public slots:
    void onCommand(QVariant cmd)
    {
        const int id = cmd.toList().value(0).toInt();
        ids.append(id);
        if (id == CmdBandUp)
            ++bandUp;
    }
};

class SoakTest : public QObject
{
    Q_OBJECT

private:
    // One host: a window whose layout receives the plug-in's tab widget.
    DialixAbstract *load();
    void unload();
    QTabWidget *tabs() const { return window ? window->findChild<QTabWidget *>() : nullptr; }
    void deviceChanged() { plugin->setCommand(QVariantList {109}); }
    bool secondPanelComesAndGoes(const QString &serial);

    QPluginLoader loader {QStringLiteral(DIALIX_VIRTUAL_PLUGIN)};
    std::unique_ptr<QWidget> window;
    DialixAbstract *plugin = nullptr;
    std::unique_ptr<CommandLog> log;
    QTemporaryDir hostDir;
    std::unique_ptr<QSettings> hostSettings;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void hotPlugStorm();
    void unplugWithPendingLedReports_data();
    void unplugWithPendingLedReports();
    void garbageReports();
    void brokenOptionsFile_data();
    void brokenOptionsFile();
    void readOnlyApplicationDirectory();
    void optionsFileChangesWhileRead();
};

DialixAbstract *SoakTest::load()
{
    window = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(window.get());
    plugin = qobject_cast<DialixAbstract *>(loader.instance());
    if (!plugin) {
        qWarning("%s", qPrintable(loader.errorString()));
        return nullptr;
    }
    plugin->addWidget(layout);
    log = std::make_unique<CommandLog>();
    connect(plugin, SIGNAL(sCommand(QVariant)), log.get(), SLOT(onCommand(QVariant)));
    return plugin;
}

// Destroys the root as the host does; the tab widget goes with the window.
void SoakTest::unload()
{
    if (plugin) {
        plugin->closeDevices();
        delete plugin;
        plugin = nullptr;
    }
    window.reset();
    log.reset();
}

// A panel comes and goes beside one that stays; the removed controller saves
// through the own file. True when the tabs followed (two, then one).
bool SoakTest::secondPanelComesAndGoes(const QString &serial)
{
    const int extra = vp::plug(serial);
    deviceChanged();
    const bool two = tabs()->count() == 2;
    vp::unplug(extra);
    deviceChanged();
    return two && tabs()->count() == 1;
}

void SoakTest::initTestCase()
{
    QVERIFY(hostDir.isValid());
    qInfo("soak scale %.3g (DIALIX_SOAK_SCALE)", soakScale());
}

void SoakTest::init()
{
    vp::reset();
    writeOptions(cleanOptions());
    hostSettings = std::make_unique<QSettings>(hostDir.filePath(QStringLiteral("host.ini")),
                                               QSettings::IniFormat);
    hostSettings->clear();
}

void SoakTest::cleanup()
{
    unload();
    // Closing every panel gives back every handle.
    QCOMPARE(vp::openHandles(), 0);
    hostSettings.reset();
    removeOptions();
    vp::reset();
}

// deviceChanged() over and over while panels come and go at random and a
// driver thread presses keys on whatever is plugged in. Afterwards no handle and
// no reader thread is left, and memory did not grow with the cycles.
void SoakTest::hotPlugStorm()
{
    const int cycles = qMax(20, int(1000 * soakScale()));
    vp::plug(QStringLiteral("SOAK0001"));
    QVERIFY(load());
    plugin->readSettings(hostSettings.get());
    QTest::qWait(700); // the deferred start
    plugin->closeDevices();
    QTRY_COMPARE(vp::openHandles(), 0);
    const int baseThreads = threadCount();

    std::atomic<bool> stop {false};
    std::atomic<int> presses {0};
    std::thread driver([&] {
        QRandomGenerator rng(7);
        while (!stop) {
            const QList<int> panels = vp::panels();
            if (!panels.isEmpty()) {
                const int panel = panels.at(rng.bounded(panels.size()));
                const int key = 1 + rng.bounded(14);
                vp::pressKey(panel, key);
                vp::releaseKey(panel, key);
                ++presses;
            }
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    });

    QRandomGenerator rng(11);
    QList<int> plugged = vp::panels();
    long rssEarly = 0;
    int serial = 2;
    for (int i = 0; i < cycles; ++i) {
        const int action = rng.bounded(3);
        if (action == 0 && plugged.size() < 2)
            plugged.append(
                vp::plug(QStringLiteral("SOAK%1").arg(serial++, 4, 10, QLatin1Char('0'))));
        else if (action == 1 && !plugged.isEmpty())
            vp::unplug(plugged.takeAt(rng.bounded(plugged.size())));
        deviceChanged();
        QCoreApplication::processEvents();
        if (tabs()->count() != qMax(1, plugged.size())) {
            stop = true;
            driver.join();
            QFAIL(qPrintable(QStringLiteral("cycle %1: %2 tabs for %3 panels")
                                 .arg(i)
                                 .arg(tabs()->count())
                                 .arg(plugged.size())));
        }
        if (i == cycles / 10)
            rssEarly = residentKb();
    }
    stop = true;
    driver.join();
    QTest::qWait(50);
    const long rssLate = residentKb();

    plugin->closeDevices();
    QTRY_COMPARE(vp::openHandles(), 0);
    QTRY_VERIFY2(
        threadCount() <= baseThreads,
        qPrintable(
            QStringLiteral("%1 threads, %2 before the storm").arg(threadCount()).arg(baseThreads)));
    qInfo("%d cycles, %d key presses, %d Band Up received, resident %ld -> %ld kB", cycles,
          int(presses), int(log->bandUp), rssEarly, rssLate);
    QVERIFY(log->bandUp > 0);
    if (!underSanitizer())
        QVERIFY2(rssLate - rssEarly < 16 * 1024,
                 qPrintable(QStringLiteral("resident memory grew by %1 kB over %2 cycles")
                                .arg(rssLate - rssEarly)
                                .arg(cycles - cycles / 10)));
}

void SoakTest::unplugWithPendingLedReports_data()
{
    QTest::addColumn<bool>("writeBlocks");
    QTest::newRow("reports queued") << false;
    QTest::newRow("write blocked") << true;
}

// The panel goes while LED reports wait in the queue (or while the reader is
// stuck in a write): the next device change closes it without hanging, and a
// panel plugged in afterwards works.
void SoakTest::unplugWithPendingLedReports()
{
    QFETCH(bool, writeBlocks);
    const int panel = vp::plug(QStringLiteral("SOAK0001"));
    QVERIFY(load());
    QTRY_COMPARE(vp::openHandles(panel), 1);

    auto *keyLed = tabs()->widget(0)->findChild<QCheckBox *>(QStringLiteral("chbKeyLed"));
    QVERIFY(keyLed);
    if (writeBlocks) {
        vp::setWritesBlock(panel, true);
        keyLed->toggle();
        QTRY_COMPARE(vp::blockedWrites(panel), 1);
    }
    for (int i = 0; i < 200; ++i)
        keyLed->toggle();
    vp::unplug(panel);
    deviceChanged();
    QCOMPARE(vp::openHandles(panel), 0);
    QCOMPARE(tabs()->count(), 1);

    const int next = vp::plug(QStringLiteral("SOAK0002"));
    deviceChanged();
    QTRY_COMPARE(vp::openHandles(next), 1);
    vp::pressKey(next, 3);
    QTRY_COMPARE(int(log->bandUp), 1);
}

// A minute (long form) of reports of random length and content at the rate a
// full-speed USB panel can send them (one per millisecond). Only commands of the
// configured functions come out, the GUI thread keeps up, and the panel works
// normally once the garbage stops.
void SoakTest::garbageReports()
{
    const int panel = vp::plug(QStringLiteral("SOAK0001"));
    QVERIFY(load());
    QTRY_COMPARE(vp::openHandles(panel), 1);

    const int millis = qMax(2000, int(60000 * soakScale()));
    std::atomic<bool> done {false};
    std::thread driver([&] {
        QRandomGenerator rng(3);
        auto next = std::chrono::steady_clock::now();
        for (int i = 0; i < millis; ++i) {
            QByteArray bytes(int(rng.bounded(41)), Qt::Uninitialized);
            for (char &c : bytes)
                c = char(rng.bounded(256));
            if (rng.bounded(20) == 0)
                vp::queueReadError(panel);
            else
                vp::queueReport(panel, bytes);
            next += std::chrono::milliseconds(1);
            std::this_thread::sleep_until(next);
        }
        done = true;
    });
    QElapsedTimer lag;
    int worstLagMs = 0;
    while (!done) {
        lag.start();
        QTest::qWait(20);
        worstLagMs = qMax(worstLagMs, int(lag.elapsed()) - 20);
    }
    driver.join();
    QVERIFY(vp::waitUntilRead(panel, 5000));
    qInfo("%d ms of garbage: %d commands, GUI thread at most %d ms late", millis,
          int(log->ids.size()), worstLagMs);
    // Keys and dial pushes send Band Up; the dials are unassigned except the VFO
    // encoder (143). PTT and paddle go nowhere without a device manager.
    for (int id : qAsConst(log->ids))
        QVERIFY2(id == CmdBandUp || id == 143, qPrintable(QString::number(id)));
    QVERIFY2(worstLagMs < 1000, qPrintable(QString::number(worstLagMs)));

    vp::queueReport(panel, vp::makeReport(0));
    QVERIFY(vp::waitUntilRead(panel, 5000));
    QTest::qWait(20);
    const int before = log->bandUp;
    vp::queueReport(panel, vp::makeReport(1u << 3));
    QTRY_COMPARE(int(log->bandUp), before + 1);
    QCOMPARE(vp::openHandles(panel), 1);
}

void SoakTest::brokenOptionsFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isDirectory");
    QTest::addColumn<QString>("firstKey"); // short label of key 1 after loading
    QTest::addColumn<bool>("enabled");

    const QByteArray clean = cleanOptions();
    QByteArray garbage(8192, Qt::Uninitialized);
    QRandomGenerator rng(5);
    for (char &c : garbage)
        c = char(rng.bounded(256));
    QTest::newRow("missing") << QByteArray() << false << "NO" << false;
    QTest::newRow("unreadable (a directory)") << QByteArray() << true << "NO" << false;
    // Cut after the first key: that key loads, the rest keep their defaults.
    QTest::newRow("truncated") << clean.left(clean.indexOf("FunctionButton1=")) << false << "BU"
                               << false;
    QTest::newRow("cut inside a line")
        << clean.left(clean.indexOf("FunctionButton0=") + 15) << false << "NO" << false;
    QTest::newRow("random bytes") << garbage << false << "NO" << false;
    QTest::newRow("zero bytes") << QByteArray(4096, '\0') << false << "NO" << false;
    // A serialised polygon of absurd length: Qt's reader dereferences the failed
    // allocation (a crash, not an exception) unless the line is never decoded.
    QTest::newRow("serialised polygon of absurd length")
        << QByteArray::fromBase64(
               "W0RpYWxpeDFdLQr/9/RIAGU9QFZhcmlhbnQoXDBcMFwwXHhiN2wpMqSjz6PPwykKT3B0aW9ucw==")
            + "\nFunctionButton0=1\n"
        << false << "BU" << false;
    QTest::newRow("one huge line") << QByteArray("[Dialix1]\nFunctionButton0=")
            + QByteArray(1 << 20, '7') + "\nOptions\\Enable=true\n"
                                   << false << "NO" << true;
}

// A broken own file loads what it can and falls back to the defaults for the
// rest; the plug-in comes up with its one tab, saves without complaint and
// shuts down.
void SoakTest::brokenOptionsFile()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isDirectory);
    QFETCH(QString, firstKey);
    QFETCH(bool, enabled);
    removeOptions();
    if (isDirectory)
        QVERIFY(QDir().mkpath(optionsPath()));
    else if (!content.isNull())
        writeOptions(content);

    QVERIFY(load());
    QCOMPARE(tabs()->count(), 1);
    QCOMPARE(tabs()->tabText(0), QStringLiteral("Dialix 1"));
    auto *key = tabs()->widget(0)->findChild<QPushButton *>(QStringLiteral("pbFunc1"));
    auto *enable = tabs()->widget(0)->findChild<QCheckBox *>(QStringLiteral("chbEnable"));
    QVERIFY(key && enable);
    QCOMPARE(key->text(), firstKey);
    QCOMPARE(enable->isChecked(), enabled);

    // Saving goes through the same file, once the host's settings are known.
    plugin->readSettings(hostSettings.get());
    vp::plug(QStringLiteral("SOAK0010"));
    QVERIFY(secondPanelComesAndGoes(QStringLiteral("SOAK0009")));
    plugin->saveSettings(hostSettings.get());
    QTest::qWait(600); // the deferred start of readSettings runs too
    if (isDirectory)
        QVERIFY(QFileInfo(optionsPath()).isDir());
}

// The application directory cannot be written: loading and saving go on
// without a message, and the file stays as it was.
void SoakTest::readOnlyApplicationDirectory()
{
    if (geteuid() == 0)
        QSKIP("running as root, permission bits do not stop writes; the 'unreadable (a "
              "directory)' row of brokenOptionsFile covers a file that cannot be written");
    const QString dir = QCoreApplication::applicationDirPath();
    const QFile::Permissions before = QFile::permissions(dir);
    QVERIFY(QFile::setPermissions(optionsPath(), QFile::ReadOwner | QFile::ReadGroup));
    QVERIFY(QFile::setPermissions(
        dir, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup));
    const QByteArray original = cleanOptions();

    QVERIFY(load());
    plugin->readSettings(hostSettings.get());
    vp::plug(QStringLiteral("SOAK0010"));
    QVERIFY(secondPanelComesAndGoes(QStringLiteral("SOAK0009")));
    unload();

    QVERIFY(QFile::setPermissions(dir, before));
    QVERIFY(QFile::setPermissions(optionsPath(), QFile::ReadOwner | QFile::WriteOwner));
    QFile f(optionsPath());
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), original);
}

// Another program rewrites "/options.ini" over and over (truncating it first)
// while the plug-in loads it, saves it on device changes and goes: every load
// sees some prefix of some version and falls back for the rest.
void SoakTest::optionsFileChangesWhileRead()
{
    const QList<QByteArray> versions = {cleanOptions(), QByteArray(), "[Dialix1]\nFunction",
                                        QByteArray(3000, '\xff'), cleanOptions().repeated(50)};
    std::atomic<bool> stop {false};
    std::thread writer([&] {
        for (int i = 0; !stop; ++i) {
            QFile f(optionsPath());
            if (f.open(QIODevice::WriteOnly)) {
                const QByteArray &text = versions.at(i % versions.size());
                for (int at = 0; at < text.size(); at += 512)
                    f.write(text.mid(at, 512));
            }
        }
    });
    vp::plug(QStringLiteral("SOAK0001"));
    const int rounds = qMax(5, int(100 * soakScale()));
    for (int i = 0; i < rounds; ++i) {
        QVERIFY(load());
        plugin->readSettings(hostSettings.get());
        QVERIFY(secondPanelComesAndGoes(QStringLiteral("SOAK0002")));
        unload();
    }
    stop = true;
    writer.join();
}

QTEST_MAIN(SoakTest)
#include "tst_soak.moc"
