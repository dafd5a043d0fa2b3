#include "spreadsheet/print/PreviewPages.h"

#include "spreadsheet/print/PagePainter.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QPainter>

#include <utility>

namespace spreadsheet {

PreviewPages::PreviewPages()
    : m_text(std::make_unique<PageText>())
{
}

PreviewPages::~PreviewPages() = default;

void PreviewPages::attach(const Workbook& workbook, int sheet, PageRequest request)
{
    m_workbook = &workbook;
    m_sheet = sheet;
    setRequest(std::move(request));
}

void PreviewPages::setRequest(PageRequest request)
{
    m_request = std::move(request);
    m_revision.reset();
}

bool PreviewPages::areOld() const
{
    return m_workbook && m_revision != m_workbook->revision();
}

const PageLayout* PreviewPages::layout() const
{
    if (!areOld())
        return m_layout.get();
    m_revision = m_workbook->revision();
    ++m_version;
    m_layout.reset();
    m_problem.clear();
    try {
        m_layout = std::make_unique<PageLayout>(sheet(), m_request);
    } catch (const PageLayoutError& error) {
        m_problem = QString::fromUtf8(error.what());
    } catch (const std::out_of_range&) {
        m_problem = QStringLiteral("工作表已不存在。");
    }
    return m_layout.get();
}

QString PreviewPages::problem() const
{
    layout();
    return m_problem;
}

int PreviewPages::count() const
{
    return layout() ? layout()->pageCount() : 1;
}

std::uint64_t PreviewPages::version() const
{
    layout();
    return m_version;
}

const Sheet& PreviewPages::sheet() const
{
    return m_workbook->sheet(m_sheet);
}

QPixmap PreviewPages::picture(int page, QSize size, double ratio) const
{
    QPixmap picture(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::white);
    const PageLayout* const pages = layout();
    if (!pages)
        return picture;
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    const double scale = static_cast<double>(size.width()) / pages->paperWidth();
    painter.scale(scale, scale);
    PagePainter(sheet(), *pages, *m_text).paint(painter, page);
    return picture;
}

} // namespace spreadsheet
