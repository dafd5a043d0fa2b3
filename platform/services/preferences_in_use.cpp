#include "platform/services/Preferences.h"

namespace selfreport {

Preferences*& Preferences::usual()
{
    static MemoryPreferences inMemory;
    static Preferences* usual = &inMemory;
    return usual;
}

Preferences& preferences()
{
    return PreferencesInUse::current();
}

} // namespace selfreport
