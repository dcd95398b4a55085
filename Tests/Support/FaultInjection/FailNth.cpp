// A library to be preloaded into a program that is tested: one call into the C library fails as if
// the system had refused it. The environment says which one:
//
//   TESK_FAULT_CALL    the kind of call, see kKinds below
//   TESK_FAULT_AT      which call of that kind fails, counted from 1 over all threads and from the
//                      beginning of main(), so that the dynamic loader and static initialisation
//                      are left alone
//   TESK_FAULT_ERROR   the number that errno gets; without it what is usual for the kind
//   TESK_FAULT_REPORT  a file that is written when the call has failed: a line "CALL OF WHAT", such
//                      as "write 2 /tmp/log", and the stack; nobody writes it when none has failed
//
// Calls that the C library makes to itself cannot be seen from here, so functions that write to a
// stream are covered as such.
//
// Spared are allocations whose failure the tested program can do nothing about: OpenSSL crashes
// when it cannot allocate while it initialises itself, the dynamic loader gives other reasons, and
// the C library ends the process when it cannot register the destructor of a thread_local object.
//
// The real functions of the allocator are called by the names that the C library gives them, since
// looking them up allocates.

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <iterator>
#include <link.h>
#include <malloc.h>
#include <pthread.h>
#include <stdio_ext.h>
#include <string_view>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

#define TESK_INTERPOSED extern "C" __attribute__((visibility("default")))

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

enum class Kind : std::uint8_t {
    kAllocation,
    kOpen,
    kDescriptor,
    kRead,
    kWrite,
    kSync,
    kClose,
    kRename,
    kDirectory,
    kStatus,
    kLock,
    kAccept,
    kReceive,
    kSend,
    kThread,
    kNone,
};

struct KindName {
    std::string_view name;
    Kind kind;
    int error;
};

constexpr KindName kKinds[] = {
    {"allocation", Kind::kAllocation, ENOMEM},
    {"open", Kind::kOpen, EMFILE},
    {"descriptor", Kind::kDescriptor, EMFILE},  // of sockets, timers and the like
    {"read", Kind::kRead, EIO},
    {"write", Kind::kWrite, ENOSPC},
    {"sync", Kind::kSync, EIO},
    {"close", Kind::kClose, EIO},  // it is closed all the same
    {"rename", Kind::kRename, EIO},
    {"directory", Kind::kDirectory, ENOSPC},  // what makes one, or removes a name
    {"status", Kind::kStatus, EIO},
    {"lock", Kind::kLock, ENOLCK},
    {"accept", Kind::kAccept, EMFILE},
    {"recv", Kind::kReceive, ECONNRESET},
    {"send", Kind::kSend, ECONNRESET},
    {"thread", Kind::kThread, EAGAIN},
};

Kind chosenKind = Kind::kNone;
std::uint64_t chosenCall = 0;
int chosenError = 0;
const char* reportPath = nullptr;
std::atomic<bool> isCounting = false;
std::atomic<std::uint64_t> calls = 0;

// Whether what this thread calls now does not count. In memory that every thread has from its
// beginning.
__attribute__((tls_model("initial-exec"))) thread_local bool isLeftAlone = false;

// Where the code of the libraries lies whose allocations are spared.
struct Code {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
};
Code spared[4];
std::size_t sparedCount = 0;

int addIfSpared(dl_phdr_info* library, size_t /*size*/, void* /*data*/) {
    const std::string_view path = library->dlpi_name;
    if (path.find("/libcrypto.so") == path.npos && path.find("/ld-linux") == path.npos)
        return 0;
    for (int index = 0; index < library->dlpi_phnum && sparedCount < std::size(spared); ++index) {
        const ElfW(Phdr)& part = library->dlpi_phdr[index];
        if (part.p_type == PT_LOAD && (part.p_flags & PF_X) != 0) {
            const std::uintptr_t begin = library->dlpi_addr + part.p_vaddr;
            spared[sparedCount++] = {.begin = begin, .end = begin + part.p_memsz};
        }
    }
    return 0;
}

bool isSpared(const void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    for (const Code& code : spared) {
        if (code.begin <= address && address < code.end)
            return true;
    }
    return false;
}

void writeReport(const char* function, int descriptor, const char* path) {
    if (reportPath == nullptr)
        return;
    // By the numbers of the system calls, which nobody has taken the place of.
    const int file = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, reportPath, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    char name[PATH_MAX] = "";
    if (descriptor >= 0) {
        char link[64];
        (void)std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
        const ssize_t length = readlink(link, name, sizeof name - 1);
        name[length > 0 ? length : 0] = '\0';
        path = name;
    }
    dprintf(file, "%s %d %s\n", function, descriptor, path);
    void* frames[32];
    backtrace_symbols_fd(frames, backtrace(frames, 32), file);
    syscall(SYS_close, file);
}

// Whether this call is the one that fails; errno tells the reason then.
bool isFailing(Kind kind, const char* function, int descriptor = -1, const char* path = "") {
    if (kind != chosenKind || !isCounting.load(std::memory_order_relaxed) || isLeftAlone ||
        ++calls != chosenCall)
        return false;
    isLeftAlone = true;
    writeReport(function, descriptor, path);
    isLeftAlone = false;
    errno = chosenError;
    return true;
}

// The same for an allocation.
bool isFailing(const char* function, const void* caller) {
    return chosenKind == Kind::kAllocation && !isSpared(caller) &&
           isFailing(Kind::kAllocation, function);
}

// Whether the descriptor is of a file, a pipe or the like. Those of events and timers are of
// numbers in the memory of the kernel, which can be read and written always.
bool isStored(int descriptor) {
    struct stat status = {};
    return syscall(SYS_fstat, descriptor, &status) != 0 || (status.st_mode & S_IFMT) != 0;
}

// A stream does not go on after an interruption, so that one is no failure to it.
bool isStreamFailing(Kind kind, const char* function, FILE* stream) {
    if (chosenError == EINTR || !isFailing(kind, function, fileno(stream)))
        return false;
    stream->_flags |= _IO_ERR_SEEN;
    return true;
}

template <typename Function>
Function* real(Function* /*type*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

const char* variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// Before anything else of the program.
__attribute__((constructor)) void readEnvironment() {
    const std::string_view kind = variable("TESK_FAULT_CALL");
    for (const KindName& candidate : kKinds) {
        if (candidate.name == kind) {
            chosenKind = candidate.kind;
            chosenError = candidate.error;
        }
    }
    chosenCall = std::strtoull(variable("TESK_FAULT_AT"), nullptr, 10);
    if (const char* const error = std::getenv("TESK_FAULT_ERROR"))
        chosenError = std::atoi(error);
    reportPath = std::getenv("TESK_FAULT_REPORT");
    dl_iterate_phdr(&addIfSpared, nullptr);
    // The first one loads a library.
    void* frame = nullptr;
    (void)backtrace(&frame, 1);
}

using Main = int(int, char**, char**);
Main* programMain = nullptr;

int countedMain(int argc, char** argv, char** environment) {
    isCounting = true;
    return programMain(argc, argv, environment);
}

}  // namespace

// The real function by the name of the one that this stands in.
#define TESK_REAL(NAME) static auto* const call = real(&(NAME), #NAME)

// A function that fails by returning FAILURE, else does what the real one does.
#define TESK_FAULT(KIND, RESULT, FAILURE, NAME, PARAMETERS, ARGUMENTS, DESCRIPTOR, PATH) \
    TESK_INTERPOSED RESULT NAME PARAMETERS {                                             \
        TESK_REAL(NAME);                                                                 \
        if (isFailing(KIND, #NAME, DESCRIPTOR, PATH))                                    \
            return FAILURE;                                                              \
        return call ARGUMENTS;                                                           \
    }

// The same for one that writes to, or reads from, a stream.
#define TESK_STREAM_FAULT(KIND, RESULT, FAILURE, NAME, PARAMETERS, ARGUMENTS) \
    TESK_INTERPOSED RESULT NAME PARAMETERS {                                  \
        TESK_REAL(NAME);                                                      \
        if (isStreamFailing(KIND, #NAME, stream))                             \
            return FAILURE;                                                   \
        return call ARGUMENTS;                                                \
    }

TESK_INTERPOSED int __libc_start_main(Main* main, int argc, char** argv, void (*init)(),
                                      void (*fini)(), void (*rtldFini)(), void* stackEnd) {
    TESK_REAL(__libc_start_main);
    programMain = main;
    return call(&countedMain, argc, argv, init, fini, rtldFini, stackEnd);
}

TESK_INTERPOSED int __cxa_thread_atexit_impl(void (*destroy)(void*), void* object, void* library) {
    TESK_REAL(__cxa_thread_atexit_impl);
    const bool wasLeftAlone = std::exchange(isLeftAlone, true);
    const int result = call(destroy, object, library);
    isLeftAlone = wasLeftAlone;
    return result;
}

// Allocations, those of operator new and of libraries included.

TESK_INTERPOSED void* malloc(size_t size) noexcept {
    return isFailing("malloc", __builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

TESK_INTERPOSED void* calloc(size_t count, size_t size) noexcept {
    return isFailing("calloc", __builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

TESK_INTERPOSED void* realloc(void* memory, size_t size) noexcept {
    return size != 0 && isFailing("realloc", __builtin_return_address(0))
               ? nullptr
               : __libc_realloc(memory, size);
}

TESK_INTERPOSED void* memalign(size_t alignment, size_t size) noexcept {
    return isFailing("memalign", __builtin_return_address(0)) ? nullptr
                                                              : __libc_memalign(alignment, size);
}

TESK_INTERPOSED void* aligned_alloc(size_t alignment, size_t size) noexcept {
    return isFailing("aligned_alloc", __builtin_return_address(0))
               ? nullptr
               : __libc_memalign(alignment, size);
}

TESK_INTERPOSED int posix_memalign(void** memory, size_t alignment, size_t size) noexcept {
    if (isFailing("posix_memalign", __builtin_return_address(0)))
        return ENOMEM;
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

// What opens files. A mode is given only when a file may be made; what is read in its place
// otherwise, nobody looks at.

#define TESK_OPEN(NAME, PARAMETERS, ...)               \
    TESK_INTERPOSED int NAME PARAMETERS {              \
        va_list arguments;                             \
        va_start(arguments, flags);                    \
        const mode_t mode = va_arg(arguments, mode_t); \
        va_end(arguments);                             \
        TESK_REAL(NAME);                               \
        if (isFailing(Kind::kOpen, #NAME, -1, path))   \
            return -1;                                 \
        return call(__VA_ARGS__, mode);                \
    }

TESK_OPEN(open, (const char* path, int flags, ...), path, flags)
TESK_OPEN(open64, (const char* path, int flags, ...), path, flags)
TESK_OPEN(openat, (int directory, const char* path, int flags, ...), directory, path, flags)
TESK_OPEN(openat64, (int directory, const char* path, int flags, ...), directory, path, flags)
TESK_FAULT(Kind::kOpen, FILE*, nullptr, fopen, (const char* path, const char* mode), (path, mode),
           -1, path)
TESK_FAULT(Kind::kOpen, FILE*, nullptr, fopen64, (const char* path, const char* mode), (path, mode),
           -1, path)
TESK_FAULT(Kind::kOpen, DIR*, nullptr, opendir, (const char* path), (path), -1, path)
TESK_FAULT(Kind::kOpen, DIR*, nullptr, fdopendir, (int directory), (directory), directory, "")
TESK_FAULT(Kind::kOpen, int, -1, mkstemp, (char* path), (path), -1, path)
TESK_FAULT(Kind::kOpen, int, -1, mkostemp, (char* path, int flags), (path, flags), -1, path)
TESK_FAULT(Kind::kOpen, int, -1, mkostemp64, (char* path, int flags), (path, flags), -1, path)

TESK_FAULT(Kind::kDescriptor, int, -1, socket, (int domain, int type, int protocol) noexcept,
           (domain, type, protocol), -1, "")
TESK_FAULT(Kind::kDescriptor, int, -1, eventfd, (unsigned value, int flags) noexcept,
           (value, flags), -1, "")
TESK_FAULT(Kind::kDescriptor, int, -1, epoll_create1, (int flags) noexcept, (flags), -1, "")
TESK_FAULT(Kind::kDescriptor, int, -1, timerfd_create, (clockid_t clock, int flags) noexcept,
           (clock, flags), -1, "")
TESK_FAULT(Kind::kDescriptor, int, -1, signalfd,
           (int descriptor, const sigset_t* signals, int flags) noexcept,
           (descriptor, signals, flags), -1, "")
TESK_FAULT(Kind::kDescriptor, int, -1, pipe, (int* ends) noexcept, (ends), -1, "")
TESK_FAULT(Kind::kDescriptor, int, -1, pipe2, (int* ends, int flags) noexcept, (ends, flags), -1,
           "")

// What reads.

TESK_INTERPOSED ssize_t read(int file, void* buffer, size_t size) {
    TESK_REAL(read);
    if (isStored(file) && isFailing(Kind::kRead, "read", file))
        return -1;
    return call(file, buffer, size);
}

TESK_FAULT(Kind::kRead, ssize_t, -1, pread, (int file, void* buffer, size_t size, off_t offset),
           (file, buffer, size, offset), file, "")
TESK_FAULT(Kind::kRead, ssize_t, -1, pread64, (int file, void* buffer, size_t size, off64_t offset),
           (file, buffer, size, offset), file, "")
TESK_FAULT(Kind::kRead, ssize_t, -1, readv, (int file, const iovec* parts, int count),
           (file, parts, count), file, "")
TESK_FAULT(Kind::kRead, dirent*, nullptr, readdir, (DIR * directory), (directory), dirfd(directory),
           "")
TESK_FAULT(Kind::kRead, dirent64*, nullptr, readdir64, (DIR * directory), (directory),
           dirfd(directory), "")
TESK_FAULT(Kind::kRead, ssize_t, -1, getrandom, (void* buffer, size_t size, unsigned flags),
           (buffer, size, flags), -1, "random")
TESK_STREAM_FAULT(Kind::kRead, size_t, 0, fread,
                  (void* buffer, size_t size, size_t count, FILE* stream),
                  (buffer, size, count, stream))
TESK_STREAM_FAULT(Kind::kRead, char*, nullptr, fgets, (char* line, int size, FILE* stream),
                  (line, size, stream))
TESK_STREAM_FAULT(Kind::kRead, int, EOF, fgetc, (FILE * stream), (stream))
TESK_STREAM_FAULT(Kind::kRead, int, EOF, getc, (FILE * stream), (stream))

// What writes.

TESK_INTERPOSED ssize_t write(int file, const void* buffer, size_t size) {
    TESK_REAL(write);
    if (isStored(file) && isFailing(Kind::kWrite, "write", file))
        return -1;
    return call(file, buffer, size);
}

TESK_FAULT(Kind::kWrite, ssize_t, -1, pwrite,
           (int file, const void* buffer, size_t size, off_t offset), (file, buffer, size, offset),
           file, "")
TESK_FAULT(Kind::kWrite, ssize_t, -1, writev, (int file, const iovec* parts, int count),
           (file, parts, count), file, "")
TESK_STREAM_FAULT(Kind::kWrite, size_t, 0, fwrite,
                  (const void* buffer, size_t size, size_t count, FILE* stream),
                  (buffer, size, count, stream))
TESK_STREAM_FAULT(Kind::kWrite, int, EOF, fputs, (const char* text, FILE* stream), (text, stream))
TESK_STREAM_FAULT(Kind::kWrite, int, EOF, fputc, (int byte, FILE* stream), (byte, stream))
TESK_STREAM_FAULT(Kind::kWrite, int, EOF, putc, (int byte, FILE* stream), (byte, stream))

// All streams are flushed when none is given. What cannot be written is lost.
TESK_INTERPOSED int fflush(FILE* stream) {
    TESK_REAL(fflush);
    if (stream != nullptr && isStreamFailing(Kind::kWrite, "fflush", stream)) {
        __fpurge(stream);
        return EOF;
    }
    return call(stream);
}

TESK_FAULT(Kind::kSync, int, -1, fsync, (int file), (file), file, "")
TESK_FAULT(Kind::kSync, int, -1, fdatasync, (int file), (file), file, "")

// What closes reports a failure after it has closed.

TESK_INTERPOSED int close(int file) {
    TESK_REAL(close);
    const bool fails = isFailing(Kind::kClose, "close", file);
    const int result = call(file);
    if (fails)
        errno = chosenError;
    return fails ? -1 : result;
}

TESK_INTERPOSED int fclose(FILE* stream) {
    TESK_REAL(fclose);
    const bool fails = isStreamFailing(Kind::kClose, "fclose", stream);
    const int result = call(stream);
    if (fails)
        errno = chosenError;
    return fails ? EOF : result;
}

// What changes names.

TESK_FAULT(Kind::kRename, int, -1, rename, (const char* from, const char* to) noexcept, (from, to),
           -1, to)
TESK_FAULT(Kind::kRename, int, -1, renameat,
           (int fromDirectory, const char* from, int toDirectory, const char* to) noexcept,
           (fromDirectory, from, toDirectory, to), -1, to)
TESK_FAULT(Kind::kRename, int, -1, renameat2,
           (int fromDirectory, const char* from, int toDirectory, const char* to,
            unsigned flags) noexcept,
           (fromDirectory, from, toDirectory, to, flags), -1, to)
TESK_FAULT(Kind::kDirectory, int, -1, mkdir, (const char* path, mode_t mode) noexcept, (path, mode),
           -1, path)
TESK_FAULT(Kind::kDirectory, int, -1, mkdirat,
           (int directory, const char* path, mode_t mode) noexcept, (directory, path, mode), -1,
           path)
TESK_FAULT(Kind::kDirectory, int, -1, unlink, (const char* path) noexcept, (path), -1, path)
TESK_FAULT(Kind::kDirectory, int, -1, unlinkat,
           (int directory, const char* path, int flags) noexcept, (directory, path, flags), -1,
           path)

TESK_FAULT(Kind::kStatus, int, -1, stat, (const char* path, struct stat* status) noexcept,
           (path, status), -1, path)
TESK_FAULT(Kind::kStatus, int, -1, lstat, (const char* path, struct stat* status) noexcept,
           (path, status), -1, path)
TESK_FAULT(Kind::kStatus, int, -1, fstat, (int file, struct stat* status) noexcept, (file, status),
           file, "")
TESK_FAULT(Kind::kStatus, int, -1, fstatat,
           (int directory, const char* path, struct stat* status, int flags) noexcept,
           (directory, path, status, flags), -1, path)
TESK_FAULT(Kind::kLock, int, -1, flock, (int file, int operation) noexcept, (file, operation), file,
           "")

// What has to do with clients.

TESK_FAULT(Kind::kAccept, int, -1, accept, (int socket, sockaddr* address, socklen_t* length),
           (socket, address, length), socket, "")
TESK_FAULT(Kind::kAccept, int, -1, accept4,
           (int socket, sockaddr* address, socklen_t* length, int flags),
           (socket, address, length, flags), socket, "")
TESK_FAULT(Kind::kReceive, ssize_t, -1, recv, (int socket, void* buffer, size_t size, int flags),
           (socket, buffer, size, flags), socket, "")
TESK_FAULT(Kind::kReceive, ssize_t, -1, recvmsg, (int socket, msghdr* message, int flags),
           (socket, message, flags), socket, "")
TESK_FAULT(Kind::kSend, ssize_t, -1, send, (int socket, const void* buffer, size_t size, int flags),
           (socket, buffer, size, flags), socket, "")
TESK_FAULT(Kind::kSend, ssize_t, -1, sendmsg, (int socket, const msghdr* message, int flags),
           (socket, message, flags), socket, "")

TESK_INTERPOSED int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                   void* (*run)(void*), void* argument) noexcept {
    TESK_REAL(pthread_create);
    if (isFailing(Kind::kThread, "pthread_create"))
        return chosenError;
    return call(thread, attributes, run, argument);
}
