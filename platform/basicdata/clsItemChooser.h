#pragma once
#include <cstdint>
#include <string>

namespace selfreport {

/// Lets the user choose an item of a class. One instance serves one choice. Texts are UTF-8.
class clsItemChooser {
public:
    /// @param title             of message boxes
    /// @param userId, folder    the user who chooses and the folder of the component; not needed here
    bool initChooser(const std::string& title, const std::string& userId, const std::string& folder);

    /// Shows the items of a class until the user has chosen or given up. False if they could not be shown,
    /// after a message.
    /// @param field             column of the class's table that is handed back, "fNumber"
    /// @param text              search text at first
    /// @param filter, value     not used: all items of the class are offered
    bool chooseItem(std::int16_t classId, const std::string& field, const std::string& text,
                    const std::string& connectionString, std::int32_t flag, const std::string& filter,
                    const std::string& value);

    /// The chosen item's field; "" if none was chosen.
    const std::string& chosenNumber() const { return m_chosenNumber; }

private:
    std::string m_title, m_chosenNumber;
};

} // namespace selfreport
