#include "platform/toolkit/QtFileDialog.h"

#include "platform/services/Dialogs.h"
#include "platform/toolkit/ChineseTexts.h"
#include "platform/toolkit/file_filter.h"
#include "platform/toolkit/FileRows.h"
#include "platform/toolkit/QtDialogs.h"
#include "platform/windows/front_window.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QListView>
#include <QSplitter>
#include <QTreeView>

#include <algorithm>
#include <memory>

namespace selfreport {

namespace {

bool isPattern(const QString& name)
{
    return name.contains('*') || name.contains('?');
}

/// Names take the room that the other columns leave, and no time is cut.
void showWholeColumns(const QFileDialog& dialog)
{
    auto* const rows = dialog.findChild<QTreeView*>();
    if (!rows)
        return;
    rows->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    rows->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

/// The places at the side show their names.
void showWholePlaces(const QFileDialog& dialog)
{
    auto* const places = dialog.findChild<QListView*>("sidebar");
    auto* const parts = dialog.findChild<QSplitter*>("splitter");
    if (!places || !parts)
        return;
    const int width = places->sizeHintForColumn(0) + 2 * places->frameWidth();
    const int most = dialog.width() / 3;
    parts->setSizes({std::min(width, most), dialog.width() - std::min(width, most)});
}

/// The toolkit's own dialog: that of the desktop speaks the desktop's language.
std::unique_ptr<QFileDialog> prepared(QFileDialog::AcceptMode mode, QFileDialog::FileMode files,
                                      const FileDialogSettings& settings)
{
    const BuildingOurs building;
    auto made = std::make_unique<QFileDialog>(frontWindow());
    QFileDialog& dialog = *made;
    dialog.setObjectName("fileDialog");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setProxyModel(new FileRows(made.get()));
    showWholeColumns(dialog);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(files);
    if (!settings.title.empty())
        dialog.setWindowTitle(QString::fromStdString(settings.title));
    if (!settings.folder.empty())
        dialog.setDirectory(QString::fromStdString(settings.folder));
    const QString name = QString::fromStdString(settings.fileName);
    QStringList filters = nameFilters(QString::fromStdString(settings.filter));
    if (filters.isEmpty() && isPattern(name))
        filters = QStringList(name);
    if (!filters.isEmpty())
        dialog.setNameFilters(filters);
    if (!name.isEmpty() && !isPattern(name))
        dialog.selectFile(name);
    showWholePlaces(dialog);
    return made;
}

std::optional<std::string> chosen(QFileDialog& dialog)
{
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst().toStdString();
}

bool isReadOnly(const std::string& path)
{
    const QFileInfo file(QString::fromStdString(path));
    return file.exists() && !file.isWritable();
}

} // namespace

std::optional<std::string> QtFileDialog::chooseToOpen(const FileDialogSettings& settings)
{
    return chosen(*prepared(QFileDialog::AcceptOpen, QFileDialog::ExistingFile, settings));
}

std::optional<std::string> QtFileDialog::chooseToSave(const FileDialogSettings& settings)
{
    const auto made = prepared(QFileDialog::AcceptSave, QFileDialog::AnyFile, settings);
    QFileDialog& dialog = *made;
    dialog.setOption(QFileDialog::DontConfirmOverwrite,
                     (settings.flags & FileDialogSettings::overwritePrompt) == 0);
    if (!dialog.nameFilters().isEmpty())
        dialog.setDefaultSuffix(suffixOf(dialog.nameFilters().constFirst()));
    for (;;) {
        const std::optional<std::string> path = chosen(dialog);
        if (!path || (settings.flags & FileDialogSettings::noReadOnlyFile) == 0 || !isReadOnly(*path))
            return path;
        QtDialogs().message(Icon::exclamation, dialog.windowTitle().toStdString(),
                            "文件是只读的,请另选文件名: " + *path);
    }
}

} // namespace selfreport
