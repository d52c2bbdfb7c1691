// Tests of the Linux virtual keyboard (uinput where it can be opened).

#include "keys/senderkeytosystem_linux.h"

#include <QtTest>

#include <libevdev/libevdev.h>
#include <linux/input.h>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

QStringList s_debug;

void collectDebug(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtDebugMsg && qstrcmp(context.category, "dialix") == 0)
        s_debug.append(text);
}

const SystemKey &key5()
{
    return *findSystemKey(Qt::Key_5);
}

// Reads the next event; false after `timeoutMs` without one.
bool nextEvent(libevdev *device, input_event *event, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        const int rc = libevdev_next_event(device, LIBEVDEV_READ_FLAG_NORMAL, event);
        if (rc == LIBEVDEV_READ_STATUS_SUCCESS)
            return true;
        if (rc != -EAGAIN)
            return false;
        const qint64 left = timeoutMs - timer.elapsed();
        if (left <= 0)
            return false;
        pollfd fd = {libevdev_get_fd(device), POLLIN, 0};
        poll(&fd, 1, int(left));
    }
}

bool writeEvent(int fd, int type, int code, int value)
{
    input_event event = {};
    event.type = type;
    event.code = code;
    event.value = value;
    return ::write(fd, &event, sizeof event) == ssize_t(sizeof event);
}

} // namespace

class tst_SenderKeyToSystemLinux : public QObject
{
    Q_OBJECT

private slots:
    void unavailableUinputLogsOnce();
    void releaseReachesTheVirtualKeyboard();
};

void tst_SenderKeyToSystemLinux::unavailableUinputLogsOnce()
{
    SenderKeyToSystemLinux sender(QStringLiteral("/nonexistent/uinput"));
    s_debug.clear();
    const QtMessageHandler previous = qInstallMessageHandler(collectDebug);
    sender.sendKeyUp(key5());
    sender.sendKeyUp(key5());
    sender.sendKeyUp(*findSystemKey(Qt::Key_Enter));
    qInstallMessageHandler(previous);

    QCOMPARE(s_debug.size(), 1);
    QVERIFY2(s_debug.at(0).contains(QLatin1String("/nonexistent/uinput")),
             qPrintable(s_debug.at(0)));
    QVERIFY(sender.deviceNode().isEmpty());
    QCOMPARE(sender.uinputDescriptor(), -1);
}

void tst_SenderKeyToSystemLinux::releaseReachesTheVirtualKeyboard()
{
    if (::access("/dev/uinput", W_OK) != 0)
        QSKIP(qPrintable(QStringLiteral("/dev/uinput is not writable here (%1): the virtual "
                                        "keyboard cannot be created")
                             .arg(QString::fromLocal8Bit(strerror(errno)))));

    // A device that appears later is taken at the next key: one line while it
    // is missing, one when it works.
    {
        QTemporaryDir dir;
        const QString link = dir.filePath(QStringLiteral("uinput"));
        SenderKeyToSystemLinux late(link);
        s_debug.clear();
        const QtMessageHandler previous = qInstallMessageHandler(collectDebug);
        late.sendKeyUp(key5());
        late.sendKeyUp(key5());
        QVERIFY(QFile::link(QStringLiteral("/dev/uinput"), link));
        late.sendKeyUp(key5());
        late.sendKeyUp(key5());
        qInstallMessageHandler(previous);
        QCOMPARE(s_debug.size(), 2);
        QVERIFY2(s_debug.at(1).contains(QLatin1String("works now")), qPrintable(s_debug.at(1)));
    }

    SenderKeyToSystemLinux sender;
    sender.sendKeyUp(key5()); // creates the keyboard; this release is dropped
    const QString node = sender.deviceNode();
    QVERIFY2(!node.isEmpty(), "no virtual keyboard was created");

    int fd = -1;
    QTRY_VERIFY_WITH_TIMEOUT(
        (fd = ::open(QFile::encodeName(node).constData(), O_RDONLY | O_NONBLOCK)) >= 0, 5000);
    libevdev *reader = nullptr;
    QCOMPARE(libevdev_new_from_fd(fd, &reader), 0);
    // Keep the keys away from the desktop while the test types them.
    libevdev_grab(reader, LIBEVDEV_GRAB);

    // An ordinary keyboard's keys.
    for (int code : {KEY_ESC, KEY_A, KEY_Z, KEY_ENTER, KEY_KP0, KEY_KP9, KEY_PLAYPAUSE})
        QVERIFY2(libevdev_has_event_code(reader, EV_KEY, code), qPrintable(QString::number(code)));

    // The input core drops a release of a key that is not held.
    input_event event = {};
    sender.sendKeyUp(key5());
    QVERIFY2(!nextEvent(reader, &event, 500), "a lone key release reached the reader");
    // Hold keypad 5 through the same device first, and the release arrives.
    QVERIFY(writeEvent(sender.uinputDescriptor(), EV_KEY, KEY_KP5, 1));
    QVERIFY(writeEvent(sender.uinputDescriptor(), EV_SYN, SYN_REPORT, 0));
    QVERIFY(nextEvent(reader, &event, 5000));
    QCOMPARE(int(event.type), EV_KEY);
    QCOMPARE(int(event.value), 1);
    QVERIFY(nextEvent(reader, &event, 5000));
    QCOMPARE(int(event.type), EV_SYN);

    sender.sendKeyUp(key5());

    QVERIFY(nextEvent(reader, &event, 5000));
    QCOMPARE(int(event.type), EV_KEY);
    QCOMPARE(int(event.code), KEY_KP5);
    QCOMPARE(int(event.value), 0);
    QVERIFY(nextEvent(reader, &event, 5000));
    QCOMPARE(int(event.type), EV_SYN);
    QCOMPARE(int(event.code), SYN_REPORT);
    // Nothing after it.
    QVERIFY(!nextEvent(reader, &event, 100));

    libevdev_grab(reader, LIBEVDEV_UNGRAB);
    libevdev_free(reader);
    ::close(fd);
}

QTEST_GUILESS_MAIN(tst_SenderKeyToSystemLinux)
#include "tst_senderkeytosystemlinux.moc"
