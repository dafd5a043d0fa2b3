#include "spreadsheet/files/placing/PendingFile.h"

#include "tests/spreadsheet/files/FilesTest.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <set>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace spreadsheet {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

void put(const fs::path& file, std::string_view content)
{
    std::ofstream(file, std::ios::binary) << content;
}

std::string contentOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, std::string_view content)
{
    PendingFile pending(file);
    pending.write(content);
    pending.putInPlace();
}

/// Why a file could not be written; "" if it could.
std::string refusal(const std::function<void()>& work)
{
    try {
        work();
        return {};
    } catch (const FileError& error) {
        return error.what();
    }
}

mode_t modeOf(const fs::path& file)
{
    struct stat status {};
    EXPECT_EQ(lstat(file.c_str(), &status), 0) << file;
    return status.st_mode;
}

std::string repeated(const char* text, int times)
{
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}

/// All that a reader of a pipe or of one connection of a socket gets, read on a thread of its own.
class Reader {
public:
    explicit Reader(std::function<int()> opened)
        : m_thread([this, opened = std::move(opened)] {
            const int handle = opened();
            char piece[4096];
            for (ssize_t size; (size = read(handle, piece, sizeof piece)) > 0;)
                m_read.append(piece, static_cast<std::size_t>(size));
            close(handle);
        })
    {
    }
    std::string whole()
    {
        m_thread.join();
        return m_read;
    }

private:
    std::string m_read;
    std::thread m_thread;
};

TEST(PendingFile, LinksAreFollowedAndStay)
{
    const TestFolder folder;
    put(folder.file("target.csv"), "old");
    fs::create_directory(folder.file("other"));
    fs::create_symlink("target.csv", folder.file("link.csv"));
    fs::create_symlink("link.csv", folder.file("second.csv"));
    fs::create_symlink("other/fresh.csv", folder.file("dangling.csv"));
    fs::create_symlink(folder.file("other"), folder.file("folder"));

    write(folder.file("second.csv"), "new");
    EXPECT_EQ(contentOf(folder.file("target.csv")), "new");
    write(folder.file("dangling.csv"), "fresh");
    EXPECT_EQ(contentOf(folder.file("other/fresh.csv")), "fresh");
    write(folder.file("folder/fresh.csv"), "again");
    EXPECT_EQ(contentOf(folder.file("other/fresh.csv")), "again");
    for (const char* link : {"link.csv", "second.csv", "dangling.csv", "folder"})
        EXPECT_TRUE(fs::is_symlink(folder.file(link))) << link;
}

TEST(PendingFile, WhatCannotBeWrittenIsNamedAndStays)
{
    const TestFolder folder;
    put(folder.file("readonly"), "old");
    fs::permissions(folder.file("readonly"), fs::perms::owner_read);
    fs::create_symlink("readonly", folder.file("toReadonly"));
    fs::create_symlink("circle2", folder.file("circle1"));
    fs::create_symlink("circle1", folder.file("circle2"));
    fs::create_directory(folder.file("folder"));
    put(folder.file("plain"), "");
    const struct {
        std::string name, reason;
    } cases[] = {
        {"readonly", "只读"},
        {"toReadonly", "只读"},
        {"circle1", "符号链接"},
        {"folder", "文件夹"},
        {"plain/a", "不是文件夹"},
        {"nowhere/a", "不存在"},
        {std::string(256, 'x'), "过长"},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(refusal([&] { write(folder.file(c.name), "new"); }),
                    testing::AllOf(HasSubstr(c.name), HasSubstr(c.reason)));
        EXPECT_EQ(folder.fileCount(), 6U) << c.name;
    }
    EXPECT_EQ(contentOf(folder.file("readonly")), "old");
}

/// A hurried user names the ledger itself as the report's file.
TEST(PendingFile, ADatabaseIsNotReplacedUnlessItMayBe)
{
    const TestFolder folder;
    const std::string database("SQLite format 3\0rows", 20);
    put(folder.file("ledger.csv"), database);
    fs::create_symlink("ledger.csv", folder.file("link.pdf"));
    for (const char* name : {"ledger.csv", "link.pdf"}) {
        EXPECT_THAT(refusal([&] { write(folder.file(name), "new"); }), HasSubstr("账套数据库")) << name;
        EXPECT_EQ(contentOf(folder.file("ledger.csv")), database) << name;
    }
    put(folder.file("about.csv"), "SQLite format 3, as text");
    put(folder.file("short.csv"), "SQLite format 3");
    for (const char* name : {"about.csv", "short.csv"})
        EXPECT_EQ(refusal([&] { write(folder.file(name), "new"); }), "") << name;

    PendingFile demo(folder.file("ledger.csv"), Replacing::anything);
    demo.write("new");
    demo.putInPlace();
    EXPECT_EQ(contentOf(folder.file("ledger.csv")), "new");
}

TEST(PendingFile, PermissionsAndOwnerAreThoseOfTheFormerFile)
{
    const TestFolder folder;
    const auto file = folder.file("a.csv");
    for (const mode_t mode : {0600, 0640, 0664, 0755, 0222}) {
        put(file, "old");
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        const bool isRoot = geteuid() == 0;
        if (isRoot) {
            ASSERT_EQ(chown(file.c_str(), 1234, 2345), 0);
        }
        write(file, "new");
        struct stat status {};
        ASSERT_EQ(stat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
        if (isRoot) {
            EXPECT_EQ(status.st_uid, 1234U);
            EXPECT_EQ(status.st_gid, 2345U);
        }
        fs::remove(file);
    }
    const mode_t before = umask(027);
    write(folder.file("fresh.csv"), "new");
    umask(before);
    EXPECT_EQ(modeOf(folder.file("fresh.csv")) & 07777, 0640U);
}

TEST(PendingFile, NamesMayBeAsLongAsTheSystemTakes)
{
    const TestFolder folder;
    for (const std::string& name : {std::string(255, 'x'), repeated("报", 85)}) {
        ASSERT_EQ(name.size(), 255U);
        write(folder.file(name), "first");
        write(folder.file(name), "second");
        EXPECT_EQ(contentOf(folder.file(name)), "second");
        fs::remove(folder.file(name));
        EXPECT_EQ(folder.fileCount(), 0U);
    }
}

TEST(PendingFile, PipesAndSocketsAreWrittenTo)
{
    const TestFolder folder;
    const std::string pipe = folder.file("pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink("pipe", folder.file("link"));
    const std::string content = repeated("0123456789", 30'000); // more than a pipe holds
    for (const char* name : {"pipe", "link"}) {
        Reader reader([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(200)); // after the writer
            return open(pipe.c_str(), O_RDONLY);
        });
        write(folder.file(name), content);
        EXPECT_EQ(reader.whole(), content) << name;
        EXPECT_TRUE(S_ISFIFO(modeOf(pipe)));
    }

    const std::string name = folder.file("socket").string();
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name.c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    Reader reader([&] { return accept(listener, nullptr, nullptr); });
    write(name, content);
    EXPECT_EQ(reader.whole(), content);
    close(listener);
    EXPECT_THAT(refusal([&] { write(name, content); }), HasSubstr("没有程序在接收"));
    EXPECT_TRUE(S_ISSOCK(modeOf(name)));
}

/// The reader goes away in the middle: an error, and no end of the process.
TEST(PendingFile, APipeWhoseReaderLeavesIsToldOf)
{
    const TestFolder folder;
    const std::string pipe = folder.file("pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread reader([&] {
        const int handle = open(pipe.c_str(), O_RDONLY);
        char some[10];
        EXPECT_EQ(read(handle, some, sizeof some), 10);
        close(handle);
    });
    EXPECT_THAT(refusal([&] { write(pipe, repeated("0123456789", 30'000)); }), HasSubstr("已经退出"));
    reader.join();
}

/// As the superuser a device could be turned into a file.
TEST(PendingFile, DevicesStayDevices)
{
    const TestFolder folder;
    const std::string null = folder.file("null").string();
    const std::string full = folder.file("full").string();
    if (mknod(null.c_str(), S_IFCHR | 0666, makedev(1, 3)) != 0 ||
        mknod(full.c_str(), S_IFCHR | 0666, makedev(1, 7)) != 0 || !std::ofstream(null).is_open())
        GTEST_SKIP() << "devices can be neither made nor opened here";
    write(null, "content");
    EXPECT_THAT(refusal([&] { write(full, "content"); }), HasSubstr("磁盘已满"));
    EXPECT_TRUE(S_ISCHR(modeOf(null)));
    EXPECT_TRUE(S_ISCHR(modeOf(full)));
    EXPECT_EQ(folder.fileCount(), 2U);
}

TEST(PendingFile, WhatAKilledProcessLeftGoesWithTheNext)
{
    const TestFolder folder;
    int made[2];
    ASSERT_EQ(pipe(made), 0);
    const pid_t child = fork();
    if (child == 0) {
        PendingFile pending(folder.file("a.csv"));
        put(pending.path().string() + "-journal", "of a database");
        std::ignore = ::write(made[1], "x", 1);
        pause();
        _exit(0);
    }
    char byte;
    ASSERT_EQ(read(made[0], &byte, 1), 1);
    EXPECT_EQ(folder.fileCount(), 2U);
    write(folder.file("b.csv"), "while the other lives");
    EXPECT_EQ(folder.fileCount(), 3U);

    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    put(folder.file(".selfreport-notes"), "somebody else's");
    put(folder.file("a.part"), "somebody else's");
    EXPECT_EQ(folder.fileCount(), 5U);
    write(folder.file("b.csv"), "after");
    EXPECT_EQ(folder.fileCount(), 3U);
    close(made[0]);
    close(made[1]);
}

TEST(PendingFiles, ComeTogetherOrNotAtAll)
{
    const TestFolder folder;
    const auto both = [&](const char* first, const char* second) {
        PendingFiles files;
        files.add(folder.file(first)).write("new");
        files.add(folder.file(second)).write("new");
        fs::remove_all(folder.file("taken"));
        fs::create_directories(folder.file("taken/full")); // no file takes the place of a folder
        files.putInPlace();
    };
    put(folder.file("old"), "old");
    const auto inode = [&] {
        struct stat status {};
        EXPECT_EQ(stat(folder.file("old").c_str(), &status), 0);
        return status.st_ino;
    };
    const auto before = inode();
    EXPECT_NE(refusal([&] { both("old", "taken"); }), "");
    EXPECT_EQ(contentOf(folder.file("old")), "old");
    EXPECT_EQ(inode(), before); // the very file
    fs::remove_all(folder.file("taken"));
    EXPECT_NE(refusal([&] { both("fresh", "taken"); }), "");
    EXPECT_FALSE(fs::exists(folder.file("fresh")));
    fs::remove_all(folder.file("taken"));
    EXPECT_EQ(folder.fileCount(), 1U);

    EXPECT_EQ(refusal([&] { both("old", "fresh"); }), "");
    EXPECT_EQ(contentOf(folder.file("old")) + contentOf(folder.file("fresh")), "newnew");
    EXPECT_EQ(folder.fileCount(), 3U); // with the folder
}

/// What was written to a pipe cannot be taken back: it comes last, and a file before it is put back.
TEST(PendingFiles, APipeThatNobodyReadsPutsTheFileBack)
{
    const TestFolder folder;
    put(folder.file("old"), "old");
    const int port = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, folder.file("deaf").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(port, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    PendingFiles files;
    files.add(folder.file("deaf")).write("new");
    files.add(folder.file("old")).write("new");
    EXPECT_THAT(refusal([&] { files.putInPlace(); }), HasSubstr("deaf"));
    EXPECT_EQ(contentOf(folder.file("old")), "old");
    close(port);
}

/// Nor can it be put back where a folder has come meanwhile: then it stays, and is named.
TEST(PendingFiles, AFileThatCannotBePutBackIsKept)
{
    const TestFolder folder;
    put(folder.file("old"), "old");
    const std::string pipe = folder.file("pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread reader([&] {
        const int handle = open(pipe.c_str(), O_RDONLY); // the file is in its place by then
        char some[10];
        EXPECT_EQ(read(handle, some, sizeof some), 10);
        fs::remove(folder.file("old"));
        fs::create_directories(folder.file("old/full"));
        close(handle);
    });
    std::string why;
    {
        PendingFiles files;
        files.add(pipe).write(repeated("0123456789", 30'000));
        files.add(folder.file("old")).write("new");
        why = refusal([&] { files.putInPlace(); });
    }
    reader.join();
    const std::string sign = "留在 ";
    const std::size_t at = why.find(sign);
    ASSERT_NE(at, why.npos) << why;
    EXPECT_EQ(contentOf(why.substr(at + sign.size())), "old");
}

TEST(PendingFiles, OneFileUnderTwoNamesIsRefused)
{
    const TestFolder folder;
    put(folder.file("a"), "old");
    fs::create_directory(folder.file("folder"));
    fs::create_symlink("a", folder.file("link"));
    fs::create_hard_link(folder.file("a"), folder.file("second"));
    fs::create_symlink("fresh", folder.file("dangling"));
    const std::pair<const char*, const char*> cases[] = {
        {"a", "a"},      {"a", "folder/../a"},  {"link", "a"},
        {"a", "second"}, {"fresh", "dangling"}, {"fresh", "folder/../fresh"}};
    for (const auto& [first, second] : cases)
        EXPECT_THAT(refusal([&, one = first, other = second] {
                        PendingFiles files;
                        files.add(folder.file(one));
                        files.add(folder.file(other));
                    }),
                    HasSubstr("同一个文件"))
            << first << ' ' << second;
}

} // namespace
} // namespace spreadsheet
