#pragma once

// SenderKeyToSystemLinux, key injection through a uinput virtual keyboard.

#include "keys/senderkeytosystemplatform.h"

#include <QString>

#include <mutex>

struct libevdev_uinput;

// Key injection on Linux through a virtual keyboard made with uinput. The
// keyboard is created on the first key and kept until this object goes; it
// declares an ordinary keyboard's keys (codes 1 to 255), so the system treats
// it as a keyboard. Each key is written as its release followed by a sync.
//
// The Linux input core drops the release of a key that is not held, so the
// single release reaches the device but usually has no visible effect. The
// one-event contract of SenderKeyToSystem is kept all the same.
//
// /dev/uinput is normally root-only. While it cannot be opened (or the
// keyboard cannot be created), keys are dropped and every key tries again;
// one debug line says when this starts and one when the keyboard is made.
class SenderKeyToSystemLinux : public SenderKeyToSystemPlatform
{
    Q_OBJECT

public:
    explicit SenderKeyToSystemLinux(const QString &uinputPath = QStringLiteral("/dev/uinput"),
                                    QObject *parent = nullptr);
    ~SenderKeyToSystemLinux() override;

    void sendKeyUp(const SystemKey &key) override;

    // The keyboard's event node ("/dev/input/eventN") once created, else
    // empty.
    QString deviceNode() const;
    // The uinput descriptor behind the keyboard, -1 before it exists. Tests
    // write a key press through it so that the release is not dropped.
    int uinputDescriptor() const;

private:
    bool createKeyboard();

    mutable std::mutex m_mutex;
    QString m_uinputPath;
    bool m_failing = false;
    int m_fd = -1;
    libevdev_uinput *m_keyboard = nullptr;
};
