// Windows: what the key injector puts into the system's input, as a low-level
// keyboard hook sees it.

#include "keys/senderkeytosystem.h"
#include "keys/systemkeys.h"

#include <QtTest>

#include <windows.h>

namespace {

struct Seen
{
    WPARAM message; // WM_KEYUP, WM_KEYDOWN, ...
    DWORD vkCode;
    DWORD flags;
};

QVector<Seen> seen;

LRESULT CALLBACK keyboardHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HC_ACTION) {
        const auto *info = reinterpret_cast<const KBDLLHOOKSTRUCT *>(lParam);
        seen.append({wParam, info->vkCode, info->flags});
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// A key that always arrives: what comes before it has arrived too.
constexpr int MarkerKey = Qt::Key_Escape;
constexpr DWORD MarkerVk = VK_ESCAPE;

} // namespace

class tst_SendInput : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The hook is called on this thread, from its message loop: Qt's event
        // dispatcher pumps it while the test waits.
        hook = SetWindowsHookExW(WH_KEYBOARD_LL, keyboardHook, GetModuleHandleW(nullptr), 0);
        QVERIFY2(hook, qPrintable(QStringLiteral("SetWindowsHookEx: %1").arg(GetLastError())));
    }
    void cleanupTestCase() { UnhookWindowsHookEx(hook); }
    void init() { seen.clear(); }
    void eachRowReleasesItsKey();
    void unknownKeysInjectNothing();

private:
    HHOOK hook = nullptr;
};

// Every row of the table, one injected release each, nothing pressed.
void tst_SendInput::eachRowReleasesItsKey()
{
    for (const SystemKey &key : kSystemKeys) {
        seen.clear();
        SenderKeyToSystem::instance()->sendKey(key.qtKey);
        QTRY_COMPARE(seen.size(), 1);
        const QString row = QStringLiteral("Qt key 0x%1").arg(key.qtKey, 0, 16);
        QVERIFY2(seen[0].message == WM_KEYUP || seen[0].message == WM_SYSKEYUP, qPrintable(row));
        QVERIFY2(seen[0].vkCode == key.windowsKey, qPrintable(row));
        QVERIFY2(seen[0].flags & LLKHF_UP, qPrintable(row));
        QVERIFY2(seen[0].flags & LLKHF_INJECTED, qPrintable(row));
        // Nothing else follows it.
        QTest::qWait(20);
        QVERIFY2(seen.size() == 1, qPrintable(row));
    }
}

void tst_SendInput::unknownKeysInjectNothing()
{
    for (const int key : {int(Qt::Key_Minus), int(Qt::Key_Period), int(Qt::Key_Slash),
                          int(Qt::Key_A), int(Qt::Key_F1), int(Qt::Key_Tab), 0, -1}) {
        SenderKeyToSystem::instance()->sendKey(key);
    }
    SenderKeyToSystem::instance()->sendKey(MarkerKey);
    QTRY_COMPARE(seen.size(), 1);
    QCOMPARE(seen[0].vkCode, MarkerVk);
}

QTEST_GUILESS_MAIN(tst_SendInput)
#include "tst_sendinput.moc"
