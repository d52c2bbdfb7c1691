// Key injection on Windows: SendInput.

#include "keys/senderkeytosystem_win.h"

#include <windows.h>

// The table's Windows values are the system's virtual-key codes.
#define DIALIX_CHECK_WINDOWS_KEY(qt, winName, winKey, linName, linKey)                             \
    static_assert(winName == winKey, #winName);
DIALIX_SYSTEM_KEYS(DIALIX_CHECK_WINDOWS_KEY)
#undef DIALIX_CHECK_WINDOWS_KEY

SenderKeyToSystemWindows::SenderKeyToSystemWindows(QObject *parent)
    : SenderKeyToSystemPlatform(parent)
{ }

SenderKeyToSystemWindows::~SenderKeyToSystemWindows() = default;

void SenderKeyToSystemWindows::sendKeyUp(const SystemKey &key)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key.windowsKey;
    input.ki.wScan = 0;
    input.ki.dwFlags = KEYEVENTF_KEYUP;
    input.ki.time = 0;
    input.ki.dwExtraInfo = 0;
    SendInput(1, &input, sizeof(INPUT));
}

std::unique_ptr<SenderKeyToSystemPlatform> createSenderKeyToSystemPlatform()
{
    return std::make_unique<SenderKeyToSystemWindows>();
}
