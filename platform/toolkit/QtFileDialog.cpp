#include "platform/toolkit/QtFileDialog.h"

#include "platform/services/Dialogs.h"
#include "platform/toolkit/file_filter.h"
#include "platform/toolkit/QtDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace selfreport {

namespace {

bool isPattern(const QString& name)
{
    return name.contains('*') || name.contains('?');
}

void prepare(QFileDialog& dialog, const FileDialogSettings& settings)
{
    dialog.setObjectName("fileDialog");
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
    QFileDialog dialog(QApplication::activeWindow());
    dialog.setFileMode(QFileDialog::ExistingFile);
    prepare(dialog, settings);
    return chosen(dialog);
}

std::optional<std::string> QtFileDialog::chooseToSave(const FileDialogSettings& settings)
{
    QFileDialog dialog(QApplication::activeWindow());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite,
                     (settings.flags & FileDialogSettings::overwritePrompt) == 0);
    prepare(dialog, settings);
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
