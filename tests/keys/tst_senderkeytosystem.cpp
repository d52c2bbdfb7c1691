// Tests of the key injector: which keys go out, as which codes.

#include "keys/senderkeytosystem.h"
#include "keys/senderkeytosystemplatform.h"

#include <QtTest>

#include <linux/input-event-codes.h>

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
    void init();
    void cleanup();
    void injectedKeys_data();
    void injectedKeys();
    void ignoredKeys_data();
    void ignoredKeys();
    void oneReleasePerCall();
    void oneObjectPerProcess();

private:
    RecordingPlatform *m_recorder = nullptr;
    std::unique_ptr<SenderKeyToSystemPlatform> m_saved;
};

void tst_SenderKeyToSystem::init()
{
    auto recorder = std::make_unique<RecordingPlatform>();
    m_recorder = recorder.get();
    m_saved = SenderKeyToSystem::instance()->setPlatform(std::move(recorder));
}

void tst_SenderKeyToSystem::cleanup()
{
    SenderKeyToSystem::instance()->setPlatform(std::move(m_saved));
    m_recorder = nullptr;
}

void tst_SenderKeyToSystem::injectedKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("windowsKey");
    QTest::addColumn<int>("linuxKey");

    // Keypad keys, whose Linux codes are not in digit order.
    const int keypad[] = {KEY_KP0, KEY_KP1, KEY_KP2, KEY_KP3, KEY_KP4,
                          KEY_KP5, KEY_KP6, KEY_KP7, KEY_KP8, KEY_KP9};
    for (int digit = 0; digit <= 9; ++digit)
        QTest::addRow("digit %d", digit) << Qt::Key_0 + digit << 0x60 + digit << keypad[digit];

    QTest::newRow("comma") << int(Qt::Key_Comma) << 0xBC << KEY_COMMA;
    QTest::newRow("return") << int(Qt::Key_Return) << 0x0D << KEY_ENTER;
    QTest::newRow("enter, same as return") << int(Qt::Key_Enter) << 0x0D << KEY_ENTER;
    QTest::newRow("backspace") << int(Qt::Key_Backspace) << 0x08 << KEY_BACKSPACE;
    QTest::newRow("delete") << int(Qt::Key_Delete) << 0x2E << KEY_DELETE;
    QTest::newRow("mute") << int(Qt::Key_VolumeMute) << 0xAD << KEY_MUTE;
    QTest::newRow("previous track") << int(Qt::Key_MediaPrevious) << 0xB1 << KEY_PREVIOUSSONG;
    QTest::newRow("play/pause") << int(Qt::Key_MediaTogglePlayPause) << 0xB3 << KEY_PLAYPAUSE;
}

void tst_SenderKeyToSystem::injectedKeys()
{
    QFETCH(int, key);
    QFETCH(int, windowsKey);
    QFETCH(int, linuxKey);

    SenderKeyToSystem::instance()->sendKey(key);

    QCOMPARE(m_recorder->released.size(), 1);
    QCOMPARE(m_recorder->released.at(0).qtKey, key);
    QCOMPARE(int(m_recorder->released.at(0).windowsKey), windowsKey);
    QCOMPARE(int(m_recorder->released.at(0).linuxKey), linuxKey);
}

void tst_SenderKeyToSystem::ignoredKeys_data()
{
    QTest::addColumn<int>("key");
    // Between comma and the digits, but not injected.
    QTest::newRow("minus") << int(Qt::Key_Minus);
    QTest::newRow("period") << int(Qt::Key_Period);
    QTest::newRow("slash") << int(Qt::Key_Slash);
    // Neighbours of table entries, and codes no key has.
    QTest::newRow("colon after 9") << int(Qt::Key_Colon);
    QTest::newRow("bass boost after volume up") << int(Qt::Key_BassBoost);
    QTest::newRow("letter A") << int(Qt::Key_A);
    QTest::newRow("keypad 5 with modifier bit") << int(Qt::KeypadModifier | Qt::Key_5);
    QTest::newRow("unknown") << int(Qt::Key_unknown);
    QTest::newRow("negative") << -1;
}

void tst_SenderKeyToSystem::ignoredKeys()
{
    QFETCH(int, key);
    SenderKeyToSystem::instance()->sendKey(key);
    QCOMPARE(m_recorder->released.size(), 0);
}

void tst_SenderKeyToSystem::oneReleasePerCall()
{
    SenderKeyToSystem *sender = SenderKeyToSystem::instance();
    for (int key : {int(Qt::Key_5), int(Qt::Key_Period), int(Qt::Key_Enter), int(Qt::Key_5)})
        sender->sendKey(key);

    QCOMPARE(m_recorder->released.size(), 3);
    QCOMPARE(m_recorder->released.at(0).qtKey, int(Qt::Key_5));
    QCOMPARE(m_recorder->released.at(1).qtKey, int(Qt::Key_Enter));
    QCOMPARE(m_recorder->released.at(2).qtKey, int(Qt::Key_5));
}

void tst_SenderKeyToSystem::oneObjectPerProcess()
{
    QCOMPARE(SenderKeyToSystem::instance(), SenderKeyToSystem::instance());
    // The platform implementation the instance was made with (saved by init).
    QVERIFY(m_saved);
    QCOMPARE(m_saved->metaObject()->className(), "SenderKeyToSystemLinux");
}

QTEST_GUILESS_MAIN(tst_SenderKeyToSystem)
#include "tst_senderkeytosystem.moc"
