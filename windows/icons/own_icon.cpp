#include "windows/icons/own_icon.h"

#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <QPalette>
#include <QPixmap>

/// The drawings stand in a static library, whose resources nothing else makes known. Outside the namespace,
/// as the macro asks.
static void makeIconsKnown()
{
    Q_INIT_RESOURCE(icons);
}

namespace selfreport {

namespace {

constexpr QByteArrayView bareStroke = "#2b3a48"; // in the drawings that have no ground of their own

constexpr int sizes[] = {16, 24, 32, 48, 64, 96}; // pixels: toolbars at 100 % to 300 %

QIcon inColour(QByteArray drawing, const QColor& stroke)
{
    drawing.replace(bareStroke, stroke.name().toLatin1());
    QIcon icon;
    for (const int size : sizes) {
        QBuffer buffer(&drawing);
        QImageReader reader(&buffer, "svg");
        reader.setScaledSize({size, size});
        icon.addPixmap(QPixmap::fromImage(reader.read()));
    }
    return icon;
}

} // namespace

QIcon ownIcon(const QString& name)
{
    makeIconsKnown();
    const QString path = ":/selfreport/icons/" + name + ".svg";
    const QColor texts = QGuiApplication::palette().color(QPalette::ButtonText);
    QFile file(path);
    if (texts.lightness() < 128 || !file.open(QIODevice::ReadOnly))
        return QIcon(path);
    return inColour(file.readAll(), texts);
}

} // namespace selfreport
