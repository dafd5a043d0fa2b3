#include "platform/toolkit/FileRows.h"

#include "platform/windows/time_text.h"

#include <QFileSystemModel>
#include <QLocale>

namespace selfreport {

namespace {

constexpr const char* headings[] = {"名称", "大小", "类型", "修改时间"};

QString sizeText(const QFileInfo& file)
{
    const QLocale chinese(QLocale::Chinese, QLocale::China);
    return file.isDir() ? QString() : chinese.toString(file.size()) + QStringLiteral(" 字节");
}

QString kindText(const QFileInfo& file)
{
    if (file.isDir())
        return QStringLiteral("文件夹");
    return (file.suffix() + QStringLiteral(" 文件")).trimmed();
}

} // namespace

QVariant FileRows::data(const QModelIndex& index, int role) const
{
    const auto* const files = qobject_cast<const QFileSystemModel*>(sourceModel());
    if (role != Qt::DisplayRole || index.column() == 0 || !files)
        return QIdentityProxyModel::data(index, role);
    const QFileInfo file = files->fileInfo(mapToSource(index));
    switch (index.column()) {
    case 1:
        return sizeText(file);
    case 2:
        return kindText(file);
    default:
        return timeText(file.lastModified());
    }
}

QVariant FileRows::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::DisplayRole && orientation == Qt::Horizontal && section >= 0 && section < 4)
        return QString::fromUtf8(headings[section]);
    return QIdentityProxyModel::headerData(section, orientation, role);
}

} // namespace selfreport
