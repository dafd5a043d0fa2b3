#include "platform/database/session/names.h"

#include "text/ascii.h"

namespace selfreport {

bool sameName(std::string_view left, std::string_view right)
{
    return ascii::equalFolded(left, right);
}

bool beginsWithName(std::string_view text, std::string_view name)
{
    return sameName(text.substr(0, name.size()), name);
}

} // namespace selfreport
