#pragma once
#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QPixmap>

#include <map>

namespace spreadsheet {

class PreviewWidget;

/// Small pictures of a preview's pages below each other, each with its number, the current page's framed. A
/// click or the arrows make another page the preview's current one. Pictures are drawn one after the other
/// while nothing else is to be done, those in sight only.
class PageThumbnails : public QAbstractScrollArea {
    Q_OBJECT
public:
    /// @param preview  must outlive it
    explicit PageThumbnails(PreviewWidget& preview, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    QSize pageSize() const;
    int pitch() const; ///< pixels from one picture to the next
    QRect pageRect(int page) const;
    int firstInSight() const;
    int lastInSight() const;
    QPixmap drawn(int page) const;
    void arrange();
    void renew();
    void showCurrent();

    PreviewWidget& m_preview;
    std::map<int, QPixmap> m_pictures; ///< by page
    QBasicTimer m_drawing;
};

} // namespace spreadsheet
