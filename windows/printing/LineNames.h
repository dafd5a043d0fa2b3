#pragma once
#include <QWidget>

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// The row headings of the header and footer editor, "Line 1" and so on, at the left of its grid.
class LineNames : public QWidget {
public:
    explicit LineNames(const spreadsheet::SpreadsheetControl& grid);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const spreadsheet::SpreadsheetControl& m_grid;
};

} // namespace selfreport
