#include "platform/toolkit/ChineseTexts.h"

#include "platform/toolkit/toolkit_words.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QPointer>
#include <QThread>
#include <QTranslator>
#include <QWidget>

#include <optional>
#include <string_view>

namespace selfreport {

// The toolkit asks for a text when it builds what shows it: a dialog when it is made, a context menu when the
// button is pressed. All of that happens while an event is delivered to a window, so whose window had the
// last event says whose text it is. A host's timer that runs while a dialog of ours is open is no event of
// ours.

namespace {

int building = 0; ///< on the user-interface thread

/// Whether an object belongs to a window of ours; nothing while that does not show yet.
std::optional<bool> isOurs(const QObject& object)
{
    const QObject* top = &object;
    for (const QObject* at = &object; at; at = at->parent()) {
        if (std::string_view(at->metaObject()->className()).starts_with("selfreport::"))
            return true;
        top = at;
    }
    const bool isBuilt = !top->isWidgetType() || static_cast<const QWidget*>(top)->isVisible();
    return isBuilt ? std::optional(false) : std::nullopt;
}

class ChineseTexts : public QTranslator {
public:
    explicit ChineseTexts(ChineseFor whom)
        : m_isForAll(whom == ChineseFor::wholeProgram)
    {
    }

    /// The application tells all windows of a new language when a translator is installed that has texts.
    bool isEmpty() const override { return true; }

    QString translate(const char* context, const char* source, const char* /*comment*/,
                      int /*count*/) const override
    {
        const bool isToolkit = context && context[0] == 'Q';
        return isToolkit && source && isAskedForOurs() ? ownWords(source) : QString();
    }

protected:
    bool eventFilter(QObject* receiver, QEvent* /*event*/) override
    {
        m_isOurEvent = isOurs(*receiver).value_or(m_isOurEvent);
        return false;
    }

private:
    bool isAskedForOurs() const
    {
        if (m_isForAll)
            return true;
        return QThread::currentThread() == qApp->thread() &&
               (building > 0 || (m_isOurEvent && isOurInFront()));
    }

    /// Not any more when the host goes on behind the call that opened a window of ours.
    static bool isOurInFront()
    {
        const QWidget* const modal = QApplication::activeModalWidget();
        return modal && isOurs(*modal).value_or(false);
    }

    const bool m_isForAll;
    bool m_isOurEvent = false; ///< the last one that was delivered
};

/// What our table has no words for. Without the file, which is a package of its own, the table stands alone.
void loadToolkitFile()
{
    auto* const file = new QTranslator(qApp);
    if (file->load(QStringLiteral("qtbase_zh_CN"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(file);
}

} // namespace

void useChineseTexts(ChineseFor whom)
{
    static QPointer<QCoreApplication> application;
    if (application == QCoreApplication::instance())
        return;
    application = QCoreApplication::instance();
    if (whom == ChineseFor::wholeProgram)
        loadToolkitFile();
    // Never taken away and never deleted: either would tell the host's windows of a new language.
    static ChineseTexts* const texts = new ChineseTexts(whom);
    QCoreApplication::installTranslator(texts); // the last one installed is asked first
    if (whom == ChineseFor::ourWindows)
        application->installEventFilter(texts);
}

BuildingOurs::BuildingOurs()
{
    ++building;
}

BuildingOurs::~BuildingOurs()
{
    --building;
}

} // namespace selfreport
