#include "platform/services/SettingsStore.h"

namespace selfreport {

SettingsStore*& SettingsStore::usual()
{
    static MemorySettings none;
    static SettingsStore* usual = &none;
    return usual;
}

SettingsStore& settingsStore()
{
    return SettingsInUse::current();
}

} // namespace selfreport
