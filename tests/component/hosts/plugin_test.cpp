#include <QApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace {

struct Plugin {
    QPluginLoader loader{QStringLiteral(SELFREPORT_LIBRARY)};
    std::unique_ptr<QObject> object{loader.instance()};
    QString error() const { return object->property("lastError").toString(); }
};

/// Calls cwSelfReportExe by its name on the calling thread, as late binding does; the result starts as
/// true to see it overwritten.
bool runReport(QObject* object, int id)
{
    bool result = true;
    EXPECT_TRUE(QMetaObject::invokeMethod(object, "cwSelfReportExe", Qt::DirectConnection,
                                          Q_RETURN_ARG(bool, result), Q_ARG(qint32, id)));
    return result;
}

} // namespace

TEST(SelfReportPlugin, MetadataDescribeTheOperationsThatCanBeInvoked)
{
    const Plugin plugin;
    ASSERT_TRUE(plugin.object) << plugin.loader.errorString().toStdString();
    const QJsonObject description = plugin.loader.metaData()["MetaData"].toObject();
    EXPECT_EQ(description["class"].toString(), "clsSelfReport");

    const QMetaObject* meta = plugin.object->metaObject();
    int next = meta->methodOffset();
    for (const QJsonValue operation : description["operations"].toArray()) {
        const QMetaMethod method = meta->method(next);
        EXPECT_EQ(method.name(), operation["name"].toString().toUtf8());
        EXPECT_STREQ(method.typeName(), "bool");
        const QJsonArray arguments = operation["arguments"].toArray();
        QList<QByteArray> names;
        for (const QJsonValue argument : arguments)
            names.append(argument["name"].toString().toUtf8());
        EXPECT_EQ(method.parameterNames(), names) << method.name().toStdString();
        next += arguments.isEmpty() || !arguments.last()["optional"].toBool() ? 1 : 2; // with and without it
    }
    EXPECT_EQ(next, meta->methodCount());
}

TEST(SelfReportPlugin, AHostWithoutWindowsGetsAnError)
{
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    const Plugin plugin;
    EXPECT_FALSE(runReport(plugin.object.get(), 1));
    EXPECT_NE(plugin.error(), "");
}

TEST(SelfReportPlugin, AnswersFalseOnTheHostsThreadAndRefusesOthers)
{
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    const Plugin plugin;
    QString whileOpen;
    QTimer user; // closes what opens
    QObject::connect(&user, &QTimer::timeout, [&] {
        if (QWidget* const window = QApplication::activeModalWidget()) {
            EXPECT_FALSE(runReport(plugin.object.get(), 2));
            whileOpen = plugin.error();
            window->close();
        }
    });
    user.start(5);
    EXPECT_FALSE(runReport(plugin.object.get(), 1));
    EXPECT_NE(whileOpen, "") << "nothing could be shown";
    EXPECT_EQ(plugin.error(), "");

    std::thread([&] { EXPECT_FALSE(runReport(plugin.object.get(), 2)); }).join();
    EXPECT_NE(plugin.error(), "");
}
