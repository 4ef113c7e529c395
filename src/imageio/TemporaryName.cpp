#include "TemporaryName.h"

#include <QRandomGenerator>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace hazelmark {

namespace {

constexpr char kPrefix[] = ".hazelmark-";
constexpr int kLetters = 6;
constexpr int kNameLength = int(sizeof kPrefix) - 1 + kLetters;
constexpr int kMostTries = 100;

/// A name that is there right now, for a signal handler, which may use neither memory nor locks.
struct Slot
{
    enum { Free, Taken, Set };
    std::atomic<int> state = Free;
    int folder = -1;
    char name[kNameLength + 1];
};
std::array<Slot, 8> known;

QByteArray newName()
{
    static constexpr char kAlphabet[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    QByteArray name(kPrefix);
    for (int i = 0; i < kLetters; ++i)
        name += kAlphabet[QRandomGenerator::system()->bounded(int(sizeof kAlphabet) - 1)];
    return name;
}

QByteArray linkTo(int file)
{
    return "/proc/self/fd/" + QByteArray::number(file);
}

bool lock(int file, int how)
{
    int done = 0;
    do
        done = ::flock(file, how);
    while (done != 0 && errno == EINTR);
    return done == 0;
}

/// One try at a new file under `name`. Somebody who clears up may have found it before it was locked, and taken its
/// name away.
int openLocked(int folder, const QByteArray &name, mode_t mode)
{
    const int file = ::openat(folder, name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (file < 0)
        return -1;
    lock(file, LOCK_EX);
    struct stat status;
    if (::fstat(file, &status) == 0 && status.st_nlink > 0)
        return file;
    ::close(file);
    errno = EEXIST;
    return -1;
}

void removeIfStale(int folder, const char *name)
{
    struct stat status;
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid())
        return;
    // For writing too: without it NFS locks nothing.
    const int file = ::openat(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return;
    if (lock(file, LOCK_EX | LOCK_NB))
        ::unlinkat(folder, name, 0);
    ::close(file);
}

} // namespace

TemporaryName::TemporaryName(TemporaryName &&other) noexcept
    : m_folder(std::exchange(other.m_folder, -1))
    , m_name(std::exchange(other.m_name, {}))
    , m_slot(std::exchange(other.m_slot, -1))
{
}

TemporaryName::~TemporaryName()
{
    if (*this) {
        ::unlinkat(m_folder, m_name.constData(), 0);
        forget();
    }
}

int TemporaryName::openUnnamed(int folder)
{
    const int file = ::openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    if (file < 0)
        return -1;
    if (::access(linkTo(file).constData(), F_OK) != 0) { // then it would never get a name
        ::close(file);
        return -1;
    }
    lock(file, LOCK_EX | LOCK_NB);
    return file;
}

int TemporaryName::openNamed(int folder, mode_t mode, TemporaryName &name)
{
    for (int tries = 0; tries < kMostTries; ++tries) {
        const QByteArray candidate = newName();
        const int file = openLocked(folder, candidate, mode);
        if (file >= 0)
            name.set(folder, candidate);
        if (file >= 0 || errno != EEXIST)
            return file;
    }
    return -1;
}

bool TemporaryName::link(int file, int folder, const char *final)
{
    return ::linkat(AT_FDCWD, linkTo(file).constData(), folder, final, AT_SYMLINK_FOLLOW) == 0;
}

void TemporaryName::removeStale(int folder)
{
    const int list = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(list < 0 ? nullptr : ::fdopendir(list), ::closedir);
    if (!entries)
        return;
    while (const dirent *entry = ::readdir(entries.get())) {
        if (std::strncmp(entry->d_name, kPrefix, sizeof kPrefix - 1) == 0 && std::strlen(entry->d_name) == kNameLength)
            removeIfStale(folder, entry->d_name);
    }
}

bool TemporaryName::give(int file, int folder)
{
    for (int tries = 0; tries < kMostTries; ++tries) {
        set(folder, newName()); // first: it is known when it comes to be there
        if (link(file, folder, m_name.constData()))
            return true;
        const int error = errno;
        forget();
        errno = error;
        if (error != EEXIST)
            return false;
    }
    return false;
}

bool TemporaryName::renameTo(const char *final)
{
    if (::renameat(m_folder, m_name.constData(), m_folder, final) != 0)
        return false;
    forget();
    return true;
}

void TemporaryName::set(int folder, const QByteArray &name)
{
    m_folder = folder;
    m_name = name;
    for (std::size_t i = 0; i < known.size() && m_slot < 0; ++i) {
        int expected = Slot::Free;
        if (known[i].state.compare_exchange_strong(expected, Slot::Taken)) {
            known[i].folder = folder;
            std::memcpy(known[i].name, name.constData(), kNameLength + 1);
            known[i].state = Slot::Set;
            m_slot = int(i);
        }
    }
}

void TemporaryName::forget()
{
    if (m_slot >= 0)
        known[std::size_t(m_slot)].state = Slot::Free;
    m_slot = -1;
    m_name.clear();
}

void TemporaryName::removeAll()
{
    for (const Slot &slot : known) {
        if (slot.state == Slot::Set)
            ::unlinkat(slot.folder, slot.name, 0);
    }
}

} // namespace hazelmark
