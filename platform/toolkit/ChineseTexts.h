#pragma once

namespace selfreport {

/// Whose texts of the toolkit (buttons, context menus, file and colour dialogs) are Chinese.
enum class ChineseFor {
    wholeProgram, ///< the application object is ours
    ourWindows    ///< a host's windows keep the language they have, and hear of no other
};

/// Makes them so for the application object there is, whatever language the system names. To be called again
/// once a host has made another one; more calls do nothing.
void useChineseTexts(ChineseFor whom);

/// What is built while it lives is ours, even if no window of ours is open yet.
class BuildingOurs {
public:
    BuildingOurs();
    ~BuildingOurs();
    BuildingOurs(const BuildingOurs&) = delete;
    BuildingOurs& operator=(const BuildingOurs&) = delete;
};

} // namespace selfreport
