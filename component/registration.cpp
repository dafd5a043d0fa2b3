#include "component/registration.h"
#include "component/host_call.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

#include <dlfcn.h>

namespace selfreport {

namespace {

QString descriptorFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/selfreport/classes/clsSelfReport.json");
}

/// The file that this code stands in.
QString libraryFile()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&registerLibrary), &info) == 0)
        throw HostError("无法确定报表组件所在的文件。");
    return QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath();
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
