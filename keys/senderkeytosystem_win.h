#pragma once

// SenderKeyToSystemWindows, key injection through SendInput.

#include "keys/senderkeytosystemplatform.h"

// Key injection through SendInput: one key-up record of the key's virtual
// key code.
class SenderKeyToSystemWindows : public SenderKeyToSystemPlatform
{
    Q_OBJECT

public:
    explicit SenderKeyToSystemWindows(QObject *parent = nullptr);
    ~SenderKeyToSystemWindows() override;

    void sendKeyUp(const SystemKey &key) override;
};
