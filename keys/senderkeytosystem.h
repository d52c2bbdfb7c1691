#pragma once

// SenderKeyToSystem, the key injector that the host's key-control classes call.

#include <QObject>

#include <memory>

class SenderKeyToSystemPlatform;

// Injects key strokes into the operating system's input as if typed: keypad
// digits, comma, Enter, Escape, Backspace, Delete and the multimedia keys
// (see systemkeys.h). One object per process, made on first use and kept to
// the end of the process.
//
// Part of the plug-in's module and exported from it: the host's key-control
// classes call it (the plug-in itself does not).
//
// A key is injected as a single key-up event, without a key-down before it.
// That is the contract on every platform. On Linux the input core drops the
// release of a key that is not held, so there the event reaches the virtual
// keyboard but usually has no visible effect.
class Q_DECL_EXPORT SenderKeyToSystem : public QObject
{
    Q_OBJECT

public:
    static SenderKeyToSystem *instance();
    ~SenderKeyToSystem() override;

    // Injects the release of `key` (a Qt::Key); a key outside the table is
    // ignored.
    void sendKey(int key);

    // Replaces the platform implementation and hands back the previous one.
    // For tests, which record instead of injecting.
    std::unique_ptr<SenderKeyToSystemPlatform>
    setPlatform(std::unique_ptr<SenderKeyToSystemPlatform> platform);
    SenderKeyToSystemPlatform *platform() const { return m_platform.get(); }

private:
    SenderKeyToSystem();

    std::unique_ptr<SenderKeyToSystemPlatform> m_platform;
};
