// Holds a text in the clipboard, as the program in which a user copied it: clipboard_owner TEXT
// Says "held" once others can ask for it, and "asked" when one has.
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <iostream>
#include <utility>

namespace {

class Copied : public QMimeData {
public:
    explicit Copied(QString text)
        : m_text(std::move(text))
    {
    }
    QStringList formats() const override { return {QStringLiteral("text/plain")}; }

protected:
    QVariant retrieveData(const QString& type, QMetaType) const override
    {
        if (type != QLatin1String("text/plain"))
            return {};
        std::cout << "asked" << std::endl;
        return m_text;
    }

private:
    QString m_text;
};

} // namespace

int main(int count, char** arguments)
{
    const QGuiApplication application(count, arguments);
    QGuiApplication::clipboard()->setMimeData(new Copied(QString::fromUtf8(arguments[1])));
    std::cout << "held" << std::endl;
    return QGuiApplication::exec();
}
