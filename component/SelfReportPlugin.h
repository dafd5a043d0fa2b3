#pragma once
#include "component/clsSelfReport.h"

#include <QObject>

namespace selfreport {

/// The public class for hosts that load plugins of the toolkit and call operations by name. Its metadata
/// describe the interface; operations, arguments and results are those of clsSelfReport.
class SelfReportPlugin : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "selfreport._clsSelfReport" FILE "clsSelfReport.json")
    Q_CLASSINFO("class", "clsSelfReport")
    Q_PROPERTY(QString lastError READ lastError)

public:
    Q_INVOKABLE bool editForm(qint16 intType, qint16 isShow = 0);
    Q_INVOKABLE bool init(const QString& strConnString, const QString& strTitle,
                          const QString& strLoginUserId, const QString& strAppPath);
    Q_INVOKABLE bool cwSelfReport();
    Q_INVOKABLE bool cwSelfReportExe(qint32 intInterId);
    QString lastError() const;

private:
    clsSelfReport m_class;
};

} // namespace selfreport
