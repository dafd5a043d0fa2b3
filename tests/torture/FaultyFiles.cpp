#include "tests/torture/FaultyFiles.h"

#include <csignal>
#include <cstring>
#include <sqlite3.h>
#include <unistd.h>

namespace selfreport::torture {

namespace {

struct {
    Fault fault = Fault::failsOnce;
    int place = 0; ///< 0: none
    int calls = 0;
} plan;

[[noreturn]] void die()
{
    ::kill(::getpid(), SIGKILL);
    for (;;)
        ::pause();
}

/// The result of a call with that failure, or of the call itself.
/// @param half  does half of the call, so far as that is possible
template <class Call, class Half>
int passed(int failure, bool writes, const Call& call, const Half& half)
{
    const int number = ++plan.calls;
    if (plan.place == 0 || number < plan.place)
        return call();
    const bool isPlace = number == plan.place;
    switch (plan.fault) {
    case Fault::failsOnce:
        return isPlace ? failure : call();
    case Fault::failsFromNow:
        return failure;
    case Fault::diskIsFull:
        return writes ? SQLITE_FULL : call();
    case Fault::killed:
        die();
    case Fault::killedWithin:
        half();
        die();
    }
    return call();
}

template <class Call>
int passed(int failure, bool writes, const Call& call)
{
    return passed(failure, writes, call, call);
}

struct File {
    sqlite3_file base;
    sqlite3_file* real;
};

sqlite3_file* realOf(sqlite3_file* file)
{
    return reinterpret_cast<File*>(file)->real;
}

int closeFile(sqlite3_file* file)
{
    return realOf(file)->pMethods ? realOf(file)->pMethods->xClose(realOf(file)) : SQLITE_OK;
}

int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 at)
{
    return passed(SQLITE_IOERR_READ, false,
                  [&] { return realOf(file)->pMethods->xRead(realOf(file), bytes, count, at); });
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at)
{
    const auto write = [&](int size) {
        return realOf(file)->pMethods->xWrite(realOf(file), bytes, size, at);
    };
    return passed(
        SQLITE_IOERR_WRITE, true, [&] { return write(count); }, [&] { write(count / 2); });
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size)
{
    return passed(SQLITE_IOERR_TRUNCATE, true,
                  [&] { return realOf(file)->pMethods->xTruncate(realOf(file), size); });
}

/// What a killed process wrote the system keeps: nothing needs to reach the disk, which takes most of the
/// time.
int syncFile(sqlite3_file*, int)
{
    return passed(SQLITE_IOERR_FSYNC, false, [] { return SQLITE_OK; });
}

int fileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return realOf(file)->pMethods->xFileSize(realOf(file), size);
}

int lockFile(sqlite3_file* file, int level)
{
    return passed(SQLITE_IOERR_LOCK, false,
                  [&] { return realOf(file)->pMethods->xLock(realOf(file), level); });
}

int unlockFile(sqlite3_file* file, int level)
{
    return realOf(file)->pMethods->xUnlock(realOf(file),
                                           level); // a lock that cannot be given back is no fault
}

int checkReservedLock(sqlite3_file* file, int* result)
{
    return realOf(file)->pMethods->xCheckReservedLock(realOf(file), result);
}

int controlFile(sqlite3_file* file, int operation, void* argument)
{
    return realOf(file)->pMethods->xFileControl(realOf(file), operation, argument);
}

int sectorSize(sqlite3_file* file)
{
    return realOf(file)->pMethods->xSectorSize(realOf(file));
}

int deviceCharacteristics(sqlite3_file* file)
{
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

const sqlite3_io_methods methods{1,
                                 closeFile,
                                 readFile,
                                 writeFile,
                                 truncateFile,
                                 syncFile,
                                 fileSize,
                                 lockFile,
                                 unlockFile,
                                 checkReservedLock,
                                 controlFile,
                                 sectorSize,
                                 deviceCharacteristics,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr};

sqlite3_vfs* realFiles = nullptr;

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* given)
{
    auto* const opened = reinterpret_cast<File*>(file);
    opened->base.pMethods = nullptr;
    opened->real = reinterpret_cast<sqlite3_file*>(opened + 1);
    std::memset(opened->real, 0, static_cast<std::size_t>(realFiles->szOsFile));
    const int result = passed(SQLITE_CANTOPEN, false,
                              [&] { return realFiles->xOpen(realFiles, name, opened->real, flags, given); });
    if (result == SQLITE_OK)
        opened->base.pMethods = &methods;
    return result;
}

int deleteFile(sqlite3_vfs*, const char* name, int)
{
    return passed(SQLITE_IOERR_DELETE, false, [&] { return realFiles->xDelete(realFiles, name, 0); });
}

} // namespace

void faulty_files::beginWatching()
{
    static sqlite3_vfs files;
    if (realFiles)
        return;
    realFiles = sqlite3_vfs_find(nullptr);
    files = *realFiles;
    files.pNext = nullptr;
    files.zName = "faulty";
    files.szOsFile = static_cast<int>(sizeof(File)) + realFiles->szOsFile;
    files.xOpen = openFile;
    files.xDelete = deleteFile;
    sqlite3_vfs_register(&files, 1);
}

void faulty_files::order(Fault fault, int place)
{
    plan = {fault, place, 0};
}

int faulty_files::endFault()
{
    plan.place = 0;
    return plan.calls;
}

} // namespace selfreport::torture
