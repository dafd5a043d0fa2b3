#include "platform/toolkit/QtFontDialog.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace selfreport {

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

QIcon sample(std::uint32_t colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(QColor(static_cast<QRgb>(colour)));
    return pixmap;
}

QComboBox* colourList(std::uint32_t first)
{
    auto* list = new QComboBox;
    list->setObjectName("fontColour");
    for (const NamedColour& named : colours)
        list->addItem(sample(named.colour), QString::fromUtf8(named.name), named.colour);
    if (list->findData(first) < 0)
        list->addItem(sample(first), QStringLiteral("当前颜色"), first);
    list->setCurrentIndex(list->findData(first));
    return list;
}

QFont fontOf(const FontChoice& choice)
{
    QFont font(QString::fromStdString(choice.family));
    if (choice.points > 0)
        font.setPointSizeF(choice.points);
    font.setBold(choice.bold);
    font.setItalic(choice.italic);
    font.setUnderline(choice.underline);
    font.setStrikeOut(choice.strikeOut);
    return font;
}

/// What the user changed on the page, and `first` for the rest: the page shows whole sizes and the styles
/// that the family has, so 10.5 points would come back as 11 unasked.
FontChoice changed(FontChoice first, const QFont& shown, const QFont& left)
{
    if (left.family() != shown.family())
        first.family = left.family().toStdString();
    if (left.pointSizeF() != shown.pointSizeF())
        first.points = left.pointSizeF();
    if (left.bold() != shown.bold() || left.styleName() != shown.styleName())
        first.bold = left.bold();
    if (left.italic() != shown.italic() || left.styleName() != shown.styleName())
        first.italic = left.italic();
    first.underline = left.underline();
    first.strikeOut = left.strikeOut();
    return first;
}

} // namespace

std::optional<FontChoice> QtFontDialog::choose(const FontChoice& first)
{
    QDialog dialog(QApplication::activeWindow());
    dialog.setObjectName("fontDialog");
    dialog.setWindowTitle(QStringLiteral("字体"));
    auto* fonts = new QFontDialog(fontOf(first));
    fonts->setWindowFlags(Qt::Widget); // a page of this dialog, not a window
    fonts->setOptions(QFontDialog::NoButtons | QFontDialog::DontUseNativeDialog);
    QComboBox* const colour = colourList(first.colour);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("确定"), QDialogButtonBox::AcceptRole)->setObjectName("fontOK");
    buttons->addButton(QStringLiteral("取消"), QDialogButtonBox::RejectRole)->setObjectName("fontCancel");
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);

    auto* effects = new QFormLayout;
    effects->addRow(QStringLiteral("颜色(&C):"), colour);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(fonts, 1);
    layout->addLayout(effects);
    layout->addWidget(buttons);
    // The page would otherwise close alone and leave an empty dialog.
    QObject::connect(fonts, &QDialog::finished, &dialog, &QDialog::done);
    const QFont shown = fonts->currentFont();
    if (dialog.exec() != QDialog::Accepted)
        return {};
    FontChoice choice = changed(first, shown, fonts->currentFont());
    choice.colour = colour->currentData().toUInt();
    return choice;
}

} // namespace selfreport
