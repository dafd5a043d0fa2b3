#include "platform/windows/own_file.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

namespace selfreport {

QString ownFile()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&ownFile), &info) == 0)
        return {};
    return QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath();
}

QString componentFolder()
{
    return QFileInfo(ownFile()).path();
}

} // namespace selfreport
