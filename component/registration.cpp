#include "component/registration.h"
#include "component/host_call.h"
#include "component/own_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

namespace selfreport {

namespace {

QString descriptorFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/selfreport/classes/clsSelfReport.json");
}

/// @throws HostError if the system does not tell
QString libraryFile()
{
    const QString file = ownFile();
    if (file.isEmpty())
        throw HostError("无法确定报表组件所在的文件。");
    return file;
}

[[noreturn]] void refuse(const char* what, const QString& file, const QString& reason)
{
    throw HostError(what + QDir::toNativeSeparators(file).toStdString() + ": " + reason.toStdString());
}

} // namespace

void registerLibrary()
{
    const QJsonObject descriptor{
        {"class", "clsSelfReport"},
        {"interface", "_clsSelfReport"},
        {"library", libraryFile()},
        {"version", SELFREPORT_VERSION},
    };
    QDir().mkpath(QFileInfo(descriptorFile()).path());
    QSaveFile file(descriptorFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(descriptor).toJson()) < 0 ||
        !file.commit())
        refuse("无法登记报表组件,文件写入失败: ", file.fileName(), file.errorString());
}

void unregisterLibrary()
{
    QFile file(descriptorFile());
    if (file.exists() && !file.remove())
        refuse("无法注销报表组件,文件删除失败: ", file.fileName(), file.errorString());
}

} // namespace selfreport
