// A library to be preloaded: it fails the k-th call of one kind in one program.
//
//   FAULTS_PROGRAM  the program's file name. Others, such as the interpreter and the tools that a
//                   run starts, run as ever, and so do the children of the program that is meant.
//   FAULTS_KIND     open, read, ... as in kindnames below
//   FAULTS_CALL     k, from 1; 0 or missing: nothing fails
//   FAULTS_LOG      a file that gets a line "failed KIND PATH" when the fault is there, and at the
//                   end of main a line "calls KIND NUMBER" for each kind
//
// Calls count from the first statement of main to its return: neither those of the dynamic loader
// nor of the constructors of libraries, and in the process itself, not in its children before they
// start another program. Standard output counts as well: it becomes a stream whose writes go through
// this library, since the C library keeps those of its own streams to itself.
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

enum kinds {
    kopen,
    kread,
    kshortread,
    kwrite,
    kshortwrite,
    kclose,
    krename,
    kunlink,
    kmkdir,
    ktruncate,
    kseek,
    ksync,
    klock,
    kfork,
    kmalloc,
    nkinds
};
static const char *const kindnames[nkinds] = {"open",  "read",   "shortread", "write", "shortwrite",
                                              "close", "rename", "unlink",    "mkdir", "truncate",
                                              "seek",  "sync",   "lock",      "fork",  "malloc"};
static const int errors[nkinds] = {EMFILE, EIO, 0,      ENOSPC, 0,      EIO,    EIO,   EACCES,
                                   ENOSPC, EIO, EINVAL, EIO,    ENOLCK, EAGAIN, ENOMEM};

static atomic_bool active;
static atomic_long calls[nkinds];
static enum kinds wantedkind = nkinds;
static long wantedcall;
static const char *logpath;

// ---------------------------------------------------------------------------------- the account

static void tell(const char *word, enum kinds kind, const char *text)
{
    if (!logpath) return;
    char line[600];
    const int n = snprintf(line, sizeof line, "%s %s %.500s\n", word, kindnames[kind], text);
    const int log =
        (int)syscall(SYS_openat, AT_FDCWD, logpath, O_WRONLY | O_CREAT | O_APPEND, 0666);
    if (log < 0) return;
    syscall(SYS_write, log, line, (size_t)n);
    syscall(SYS_close, log);
}

// Whether this call is the one to fail; path tells what it was about, and is asked for only then.
static bool fails(enum kinds kind, const char *path)
{
    if (!atomic_load(&active)) return false;
    const long call = atomic_fetch_add(&calls[kind], 1) + 1;
    if (kind != wantedkind || call != wantedcall) return false;
    atomic_store(&active, false); // what is told needs no fault
    tell("failed", kind, path ? path : "-");
    atomic_store(&active, true);
    if (errors[kind]) errno = errors[kind];
    return true;
}

// The same for an open file.
static bool failsfile(enum kinds kind, int file)
{
    char path[4096] = "-";
    if (atomic_load(&active) && kind == wantedkind && atomic_load(&calls[kind]) + 1 == wantedcall) {
        char name[40];
        snprintf(name, sizeof name, "/proc/self/fd/%d", file);
        const long n = syscall(SYS_readlinkat, AT_FDCWD, name, path, sizeof path - 1);
        strcpy(path + (n > 0 ? n : 0), n > 0 ? "" : "-");
    }
    return fails(kind, file == STDOUT_FILENO ? "standard output" : path);
}

#define REAL(name)                                                                                 \
    static __typeof__(&name) real;                                                                 \
    if (!real) *(void **)&real = dlsym(RTLD_NEXT, #name)

// ---------------------------------------------------------------------------------- files

static int mode(int flags, va_list more)
{
    return flags & (O_CREAT | __O_TMPFILE) ? va_arg(more, int) : 0;
}

#define OPEN(name)                                                                                 \
    int name(const char *path, int flags, ...)                                                     \
    {                                                                                              \
        va_list more;                                                                              \
        va_start(more, flags);                                                                     \
        const int bits = mode(flags, more);                                                        \
        va_end(more);                                                                              \
        return fails(kopen, path) ? -1 : (int)syscall(SYS_openat, AT_FDCWD, path, flags, bits);    \
    }
OPEN(open)
OPEN(open64)

#define OPENAT(name)                                                                               \
    int name(int folder, const char *path, int flags, ...)                                         \
    {                                                                                              \
        va_list more;                                                                              \
        va_start(more, flags);                                                                     \
        const int bits = mode(flags, more);                                                        \
        va_end(more);                                                                              \
        return fails(kopen, path) ? -1 : (int)syscall(SYS_openat, folder, path, flags, bits);      \
    }
OPENAT(openat)
OPENAT(openat64)

#define FOPEN(name)                                                                                \
    FILE *name(const char *restrict path, const char *restrict how)                                \
    {                                                                                              \
        REAL(name);                                                                                \
        return fails(kopen, path) ? NULL : real(path, how);                                        \
    }
FOPEN(fopen)
FOPEN(fopen64)

DIR *opendir(const char *path)
{
    REAL(opendir);
    return fails(kopen, path) ? NULL : real(path);
}

// A short read or write gets the first half of what was asked for.
static size_t cut(enum kinds kind, int file, size_t n)
{
    return n > 1 && failsfile(kind, file) ? n / 2 : n;
}

ssize_t read(int file, void *to, size_t n)
{
    if (failsfile(kread, file)) return -1;
    return syscall(SYS_read, file, to, cut(kshortread, file, n));
}

#define PREAD(name)                                                                                \
    ssize_t name(int file, void *to, size_t n, off_t at)                                           \
    {                                                                                              \
        if (failsfile(kread, file)) return -1;                                                     \
        return syscall(SYS_pread64, file, to, cut(kshortread, file, n), at);                       \
    }
PREAD(pread)
PREAD(pread64)

ssize_t readv(int file, const struct iovec *to, int n)
{
    return failsfile(kread, file) ? -1 : syscall(SYS_readv, file, to, n);
}

ssize_t write(int file, const void *from, size_t n)
{
    if (failsfile(kwrite, file)) return -1;
    return syscall(SYS_write, file, from, cut(kshortwrite, file, n));
}

#define PWRITE(name)                                                                               \
    ssize_t name(int file, const void *from, size_t n, off_t at)                                   \
    {                                                                                              \
        if (failsfile(kwrite, file)) return -1;                                                    \
        return syscall(SYS_pwrite64, file, from, cut(kshortwrite, file, n), at);                   \
    }
PWRITE(pwrite)
PWRITE(pwrite64)

ssize_t writev(int file, const struct iovec *from, int n)
{
    return failsfile(kwrite, file) ? -1 : syscall(SYS_writev, file, from, n);
}

// The file is closed either way, as the system does it.
int close(int file)
{
    const bool failed = failsfile(kclose, file);
    const int status = (int)syscall(SYS_close, file);
    if (failed) errno = errors[kclose];
    return failed ? -1 : status;
}

#define SEEK(name)                                                                                 \
    off_t name(int file, off_t offset, int whence)                                                 \
    {                                                                                              \
        return failsfile(kseek, file) ? -1 : syscall(SYS_lseek, file, offset, whence);             \
    }
SEEK(lseek)
SEEK(lseek64)

#define FTRUNCATE(name)                                                                            \
    int name(int file, off_t length)                                                               \
    {                                                                                              \
        return failsfile(ktruncate, file) ? -1 : (int)syscall(SYS_ftruncate, file, length);        \
    }
FTRUNCATE(ftruncate)
FTRUNCATE(ftruncate64)

#define TRUNCATE(name)                                                                             \
    int name(const char *path, off_t length)                                                       \
    {                                                                                              \
        return fails(ktruncate, path) ? -1 : (int)syscall(SYS_truncate, path, length);             \
    }
TRUNCATE(truncate)
TRUNCATE(truncate64)

int fsync(int file)
{
    return failsfile(ksync, file) ? -1 : (int)syscall(SYS_fsync, file);
}
int fdatasync(int file)
{
    return failsfile(ksync, file) ? -1 : (int)syscall(SYS_fdatasync, file);
}
int flock(int file, int how)
{
    return failsfile(klock, file) ? -1 : (int)syscall(SYS_flock, file, how);
}

int rename(const char *from, const char *to)
{
    return fails(krename, to) ? -1 : (int)syscall(SYS_rename, from, to);
}
int renameat(int folder, const char *from, int other, const char *to)
{
    return fails(krename, to) ? -1 : (int)syscall(SYS_renameat2, folder, from, other, to, 0);
}
int unlink(const char *path)
{
    return fails(kunlink, path) ? -1 : (int)syscall(SYS_unlink, path);
}
int unlinkat(int folder, const char *path, int flags)
{
    return fails(kunlink, path) ? -1 : (int)syscall(SYS_unlinkat, folder, path, flags);
}
int rmdir(const char *path)
{
    return fails(kunlink, path) ? -1 : (int)syscall(SYS_rmdir, path);
}
int remove(const char *path)
{
    REAL(remove);
    return fails(kunlink, path) ? -1 : real(path);
}
int mkdir(const char *path, mode_t bits)
{
    return fails(kmkdir, path) ? -1 : (int)syscall(SYS_mkdir, path, bits);
}
int mkdirat(int folder, const char *path, mode_t bits)
{
    return fails(kmkdir, path) ? -1 : (int)syscall(SYS_mkdirat, folder, path, bits);
}

// ---------------------------------------------------------------------------------- processes

pid_t fork(void)
{
    REAL(fork);
    if (fails(kfork, "fork")) return -1;
    const pid_t child = real();
    if (child == 0) atomic_store(&active, false);
    return child;
}
// A wrapper can't return twice from vfork; fork does what its callers need.
pid_t vfork(void)
{
    return fork();
}
int clone(int (*body)(void *), void *stack, int flags, void *argument, ...)
{
    REAL(clone);
    va_list more;
    va_start(more, argument);
    pid_t *const parent = va_arg(more, pid_t *);
    void *const storage = va_arg(more, void *);
    pid_t *const child = va_arg(more, pid_t *);
    va_end(more);
    // A command of the run: what its argument begins with points to the text.
    if (fails(kfork, *(const char *const *)argument)) return -1;
    return real(body, stack, flags, argument, parent, storage, child);
}
int system(const char *command)
{
    REAL(system);
    return fails(kfork, command) ? -1 : real(command);
}
FILE *popen(const char *command, const char *how)
{
    REAL(popen);
    return fails(kfork, command) ? NULL : real(command, how);
}

#define SPAWN(name)                                                                                \
    int name(pid_t *restrict child, const char *restrict program,                                  \
             const posix_spawn_file_actions_t *restrict actions,                                   \
             const posix_spawnattr_t *restrict attributes, char *const arguments[restrict],        \
             char *const environment[restrict])                                                    \
    {                                                                                              \
        REAL(name);                                                                                \
        if (fails(kfork, program)) return errors[kfork];                                           \
        return real(child, program, actions, attributes, arguments, environment);                  \
    }
SPAWN(posix_spawn)
SPAWN(posix_spawnp)

// ---------------------------------------------------------------------------------- memory

extern void *__libc_malloc(size_t n);
extern void *__libc_calloc(size_t n, size_t size);
extern void *__libc_realloc(void *block, size_t n);
extern void *__libc_memalign(size_t alignment, size_t n);

void *malloc(size_t n)
{
    return fails(kmalloc, "memory") ? NULL : __libc_malloc(n);
}
void *calloc(size_t n, size_t size)
{
    return fails(kmalloc, "memory") ? NULL : __libc_calloc(n, size);
}
void *realloc(void *block, size_t n)
{
    return fails(kmalloc, "memory") ? NULL : __libc_realloc(block, n);
}
void *aligned_alloc(size_t alignment, size_t n)
{
    return fails(kmalloc, "memory") ? NULL : __libc_memalign(alignment, n);
}
int posix_memalign(void **block, size_t alignment, size_t n)
{
    if (fails(kmalloc, "memory")) return ENOMEM;
    *block = __libc_memalign(alignment, n);
    return *block ? 0 : ENOMEM;
}

// ---------------------------------------------------------------------------------- main

static ssize_t writestandardoutput(void *cookie, const char *from, size_t n)
{
    (void)cookie;
    for (size_t done = 0; done < n;) {
        const ssize_t written = write(STDOUT_FILENO, from + done, n - done);
        if (written < 0) return 0;
        done += (size_t)written;
    }
    return (ssize_t)n;
}

static void configure(const char *path)
{
    const char *const program = getenv("FAULTS_PROGRAM");
    const char *const slash = strrchr(path, '/');
    if (!program || strcmp(program, slash ? slash + 1 : path) != 0) return;
    const char *const kind = getenv("FAULTS_KIND");
    const char *const call = getenv("FAULTS_CALL");
    for (enum kinds k = 0; kind && k < nkinds; ++k)
        if (strcmp(kind, kindnames[k]) == 0) wantedkind = k;
    wantedcall = call ? atol(call) : 0;
    logpath = getenv("FAULTS_LOG");
    unsetenv("LD_PRELOAD");
    const cookie_io_functions_t functions = {.write = writestandardoutput};
    FILE *const stream = fopencookie(NULL, "w", functions);
    if (stream) stdout = stream;
    atomic_store(&active, true);
}

static int (*programmain)(int, char **, char **);

static int countedmain(int argc, char **argv, char **environment)
{
    configure(argv[0]);
    const int status = programmain(argc, argv, environment);
    const bool counted = atomic_exchange(&active, false);
    for (enum kinds k = 0; counted && k < nkinds; ++k) {
        char number[24];
        snprintf(number, sizeof number, "%ld", atomic_load(&calls[k]));
        tell("calls", k, number);
    }
    return status;
}

int __libc_start_main(int (*main)(int, char **, char **), int argc, char **argv, void (*init)(void),
                      void (*fini)(void), void (*loaderfini)(void), void *stackend)
{
    int (*real)(int (*)(int, char **, char **), int, char **, void (*)(void), void (*)(void),
                void (*)(void), void *);
    *(void **)&real = dlsym(RTLD_NEXT, "__libc_start_main");
    programmain = main;
    return real(countedmain, argc, argv, init, fini, loaderfini, stackend);
}
