// Shows the spreadsheet control alone, for trying it and for pictures of it.
#include "spreadsheet/demo/demo_sheet.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QStyleFactory>
#include <QVBoxLayout>

#include <cstdio>
#include <string_view>

namespace {

using spreadsheet::CellRange;
using spreadsheet::SpreadsheetControl;

/// Before the application object: the toolkit reads them only then.
void prepareEnvironment(int count, char** arguments)
{
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--scale" && i + 1 < count)
            qputenv("QT_SCALE_FACTOR", arguments[i + 1]);
        if ((argument == "--screenshot" || argument == "--help") && qEnvironmentVariableIsEmpty("DISPLAY") &&
            qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

QPalette darkPalette()
{
    QPalette palette(QColor(45, 45, 48), QColor(37, 37, 38));
    palette.setColor(QPalette::Highlight, QColor(60, 120, 200));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    return palette;
}

class DemoWindow : public QWidget {
public:
    DemoWindow()
        : m_place(new QLineEdit(this))
        , m_status(new QLabel(this))
        , m_control(new SpreadsheetControl(this))
    {
        setWindowTitle(QStringLiteral("表格"));
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(m_place);
        layout->addWidget(m_control, 1);
        layout->addWidget(m_status);
        fillDemo(*m_control);
        m_control->ask = [this](const QString& question) {
            return QMessageBox::question(this, windowTitle(), question) == QMessageBox::Yes;
        };
        connect(m_control, &SpreadsheetControl::refused, m_status, &QLabel::setText);
        connect(m_control, &SpreadsheetControl::selectionChanged, this, &DemoWindow::showSelection);
        connect(m_place, &QLineEdit::returnPressed, this, [this] {
            if (const spreadsheet::Refusal why = m_control->cursor().goTo(m_place->text()))
                m_status->setText(QString::fromStdString(why.reason()));
            else
                m_control->setFocus();
        });
        showSelection();
        m_control->setFocus();
    }
    SpreadsheetControl& control() { return *m_control; }

private:
    void showSelection()
    {
        m_place->setText(QString::fromStdString(spreadsheet::cellName(m_control->cursor().activeCell())));
        const auto figures = m_control->cursor().selectionFigures();
        m_status->setText(
            figures.numbers < 2
                ? QString()
                : QStringLiteral("计数 %1  求和 %2").arg(figures.filled).arg(figures.sum, 0, 'f', 2));
    }

    QLineEdit* m_place;
    QLabel* m_status;
    SpreadsheetControl* m_control;
};

/// Puts the control into a state worth a picture.
void arrange(SpreadsheetControl& control, const QString& state)
{
    if (state == QLatin1String("block"))
        control.cursor().select({2, 4, 4, 9});
    if (state == QLatin1String("copied")) {
        control.cursor().select({1, 4, 2, 7});
        control.commands().copy();
        control.cursor().setActiveCell(4, 6);
    }
    if (state == QLatin1String("frozen")) {
        control.cursor().setActiveCell(2, 4);
        control.commands().freezeHere();
        control.cursor().setTopLeftCell({3, 7});
    }
    if (state == QLatin1String("edit")) {
        control.cursor().setActiveCell(4, 12);
        control.entry().begin(spreadsheet::EditStart::replace, QStringLiteral("=SUM(B6:B8)+B4*"));
    }
    if (state == QLatin1String("list")) {
        control.cursor().setActiveCell(2, 12);
        control.actions().openDropDown();
    }
}

} // namespace

int main(int count, char** arguments)
{
    prepareEnvironment(count, arguments);
    QApplication application(count, arguments);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption screenshot("screenshot", "Saves a picture and ends.", "file");
    const QCommandLineOption dark("dark", "With a dark palette.");
    const QCommandLineOption scale("scale", "Pixels for each of the toolkit's.", "factor");
    const QCommandLineOption zoom("zoom", "Of the cells, in per cent.", "percent", "100");
    const QCommandLineOption state("state", "block, copied, frozen, edit or list.", "name");
    parser.addOptions({screenshot, dark, scale, zoom, state});
    parser.process(application);

    application.setStyle(QStyleFactory::create("Fusion"));
    if (parser.isSet(dark))
        application.setPalette(darkPalette());
    DemoWindow window;
    window.resize(1000, 620);
    window.show();
    window.control().setZoom(parser.value(zoom).toDouble() / 100);
    arrange(window.control(), parser.value(state));
    if (!parser.isSet(screenshot))
        return application.exec();
    QApplication::processEvents();
    QPixmap picture = window.grab();
    if (auto* list = window.findChild<QWidget*>("dropDown"); list && list->isVisible()) {
        QPainter painter(&picture);
        painter.drawPixmap(window.mapFromGlobal(list->pos()), list->grab());
    }
    if (picture.save(parser.value(screenshot)))
        return 0;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(parser.value(screenshot)));
    return 1;
}
