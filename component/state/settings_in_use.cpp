#include "platform/settings/SettingsStore.h"

namespace selfreport {

namespace {

SettingsStore*& inUse()
{
    static MemorySettings none;
    static SettingsStore* current = &none;
    return current;
}

} // namespace

SettingsStore& settingsStore()
{
    return *inUse();
}

SettingsInUse::SettingsInUse(SettingsStore& replacement)
    : m_former(inUse())
{
    inUse() = &replacement;
}

SettingsInUse::~SettingsInUse()
{
    inUse() = m_former;
}

} // namespace selfreport
