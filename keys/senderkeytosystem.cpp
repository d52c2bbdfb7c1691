// The process-wide key injector over the platform implementation.

#include "keys/senderkeytosystem.h"

#include "keys/senderkeytosystemplatform.h"
#include "keys/systemkeys.h"

SenderKeyToSystem::SenderKeyToSystem()
    : m_platform(createSenderKeyToSystemPlatform())
{ }

SenderKeyToSystem::~SenderKeyToSystem() = default;

SenderKeyToSystem *SenderKeyToSystem::instance()
{
    static SenderKeyToSystem sender;
    return &sender;
}

void SenderKeyToSystem::sendKey(int key)
{
    const SystemKey *systemKey = findSystemKey(key);
    if (systemKey && m_platform)
        m_platform->sendKeyUp(*systemKey);
}

std::unique_ptr<SenderKeyToSystemPlatform>
SenderKeyToSystem::setPlatform(std::unique_ptr<SenderKeyToSystemPlatform> platform)
{
    m_platform.swap(platform);
    return platform;
}
