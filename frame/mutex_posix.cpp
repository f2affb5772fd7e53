// The named mutex on POSIX: flock on a file in a folder of the user's own.
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <new>

#include "frame/posix_file.h"

namespace ko::platform {

struct NamedMutex {
    char name[64];
    char path[128];     // where it was opened
    int file;           // -1: not open, or closed in a forked child
    NamedMutex* next;   // of those that are open
};

namespace {

// As on Windows, a thread that holds the mutex gets it again at once. There is one mutex.
[[gnu::tls_model("initial-exec")]] constinit thread_local int depthOfThisThread = 0;

// Every descriptor of a mutex, so that a child that was forked while its parent held one can close
// it: a lock ends when all processes that share the opening have closed it.
constinit pthread_mutex_t listMutex = PTHREAD_MUTEX_INITIALIZER;
constinit NamedMutex* openMutexes = nullptr;

void beforeFork() { ::pthread_mutex_lock(&listMutex); }
void afterForkInParent() { ::pthread_mutex_unlock(&listMutex); }
void afterForkInChild() {
    for (NamedMutex* mutex = openMutexes; mutex; mutex = mutex->next) {
        if (mutex->file >= 0) close(mutex->file);
        mutex->file = -1;
    }
    openMutexes = nullptr;
    depthOfThisThread = 0;
    ::pthread_mutex_unlock(&listMutex);
}

// When the library is unloaded, the system forgets the handlers with it.
void watchForks() noexcept {
    static const int watched = ::pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);
    (void)watched;
}

class ListLock {
public:
    ListLock() noexcept { ::pthread_mutex_lock(&listMutex); }
    ~ListLock() { ::pthread_mutex_unlock(&listMutex); }
    ListLock(const ListLock&) = delete;
};

// A folder of the user's own that nobody else may write to; others may have made something in its
// place, where everybody may make folders.
Descriptor ownFolder(const char* path) noexcept {
    (void)::mkdir(path, 0700);
    Descriptor folder(openAt(AT_FDCWD, path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
    struct stat status;
    if (!folder || ::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid()) return {};
    if ((status.st_mode & 077) != 0 && ::fchmod(folder.get(), 0700) != 0) return {};
    return folder;
}

// All processes of a user arrive at the same file, so the environment has no say. The second and
// third place are for systems where somebody else has taken the first.
bool openLockFile(NamedMutex& mutex) noexcept {
    for (const char* place : {"/tmp", "/var/tmp", "/dev/shm"}) {
        char folderPath[64];
        std::snprintf(folderPath, sizeof folderPath, "%s/.kolink-%lu", place,
                      static_cast<unsigned long>(::geteuid()));
        const Descriptor folder = ownFolder(folderPath);
        if (!folder) continue;
        const int length =
            std::snprintf(mutex.path, sizeof mutex.path, "%s/%s", folderPath, mutex.name);
        if (length < 0 || static_cast<size_t>(length) >= sizeof mutex.path) return false;
        const ListLock lock;  // no fork between opening and noting
        mutex.file = openAt(folder.get(), mutex.name, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
        struct stat status;
        if (mutex.file >= 0 && ::fstat(mutex.file, &status) == 0 && S_ISREG(status.st_mode) &&
            status.st_uid == ::geteuid()) {
            mutex.next = openMutexes;
            openMutexes = &mutex;
            return true;
        }
        if (mutex.file >= 0) close(mutex.file);
        mutex.file = -1;
    }
    return false;
}

void closeLockFile(NamedMutex& mutex) noexcept {
    const ListLock lock;
    if (mutex.file < 0) return;
    for (NamedMutex** link = &openMutexes; *link; link = &(*link)->next)
        if (*link == &mutex) {
            *link = mutex.next;
            break;
        }
    close(mutex.file);
    mutex.file = -1;
}

// Whether the locked file is the one that others will open: folders for temporary files are
// emptied now and then.
bool isStillThere(const NamedMutex& mutex) noexcept {
    struct stat locked, there;
    return ::fstat(mutex.file, &locked) == 0 && ::lstat(mutex.path, &there) == 0 &&
           locked.st_ino == there.st_ino && locked.st_dev == there.st_dev;
}

// The holder writes its number into the file.
constexpr int kNumberSize = 12;

uint32_t holderOf(const NamedMutex& mutex) noexcept {
    char text[kNumberSize];
    const ssize_t size = ::pread(mutex.file, text, sizeof text, 0);
    uint32_t process = 0;
    if (size > 0) std::from_chars(text, text + size, process);
    return process;
}

void noteHolder(const NamedMutex& mutex) noexcept {
    char text[kNumberSize + 1];
    std::snprintf(text, sizeof text, "%-*ld\n", kNumberSize - 1, static_cast<long>(::getpid()));
    // It also keeps the file's time fresh, for those who remove old ones.
    [[maybe_unused]] const ssize_t written = ::pwrite(mutex.file, text, kNumberSize, 0);
}

uint32_t millisecondsSince(const timespec& start) noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>((now.tv_sec - start.tv_sec) * 1000 +
                                 (now.tv_nsec - start.tv_nsec) / 1000000);
}

// False: wait gave up. A file system that knows no locks lets everybody in.
bool lockFile(const NamedMutex& mutex, MutexWait wait) noexcept {
    if (!wait) {
        while (::flock(mutex.file, LOCK_EX) != 0 && errno == EINTR) {}
        return true;
    }
    timespec start;
    ::clock_gettime(CLOCK_MONOTONIC, &start);
    while (::flock(mutex.file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return true;
        if (!wait(millisecondsSince(start), holderOf(mutex))) return false;
        constexpr timespec kPause = {0, 20'000'000};
        ::nanosleep(&kPause, nullptr);  // a signal ends it
    }
    return true;
}

}  // namespace

NamedMutex* openNamedMutex(const char* name) noexcept {
    watchForks();
    if (std::strlen(name) >= sizeof NamedMutex::name) return nullptr;
    auto* const mutex = new (std::nothrow) NamedMutex{};
    if (!mutex) return nullptr;
    std::strcpy(mutex->name, name);
    mutex->file = -1;
    // Each opening has a lock of its own, so threads of one process keep each other out too.
    // The file stays when it is closed: removing it would part those who have it open from
    // those who come later.
    if (openLockFile(*mutex)) return mutex;
    delete mutex;
    return nullptr;
}

// Nothing needs to stay open for others to find it.
NamedMutex* createNamedMutex(const char* name) noexcept {
    NamedMutex* const mutex = openNamedMutex(name);
    if (mutex) closeLockFile(*mutex);
    return mutex;
}

bool lock(NamedMutex& mutex, MutexWait wait) noexcept {
    if (depthOfThisThread > 0) {
        ++depthOfThisThread;
        return true;
    }
    for (;;) {
        if (!lockFile(mutex, wait)) return false;
        if (isStillThere(mutex)) break;
        closeLockFile(mutex);
        if (!openLockFile(mutex)) return true;  // unguarded, as without a mutex
    }
    noteHolder(mutex);
    ++depthOfThisThread;
    return true;
}

void closeNamedMutex(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    closeLockFile(*mutex);
    delete mutex;
}

void unlock(NamedMutex& mutex) noexcept {
    if (depthOfThisThread > 0 && --depthOfThisThread == 0 && mutex.file >= 0)
        ::flock(mutex.file, LOCK_UN);
}

}  // namespace ko::platform
