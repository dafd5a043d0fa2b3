#include "platform/services/Dialogs.h"

namespace selfreport {

namespace {

class SilentDialogs : public Dialogs {
public:
    void message(Icon, std::string_view, std::string_view) override {}
    bool ask(Icon, std::string_view, std::string_view) override { return false; }
    std::optional<std::size_t> choose(Icon, std::string_view, std::string_view,
                                      const std::vector<std::string_view>&) override
    {
        return {};
    }
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
