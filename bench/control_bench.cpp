// Times what the spreadsheet control paints, on a short and on a very long sheet.
#include "bench/bench_table.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <vector>

using namespace spreadsheet;

namespace {

constexpr int shownRows = 60;
constexpr int shownColumns = 25;

/// Chinese texts and amounts in several looks. Tall sheets have more rows than this fills.
void fillCells(Workbook& workbook, int rows)
{
    static constexpr std::array texts{"应收账款", "主营业务收入", "管理费用", "某某贸易有限公司", "部门"};
    Sheet& sheet = workbook.sheet(1);
    for (int column = 1; column <= shownColumns; ++column)
        for (int row = 1; row <= rows; ++row) {
            if (column % 2 == 1)
                sheet.setText({column, row},
                              texts[static_cast<std::size_t>(row * 7 + column) % texts.size()] +
                                  std::to_string(row % 100));
            else
                sheet.setNumber({column, row}, row * 1.37 + column * 1000);
        }
    for (int column = 1; column <= shownColumns; ++column)
        sheet.restyle({column, 1, column, maxRows}, [column](CellStyle& style) {
            style.font.bold = column % 5 == 0;
            style.font.family = Text(column % 3 == 0 ? "黑体" : "宋体");
            style.background = column % 4 == 0 ? 0xF2F6FF : automaticColour;
            style.type = column % 2 == 0 ? CellType::number : CellType::edit;
            style.bottom = style.right = {column % 6 == 0 ? LineStyle::dash : LineStyle::solid, 0x808080};
        });
}

std::unique_ptr<Workbook> longSheet(int rows, int filledRows)
{
    auto workbook = std::make_unique<Workbook>();
    workbook->sheet(1).changeSettings([rows](SheetSettings& settings) { settings.rowCount = rows; });
    fillCells(*workbook, filledRows);
    workbook->recalculate();
    return workbook;
}

std::unique_ptr<SpreadsheetControl> shownControl(Workbook& workbook)
{
    auto control = std::make_unique<SpreadsheetControl>();
    control->cells().setWorkbook(&workbook);
    // Room for the cells, headings, scroll bar and tabs.
    control->resize(shownColumns * 72 + 90, shownRows * 19 + 60);
    control->show();
    QApplication::processEvents();
    return control;
}

/// Runs what the event loop has waiting until the control has painted.
class Painted : public QObject {
public:
    explicit Painted(QWidget& widget) { widget.installEventFilter(this); }

    void wait()
    {
        m_painted = false;
        while (!m_painted)
            QApplication::processEvents();
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_painted = false;
};

struct Figures {
    double frame, edit, cursor, scroll;
};

double milliseconds(const std::function<void()>& prepare, const std::function<void()>& work)
{
    return bestSeconds(40, prepare, work) * 1000;
}

Figures measure(Workbook& workbook)
{
    const auto control = shownControl(workbook);
    Painted painted(*control);
    const auto settle = [] { QApplication::processEvents(); };
    double zoom = 1;
    Figures figures{};
    figures.frame = milliseconds(
        [&] {
            zoom = zoom == 1 ? 1.0001 : 1; // forgets every laid out text
            settle();
        },
        [&] {
            control->setZoom(zoom);
            control->repaint();
        });
    int count = 0;
    figures.edit = milliseconds(settle, [&] {
        ++count;
        workbook.sheet(1).setNumber({4, 20 + count % 5}, count);
        control->afterEdit(CellAddress{4, 20});
        painted.wait();
    });
    figures.cursor = milliseconds(settle, [&] {
        const bool atTop = control->cursor().activeCell().row == 1;
        QKeyEvent down(QEvent::KeyPress, atTop ? Qt::Key_Down : Qt::Key_Up, Qt::NoModifier);
        QApplication::sendEvent(control.get(), &down);
        painted.wait();
    });
    auto& bar = *control->findChild<QScrollBar*>("scrollDown");
    figures.scroll = milliseconds(settle, [&] {
        bar.setValue(bar.value() == 10 ? 11 : 10);
        painted.wait();
    });
    return figures;
}

double firstFrame(Workbook& workbook)
{
    std::unique_ptr<SpreadsheetControl> control;
    return bestSeconds(
        3, [&] { control.reset(); }, [&] { control = shownControl(workbook); });
}

} // namespace

int main(int count, char** arguments)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    BenchTable table("Spreadsheet control, offscreen");
    const auto small = longSheet(100, 100);
    const auto tall = longSheet(1'000'000, 1000);
    const Figures low = measure(*small);
    const Figures high = measure(*tall);
    const auto rows = [&](const char* what, double Figures::*figure, double bound) {
        table.row(std::string(what) + ", 100 rows", low.*figure, bound, "ms");
        table.row("   1,000,000 rows", high.*figure, bound, "ms");
        table.row("   ratio", high.*figure / low.*figure, 1.2, "x");
    };
    rows("whole frame of 60 x 25 cells, no text laid out yet", &Figures::frame, 10);
    rows("edit", &Figures::edit, 2);
    rows("cursor move", &Figures::cursor, 2);
    rows("scroll by a row, scroll bar included", &Figures::scroll, 2);
    const auto full = longSheet(40'000, 40'000);
    table.row("first frame of 1,000,000 cells", firstFrame(*full), 0.1, "s");
    return table.finish();
}
