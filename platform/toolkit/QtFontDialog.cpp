#include "platform/toolkit/QtFontDialog.h"

#include "platform/windows/front_window.h"
#include "platform/windows/number_fields.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace selfreport {

// Not the toolkit's font dialog: its styles have the names that the fonts' makers gave them, and its sizes
// are whole.

namespace {

struct NamedColour {
    std::uint32_t colour;
    const char* name;
};

constexpr NamedColour colours[] = {
    {0x000000, "黑色"}, {0x800000, "褐色"}, {0x008000, "绿色"},   {0x808000, "橄榄色"},
    {0x000080, "藏青"}, {0x800080, "紫色"}, {0x008080, "青色"},   {0x808080, "灰色"},
    {0xC0C0C0, "银色"}, {0xFF0000, "红色"}, {0x00FF00, "酸橙色"}, {0xFFFF00, "黄色"},
    {0x0000FF, "蓝色"}, {0xFF00FF, "紫红"}, {0x00FFFF, "水绿"},   {0xFFFFFF, "白色"},
};

/// In the order of the list; bit 0 of a row is bold, bit 1 italic.
constexpr const char* styles[] = {"常规", "粗体", "斜体", "粗斜体"};

constexpr const char* sizes[] = {"8",  "9",  "10", "10.5", "11", "12", "14", "16", "18",
                                 "20", "22", "24", "26",   "28", "36", "48", "72"};
constexpr double smallest = 1; // points
constexpr double largest = 409;

constexpr QSize sampleSize(360, 72); // pixels

QIcon sampleOf(std::uint32_t colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(QColor(static_cast<QRgb>(colour)));
    return pixmap;
}

class FontWindow : public QDialog {
public:
    explicit FontWindow(const FontChoice& first)
        : QDialog(frontWindow())
        , m_first(first)
    {
        setObjectName("fontDialog");
        setWindowTitle(QStringLiteral("字体"));
        fillLists();
        layOut();
        connect(&m_family, &QListWidget::itemSelectionChanged, this, &FontWindow::showSample);
        connect(&m_style, &QListWidget::currentRowChanged, this, &FontWindow::showSample);
        connect(&m_size, &QComboBox::currentTextChanged, this, &FontWindow::showSample);
        connect(&m_colour, &QComboBox::currentIndexChanged, this, &FontWindow::showSample);
        connect(&m_underline, &QCheckBox::toggled, this, &FontWindow::showSample);
        connect(&m_strikeOut, &QCheckBox::toggled, this, &FontWindow::showSample);
        showSample();
    }

    /// What stands in the dialog; a family or a size that it does not know stays as it came.
    FontChoice choice() const
    {
        FontChoice choice = m_first;
        // The list makes its first row the current one when it gets the focus, but selects nothing.
        if (const auto families = m_family.selectedItems(); !families.isEmpty())
            choice.family = families.constFirst()->text().toStdString();
        const double points = m_size.currentText().toDouble();
        if (points >= smallest && points <= largest)
            choice.points = points;
        choice.bold = (m_style.currentRow() & 1) != 0;
        choice.italic = (m_style.currentRow() & 2) != 0;
        choice.underline = m_underline.isChecked();
        choice.strikeOut = m_strikeOut.isChecked();
        choice.colour = m_colour.currentData().toUInt();
        return choice;
    }

private:
    void fillLists()
    {
        m_family.setObjectName("fontFamily");
        m_family.addItems(QFontDatabase::families());
        const auto same = m_family.findItems(QString::fromStdString(m_first.family), Qt::MatchExactly);
        m_family.setCurrentItem(same.isEmpty() ? nullptr : same.constFirst());
        m_style.setObjectName("fontStyle");
        for (const char* style : styles)
            m_style.addItem(QString::fromUtf8(style));
        m_style.setCurrentRow((m_first.bold ? 1 : 0) + (m_first.italic ? 2 : 0));
        m_size.setObjectName("fontSize");
        m_size.setEditable(true);
        m_size.setInsertPolicy(QComboBox::NoInsert);
        auto* const range = new DecimalValidator(smallest, largest, 1, &m_size);
        range->setLocale(QLocale::c());
        m_size.setValidator(range);
        for (const char* size : sizes)
            m_size.addItem(QLatin1String(size));
        m_size.setEditText(QLocale::c().toString(m_first.points, 'g', QLocale::FloatingPointShortest));
        m_underline.setChecked(m_first.underline);
        m_strikeOut.setChecked(m_first.strikeOut);
        fillColours();
    }

    void fillColours()
    {
        m_colour.setObjectName("fontColour");
        for (const NamedColour& named : colours)
            m_colour.addItem(sampleOf(named.colour), QString::fromUtf8(named.name), named.colour);
        if (m_colour.findData(m_first.colour) < 0)
            m_colour.addItem(sampleOf(m_first.colour), QStringLiteral("当前颜色"), m_first.colour);
        m_colour.setCurrentIndex(m_colour.findData(m_first.colour));
    }

    void layOut()
    {
        auto* const grid = new QGridLayout(this);
        const auto put = [grid](const char* caption, QWidget& control, int column, int row) {
            auto* const label = new QLabel(QString::fromUtf8(caption));
            label->setBuddy(&control);
            grid->addWidget(label, row, column);
            grid->addWidget(&control, row + 1, column, Qt::Alignment());
        };
        put("字体(&F):", m_family, 0, 0);
        put("字形(&Y):", m_style, 1, 0);
        put("大小(&S):", m_size, 2, 0);
        grid->setAlignment(&m_size, Qt::AlignTop);
        put("颜色(&C):", m_colour, 0, 2);
        m_underline.setText(QStringLiteral("下划线(&U)"));
        m_strikeOut.setText(QStringLiteral("删除线(&K)"));
        grid->addWidget(&m_underline, 3, 1);
        grid->addWidget(&m_strikeOut, 3, 2);
        m_sample.setFrameShape(QFrame::StyledPanel);
        m_sample.setAlignment(Qt::AlignCenter);
        m_sample.setFixedHeight(sampleSize.height());
        m_sample.setMinimumWidth(sampleSize.width());
        m_sample.setSizePolicy(QSizePolicy::Ignored,
                               QSizePolicy::Fixed); // a large font never widens the window
        grid->addWidget(&m_sample, 4, 0, 1, 3);
        grid->addWidget(buttons(), 5, 0, 1, 3);
        grid->setColumnStretch(0, 1);
        grid->setRowStretch(1, 1);
    }

    QDialogButtonBox* buttons()
    {
        auto* const row = new QDialogButtonBox;
        auto* const accepts = row->addButton(QStringLiteral("确定"), QDialogButtonBox::AcceptRole);
        accepts->setObjectName("fontOK");
        row->addButton(QStringLiteral("取消"), QDialogButtonBox::RejectRole)->setObjectName("fontCancel");
        connect(row, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(row, &QDialogButtonBox::rejected, this, &QDialog::reject);
        return row;
    }

    void showSample()
    {
        const FontChoice shown = choice();
        QFont font(QString::fromStdString(shown.family));
        font.setPointSizeF(shown.points);
        font.setBold(shown.bold);
        font.setItalic(shown.italic);
        font.setUnderline(shown.underline);
        font.setStrikeOut(shown.strikeOut);
        m_sample.setFont(font);
        m_sample.setText(QStringLiteral("财务报表 1,234.56"));
        QPalette palette = m_sample.palette();
        palette.setColor(QPalette::WindowText, QColor(static_cast<QRgb>(shown.colour)));
        palette.setColor(QPalette::Window, Qt::white); // paper, in a dark palette too
        m_sample.setPalette(palette);
        m_sample.setAutoFillBackground(true);
    }

    const FontChoice m_first;
    QListWidget m_family, m_style;
    QComboBox m_size, m_colour;
    QCheckBox m_underline, m_strikeOut;
    QLabel m_sample;
};

} // namespace

std::optional<FontChoice> QtFontDialog::choose(const FontChoice& first)
{
    FontWindow window(first);
    if (window.exec() != QDialog::Accepted)
        return {};
    return window.choice();
}

} // namespace selfreport
