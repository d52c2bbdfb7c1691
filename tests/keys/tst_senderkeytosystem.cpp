// Tests of the key injector: which keys go out, as which codes.

#include "keys/senderkeytosystem.h"
#include "keys/senderkeytosystemplatform.h"

#include <QtTest>

#ifdef Q_OS_LINUX
#include <linux/input-event-codes.h>
#define LINUX_KEY(name) name
#else
// The Linux column is checked where the system's header is.
#define LINUX_KEY(name) -1
#endif

namespace {

// Records what would have been injected.
class RecordingPlatform : public SenderKeyToSystemPlatform
{
public:
    void sendKeyUp(const SystemKey &key) override { released.append(key); }
    QVector<SystemKey> released;
};

} // namespace

class tst_SenderKeyToSystem : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        auto recorder = std::make_unique<RecordingPlatform>();
        m_recorder = recorder.get();
        m_saved = SenderKeyToSystem::instance()->setPlatform(std::move(recorder));
    }
    void cleanup() { SenderKeyToSystem::instance()->setPlatform(std::move(m_saved)); }
    void injectedKeys_data();
    void injectedKeys();
    void oneObjectPerProcess();

private:
    RecordingPlatform *m_recorder = nullptr;
    std::unique_ptr<SenderKeyToSystemPlatform> m_saved;
};

void tst_SenderKeyToSystem::injectedKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("windowsKey");
    QTest::addColumn<int>("linuxKey");

    // Keypad keys, whose Linux codes are not in digit order.
    const int keypad[] = {LINUX_KEY(KEY_KP0), LINUX_KEY(KEY_KP1), LINUX_KEY(KEY_KP2),
                          LINUX_KEY(KEY_KP3), LINUX_KEY(KEY_KP4), LINUX_KEY(KEY_KP5),
                          LINUX_KEY(KEY_KP6), LINUX_KEY(KEY_KP7), LINUX_KEY(KEY_KP8),
                          LINUX_KEY(KEY_KP9)};
    for (int digit = 0; digit <= 9; ++digit)
        QTest::addRow("digit %d", digit) << Qt::Key_0 + digit << 0x60 + digit << keypad[digit];

    QTest::newRow("comma") << int(Qt::Key_Comma) << 0xBC << LINUX_KEY(KEY_COMMA);
    QTest::newRow("return") << int(Qt::Key_Return) << 0x0D << LINUX_KEY(KEY_ENTER);
    QTest::newRow("enter, same as return") << int(Qt::Key_Enter) << 0x0D << LINUX_KEY(KEY_ENTER);
    QTest::newRow("backspace") << int(Qt::Key_Backspace) << 0x08 << LINUX_KEY(KEY_BACKSPACE);
    QTest::newRow("delete") << int(Qt::Key_Delete) << 0x2E << LINUX_KEY(KEY_DELETE);
    QTest::newRow("mute") << int(Qt::Key_VolumeMute) << 0xAD << LINUX_KEY(KEY_MUTE);
    QTest::newRow("previous track")
        << int(Qt::Key_MediaPrevious) << 0xB1 << LINUX_KEY(KEY_PREVIOUSSONG);
    QTest::newRow("play/pause") << int(Qt::Key_MediaTogglePlayPause) << 0xB3
                                << LINUX_KEY(KEY_PLAYPAUSE);
    // Not injected (0, 0): neighbours of table entries, and codes no key has.
    QTest::newRow("period") << int(Qt::Key_Period) << 0 << 0;
    QTest::newRow("colon after 9") << int(Qt::Key_Colon) << 0 << 0;
    QTest::newRow("bass boost after volume up") << int(Qt::Key_BassBoost) << 0 << 0;
    QTest::newRow("keypad 5 with modifier bit") << int(Qt::KeypadModifier | Qt::Key_5) << 0 << 0;
    QTest::newRow("negative") << -1 << 0 << 0;
}

void tst_SenderKeyToSystem::injectedKeys()
{
    QFETCH(int, key);
    QFETCH(int, windowsKey);
    QFETCH(int, linuxKey);

    // Twice: one release per call, and nothing for a key outside the table.
    SenderKeyToSystem::instance()->sendKey(key);
    SenderKeyToSystem::instance()->sendKey(key);

    QCOMPARE(m_recorder->released.size(), windowsKey ? 2 : 0);
    for (const SystemKey &sent : m_recorder->released) {
        QCOMPARE(sent.qtKey, key);
        QCOMPARE(int(sent.windowsKey), windowsKey);
        if (linuxKey >= 0)
            QCOMPARE(int(sent.linuxKey), linuxKey);
    }
}

void tst_SenderKeyToSystem::oneObjectPerProcess()
{
    // The platform implementation the instance was made with (saved by init).
    QVERIFY(m_saved);
#ifdef Q_OS_WIN
    QCOMPARE(m_saved->metaObject()->className(), "SenderKeyToSystemWindows");
#else
    QCOMPARE(m_saved->metaObject()->className(), "SenderKeyToSystemLinux");
#endif
}

QTEST_GUILESS_MAIN(tst_SenderKeyToSystem)
#include "tst_senderkeytosystem.moc"
