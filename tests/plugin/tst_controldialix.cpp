// Tests of the plug-in end to end, loaded through Qt's plug-in loader.

#include "interfaces/dialixabstract.h"
#include "tests/support/roothost.h"
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
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <memory>

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

} // namespace

class tst_ControlDialix : public QObject, public RootHost
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void metadataBeforeLoading_data();
    void metadataBeforeLoading();
    void oneRootPerProcess();
    void heldPttThroughRootCycles_data();
    void heldPttThroughRootCycles();
    void readSettingsOpensEnabledPanelsAfterDelay();
    void panelBothWays();
    void hostObjectsReachEveryController();
    void germanLocaleTranslatesWhileLoaded();
    void tabWidgetBelongsToHost_data();
    void tabWidgetBelongsToHost();

private:
    // Loads the virtual module's root and places its tab widget in a host widget.
    bool load();

    std::unique_ptr<QPluginLoader> loader;
    QPointer<DialixAbstract> root;
};

void tst_ControlDialix::init()
{
    setUp();
}

void tst_ControlDialix::cleanup()
{
    // Deleting the root lets the next instance() build a fresh one.
    tearDown(root.data());
    loader.reset();
}

bool tst_ControlDialix::load()
{
    loader = std::make_unique<QPluginLoader>(QStringLiteral(DIALIX_VIRTUAL_PLUGIN));
    root = qobject_cast<DialixAbstract *>(loader->instance());
    if (!root)
        qWarning() << loader->errorString();
    return root && root->addWidget(host->layout());
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
// again when the panel reopens still held (it repeats its state every 8 ms).
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
    connect(&radio, &DeviceManagerAbstract::txTransfer, this,
            [&seen](quint32, bool state) { seen << state; });
    page(0)->findChild<QComboBox *>(QStringLiteral("cbPttTransfer"))->setCurrentIndex(1);
    enable(0);
    VirtualPanel::setPtt(panel, true);
    QTRY_COMPARE_WITH_TIMEOUT(seen, QList<bool> {true}, Timeout);

    if (how == QLatin1String("unplugged"))
        VirtualPanel::unplug(panel);
    if (how == QLatin1String("close"))
        root->closeDevices();
    else if (how == QLatin1String("delete"))
        delete root.data();
    else
        root->setCommand(QVariantList {109});
    QTRY_COMPARE_WITH_TIMEOUT(seen, host, Timeout);
    QTest::qWait(50);
    QCOMPARE(seen, host);
    if (root)
        root->setManager(nullptr);
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

void tst_ControlDialix::panelBothWays()
{
    const int panel = VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    Manager radio(2);
    root->setManager(&radio);
    QSignalSpy spy(root.data(), &DialixAbstract::sCommand);
    auto *key1 = page(0)->findChild<QPushButton *>(QStringLiteral("pbFunc1"));
    QAction *bandUp =
        key1 && key1->menu() ? findAction(key1->menu(), QStringLiteral("Band Up")) : nullptr;
    QVERIFY(bandUp);
    bandUp->trigger();
    enable(0);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(panel), 1, Timeout);

    // A key press reaches the host as one command; its release sends nothing.
    VirtualPanel::pressKey(panel, 1);
    VirtualPanel::releaseKey(panel, 1);
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, Timeout);
    QVERIFY(VirtualPanel::waitUntilRead(panel, Timeout));
    QTest::qWait(50);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toList(), (QVariantList {110, 0u}));

    // The host's MOX lights the transmit LED and puts it out again.
    QCOMPARE(VirtualPanel::ledMask(panel) & Transmit, 0);
    radio.setMox(1, true);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::ledMask(panel) & Transmit, Transmit, Timeout);
    radio.setMox(1, false);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::ledMask(panel) & Transmit, 0, Timeout);
    root->setManager(nullptr);
}

void tst_ControlDialix::hostObjectsReachEveryController()
{
    VirtualPanel::plug(QStringLiteral("DLX0001"));
    QVERIFY(load());
    Manager radio(2);
    root->setManager(&radio);
    root->setManager(&radio);
    QCOMPARE(radio.moxListeners(), 1);
    auto receivers = [this](int i) {
        return page(i)->findChild<QComboBox *>(QStringLiteral("cbReceiver"));
    };
    root->setChannels(3);
    QCOMPARE(receivers(0)->itemText(2), QStringLiteral("RX 3"));
    // The same count again must not rebuild the list (that would lose the choice).
    receivers(0)->setCurrentIndex(2);
    root->setChannels(3);
    QCOMPARE(receivers(0)->currentIndex(), 2);

    // A controller added later gets both; a device change binds the later
    // controllers again, and they ignore the manager they already have.
    VirtualPanel::plug(QStringLiteral("DLX0002"));
    root->setCommand(QVariantList {109});
    root->setCommand(QVariantList {109});
    QCOMPARE(radio.moxListeners(), 2);
    QCOMPARE(receivers(1)->count(), 3);

    // No channels means one.
    root->setChannels(0);
    QCOMPARE(receivers(0)->count(), 1);
    QCOMPARE(receivers(1)->count(), 1);
    root->setManager(nullptr);
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
