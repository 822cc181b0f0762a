// SPDX-License-Identifier: GPL-3.0-or-later

// Preloaded into the program, makes an operation on files fail: the one with the number FAILING_AT
// of those that change something under the folder FAILING_UNDER, or read a report there, and as
// many after it as FAILING_COUNT says (1 if unset). FAILING_HOW is the number of the error, "short"
// for a write that takes half and then has no room, or "kill" for an end of the program in that
// place. Each counted operation is a line of the file FAILING_LIST. The log is left out: it tells
// what happened. There is no network while the file FAILING_AWAY exists.
//
// In FAILING_OBJECTS, a file of eight bytes, stands how many QObjects there are at any moment.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static int counted(const char* path)
{
    const char* under = getenv("FAILING_UNDER");
    return under && path && !strncmp(path, under, strlen(under)) && !strstr(path, "/log.log");
}

static int how_is(const char* word)
{
    const char* how = getenv("FAILING_HOW");
    return how && !strcmp(how, word);
}

static int number_in(const char* variable, int otherwise)
{
    const char* text = getenv(variable);
    return text ? atoi(text) : otherwise;
}

// Whether this operation is to fail; errno says how, then.
static int fails(const char* operation, const char* path)
{
    static int count = 0;
    if (!counted(path))
        return 0;
    const int number = __atomic_add_fetch(&count, 1, __ATOMIC_SEQ_CST);
    const int first = number_in("FAILING_AT", 0);
    const int is_chosen =
        first > 0 && number >= first && number < first + number_in("FAILING_COUNT", 1);

    char line[PATH_MAX + 64];
    const int length = snprintf(line, sizeof line, "%d %s %s%s\n", number, operation, path,
                                is_chosen ? " FAILS" : "");
    const char* list = getenv("FAILING_LIST");
    const int descriptor =
        list ? (int)syscall(SYS_openat, AT_FDCWD, list, O_WRONLY | O_CREAT | O_APPEND, 0600) : -1;
    if (descriptor >= 0) {
        syscall(SYS_write, descriptor, line, (size_t)length);
        syscall(SYS_close, descriptor);
    }
    if (is_chosen && how_is("kill"))
        raise(SIGKILL);
    errno = is_chosen ? number_in("FAILING_HOW", ENOSPC) : errno;
    if (is_chosen && errno == 0)
        errno = ENOSPC;
    return is_chosen;
}

static int descriptor_fails(const char* operation, int descriptor)
{
    char link[64];
    char path[PATH_MAX];
    snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length <= 0)
        return 0;
    path[length] = 0;
    return fails(operation, path);
}

static int open_fails(const char* path, int flags)
{
    const int changes = (flags & O_ACCMODE) != O_RDONLY;
    return (changes || (path && strstr(path, "/activity/"))) && fails("open", path);
}

#define OPEN(name, parameters, arguments) \
    int name parameters \
    { \
        va_list list; \
        va_start(list, flags); \
        const mode_t mode = (flags & (O_CREAT | __O_TMPFILE)) ? va_arg(list, mode_t) : 0; \
        va_end(list); \
        return open_fails(path, flags) ? -1 : NEXT(name) arguments; \
    }
OPEN(open, (const char* path, int flags, ...), (path, flags, mode))
OPEN(open64, (const char* path, int flags, ...), (path, flags, mode))
OPEN(openat, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
OPEN(openat64, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))

ssize_t write(int descriptor, const void* data, size_t size)
{
    static int had_no_room = -1;
    const int saved = errno;
    if (descriptor == had_no_room) {
        had_no_room = -1;
        errno = ENOSPC;
        return -1;
    }
    if (descriptor_fails("write", descriptor)) {
        if (!how_is("short") || size < 2)
            return -1;
        had_no_room = descriptor;
        size /= 2;
    }
    errno = saved;
    return NEXT(write)(descriptor, data, size);
}

#define ON_DESCRIPTOR(name) \
    int name(int descriptor) \
    { \
        return descriptor_fails(#name, descriptor) ? -1 : NEXT(name)(descriptor); \
    }
ON_DESCRIPTOR(fsync)
ON_DESCRIPTOR(fdatasync)

int rename(const char* from, const char* to)
{
    return fails("rename", to) ? -1 : NEXT(rename)(from, to);
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned flags)
{
    return fails("renameat2", to) ? -1
                                  : NEXT(renameat2)(from_folder, from, to_folder, to, flags);
}

int link(const char* from, const char* to)
{
    return fails("link", to) ? -1 : NEXT(link)(from, to);
}

int linkat(int from_folder, const char* from, int to_folder, const char* to, int flags)
{
    return fails("linkat", to) ? -1 : NEXT(linkat)(from_folder, from, to_folder, to, flags);
}

int unlink(const char* path)
{
    return fails("unlink", path) ? -1 : NEXT(unlink)(path);
}

int connect(int descriptor, const struct sockaddr* address, socklen_t size)
{
    const char* away = getenv("FAILING_AWAY");
    if (away && address->sa_family != AF_UNIX && NEXT(access)(away, F_OK) == 0) {
        errno = ENETUNREACH;
        return -1;
    }
    return NEXT(connect)(descriptor, address, size);
}

// Qt's own hooks for tools that look at a program's objects.
extern uintptr_t qtHookData[] __attribute__((weak));
static int64_t* objects;

static void object_added(void* object)
{
    (void)object;
    __atomic_add_fetch(objects, 1, __ATOMIC_SEQ_CST);
}

static void object_removed(void* object)
{
    (void)object;
    __atomic_sub_fetch(objects, 1, __ATOMIC_SEQ_CST);
}

__attribute__((constructor)) static void count_objects(void)
{
    const char* file = getenv("FAILING_OBJECTS");
    const int descriptor = file && qtHookData ? NEXT(open)(file, O_RDWR) : -1;
    if (descriptor < 0)
        return;
    objects = mmap(NULL, sizeof *objects, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (objects == MAP_FAILED)
        return;
    enum { ADD_QOBJECT = 3, REMOVE_QOBJECT = 4 };
    qtHookData[ADD_QOBJECT] = (uintptr_t)object_added;
    qtHookData[REMOVE_QOBJECT] = (uintptr_t)object_removed;
}
