#pragma once
#include "spreadsheet/print/PreviewPages.h"
#include "spreadsheet/print/PreviewSearch.h"

#include <QAbstractScrollArea>
#include <QTimer>

#include <map>
#include <optional>

namespace spreadsheet {

/// How the preview shows pages.
enum class PreviewView {
    wholePage = 0,
    percentage = 2, ///< of the size on paper
    pageWidth = 3,
    pageHeight = 4,
    severalPages = 5, ///< whole pages side by side and below each other
};

/// Shows the pages of a sheet as they will be printed, all on one strip that is scrolled through. Only pages
/// that are in sight are drawn, so that the number of pages costs nothing; changes of the workbook show with
/// the next painting.
///
/// The wheel and the arrows scroll over the ends of pages. Page keys go on by what fits into the window, with
/// Ctrl by whole pages, Home and End to the first and last page; Ctrl with the wheel changes the size, a
/// double click toggles it. Where several pages are in sight the current one has a frame.
class PreviewWidget : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit PreviewWidget(QWidget* parent = nullptr);

    /// Shows a sheet from its first page. The workbook must outlive the widget or another attachment.
    /// @param sheet    from 1
    /// @param request  paper, cells and stamp
    void attach(const Workbook& workbook, int sheet, PageRequest request = {});

    /// Other paper, cells or stamp; the current page stays where there is one.
    void setRequest(PageRequest request);
    /// Finds out whether the workbook has changed, if no painting will.
    void refresh();

    const PreviewPages& pages() const { return m_pages; }
    /// Pages of the sheet with its print settings of now; at least 1.
    int pageCount() const { return m_pages.count(); }
    /// From 1; the first one in sight once the user has scrolled.
    int currentPage() const { return m_currentPage; }
    /// A page outside the report becomes its first or last.
    void setCurrentPage(int page);
    /// Marks the cells that show a text; none if it is empty.
    void mark(const QString& text);
    /// Marks them and goes from one to the next or former one, which comes into sight; first to the nearest
    /// from the current page on. False if there are none.
    bool find(const QString& text, bool isForward = true);
    PreviewSearch& search() { return m_search; }
    /// What the cells of the current page show, for a clipboard.
    QString words() const;
    /// How many pages the view shows at once.
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
    QString problem() const { return m_pages.problem(); }

Q_SIGNALS:
    void pageChanged(int page);
    void pageCountChanged(int pages);
    /// Pages may look otherwise.
    void pagesRenewed();
    /// They are shown in another view or size.
    void lookChanged();
    /// Other hits of the search, another current one, or more of them counted.
    void hitsChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void scrollContentsBy(int across, int down) override;

private:
    struct Look {
        PreviewView view = PreviewView::wholePage;
        int percentage = 100;
        int across = 1;
        int down = 1;
    };

    /// Where pages stand on the strip, in pixels.
    struct Strip {
        QSize page{1, 1};
        QPoint first; ///< left top corner of the first page
        int across = 1, rows = 1;
        QSize pitch() const; ///< from one page to the next
        QSize extent() const;
    };
    Strip strip() const;
    QRect pageRect(const Strip& strip, int page) const;
    int rowOf(int page) const { return (page - 1) / pagesInRow(); }
    int pagesInRow() const { return m_look.view == PreviewView::severalPages ? m_look.across : 1; }
    int pagesBelow() const { return m_look.view == PreviewView::severalPages ? m_look.down : 1; }
    double scale() const;

    void changeLook(const Look& look);
    void renew();
    void arrange();
    void arrangeAnew();
    void showPage(int page);
    void scrollTo(double within);
    void noteScrolling();
    void goOn(int screens);
    void tellPages(int pageBefore);
    const QPixmap& picture(int page, QSize size);
    void drawHits(QPainter& painter, int page, const QRect& place);
    void showHit();
    void countHits();
    QRect onScreen(const QRect& onPaper) const;

    PreviewPages m_pages;
    PreviewSearch m_search{m_pages};
    QTimer m_counting; ///< of hits, while nothing else is to be done
    Look m_look;
    std::optional<Look> m_lookBefore; ///< set while the zoom is toggled
    int m_currentPage = 1;
    double m_within = 0; ///< how far down that page the window's top lies, in parts of its height
    int m_toldPages = 1;
    int m_wheel = 0;                   ///< eighths of a degree not yet acted on
    bool m_isPlacing = false;          ///< what scrolls is not the user
    std::map<int, QPixmap> m_pictures; ///< pages in sight
    std::uint64_t m_shownVersion = 0;  ///< of the pages on the pictures
};

} // namespace spreadsheet
