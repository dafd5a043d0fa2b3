#pragma once
#include "spreadsheet/print/PageLayout.h"

#include <QAbstractScrollArea>
#include <QPixmap>

#include <map>
#include <memory>
#include <optional>

namespace spreadsheet {

class PageText;
class Workbook;

/// How the preview shows pages.
enum class PreviewView {
    wholePage = 0,
    percentage = 2, ///< of the size on paper
    pageWidth = 3,
    pageHeight = 4,
    severalPages = 5, ///< whole pages side by side and below each other
};

/// Shows the pages of a sheet as they will be printed. Only pages that are in sight are drawn, so that the
/// number of pages costs nothing; changes of the workbook show with the next painting.
///
/// Page keys and the wheel go through a page that is higher than the window and then on to the next one,
/// Home and End to the first and last, Ctrl with the wheel changes the size, a double click toggles it.
class PreviewWidget : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit PreviewWidget(QWidget* parent = nullptr);
    ~PreviewWidget() override;

    /// Shows a sheet from its first page. The workbook must outlive the widget or another attachment.
    /// @param sheet    from 1
    /// @param request  paper, cells and stamp
    void attach(const Workbook& workbook, int sheet, PageRequest request = {});

    /// Other paper, cells or stamp; the current page stays where there is one.
    void setRequest(PageRequest request);
    /// Finds out whether the workbook has changed, if no painting will.
    void refresh();

    /// Pages of the sheet with its print settings of now; at least 1.
    int pageCount() const;
    /// The first page in sight, from 1.
    int currentPage() const { return m_currentPage; }
    /// A page outside the report becomes its first or last.
    void setCurrentPage(int page);
    /// Goes to the next page, at last the current one, whose cells show a text. False if none does.
    bool find(const QString& text);
    /// What the cells of the current page show, for a clipboard.
    QString words() const;
    /// How many pages are shown at once.
    int pageStep() const;

    PreviewView view() const { return m_look.view; }
    void setView(PreviewView view);
    int zoomPercentage() const { return m_look.percentage; }
    void setZoomPercentage(int percentage); ///< 10 to 400, shown with PreviewView::percentage
    int pagesAcross() const { return m_look.across; }
    void setPagesAcross(int pages); ///< 1 to 10, with PreviewView::severalPages
    int pagesDown() const { return m_look.down; }
    void setPagesDown(int pages);
    /// Between the view in use and a close look; any other choice of a view ends the close look.
    void toggleZoom();

    /// Why there are no pages to be shown, as one Chinese sentence; empty if there are.
    QString problem() const;

Q_SIGNALS:
    void pageChanged(int page);
    void pageCountChanged(int pages);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    struct Look {
        PreviewView view = PreviewView::wholePage;
        int percentage = 100;
        int across = 1;
        int down = 1;
    };

    const PageLayout* layout() const;
    void changeLook(const Look& look);
    void arrange();
    void tellPages(int pageBefore);
    double scale() const;
    QRect pageRect(int place) const;
    const QPixmap& picture(int page, QSize size);
    /// Scrolls, or turns the page where there is no more to scroll.
    void goOn(int pixels, bool turnsPage);

    const Workbook* m_workbook = nullptr;
    int m_sheet = 1;
    PageRequest m_request;
    Look m_look;
    std::optional<Look> m_lookBefore; ///< set while the zoom is toggled
    int m_currentPage = 1;
    int m_toldPages = 1;
    int m_wheel = 0; ///< eighths of a degree not yet acted on

    mutable std::unique_ptr<PageLayout> m_layout; ///< of m_revision; none if the margins leave no room
    mutable std::optional<std::uint64_t> m_revision;
    mutable QString m_problem;
    std::unique_ptr<PageText> m_text;
    std::map<int, QPixmap> m_pictures; ///< pages in sight
    std::optional<std::uint64_t> m_picturesRevision;
};

} // namespace spreadsheet
