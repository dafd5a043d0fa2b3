#include "windows/printing/pagesetup.h"

#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/GetZoom.h"
#include "windows/printing/headerfooter.h"
#include "windows/printing/margin_text.h"
#include "windows/printing/MarginField.h"
#include "windows/printing/page_setup_statements.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/print_sheet.h"
#include "windows/printing/PrintedGrid.h"
#include "windows/printing/stored_page_setup.h"
#include "windows/printing/zoom_entries.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <stdexcept>

namespace selfreport {

// Margins and orientation live twice: in the report's row, from which every opening takes them, and on the
// sheets that are shown now. The dialog loads from the row and writes both, the sheets first: then the
// preview behind it is right even if the database refuses, which is told and can be repeated.

namespace {

constexpr const char* marginNames[] = {"左:", "右:", "上:", "下:"};

} // namespace

pagesetup::pagesetup(PrintedGrid& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
{
    setObjectName("pagesetup");
    setWindowTitle(QStringLiteral("页面设置"));
    new QGridLayout(this);
    buildMargins();
    buildChoices();
    buildButtons();
    getReportInfo();
    std::int16_t& zoom = m_grid.context.report.zoomIndex;
    m_zoomWasChosen = zoom != -1;
    if (!m_zoomWasChosen)
        zoom = firstZoomIndex;
    Combo1->setCurrentIndex(zoom);
    pagemargin[0]->setFocus();
    openOnScreen(*this);
}

void pagesetup::buildMargins()
{
    auto* frame = new QGroupBox(QStringLiteral("页边距(inch)"));
    auto* rows = new QFormLayout(frame);
    for (std::size_t i = 0; i < pagemargin.size(); ++i) {
        pagemargin[i] = new MarginField;
        pagemargin[i]->setObjectName(QStringLiteral("pagemargin_%1").arg(i));
        rows->addRow(QString::fromUtf8(marginNames[i]), pagemargin[i]);
    }
    static_cast<QGridLayout*>(layout())->addWidget(frame, 0, 0, 2, 1);
}

void pagesetup::buildChoices()
{
    auto* zoom = new QGroupBox(QStringLiteral("缩放比例"));
    Combo1 = new QComboBox;
    Combo1->setObjectName("Combo1");
    for (const ZoomEntry& entry : zoomEntries)
        Combo1->addItem(QString::fromUtf8(entry.shown));
    (new QFormLayout(zoom))->addRow(QStringLiteral("比例:"), Combo1);

    auto* direction = new QGroupBox(QStringLiteral("页面方向"));
    auto* columns = new QHBoxLayout(direction);
    for (std::size_t i = 0; i < porientation.size(); ++i) {
        porientation[i] = new QRadioButton(i == 0 ? QStringLiteral("纵向") : QStringLiteral("横向"));
        porientation[i]->setObjectName(QStringLiteral("porientation_%1").arg(i));
        columns->addWidget(porientation[i]);
    }
    porientation[0]->setChecked(true);
    auto* const places = static_cast<QGridLayout*>(layout());
    places->addWidget(zoom, 0, 1);
    places->addWidget(direction, 1, 1);
}

void pagesetup::buildButtons()
{
    static constexpr struct {
        const char *name, *caption;
        void (*clicked)(pagesetup&);
    } buttons[] = {
        {"Command1", "改变页眉页脚", [](auto& window) { window.Command1_Click(); }},
        {"cmdXPOK", "确定(&Q)", [](auto& window) { window.cmdXPOK_Click(); }},
        {"cmdXPClose", "取消(&E)", [](auto& window) { window.close(); }},
    };
    auto* frame = new QGroupBox(QStringLiteral("页眉 / 页脚 显示"));
    auto* const inFrame = new QVBoxLayout(frame);
    auto* const below = new QHBoxLayout;
    below->addStretch();
    for (const auto& [name, caption, clicked] : buttons) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, handler = clicked] { handler(*this); });
        if (inFrame->isEmpty())
            inFrame->addWidget(button);
        else
            below->addWidget(button);
    }
    auto* const places = static_cast<QGridLayout*>(layout());
    places->addWidget(frame, 2, 0, 1, 2);
    places->addLayout(below, 3, 0, 1, 2);
    findChild<QPushButton*>("cmdXPOK")->setDefault(true);
}

/// @throws std::runtime_error if the field cannot hold it
void pagesetup::showMargin(int index, double value)
{
    const auto text = marginText(value);
    if (!text)
        throw std::runtime_error("页边距“" + std::string(marginNames[index]) + "”为 " +
                                 QString::number(value).toStdString() + " 英寸,超出了 0.00 到 9.99 的范围。");
    pagemargin[static_cast<std::size_t>(index)]->showInches(*text);
}

/// What the sheets show instead of what is stored.
void pagesetup::showShownPrint()
{
    const spreadsheet::PrintSettings& print = activeSheetsPrint(m_grid.workbook());
    const int margins[] = {print.marginLeft, print.marginRight, print.marginTop, print.marginBottom};
    for (int i = 0; i < 4; ++i)
        showMargin(i, static_cast<double>(margins[i]) / spreadsheet::twipsPerInch);
    porientation[print.landscape ? 1 : 0]->setChecked(true);
}

void pagesetup::getReportInfo()
{
    ReportContext& context = m_grid.context;
    if (context.report.editFlag == 0 || m_grid.pageSetupRefusal())
        return; // the row under its id is another report's
    if (!m_grid.showsStoredMargins()) {
        context.database.done(Icon::critical, [&] { showShownPrint(); });
        return;
    }
    context.database.done(Icon::critical, [&] {
        const auto rows =
            context.database.asked<Recordset>([statement = loadPageSetupStatement(context.report.id)](
                                                  Connection& open) { return open.query(statement); });
        if (rows.isEmpty())
            return;
        static constexpr const char* columns[] = {"fLeft", "fRight", "fTop", "fBottom"};
        for (int i = 0; i < 4; ++i)
            showMargin(i, rows.number(0, columns[i]));
        porientation[rows.number(0, "fDirection") == 1 ? 0 : 1]->setChecked(true);
    });
}

/// An empty field is told and gets the focus; places left open in the others become 0.
bool pagesetup::marginsAreComplete()
{
    for (MarginField* const field : pagemargin)
        if (field->text().isEmpty() || field->text().toStdString() == MarginText::empty) {
            m_grid.context.database.tell(Icon::exclamation, "请输入数定类型!");
            field->setFocus();
            return false;
        }
    for (MarginField* const field : pagemargin)
        field->setText(QString::fromStdString(filledMargin(field->text().toStdString())));
    return true;
}

std::array<double, 4> pagesetup::inches() const
{
    std::array<double, 4> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = marginInches(pagemargin[i]->text().toStdString());
    return values;
}

void pagesetup::apply(spreadsheet::PrintSettings& print) const
{
    const std::array<double, 4> margins = inches();
    print.marginTop = marginTwips(margins[2]);
    print.marginBottom = marginTwips(margins[3]);
    print.marginLeft = marginTwips(margins[0]);
    print.marginRight = marginTwips(margins[1]);
    print.landscape = !porientation[0]->isChecked();
}

/// Tells why if a sheet could not be printed so.
bool pagesetup::marginsLeaveRoom()
{
    const std::string problem =
        layoutProblemOfAll(m_grid, [this](int, spreadsheet::PrintSettings& print) { apply(print); });
    if (problem.empty())
        return true;
    m_grid.context.database.tell(Icon::exclamation, problem);
    pagemargin[0]->setFocus();
    return false;
}

void pagesetup::cmdXPOK_Click()
{
    if (!marginsAreComplete() || !marginsLeaveRoom())
        return;
    if (m_zoomWasChosen || Combo1->currentIndex() != firstZoomIndex) // else the preview keeps its own
        GetZoom(m_grid, static_cast<std::int16_t>(Combo1->currentIndex()));
    changePrintSettings(m_grid.workbook(), [&](spreadsheet::PrintSettings& print) { apply(print); });
    frmPreview::refresh();
    m_grid.context.report.zoomIndex = static_cast<std::int16_t>(Combo1->currentIndex());
    saveToDB();
    accept();
}

void pagesetup::saveToDB()
{
    if (isPageSetupRefused(m_grid))
        return;
    ReportContext& context = m_grid.context;
    if (context.report.editFlag == 0) {
        m_grid.tellStatus("报表尚未保存,页面设置没有存入数据库");
        return;
    }
    const bool isPortrait = porientation[0]->isChecked();
    const std::array<double, 4> margins = inches();
    const auto isStored = [margins, isPortrait](const StoredPageSetup& setup) {
        return margins == std::array{setup.left, setup.right, setup.top, setup.bottom} &&
               (setup.direction == 1) == isPortrait;
    };
    if (changeStoredPageSetup(m_grid, savePageSetupStatement(context.report.id, margins, isPortrait), {},
                              isStored))
        m_grid.pageSetupStored(margins, isPortrait);
}

int pagesetup::exec()
{
    return isPageSetupRefused(m_grid) ? QDialog::Rejected : QDialog::exec();
}

void pagesetup::Command1_Click()
{
    headerfooter(m_grid, this).exec();
}

void pagesetup::done(int result)
{
    m_grid.context.report.zoomIndex = static_cast<std::int16_t>(Combo1->currentIndex());
    QDialog::done(result);
}

} // namespace selfreport
