#include "access/driver_call.h"
#include "failures/failure_text.h"
#include "platform/basicdata/basic_data.h"
#include "platform/basicdata/ChooserWindow.h"
#include "platform/basicdata/clsAccountChooser.h"
#include "platform/basicdata/clsItemChooser.h"
#include "platform/database/Connection.h"
#include "platform/services/Dialogs.h"

#include <exception>
#include <functional>
#include <memory>
#include <QApplication>
#include <QLineEdit>
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

/// The code that the user chose from what `read` offers; "" for none.
/// @param read  owns what it uses
/// @throws what `read` throws; WorkCancelled
std::string codeChosen(const std::string& connectionString, const std::string& searchText,
                       std::function<Offer(Connection&)> read)
{
    auto connection = driverCall<std::unique_ptr<Connection>>(
        [connectionString] { return openConnection(connectionString); });
    Offer offer = driverCall<Offer>(connection, std::move(read));
    connection.reset(); // before the window opens
    ChooserWindow window(offer.title, offer.headings, std::move(offer.entries), QApplication::activeWindow());
    window.setObjectName(offer.objectName);
    window.findChild<QLineEdit*>("txtSearch")->setText(QString::fromStdString(searchText));
    window.exec();
    return window.chosen() ? window.chosen()->code.toStdString() : std::string();
}

bool toldWhyNot(const std::string& title, const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        dialogs().message(Icon::critical, title, failures::sentenceOf(error));
    } catch (const WorkCancelled&) {
        // The user knows.
    }
    return false;
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
    return toldWhyNot(m_title, [&] {
        m_chosenNumber = codeChosen(m_connectionString, text, [](Connection& connection) {
            return Offer{"clsAccountChooser",
                         QStringLiteral("科目"),
                         {QStringLiteral("科目代码"), QStringLiteral("科目名称"), QStringLiteral("方向")},
                         accountEntries(connection)};
        });
    });
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
    return toldWhyNot(m_title, [&] {
        m_chosenNumber = codeChosen(connectionString, text, [classId, field](Connection& connection) {
            ItemList list = itemsOfClass(connection, classId, field);
            return Offer{"clsItemChooser",
                         list.className,
                         {QStringLiteral("代码"), QStringLiteral("名称")},
                         std::move(list.items)};
        });
    });
}

} // namespace selfreport
