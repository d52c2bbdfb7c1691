#pragma once

// SenderKeyToSystemPlatform, what a platform implements to inject a key.

#include "keys/systemkeys.h"

#include <QObject>

#include <memory>

// How one platform injects a key stroke. SenderKeyToSystem owns one.
class SenderKeyToSystemPlatform : public QObject
{
    Q_OBJECT

public:
    explicit SenderKeyToSystemPlatform(QObject *parent = nullptr)
        : QObject(parent)
    { }
    ~SenderKeyToSystemPlatform() override = default;

    // Injects exactly one event: the release of `key`, with no press before
    // it. The result is not checked.
    virtual void sendKeyUp(const SystemKey &key) = 0;
};

// The implementation of the platform being built for (one *_linux.cpp or
// *_win.cpp file defines it).
std::unique_ptr<SenderKeyToSystemPlatform> createSenderKeyToSystemPlatform();
