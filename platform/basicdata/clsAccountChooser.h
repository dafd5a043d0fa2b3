#pragma once
#include <cstdint>
#include <string>

namespace selfreport {

/// Lets the user choose an account of the ledger. One instance serves one choice. Texts are UTF-8.
class clsAccountChooser {
public:
    /// @param connectionString  of the ledger's database
    /// @param title             of message boxes
    /// @param userId, folder    the user who chooses and the folder of the component; not needed here
    bool initChooser(const std::string& connectionString, const std::string& title, const std::string& userId,
                     const std::string& folder);

    /// Shows the accounts until the user has chosen or given up. False if they could not be shown, after a
    /// message.
    /// @param text  search text at first
    bool chooseAccount(const std::string& text, std::int32_t flag);

    /// The chosen account's code; "" if none was chosen.
    const std::string& chosenNumber() const { return m_chosenNumber; }

private:
    std::string m_connectionString, m_title, m_chosenNumber;
};

} // namespace selfreport
