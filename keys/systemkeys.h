#pragma once

// The table of keys the injector knows, with their Windows and Linux codes.

#include <Qt>
#include <QtGlobal>

// The keys SenderKeyToSystem can inject, with their codes on each platform:
// the Windows virtual key and the Linux input key code. Every other Qt::Key
// is ignored. Digits are the numeric keypad's keys, not the top row's, on both
// platforms; Return and Enter are the same key.
//
// Columns: Qt key, Windows name and value, Linux name and value. The names
// are checked against the system headers where they exist (see the platform
// files); the values are what the code uses.
// clang-format off
#define DIALIX_SYSTEM_KEYS(X)                                                                   \
    X(Qt::Key_Comma,                VK_OEM_COMMA,        0xBC, KEY_COMMA,         51)           \
    X(Qt::Key_0,                    VK_NUMPAD0,          0x60, KEY_KP0,           82)           \
    X(Qt::Key_1,                    VK_NUMPAD1,          0x61, KEY_KP1,           79)           \
    X(Qt::Key_2,                    VK_NUMPAD2,          0x62, KEY_KP2,           80)           \
    X(Qt::Key_3,                    VK_NUMPAD3,          0x63, KEY_KP3,           81)           \
    X(Qt::Key_4,                    VK_NUMPAD4,          0x64, KEY_KP4,           75)           \
    X(Qt::Key_5,                    VK_NUMPAD5,          0x65, KEY_KP5,           76)           \
    X(Qt::Key_6,                    VK_NUMPAD6,          0x66, KEY_KP6,           77)           \
    X(Qt::Key_7,                    VK_NUMPAD7,          0x67, KEY_KP7,           71)           \
    X(Qt::Key_8,                    VK_NUMPAD8,          0x68, KEY_KP8,           72)           \
    X(Qt::Key_9,                    VK_NUMPAD9,          0x69, KEY_KP9,           73)           \
    X(Qt::Key_Escape,               VK_ESCAPE,           0x1B, KEY_ESC,           1)            \
    X(Qt::Key_Backspace,            VK_BACK,             0x08, KEY_BACKSPACE,     14)           \
    X(Qt::Key_Return,               VK_RETURN,           0x0D, KEY_ENTER,         28)           \
    X(Qt::Key_Enter,                VK_RETURN,           0x0D, KEY_ENTER,         28)           \
    X(Qt::Key_Delete,               VK_DELETE,           0x2E, KEY_DELETE,        111)          \
    X(Qt::Key_VolumeDown,           VK_VOLUME_DOWN,      0xAE, KEY_VOLUMEDOWN,    114)          \
    X(Qt::Key_VolumeMute,           VK_VOLUME_MUTE,      0xAD, KEY_MUTE,          113)          \
    X(Qt::Key_VolumeUp,             VK_VOLUME_UP,        0xAF, KEY_VOLUMEUP,      115)          \
    X(Qt::Key_MediaPrevious,        VK_MEDIA_PREV_TRACK, 0xB1, KEY_PREVIOUSSONG,  165)          \
    X(Qt::Key_MediaNext,            VK_MEDIA_NEXT_TRACK, 0xB0, KEY_NEXTSONG,      163)          \
    X(Qt::Key_MediaTogglePlayPause, VK_MEDIA_PLAY_PAUSE, 0xB3, KEY_PLAYPAUSE,     164)
// clang-format on

struct SystemKey
{
    int qtKey;
    quint16 windowsKey;
    quint16 linuxKey;
};

#define DIALIX_SYSTEM_KEY_ROW(qt, winName, winKey, linName, linKey) {qt, winKey, linKey},
inline constexpr SystemKey kSystemKeys[] = {DIALIX_SYSTEM_KEYS(DIALIX_SYSTEM_KEY_ROW)};
#undef DIALIX_SYSTEM_KEY_ROW

// The row of `qtKey`, or nullptr when the key is not injected.
constexpr const SystemKey *findSystemKey(int qtKey)
{
    for (const SystemKey &key : kSystemKeys) {
        if (key.qtKey == qtKey)
            return &key;
    }
    return nullptr;
}
