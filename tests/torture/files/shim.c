/* Preloaded into the program: counts the calls that touch files of one folder, and lets one of them fail or
 * be the program's last.
 *
 * FILES_FOLDER  the folder, absolute
 * FILES_PLACE   which call, from 1; 0: none
 * FILES_WAY     "fail": the call fails; "kill": the process is killed instead of the call
 * FILES_COUNT   a file outside the folder that gets the number of calls at the end
 */
#define _GNU_SOURCE 1
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

enum { mostHandles = 4096 };

static char isOurs[mostHandles];
static long calls;

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static int isInFolder(const char* path)
{
    const char* const folder = getenv("FILES_FOLDER");
    return folder && path && strncmp(path, folder, strlen(folder)) == 0;
}

static int isOurHandle(int handle)
{
    return handle >= 0 && handle < mostHandles && isOurs[handle];
}

static int noted(int handle)
{
    if (handle >= 0 && handle < mostHandles)
        isOurs[handle] = 1;
    return handle;
}

/* Whether this call is to fail. */
static int isThePlace(int mayFail)
{
    const char* const place = getenv("FILES_PLACE");
    const char* const way = getenv("FILES_WAY");
    ++calls;
    if (!place || !way || atol(place) != calls)
        return 0;
    if (strcmp(way, "kill") == 0)
        raise(SIGKILL);
    errno = EIO;
    return mayFail;
}

__attribute__((destructor)) static void tell(void)
{
    const char* const name = getenv("FILES_COUNT");
    FILE* const file = name ? REAL(fopen)(name, "w") : NULL;
    if (!file)
        return;
    fprintf(file, "%ld", calls);
    REAL(fclose)(file);
}

static mode_t modeOf(int flags, va_list arguments)
{
    return flags & (O_CREAT | __O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
}

#define OPEN(name)                                                        \
    int name(const char* path, int flags, ...)                            \
    {                                                                     \
        va_list arguments;                                                \
        va_start(arguments, flags);                                       \
        const mode_t mode = modeOf(flags, arguments);                     \
        va_end(arguments);                                                \
        if (!isInFolder(path))                                            \
            return REAL(name)(path, flags, mode);                         \
        return isThePlace(1) ? -1 : noted(REAL(name)(path, flags, mode)); \
    }
OPEN(open)
OPEN(open64)

#define FOPEN(name)                                                      \
    FILE* name(const char* path, const char* how)                        \
    {                                                                    \
        if (!isInFolder(path))                                           \
            return REAL(name)(path, how);                                \
        FILE* const file = isThePlace(1) ? NULL : REAL(name)(path, how); \
        if (file)                                                        \
            noted(fileno(file));                                         \
        return file;                                                     \
    }
FOPEN(fopen)
FOPEN(fopen64)

size_t fwrite(const void* bytes, size_t size, size_t count, FILE* file)
{
    return isOurHandle(fileno(file)) && isThePlace(1) ? 0 : REAL(fwrite)(bytes, size, count, file);
}

int fclose(FILE* file)
{
    const int handle = fileno(file);
    const int fails = isOurHandle(handle) && isThePlace(1);
    if (handle >= 0 && handle < mostHandles)
        isOurs[handle] = 0;
    const int result = REAL(fclose)(file);
    if (fails)
        errno = EIO;
    return fails ? EOF : result;
}

ssize_t write(int handle, const void* bytes, size_t size)
{
    return isOurHandle(handle) && isThePlace(1) ? -1 : REAL(write)(handle, bytes, size);
}

#define PWRITE(name)                                                                               \
    ssize_t name(int handle, const void* bytes, size_t size, off_t place)                          \
    {                                                                                              \
        return isOurHandle(handle) && isThePlace(1) ? -1 : REAL(name)(handle, bytes, size, place); \
    }
PWRITE(pwrite)
PWRITE(pwrite64)

int fsync(int handle)
{
    return isOurHandle(handle) && isThePlace(1) ? -1 : REAL(fsync)(handle);
}

int fchmod(int handle, mode_t mode)
{
    return isOurHandle(handle) && isThePlace(1) ? -1 : REAL(fchmod)(handle, mode);
}

int close(int handle)
{
    const int fails = isOurHandle(handle) && isThePlace(1);
    if (handle >= 0 && handle < mostHandles)
        isOurs[handle] = 0;
    const int result = REAL(close)(handle);
    if (fails)
        errno = EIO;
    return fails ? -1 : result;
}

int rename(const char* from, const char* to)
{
    return isInFolder(to) && isThePlace(1) ? -1 : REAL(rename)(from, to);
}

int link(const char* from, const char* to)
{
    return isInFolder(to) && isThePlace(1) ? -1 : REAL(link)(from, to);
}

/* A file that could not be removed is left behind by nobody's fault: it is only a place to be killed at. */
int unlink(const char* path)
{
    return isInFolder(path) && isThePlace(0) ? -1 : REAL(unlink)(path);
}
