// Tests of the plug-in end to end, loaded through Qt's plug-in loader.

#include "interfaces/dialixabstract.h"
#include "tools/host/radiomodel.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QLibrary>
#include <QMenu>
#include <QMessageBox>
#include <QPluginLoader>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

#include <unistd.h>

// The plug-in as the host sees it: loaded with QPluginLoader from the module
// that ships, driven through DialixAbstract, with panels on the virtual bus
// that the virtual module shares with this test.
namespace {

constexpr int Transmit = 0x04;
constexpr int Timeout = 10000;

// A device manager that tells how many slots listen to its MOX signal.
class Manager : public RadioModel
{
public:
    using RadioModel::RadioModel;
    int moxListeners() { return QObject::receivers(SIGNAL(moxChanged(quint32, bool))); }
};

QString optionsFile()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini");
}

QAction *findAction(QMenu *menu, const QString &text)
{
    for (QAction *a : menu->actions()) {
        if (QAction *found = a->menu() ? findAction(a->menu(), text) : nullptr)
            return found;
        if (!a->menu() && a->text() == text)
            return a;
    }
    return nullptr;
}

bool ip(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral("ip"), args);
    return p.waitForFinished(Timeout) && p.exitStatus() == QProcess::NormalExit
        && p.exitCode() == 0;
}

} // namespace

class tst_ControlDialix : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void metadataBeforeLoading_data();
    void metadataBeforeLoading();
    void oneRootPerProcess();
    void tabsFollowPanelCount_data();
    void tabsFollowPanelCount();
    void deviceChangedCommandAddsAndRemovesAtTheEnd();
    void notificationsInsideACycleRunAfterIt_data();
    void notificationsInsideACycleRunAfterIt();
    void udevEventsRecount();
    void heldPttThroughRootCycles_data();
    void heldPttThroughRootCycles();
    void readSettingsOpensEnabledPanelsAfterDelay();
    void keyPressReachesHost();
    void moxLightsTransmitLed();
    void setManagerBindsOnce();
    void channelCountReachesEveryController();
    void germanLocaleTranslatesWhileLoaded();
    void tabWidgetBelongsToHost_data();
    void tabWidgetBelongsToHost();

private:
    // Loads the virtual module's root and places its tab widget in a host widget.
    bool load();
    QTabWidget *tabs() const
    {
        return host->findChild<QTabWidget *>(QStringLiteral("DialixmainTab"));
    }
    QStringList tabTitles() const;
    QWidget *page(int i) const { return tabs()->widget(i); }
    void enable(int pageIndex);

    std::unique_ptr<QPluginLoader> loader;
    QPointer<DialixAbstract> root;
    std::unique_ptr<QWidget> host;
};

void tst_ControlDialix::init()
{
    VirtualPanel::reset();
    QFile::remove(optionsFile());
    host = std::make_unique<QWidget>();
    new QVBoxLayout(host.get());
}

void tst_ControlDialix::cleanup()
{
    // Deleting the root lets the next instance() build a fresh one.
    delete root.data();
    host.reset();
    loader.reset();
    VirtualPanel::reset();
    QFile::remove(optionsFile());
}

bool tst_ControlDialix::load()
{
    loader = std::make_unique<QPluginLoader>(QStringLiteral(DIALIX_VIRTUAL_PLUGIN));
    root = qobject_cast<DialixAbstract *>(loader->instance());
    if (!root)
        qWarning() << loader->errorString();
    return root && root->addWidget(host->layout());
}

QStringList tst_ControlDialix::tabTitles() const
{
    QStringList titles;
    for (int i = 0; i < tabs()->count(); ++i)
        titles << tabs()->tabText(i);
    return titles;
}

void tst_ControlDialix::enable(int pageIndex)
{
    auto *box = page(pageIndex)->findChild<QCheckBox *>(QStringLiteral("chbEnable"));
    QVERIFY(box);
    box->setChecked(true);
}

void tst_ControlDialix::metadataBeforeLoading_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("hidapi") << QStringLiteral(DIALIX_PLUGIN);
    QTest::newRow("virtual panel") << QStringLiteral(DIALIX_VIRTUAL_PLUGIN);
}

void tst_ControlDialix::metadataBeforeLoading()
{
    QFETCH(QString, path);
    QPluginLoader pl(path);
    const QJsonObject meta = pl.metaData();
    QVERIFY2(!meta.isEmpty(), qPrintable(pl.errorString()));
    QVERIFY(!pl.isLoaded());
    QCOMPARE(meta.value(QLatin1String("IID")).toString(),
             QStringLiteral("Brindlecraft.Quorvane2.plugin"));
    QCOMPARE(meta.value(QLatin1String("className")).toString(), QStringLiteral("ControlDialix"));
    const QJsonObject data = meta.value(QLatin1String("MetaData")).toObject();
    QCOMPARE(data.value(QLatin1String("name")).toString(), QStringLiteral("Dialix"));
    QCOMPARE(data.value(QLatin1String("version")).toString(), QStringLiteral("0.0.1"));
    QVERIFY(data.value(QLatin1String("dependencies")).isArray());
    QVERIFY(data.value(QLatin1String("dependencies")).toArray().isEmpty());

    // Loaded for real, the root casts to the interface and names itself.
    auto *p = qobject_cast<DialixAbstract *>(pl.instance());
    QVERIFY2(p, qPrintable(pl.errorString()));
    QCOMPARE(p->name(), QStringLiteral("Dialix"));
    QCOMPARE(p->objectName(), QStringLiteral("ControlDialix"));
    delete p;
}

void tst_ControlDialix::oneRootPerProcess()
{
    QVERIFY(load());
    QLibrary lib(QStringLiteral(DIALIX_VIRTUAL_PLUGIN));
    using Instance = QObject *(*)();
    auto instance = reinterpret_cast<Instance>(lib.resolve("qt_plugin_instance"));
    QVERIFY2(instance, qPrintable(lib.errorString()));
    QCOMPARE(instance(), static_cast<QObject *>(root.data()));
    QCOMPARE(instance(), instance());

    // Once the host deletes it, the next call builds a new one.
    QPointer<QObject> first = instance();
    delete first.data();
    QVERIFY(!root);
    QObject *second = instance();
    QVERIFY(second);
    root = qobject_cast<DialixAbstract *>(second);
    QVERIFY(root);
}

void tst_ControlDialix::tabsFollowPanelCount_data()
{
    QTest::addColumn<int>("panels");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("none") << 0 << QStringList {"Dialix 1"};
    QTest::newRow("one") << 1 << QStringList {"Dialix 1"};
    QTest::newRow("two") << 2 << QStringList {"Dialix 1", "Dialix 2"};
    QTest::newRow("three") << 3 << QStringList {"Dialix 1", "Dialix 2", "Dialix 3"};
}

void tst_ControlDialix::tabsFollowPanelCount()
{
    QFETCH(int, panels);
    QFETCH(QStringList, titles);
    for (int i = 0; i < panels; ++i)
        VirtualPanel::plug(QStringLiteral("DLX%1").arg(i));
    QVERIFY(load());
    QCOMPARE(root->name(), QStringLiteral("Dialix"));
    QCOMPARE(tabTitles(), titles);
    // Construction opens nothing by itself.
    QCOMPARE(VirtualPanel::openHandles(), 0);
}

void tst_ControlDialix::deviceChangedCommandAddsAndRemovesAtTheEnd()
{
    const int first = VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    QTemporaryDir dir;
    QSettings settings(dir.filePath(QStringLiteral("host.ini")), QSettings::IniFormat);
    root->readSettings(&settings);
    enable(0);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(first), 1, Timeout);
    QWidget *firstPage = page(0);

    const int second = VirtualPanel::plug(QStringLiteral("DLX0002"));
    root->setCommand(QVariantList {109});
    QCOMPARE(tabTitles(), (QStringList {"Dialix 1", "Dialix 2"}));
    QCOMPARE(page(0), firstPage);
    // Closed and opened again; the new controller's box is not ticked.
    QCOMPARE(VirtualPanel::openHandles(first), 1);
    QCOMPARE(VirtualPanel::openHandles(second), 0);

    // Whichever panel goes, the last controller is the one removed, and with
    // settings known its assignments are saved beside the application first.
    QPointer<QWidget> secondPage = page(1);
    VirtualPanel::unplug(first);
    root->setCommand(QVariantList {109});
    QCOMPARE(tabTitles(), QStringList {"Dialix 1"});
    QCOMPARE(page(0), firstPage);
    QVERIFY(!secondPage || secondPage->parent() == nullptr);
    QVERIFY(QFile::exists(optionsFile()));
    QSettings written(optionsFile(), QSettings::IniFormat);
    QVERIFY(written.childGroups().contains(QStringLiteral("Dialix2")));
    QCOMPARE(written.value(QStringLiteral("Dialix2/FunctionButton0")).toInt(), 0);

    // Nothing plugged: one controller stays.
    VirtualPanel::unplug(second);
    root->setCommand(QVariantList {109});
    QCOMPARE(tabTitles(), QStringList {"Dialix 1"});
}

void tst_ControlDialix::notificationsInsideACycleRunAfterIt_data()
{
    QTest::addColumn<bool>("untick"); // the second tab closes its own panel, not a cycle
    QTest::addColumn<QString>("inside");
    QTest::addColumn<int>("handles"); // open handles once everything has run
    // Enumerations: one per device change and one per panel that opens.
    QTest::addColumn<int>("enumerations");
    QTest::newRow("[109], a panel unplugged") << false << "109" << 1 << 4;
    QTest::newRow("udev: a device added and removed") << false << "udev" << 1 << 6;
    QTest::newRow("closeDevices()") << false << "close" << 0 << 2;
    QTest::newRow("updateDevices()") << false << "update" << 1 << 3;
    QTest::newRow("root deleted") << false << "delete" << 0 << 0;
    QTest::newRow("Enable unticked, [109]: its tab goes") << true << "109" << 1 << 2;
    QTest::newRow("Enable unticked, root deleted") << true << "delete" << 0 << 0;
}

// closeDevice() lets events run for 10 ms while a cycle walks the controllers
// (or while a controller closes its panel). A notification that arrives then
// waits until that has ended and then runs its own whole cycle, one per
// notification; the host may even delete the root meanwhile.
void tst_ControlDialix::notificationsInsideACycleRunAfterIt()
{
    QFETCH(bool, untick);
    QFETCH(QString, inside);
    QFETCH(int, handles);
    QFETCH(int, enumerations);
    const QString tun = QStringLiteral("dlxc%1").arg(QCoreApplication::applicationPid() % 100000);
    if (inside == QLatin1String("udev")) {
        if (geteuid() != 0 || !ip({"tuntap", "add", "dev", tun, "mode", "tun"}))
            QSKIP("adding a tun interface needs root and the ip tool");
        QVERIFY(ip({"tuntap", "del", "dev", tun, "mode", "tun"}));
        qputenv("DIALIX_HOTPLUG_SUBSYSTEM", "net"); // a device this test can add
    }
    const int first = VirtualPanel::plug(QStringLiteral("DLX0001"));
    const int second = VirtualPanel::plug(QStringLiteral("DLX0002"));
    const bool loaded = load();
    qunsetenv("DIALIX_HOTPLUG_SUBSYSTEM");
    QVERIFY(loaded);
    enable(0);
    enable(1);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(first), 2, Timeout);
    VirtualPanel::unplug(second);

    bool ranInside = false;
    const int start = VirtualPanel::enumerations();
    QTimer::singleShot(0, [&] {
        ranInside = true;
        const int before = VirtualPanel::enumerations();
        if (inside == QLatin1String("109"))
            root->setCommand(QVariantList {109});
        else if (inside == QLatin1String("udev"))
            ip({"tuntap", "add", "dev", tun, "mode", "tun"})
                && ip({"tuntap", "del", "dev", tun, "mode", "tun"});
        else if (inside == QLatin1String("close"))
            root->closeDevices();
        else if (inside == QLatin1String("update"))
            QMetaObject::invokeMethod(root, "updateDevices");
        else
            delete root.data();
        // Nothing of it has run yet.
        if (root)
            QCOMPARE(VirtualPanel::enumerations(), before);
    });
    if (untick)
        page(1)->findChild<QCheckBox *>(QStringLiteral("chbEnable"))->setChecked(false);
    else
        root->setCommand(QVariantList {109});
    QVERIFY(ranInside);
    if (root)
        QTRY_COMPARE_WITH_TIMEOUT(tabTitles(), QStringList {"Dialix 1"}, Timeout);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(), handles, Timeout);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::enumerations() - start, enumerations, Timeout);
}

void tst_ControlDialix::heldPttThroughRootCycles_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QList<bool>>("host"); // PTT states the host sees
    QTest::newRow("device change, panel stays") << "stays" << QList<bool> {true, false, true};
    QTest::newRow("device change, panel unplugged") << "unplugged" << QList<bool> {true, false};
    QTest::newRow("closeDevices()") << "close" << QList<bool> {true, false};
    QTest::newRow("root deleted") << "delete" << QList<bool> {true, false};
}

// A held PTT is released whichever way the root stops the panel, and keys
// again when the panel reopens still held. Prints how long the host saw PTT
// released across a device change (a panel that repeats its state every 8 ms).
void tst_ControlDialix::heldPttThroughRootCycles()
{
    QFETCH(QString, how);
    QFETCH(QList<bool>, host);
    const int panel = VirtualPanel::plug(QStringLiteral("DLX0001"));
    VirtualPanel::setReportInterval(panel, 8);
    QVERIFY(load());
    Manager radio(2);
    root->setManager(&radio);
    QList<bool> seen;
    QList<qint64> when;
    QElapsedTimer clock;
    clock.start();
    connect(&radio, &DeviceManagerAbstract::txTransfer, this, [&](quint32, bool state) {
        seen << state;
        when << clock.nsecsElapsed();
    });
    page(0)->findChild<QComboBox *>(QStringLiteral("cbPttTransfer"))->setCurrentIndex(1);
    enable(0);
    VirtualPanel::setPtt(panel, true);
    QTRY_COMPARE_WITH_TIMEOUT(seen, QList<bool> {true}, Timeout);

    if (how == QLatin1String("stays")) {
        QTimer wake; // the loop below never sleeps longer than this
        wake.start(100);
        for (int interval : {1, 8}) {
            VirtualPanel::setReportInterval(panel, interval);
            QList<double> gaps;
            QList<double> cycles;
            for (int i = 0; i < 20; ++i) {
                const int before = seen.size();
                const qint64 start = clock.nsecsElapsed();
                root->setCommand(QVariantList {109});
                cycles << (clock.nsecsElapsed() - start) / 1e6;
                while (seen.size() < before + 2 && clock.elapsed() < Timeout * 10)
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                QCOMPARE(seen.mid(before), (QList<bool> {false, true}));
                gaps << (when.at(before + 1) - when.at(before)) / 1e6;
            }
            std::sort(gaps.begin(), gaps.end());
            std::sort(cycles.begin(), cycles.end());
            qInfo("report interval %d ms: PTT released for %.3f / %.3f / %.3f ms, after cycles "
                  "of %.1f / %.1f / %.1f ms (min / median / max of 20)",
                  interval, gaps.first(), gaps.at(10), gaps.last(), cycles.first(), cycles.at(10),
                  cycles.last());
        }
        seen = seen.mid(0, 2) << seen.last();
    } else if (how == QLatin1String("unplugged")) {
        VirtualPanel::unplug(panel);
        root->setCommand(QVariantList {109});
    } else if (how == QLatin1String("close")) {
        root->closeDevices();
    } else {
        delete root.data();
    }
    QTRY_COMPARE_WITH_TIMEOUT(seen, host, Timeout);
    QTest::qWait(50);
    QCOMPARE(seen, host);
    if (root)
        root->setManager(nullptr);
}

void tst_ControlDialix::udevEventsRecount()
{
    if (geteuid() != 0)
        QSKIP("adding a tun interface needs root");
    if (QStandardPaths::findExecutable(QStringLiteral("ip")).isEmpty())
        QSKIP("the ip tool (iproute2) is not installed");

    // The root watches the subsystem named here; a tun interface is a device
    // this test can really add and remove.
    qputenv("DIALIX_HOTPLUG_SUBSYSTEM", "net");
    const bool loaded = load();
    qunsetenv("DIALIX_HOTPLUG_SUBSYSTEM");
    QVERIFY(loaded);
    QCOMPARE(tabTitles(), QStringList {"Dialix 1"});

    const QString dev = QStringLiteral("dlxp%1").arg(QCoreApplication::applicationPid() % 100000);
    const int panel = VirtualPanel::plug(QStringLiteral("DLX0001"));
    VirtualPanel::plug(QStringLiteral("DLX0002"));
    if (!ip({"tuntap", "add", "dev", dev, "mode", "tun"}))
        QSKIP("cannot add a tun interface here");
    QVERIFY(ip({"tuntap", "del", "dev", dev, "mode", "tun"}));
    QTRY_COMPARE_WITH_TIMEOUT(tabTitles(), (QStringList {"Dialix 1", "Dialix 2"}), Timeout);

    VirtualPanel::unplug(panel);
    QVERIFY(ip({"tuntap", "add", "dev", dev, "mode", "tun"}));
    QVERIFY(ip({"tuntap", "del", "dev", dev, "mode", "tun"}));
    QTRY_COMPARE_WITH_TIMEOUT(tabTitles(), QStringList {"Dialix 1"}, Timeout);
}

void tst_ControlDialix::readSettingsOpensEnabledPanelsAfterDelay()
{
    const int panel = VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    enable(0);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(panel), 1, Timeout);
    // The host's settings keep the ticked box; reading them back later
    // changes no box, so only the deferred start can open the panel.
    QTemporaryDir dir;
    QSettings settings(dir.filePath(QStringLiteral("host.ini")), QSettings::IniFormat);
    root->saveSettings(&settings);
    root->closeDevices();
    QCOMPARE(VirtualPanel::openHandles(panel), 0);

    // A null object is ignored and schedules nothing.
    root->readSettings(nullptr);
    QTest::qWait(800);
    QCOMPARE(VirtualPanel::openHandles(panel), 0);

    QElapsedTimer clock;
    clock.start();
    root->readSettings(&settings);
    QCOMPARE(VirtualPanel::openHandles(panel), 0);
    while (VirtualPanel::openHandles(panel) == 0 && clock.elapsed() < Timeout)
        QTest::qWait(5);
    QCOMPARE(VirtualPanel::openHandles(panel), 1);
    // Qt's coarse timers may fire up to 5 % early.
    QVERIFY2(clock.elapsed() >= 475, qPrintable(QString::number(clock.elapsed())));
}

void tst_ControlDialix::keyPressReachesHost()
{
    const int panel = VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    QSignalSpy spy(root.data(), &DialixAbstract::sCommand);
    auto *key1 = page(0)->findChild<QPushButton *>(QStringLiteral("pbFunc1"));
    QVERIFY(key1 && key1->menu());
    QAction *bandUp = findAction(key1->menu(), QStringLiteral("Band Up"));
    QVERIFY(bandUp);
    bandUp->trigger();
    enable(0);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(panel), 1, Timeout);

    VirtualPanel::pressKey(panel, 1);
    VirtualPanel::releaseKey(panel, 1);
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, Timeout);
    QVERIFY(VirtualPanel::waitUntilRead(panel, Timeout));
    QTest::qWait(50); // a release would come in now; it must send nothing
    QCOMPARE(spy.count(), 1);
    const QVariantList message = spy.at(0).at(0).toList();
    QCOMPARE(message, (QVariantList {110, 0u}));
}

void tst_ControlDialix::moxLightsTransmitLed()
{
    const int panel = VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    Manager radio(2);
    root->setManager(&radio);
    enable(0);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(panel), 1, Timeout);
    QTRY_VERIFY_WITH_TIMEOUT(VirtualPanel::ledMask(panel) >= 0, Timeout);
    QCOMPARE(VirtualPanel::ledMask(panel) & Transmit, 0);

    radio.setMox(1, true);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::ledMask(panel) & Transmit, Transmit, Timeout);
    radio.setMox(1, false);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::ledMask(panel) & Transmit, 0, Timeout);
    root->setManager(nullptr);
}

void tst_ControlDialix::setManagerBindsOnce()
{
    VirtualPanel::plug(QStringLiteral("DLX0001"));
    VirtualPanel::plug(QStringLiteral("DLX0002"));
    QVERIFY(load());
    Manager radio(2);
    root->setManager(&radio);
    root->setManager(&radio);
    QCOMPARE(radio.moxListeners(), 2); // one per controller

    // A device change binds the later controllers again; they ignore the
    // manager they already have.
    root->setCommand(QVariantList {109});
    QCOMPARE(radio.moxListeners(), 2);
    root->setManager(nullptr);
}

void tst_ControlDialix::channelCountReachesEveryController()
{
    VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    auto receivers = [this](int i) {
        return page(i)->findChild<QComboBox *>(QStringLiteral("cbReceiver"));
    };
    QVERIFY(receivers(0));

    root->setChannels(3);
    QCOMPARE(receivers(0)->count(), 3);
    QCOMPARE(receivers(0)->itemText(2), QStringLiteral("RX 3"));
    // The same count again must not rebuild the list (that would lose the choice).
    receivers(0)->setCurrentIndex(2);
    root->setChannels(3);
    QCOMPARE(receivers(0)->currentIndex(), 2);

    // A controller added later gets the count too.
    VirtualPanel::plug(QStringLiteral("DLX0002"));
    root->setCommand(QVariantList {109});
    QCOMPARE(receivers(1)->count(), 3);

    // No channels means one.
    root->setChannels(0);
    QCOMPARE(receivers(0)->count(), 1);
    QCOMPARE(receivers(1)->count(), 1);
}

void tst_ControlDialix::germanLocaleTranslatesWhileLoaded()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const bool loaded = load();
    QLocale::setDefault(QLocale::system());
    QVERIFY(loaded);
    QCOMPARE(page(0)->findChild<QCheckBox *>(QStringLiteral("chbEnable"))->text(),
             QStringLiteral("Aktivieren"));
    auto *key1 = page(0)->findChild<QPushButton *>(QStringLiteral("pbFunc1"));
    QVERIFY(findAction(key1->menu(), QStringLiteral("Band hoch")));

    // The controller's own message: a PTT port that does not open.
    QString message;
    QTimer closer;
    connect(&closer, &QTimer::timeout, this, [&message] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            message = box->text();
            box->done(QMessageBox::Ok);
        }
    });
    closer.start(20);
    page(0)->findChild<QComboBox *>(QStringLiteral("cbPttTransfer"))->setCurrentIndex(2);
    auto *port = page(0)->findChild<QComboBox *>(QStringLiteral("cbPortName"));
    port->addItem(QStringLiteral("/nonexistent/ttyDIALIX"));
    port->setCurrentText(QStringLiteral("/nonexistent/ttyDIALIX"));
    page(0)->findChild<QCheckBox *>(QStringLiteral("chbEnableComPort"))->setChecked(true);
    QCOMPARE(message,
             QStringLiteral("Öffnen von /nonexistent/ttyDIALIX für die PTT-Weiterleitung "
                            "fehlgeschlagen!"));

    // The texts live in the module: they go with its root.
    delete root.data();
    QCOMPARE(QCoreApplication::translate("DialixOptions", "Enable"), QStringLiteral("Enable"));
}

void tst_ControlDialix::tabWidgetBelongsToHost_data()
{
    QTest::addColumn<bool>("hostGoesFirst");
    QTest::newRow("root deleted first") << false;
    QTest::newRow("host deleted first") << true;
}

void tst_ControlDialix::tabWidgetBelongsToHost()
{
    QFETCH(bool, hostGoesFirst);
    VirtualPanel::plug(QStringLiteral("DLX0001"));
    VirtualPanel::plug(QStringLiteral("DLX0002"));
    QVERIFY(load());
    QPointer<QTabWidget> widget = tabs();
    QVERIFY(widget);
    QCOMPARE(widget->parentWidget(), host.get());

    if (hostGoesFirst) {
        host.reset();
        QVERIFY(!widget);
        // The root must not touch the widget the host has deleted, neither on a
        // device change nor when it goes.
        root->setCommand(QVariantList {109});
        delete root.data();
    } else {
        delete root.data();
        QVERIFY(widget);
        QCOMPARE(widget->parentWidget(), host.get());
        QCOMPARE(widget->count(), 2);
    }
}

QTEST_MAIN(tst_ControlDialix)
#include "tst_controldialix.moc"
