#pragma once
#include <array>
#include <QTimer>
#include <QWidget>
#include <string>

class QLabel;

namespace selfreport {

struct ReportContext;
class ListGrid;
struct CallTrial;

/// Tells below the boxes of an `Acct` call what it means (`lblWords`), what it would fetch now (`lblValue`)
/// and which accounts it reaches (`vsfAccounts`).
class CallPreview : public QWidget {
public:
    explicit CallPreview(const ReportContext& context, QWidget* parent = nullptr);

    /// The texts of the boxes have changed. They are tried once no other change has come for 0.3 seconds,
    /// for half a second at most. Six empty texts show nothing.
    void textsChanged(const std::array<std::string, 6>& texts);

private:
    void tryNow();
    void show(const CallTrial& trial);

    const ReportContext& m_context;
    QTimer m_pause;
    std::array<std::string, 6> m_texts;
    QLabel* m_words;
    QLabel* m_value;
    ListGrid* m_accounts;
};

} // namespace selfreport
