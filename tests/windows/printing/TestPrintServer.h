#pragma once
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace selfreport::test {

/// A port of the loopback device that takes connections and never answers.
class SilentPort {
public:
    SilentPort()
        : m_socket(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(m_socket, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            ::listen(m_socket, 5) != 0 ||
            ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size) != 0)
            throw std::runtime_error("no port is free");
        m_number = ntohs(address.sin_port);
    }
    ~SilentPort() { ::close(m_socket); }
    SilentPort(const SilentPort&) = delete;
    SilentPort& operator=(const SilentPort&) = delete;
    int number() const { return m_number; }

private:
    int m_socket;
    int m_number = 0;
};

/// A print service of its own on the loopback device, with one queue, "pdf", that puts each job into a file
/// as PDF. It is the one that this process asks while it lives.
class TestPrintServer {
public:
    TestPrintServer()
    {
        folder.setAutoRemove(true);
        // Filters run as another user when this one is root.
        QFile::setPermissions(folder.path(), QFile::Permissions(0x7755));
        writeSettings();
        qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(m_port));
        m_server.start("/usr/sbin/cupsd", {"-f", "-c", path("cupsd.conf"), "-s", path("cups-files.conf")});
        if (!m_server.waitForStarted())
            throw std::runtime_error("cupsd is not installed");
        addQueue();
    }
    ~TestPrintServer()
    {
        stop();
        qunsetenv("CUPS_SERVER");
    }

    void stop()
    {
        m_server.kill();
        m_server.waitForFinished();
    }

    /// The file of the last job, once it is whole. Takes it away, so that the next job makes a new one.
    QString takePrinted()
    {
        const QString taken = path("taken" + QString::number(++m_taken) + ".pdf");
        for (int i = 0; i < 300; ++i) {
            if (QFile::exists(path("printed.pdf")) && run("lpstat", {"-o"}).isEmpty())
                break;
            QTest::qWait(100);
        }
        QFile::rename(path("printed.pdf"), taken);
        return taken;
    }

    static QByteArray run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        process.waitForFinished();
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
                   ? process.readAllStandardOutput()
                   : QByteArray("failed");
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QTemporaryDir folder;

private:
    void write(const QString& name, const QByteArray& text) const
    {
        QFile file(path(name));
        file.open(QIODevice::WriteOnly);
        file.write(text);
    }

    void writeSettings()
    {
        m_port = SilentPort().number(); // free again at once
        QByteArray places = "FileDevice Yes\n";
        for (const auto& [setting, name] :
             {std::pair("ServerRoot", "root"), std::pair("RequestRoot", "spool"),
              std::pair("TempDir", "spool/tmp"), std::pair("CacheDir", "cache"),
              std::pair("StateDir", "state")}) {
            QDir(folder.path()).mkpath(name);
            places += QByteArray(setting) + ' ' + path(name).toLocal8Bit() + '\n';
        }
        for (const char* log : {"AccessLog", "ErrorLog", "PageLog", "Printcap"})
            places += QByteArray(log) + ' ' + path(log).toLocal8Bit() + '\n';
        write("cups-files.conf", places);
        write("cupsd.conf",
              "Listen 127.0.0.1:" + QByteArray::number(m_port) +
                  "\nBrowsing No\nDefaultAuthType None\nWebInterface No\n"
                  "<Location />\nOrder allow,deny\nAllow localhost\n</Location>\n"
                  "<Location /admin>\nOrder allow,deny\nAllow localhost\n</Location>\n"
                  "<Policy default>\n<Limit All>\nOrder deny,allow\nAllow all\n</Limit>\n</Policy>\n");
        write(
            "queue.ppd",
            "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1.0\"\n*LanguageVersion: English\n"
            "*LanguageEncoding: ISOLatin1\n*PCFileName: \"QUEUE.PPD\"\n*Manufacturer: \"Test\"\n"
            "*Product: \"(PDF)\"\n*ModelName: \"PDF\"\n*ShortNickName: \"PDF\"\n*NickName: \"PDF\"\n"
            "*PSVersion: \"(3010.000) 0\"\n*LanguageLevel: \"3\"\n*ColorDevice: True\n"
            "*cupsFilter2: \"application/vnd.cups-pdf application/pdf 0 -\"\n"
            "*OpenUI *PageSize/Page Size: PickOne\n*DefaultPageSize: A4\n"
            "*PageSize A4/A4: \"\"\n*PageSize A5/A5: \"\"\n*CloseUI: *PageSize\n"
            "*OpenUI *PageRegion: PickOne\n*DefaultPageRegion: A4\n"
            "*PageRegion A4/A4: \"\"\n*PageRegion A5/A5: \"\"\n*CloseUI: *PageRegion\n"
            "*DefaultImageableArea: A4\n*ImageableArea A4/A4: \"0 0 595 842\"\n"
            "*ImageableArea A5/A5: \"0 0 420 595\"\n*DefaultPaperDimension: A4\n"
            "*PaperDimension A4/A4: \"595 842\"\n*PaperDimension A5/A5: \"420 595\"\n");
    }

    void addQueue() const
    {
        const QStringList add{
            "-p", "pdf", "-E", "-v", "file:" + path("printed.pdf"), "-P", path("queue.ppd")};
        for (int i = 0; i < 100 && run("lpadmin", add) == "failed"; ++i)
            QTest::qWait(100);
        if (run("lpadmin", {"-d", "pdf"}) == "failed")
            throw std::runtime_error("the print service did not take its queue");
    }

    QProcess m_server;
    int m_port = 0;
    int m_taken = 0;
};

} // namespace selfreport::test
