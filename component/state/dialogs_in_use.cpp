#include "platform/dialogs/Dialogs.h"

namespace selfreport {

namespace {

class SilentDialogs : public Dialogs {
public:
    void message(Icon, std::string_view, std::string_view) override {}
    bool ask(Icon, std::string_view, std::string_view) override { return false; }
};

} // namespace

Dialogs*& Dialogs::usual()
{
    static SilentDialogs silent;
    static Dialogs* usual = &silent;
    return usual;
}

Dialogs& dialogs()
{
    return DialogsInUse::current();
}

} // namespace selfreport
