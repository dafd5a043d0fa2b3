#include "platform/dialogs/Dialogs.h"

namespace selfreport {

namespace {

class SilentDialogs : public Dialogs {
public:
    void message(Icon, std::string_view, std::string_view) override {}
    bool question(std::string_view, std::string_view) override { return false; }
};

Dialogs*& inUse()
{
    static SilentDialogs silent;
    static Dialogs* current = &silent;
    return current;
}

} // namespace

Dialogs& dialogs()
{
    return *inUse();
}

DialogsInUse::DialogsInUse(Dialogs& replacement)
    : m_former(inUse())
{
    inUse() = &replacement;
}

DialogsInUse::~DialogsInUse()
{
    inUse() = m_former;
}

} // namespace selfreport
