#include "component/SelfReportPlugin.h"

namespace selfreport {

bool SelfReportPlugin::editForm(qint16 intType, qint16 isShow)
{
    return m_class.editForm(intType, &isShow);
}

bool SelfReportPlugin::init(const QString& strConnString, const QString& strTitle,
                            const QString& strLoginUserId, const QString& strAppPath)
{
    return m_class.init(strConnString.toStdString(), strTitle.toStdString(), strLoginUserId.toStdString(),
                        strAppPath.toStdString());
}

bool SelfReportPlugin::cwSelfReport()
{
    return m_class.cwSelfReport();
}

bool SelfReportPlugin::cwSelfReportExe(qint32 intInterId)
{
    return m_class.cwSelfReportExe(intInterId);
}

QString SelfReportPlugin::lastError() const
{
    return QString::fromStdString(m_class.lastError());
}

} // namespace selfreport
