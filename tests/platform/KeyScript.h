#pragma once
#include <QApplication>
#include <QDebug>
#include <QKeySequence>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <QWidget>

namespace selfreport::test {

/// Sends keys, one after the other, to whatever has the focus in the front window, also inside the modal
/// windows that they open: "Ctrl+G Down Return '1001' Tab". Texts stand between apostrophes; "Wait" gives an
/// access key its tenth of a second.
class KeyScript {
public:
    KeyScript(QWidget& window, const QString& keys)
        : m_window(window)
        , m_tokens(keys.split(' ', Qt::SkipEmptyParts))
    {
    }

    /// False if a window never took the focus; the windows that are open then are closed.
    bool run()
    {
        QTimer::singleShot(0, &m_window, [this] { step(); });
        const bool ended = QTest::qWaitFor([this] { return m_at > m_tokens.size() || m_failed; }, 20'000);
        return ended && !m_failed;
    }

private:
    static constexpr int pause = 10;      // milliseconds
    static constexpr int patience = 300;  // pauses
    static constexpr int accessKey = 250; // milliseconds

    /// Null until the front window has the focus.
    QWidget* receiver() const
    {
        if (QWidget* const popup = QApplication::activePopupWidget())
            return popup->focusWidget() ? popup->focusWidget() : popup;
        QWidget* const front =
            QApplication::activeModalWidget() ? QApplication::activeModalWidget() : &m_window;
        QWidget* const focus = QApplication::focusWidget();
        if (focus && focus->window() == front)
            return focus;
        front->activateWindow(); // as a window manager does when a window above it has closed
        return nullptr;
    }

    void step()
    {
        if (m_at == m_tokens.size()) {
            ++m_at;
            return;
        }
        QWidget* const focus = receiver();
        if (!focus) {
            m_failed = ++m_waited > patience;
            if (m_failed)
                giveUp();
            else
                QTimer::singleShot(pause, &m_window, [this] { step(); });
            return;
        }
        m_waited = 0;
        const QString token = m_tokens[m_at++];
        // Before the key, which may open a window with an event loop of its own.
        QTimer::singleShot(token == "Wait" ? accessKey : pause, &m_window, [this] { step(); });
        send(*focus, token);
    }

    static void send(QWidget& focus, const QString& token)
    {
        if (token == "Wait")
            return;
        if (!token.startsWith('\'')) {
            const QKeyCombination keys = QKeySequence::fromString(token)[0];
            QTest::keyClick(&focus, keys.key(), keys.keyboardModifiers());
            return;
        }
        for (const QChar character : token.mid(1, token.size() - 2)) // the first one may open an editor
            QTest::keyClick(QApplication::focusWidget(), character.toLatin1());
    }

    static void giveUp()
    {
        qWarning() << "no focus in" << QApplication::activeModalWidget();
        while (QWidget* const modal = QApplication::activeModalWidget())
            if (!modal->close())
                break;
    }

    QWidget& m_window;
    QStringList m_tokens;
    qsizetype m_at = 0;
    int m_waited = 0;
    bool m_failed = false;
};

} // namespace selfreport::test
