// Tests of the root's panel count following device changes, with a fake watcher.

#include "plugins/panels/dialix/source/controldialix.h"
#include "plugins/panels/dialix/source/devicewatcher.h"
#include "tests/support/roothost.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QCheckBox>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <memory>

namespace {

constexpr int Timeout = 10000;

// Stands in for the system's watcher, as a fake back end does: the test changes
// the virtual bus and says when the system would report it.
class FakeWatcher : public DeviceWatcher
{
public:
    bool isActive() const override { return true; }
    QString source() const override { return QStringLiteral("fake"); }
    QString errorString() const override { return QString(); }
    void report(int times = 1)
    {
        while (times-- > 0)
            emit deviceChanged();
    }
};

} // namespace

class tst_RootHotplug : public QObject, public RootHost
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void panelCountAfterChanges_data();
    void panelCountAfterChanges();
    void notificationsInsideACycleRunAfterIt_data();
    void notificationsInsideACycleRunAfterIt();

private:
    void load();

    FakeWatcher *watcher = nullptr; // the root's child
    QPointer<ControlDialix> root;
};

void tst_RootHotplug::init()
{
    setUp();
}

void tst_RootHotplug::cleanup()
{
    tearDown(root.data());
}

void tst_RootHotplug::load()
{
    auto fake = std::make_unique<FakeWatcher>();
    watcher = fake.get();
    root = new ControlDialix(std::move(fake));
    root->addWidget(host->layout());
}

void tst_RootHotplug::panelCountAfterChanges_data()
{
    // Steps: "+" plugs a panel, "-N" unplugs the Nth plugged, "!" is one report
    // of the watcher, "109" the host's device-changed command. Tab 1 is enabled.
    QTest::addColumn<int>("atLoad");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<int>("tabCount");
    // Enumerations after loading: one per cycle, per controller made and per
    // panel opened.
    QTest::addColumn<int>("enumerations");
    QTest::newRow("none at load") << 0 << QStringList {} << 1 << 0;
    QTest::newRow("three at load") << 3 << QStringList {} << 3 << 0;
    QTest::newRow("plugged") << 1 << QStringList {"+", "!"} << 2 << 3;
    QTest::newRow("plugged, host's command") << 1 << QStringList {"+", "109"} << 2 << 3;
    QTest::newRow("first of two unplugged") << 2 << QStringList {"-0", "!"} << 1 << 2;
    QTest::newRow("the only one unplugged") << 1 << QStringList {"-0", "!"} << 1 << 2;
    QTest::newRow("unrelated device") << 1 << QStringList {"!"} << 1 << 2;
    QTest::newRow("burst of three") << 1 << QStringList {"+", "!", "!", "!"} << 2 << 7;
    QTest::newRow("silent change") << 1 << QStringList {"+"} << 1 << 0;
}

// Every report runs one whole cycle: close, count, add or remove controllers
// at the end, reopen the enabled ones.
void tst_RootHotplug::panelCountAfterChanges()
{
    QFETCH(int, atLoad);
    QFETCH(QStringList, steps);
    QFETCH(int, tabCount);
    QFETCH(int, enumerations);
    QList<int> plugged;
    for (int i = 0; i < atLoad; ++i)
        plugged << VirtualPanel::plug(QStringLiteral("DLX%1").arg(i));
    load();
    QCOMPARE(VirtualPanel::openHandles(), 0); // construction opens nothing
    QTemporaryDir dir;
    QSettings settings(dir.filePath(QStringLiteral("host.ini")), QSettings::IniFormat);
    root->saveSettings(&settings);
    enable(0);
    QWidget *first = page(0);
    const int start = VirtualPanel::enumerations();

    for (const QString &step : steps) {
        if (step == QLatin1String("+"))
            plugged << VirtualPanel::plug(QStringLiteral("DLX%1").arg(plugged.size()));
        else if (step.startsWith(QLatin1Char('-')))
            VirtualPanel::unplug(plugged.takeAt(step.mid(1).toInt()));
        else if (step == QLatin1String("!"))
            watcher->report();
        else
            root->setCommand(QVariantList {step.toInt()});
    }
    QStringList titles;
    for (int i = 1; i <= tabCount; ++i)
        titles << QStringLiteral("Dialix %1").arg(i);
    QCOMPARE(tabTitles(), titles);
    QCOMPARE(VirtualPanel::enumerations() - start, enumerations);
    QCOMPARE(VirtualPanel::openHandles(), plugged.isEmpty() ? 0 : 1);
    // Controllers go from the end, whichever panel went; with settings known
    // the one removed saves its assignments first.
    QCOMPARE(page(0), first);
    if (tabCount < atLoad) {
        QVERIFY(QSettings(optionsFile(), QSettings::IniFormat)
                    .childGroups()
                    .contains(QStringLiteral("Dialix%1").arg(atLoad)));
    }
}

void tst_RootHotplug::notificationsInsideACycleRunAfterIt_data()
{
    QTest::addColumn<bool>("untick"); // the second tab closes its own panel, not a cycle
    QTest::addColumn<QString>("inside");
    QTest::addColumn<int>("handles"); // open handles once everything has run
    QTest::addColumn<int>("enumerations"); // one per cycle and per panel opened
    QTest::newRow("[109], a panel unplugged") << false << "109" << 1 << 4;
    QTest::newRow("two reports of the watcher") << false << "watcher" << 1 << 6;
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
void tst_RootHotplug::notificationsInsideACycleRunAfterIt()
{
    QFETCH(bool, untick);
    QFETCH(QString, inside);
    QFETCH(int, handles);
    QFETCH(int, enumerations);
    const int first = VirtualPanel::plug(QStringLiteral("DLX0001"));
    const int second = VirtualPanel::plug(QStringLiteral("DLX0002"));
    load();
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
        else if (inside == QLatin1String("watcher"))
            watcher->report(2);
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
        enable(1, false);
    else
        root->setCommand(QVariantList {109});
    QVERIFY(ranInside);
    if (root)
        QTRY_COMPARE_WITH_TIMEOUT(tabTitles(), QStringList {"Dialix 1"}, Timeout);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::openHandles(), handles, Timeout);
    QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::enumerations() - start, enumerations, Timeout);
}

QTEST_MAIN(tst_RootHotplug)
#include "tst_roothotplug.moc"
