// Windows: a device-change window message reaching a running host's top-level
// window, as Windows sends it, counts the panels again, once per message.

#include "plugins/panels/dialix/source/controldialix.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QApplication>
#include <QFile>
#include <QPointer>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <windows.h>

#include <dbt.h>

namespace {

// The host's main window: it records the device-change messages it gets,
// which it only does when every native event filter passed them on.
class HostWindow : public QWidget
{
public:
    HostWindow() { new QVBoxLayout(this); }
    QList<WPARAM> deviceChanges;

protected:
    bool nativeEvent(const QByteArray &eventType, void *message, long *result) override
    {
        const MSG *msg = static_cast<const MSG *>(message);
        if (msg->message == WM_DEVICECHANGE)
            deviceChanges << msg->wParam;
        return QWidget::nativeEvent(eventType, message, result);
    }
};

} // namespace

class tst_DeviceChangeMessage : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void message_data();
    void message();

private:
    std::unique_ptr<HostWindow> host;
    QPointer<ControlDialix> root;
};

void tst_DeviceChangeMessage::init()
{
    VirtualPanel::reset();
    VirtualPanel::plug(QStringLiteral("DLX0001"));
    // The root of the plug-in as the host creates it, with the platform's own
    // watcher: on Windows its native event filter.
    root = new ControlDialix;
    host = std::make_unique<HostWindow>();
    root->addWidget(host->layout());
    host->show();
    QVERIFY(QTest::qWaitForWindowExposed(host.get()));
}

void tst_DeviceChangeMessage::cleanup()
{
    delete root.data();
    host.reset();
    VirtualPanel::reset();
    QFile::remove(QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini"));
}

void tst_DeviceChangeMessage::message_data()
{
    // A second panel is plugged before the message; only a change of the
    // device tree counts the panels (one enumeration per cycle and one per
    // controller made).
    QTest::addColumn<bool>("broadcast"); // to every top-level window, as Windows does
    QTest::addColumn<int>("wParam");
    QTest::addColumn<int>("enumerations");
    QTest::addColumn<int>("tabs");
    for (const bool broadcast : {false, true}) {
        const char *to = broadcast ? "broadcast" : "to the window";
        QTest::addRow("DBT_DEVNODES_CHANGED, %s", to)
            << broadcast << DBT_DEVNODES_CHANGED << 2 << 2;
        QTest::addRow("DBT_DEVICEARRIVAL, %s", to) << broadcast << DBT_DEVICEARRIVAL << 0 << 1;
        QTest::addRow("DBT_DEVICEREMOVECOMPLETE, %s", to)
            << broadcast << DBT_DEVICEREMOVECOMPLETE << 0 << 1;
        QTest::addRow("DBT_CONFIGCHANGED, %s", to) << broadcast << DBT_CONFIGCHANGED << 0 << 1;
    }
}

void tst_DeviceChangeMessage::message()
{
    QFETCH(bool, broadcast);
    QFETCH(int, wParam);
    QFETCH(int, enumerations);
    QFETCH(int, tabs);
    VirtualPanel::plug(QStringLiteral("DLX0002"));
    const int before = VirtualPanel::enumerations();

    if (broadcast) {
        DWORD_PTR answer = 0;
        SendMessageTimeoutW(HWND_BROADCAST, WM_DEVICECHANGE, WPARAM(wParam), 0, SMTO_ABORTIFHUNG,
                            5000, &answer);
    } else {
        SendMessageW(reinterpret_cast<HWND>(host->winId()), WM_DEVICECHANGE, WPARAM(wParam), 0);
    }
    QCoreApplication::processEvents();

    QCOMPARE(VirtualPanel::enumerations() - before, enumerations);
    QCOMPARE(host->findChild<QTabWidget *>()->count(), tabs);
    // Wine may announce changes of its own meanwhile; this one went on once.
    QCOMPARE(host->deviceChanges.count(WPARAM(wParam)), 1);
}

int main(int argc, char *argv[])
{
    // Real window messages need the windows platform (under Wine: an X server).
    qputenv("QT_QPA_PLATFORM", "windows");
    QApplication app(argc, argv);
    tst_DeviceChangeMessage test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_devicechangemessage.moc"
