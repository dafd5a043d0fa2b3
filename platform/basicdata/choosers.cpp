#include "access/DatabaseAccess.h"
#include "platform/basicdata/basic_data.h"
#include "platform/basicdata/ChooserWindow.h"
#include "platform/basicdata/clsAccountChooser.h"
#include "platform/basicdata/clsItemChooser.h"
#include "platform/services/Dialogs.h"
#include "platform/windows/front_window.h"

#include <functional>
#include <optional>
#include <QLineEdit>
#include <string_view>
#include <utility>

namespace selfreport {

namespace {

/// What a chooser shows.
struct Offer {
    const char* objectName;
    QString title;
    QStringList headings;
    std::vector<ChooserEntry> entries;
};

/// The code that the user chose from what `read` offers; "" for none. Nothing if it could not be read, which
/// the user knows then.
/// @param read  owns what it uses
std::optional<std::string> codeChosen(const std::string& connectionString, const std::string& title,
                                      const std::string& searchText, std::function<Offer(Connection&)> read)
{
    DatabaseAccess database(connectionString, [&title](Icon icon, std::string_view text) {
        dialogs().message(icon, title, text);
    });
    std::optional<Offer> offer = database.read<Offer>(Icon::critical, std::move(read));
    if (!offer)
        return std::nullopt;
    ChooserWindow window(offer->title, offer->headings, std::move(offer->entries), frontWindow());
    window.setObjectName(offer->objectName);
    window.findChild<QLineEdit*>("txtSearch")->setText(QString::fromStdString(searchText));
    window.exec();
    return window.chosen() ? window.chosen()->code.toStdString() : std::string();
}

/// False if nothing could be offered; the code stays then.
bool keep(std::string& code, std::optional<std::string> chosen)
{
    if (chosen)
        code = std::move(*chosen);
    return chosen.has_value();
}

} // namespace

bool clsAccountChooser::initChooser(const std::string& connectionString, const std::string& title,
                                    const std::string& /*userId*/, const std::string& /*folder*/)
{
    m_connectionString = connectionString;
    m_title = title;
    return true;
}

bool clsAccountChooser::chooseAccount(const std::string& text, std::int32_t /*flag*/)
{
    return keep(m_chosenNumber, codeChosen(m_connectionString, m_title, text, [](Connection& connection) {
                    return Offer{
                        "clsAccountChooser",
                        QStringLiteral("科目"),
                        {QStringLiteral("科目代码"), QStringLiteral("科目名称"), QStringLiteral("方向")},
                        accountEntries(connection)};
                }));
}

bool clsItemChooser::initChooser(const std::string& title, const std::string& /*userId*/,
                                 const std::string& /*folder*/)
{
    m_title = title;
    return true;
}

bool clsItemChooser::chooseItem(std::int16_t classId, const std::string& field, const std::string& text,
                                const std::string& connectionString, std::int32_t /*flag*/,
                                const std::string& /*filter*/, const std::string& /*value*/)
{
    return keep(m_chosenNumber,
                codeChosen(connectionString, m_title, text, [classId, field](Connection& connection) {
                    ItemList list = itemsOfClass(connection, classId, field);
                    return Offer{"clsItemChooser",
                                 list.className,
                                 {QStringLiteral("代码"), QStringLiteral("名称")},
                                 std::move(list.items)};
                }));
}

} // namespace selfreport
