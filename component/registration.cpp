#include "component/registration.h"
#include "component/host_call.h"
#include "failures/failure_text.h"
#include "platform/windows/own_file.h"
#include "spreadsheet/files/placing/PendingFile.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <filesystem>

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

std::filesystem::path pathOf(const QString& file)
{
    return file.toStdString();
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
    try {
        spreadsheet::PendingFile file(pathOf(descriptorFile()));
        file.write(QJsonDocument(descriptor).toJson().toStdString());
        file.putInPlace();
    } catch (const spreadsheet::FileError& error) {
        throw HostError("无法登记报表组件。" + failures::sentenceOf(error));
    }
}

void unregisterLibrary()
{
    std::error_code error;
    std::filesystem::remove(pathOf(descriptorFile()), error);
    if (error && error != std::errc::not_a_directory) // of a folder that is none there is nothing to remove
        throw HostError("无法注销报表组件,文件删除失败: " + pathOf(descriptorFile()).string() + ": " +
                        failures::reasonOfErrno(error.value()));
}

} // namespace selfreport
