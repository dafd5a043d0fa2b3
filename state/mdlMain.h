#pragma once
#include "platform/database/Connection.h"
#include "platform/services/Dialogs.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace selfreport {

/// Makes sure that `gCnn` holds an open connection to `gConnString`. False after telling the user why it
/// failed; no object is kept then. Within one recalculation a failed opening is told once and not tried
/// again. @throws WorkCancelled if the user waits for it and cancels
bool openDB();

/// What the user is told about a failed opening, by the error's number.
std::string_view openingFailureText(std::int32_t number);

/// What a step that needed the database says after a failed opening.
inline constexpr const char* databaseNotOpen = "数据库打不开";

/// Closes `gCnn` and leaves none. Nothing happens if there is none.
void closeDB();

/// Runs `work` on the open connection and closes it. False after telling the user why it failed: the error's
/// own description under `icon`. What `work` left open in a transaction is rolled back.
bool databaseProcedure(Icon icon, const std::function<void(Connection&)>& work);

/// Shows a box titled `gTitle`; within one recalculation each text once.
void tellUser(Icon icon, std::string_view text);

/// While it lives, one recalculation is under way: the boxes of its many fetches are shown once, a database
/// that could not be opened is not tried again, and the shared connection is closed at its end. A nested one
/// (a referenced report being evaluated) belongs to the outer one.
class RecalculationUnderWay {
public:
    RecalculationUnderWay();
    ~RecalculationUnderWay();
    RecalculationUnderWay(const RecalculationUnderWay&) = delete;
    RecalculationUnderWay& operator=(const RecalculationUnderWay&) = delete;

    /// Whether the database could not be opened in the recalculation under way.
    static bool openingFailed();

private:
    friend bool openDB();
    friend void tellUser(Icon icon, std::string_view text);

    static RecalculationUnderWay* s_outermost;
    bool m_openingFailed = false;
    std::set<std::pair<Icon, std::string>> m_told;
};

} // namespace selfreport
