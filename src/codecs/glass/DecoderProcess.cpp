#include "DecoderProcess.h"

#include "DecodeScope.h"
#include "Log.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr auto kGlance = 50ms; ///< between two looks at a process that says nothing
constexpr auto kIdle = 5s;     ///< a process that has done nothing for so long hangs

constexpr int kNoProgramStatus = 127; ///< as a shell says it

// What the program finds where it looks for it.
constexpr int kPhotoPlace = 3;
constexpr int kMemoryPlace = 4;
constexpr int kChannelPlace = 5;
constexpr std::array kPlaces = {kPhotoPlace, kMemoryPlace, kChannelPlace};

std::mutex g_programMutex;
QString g_program; ///< of setProgram()

QString folderOfThisProgram()
{
    return QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget().section(u'/', 0, -2);
}

/// Above the places that the descriptors have in the program: moving one there never hits another.
FileDescriptor movedUp(int descriptor)
{
    return FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 16));
}

/// Little of this program's surroundings is the decoder's business. A process of one picture needs its memory once: in
/// large pages where there are any, from one arena, and none given back before the end. That halves what the system
/// does for it.
std::vector<QByteArray> environment()
{
    std::vector<QByteArray> kept = {"LC_ALL=C.UTF-8", "QT_NO_GLIB=1",
                                    "GLIBC_TUNABLES=glibc.malloc.hugetlb=1:glibc.malloc.arena_max=1:"
                                    "glibc.malloc.mmap_threshold=33554432:glibc.malloc.trim_threshold=268435456:"
                                    "glibc.malloc.top_pad=16777216"};
    for (const char *name : {"LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TZ"}) {
        if (qEnvironmentVariableIsSet(name))
            kept.push_back(QByteArray(name) + '=' + qgetenv(name));
    }
    return kept;
}

void raiseLimit(pid_t process, __rlimit_resource resource, qint64 value)
{
    rlimit limit = {};
    if (::prlimit(process, resource, nullptr, &limit) != 0)
        return;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min<rlim_t>(rlim_t(value), limit.rlim_max));
    ::prlimit(process, resource, &limit, nullptr);
}

/// Waits, which is not long: nothing withstands the signal.
void reap(pid_t process)
{
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR)
        continue;
}

struct Mapping
{
    void *memory;
    size_t size;
};

void unmap(void *mapping)
{
    const std::unique_ptr<Mapping> mapped(static_cast<Mapping *>(mapping));
    ::munmap(mapped->memory, mapped->size);
}

} // namespace

/// What the process is made of. For a moment it has this program's memory, on a stack of its own, so that nothing of
/// that has to be copied or marked, however much it is.
struct DecoderProcess::Start
{
    alignas(16) std::array<std::byte, 32 * 1024> stack;
    QByteArray path;
    QByteArray kind;
    std::vector<QByteArray> variables;
    std::array<char *, 3> arguments;
    std::vector<char *> pointers; ///< to the variables
    std::array<int, 3> descriptors;
    int nothing;   ///< a descriptor of what is empty and swallows all
    bool isSilent; ///< what libraries have to say is thrown away
};

/// In the new process: calls of the system that do not fail, so that nothing of this program's memory changes. All
/// signals are blocked, until the decoder is there.
[[gnu::no_sanitize_address]] int DecoderProcess::become(void *start)
{
    const Start &from = *static_cast<const Start *>(start);
    ::dup2(from.nothing, STDIN_FILENO);
    ::dup2(from.nothing, STDOUT_FILENO);
    if (from.isSilent)
        ::dup2(from.nothing, STDERR_FILENO);
    for (size_t index = 0; index < from.descriptors.size(); ++index)
        ::dup2(from.descriptors[index], kPlaces[index]);
    ::execve(from.path.constData(), from.arguments.data(), from.pointers.data());
    return kNoProgramStatus;
}

/// 0 when there is none. (Nothing here waits for the new process to become the program: somebody may stop it.)
pid_t DecoderProcess::spawn(Start &start)
{
    sigset_t all, before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before); // what this program does at a signal is not for the other to do
    const pid_t process = ::clone(become, start.stack.data() + start.stack.size(), CLONE_VM | SIGCHLD, &start);
    const int error = errno;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (process < 0)
        qCWarning(lcCodecs).noquote() << start.path + ": cannot be started:" << std::strerror(error);
    return std::max(process, 0);
}

void DecoderProcess::setProgram(const QString &path)
{
    const std::lock_guard lock(g_programMutex);
    g_program = path;
}

QString DecoderProcess::program()
{
    const std::lock_guard lock(g_programMutex);
    return g_program.isEmpty() ? folderOfThisProgram() + QStringLiteral("/hazelmark-decoder") : g_program;
}

Outcome<std::unique_ptr<DecoderProcess>> DecoderProcess::start(const SourceFile &source, const QByteArray &kind)
{
    const QString path = program();
    if (!QFileInfo(path).isExecutable()) {
        return source.failure(Failure::Reason::UnsupportedFormat,
                              QStringLiteral("the program %1 is not there").arg(path));
    }
    std::array<int, 2> ends{};
    FileDescriptor memory(::memfd_create("hazelmark-picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return source.failure(Failure::Reason::OutOfMemory, QString::fromLocal8Bit(std::strerror(errno)));
    FileDescriptor ours(ends[0]);
    const FileDescriptor theirs(ends[1]);
    const std::array moved = {movedUp(source.descriptor()), movedUp(memory.get()), movedUp(theirs.get()),
                              FileDescriptor(::open("/dev/null", O_RDWR | O_CLOEXEC))};
    if (!std::all_of(moved.begin(), moved.end(), [](const FileDescriptor &one) { return bool(one); }))
        return source.failure(Failure::Reason::OutOfMemory, QString::fromLocal8Bit(std::strerror(errno)));
    std::unique_ptr<Start> start(new Start);
    start->path = QFile::encodeName(path);
    start->kind = kind;
    start->variables = environment();
    start->arguments = {start->path.data(), start->kind.data(), nullptr};
    for (QByteArray &variable : start->variables)
        start->pointers.push_back(variable.data());
    start->pointers.push_back(nullptr);
    start->descriptors = {moved[0].get(), moved[1].get(), moved[2].get()};
    start->nothing = moved[3].get();
    start->isSilent = !lcCodecs().isInfoEnabled();
    const pid_t process = spawn(*start);
    if (process == 0)
        return source.failure(Failure::Reason::UnsupportedFormat, QStringLiteral("its decoder cannot be started"));
    return std::unique_ptr<DecoderProcess>(
        new DecoderProcess(source, process, std::move(start), std::move(ours), std::move(memory)));
}

DecoderProcess::DecoderProcess(const SourceFile &source, pid_t process, std::unique_ptr<Start> start,
                               FileDescriptor channel, FileDescriptor memory)
    : m_source(source)
    , m_start(std::move(start))
    , m_process(process)
    , m_channel(std::move(channel))
    , m_memory(std::move(memory))
    , m_lastSeen(steady_clock::now())
{
}

/// Usually it ends at once. Whoever lets go of a photo does not wait for more.
DecoderProcess::~DecoderProcess()
{
    if (m_process == 0)
        return;
    ::kill(m_process, SIGKILL);
    for (int look = 0; look < 20; ++look) {
        if (::waitpid(m_process, nullptr, WNOHANG) != 0)
            return;
        std::this_thread::sleep_for(1ms);
    }
    std::thread([process = m_process, start = std::move(m_start)] { reap(process); }).detach();
}

int DecoderProcess::endStatus()
{
    if (m_process == 0)
        return m_endStatus;
    int status = 0;
    if (::waitpid(m_process, &status, WNOHANG | WUNTRACED) != m_process)
        return -1;
    if (!WIFSTOPPED(status)) {
        m_process = 0;
        m_endStatus = status;
    }
    return status;
}

Failure DecoderProcess::failureOfEnd(int status) const
{
    QString why = QStringLiteral("its decoder ended too early");
    Failure::Reason reason = Failure::Reason::Damaged;
    if (WIFEXITED(status) &&
        (WEXITSTATUS(status) == kNoProgramStatus || WEXITSTATUS(status) == glass::kNoDecoderStatus)) {
        why = QStringLiteral("its decoder is not installed");
        reason = Failure::Reason::UnsupportedFormat;
    } else if (WIFSIGNALED(status)) {
        why = QStringLiteral("its decoder was ended by signal %1, %2")
                  .arg(WTERMSIG(status))
                  .arg(QString::fromLocal8Bit(::sigdescr_np(WTERMSIG(status))));
    }
    qCWarning(lcCodecs).noquote() << m_source.path() + QStringLiteral(": ") + why;
    return m_source.failure(reason, why);
}

void DecoderProcess::kill()
{
    if (m_process == 0)
        return;
    ::kill(m_process, SIGKILL);
    reap(m_process);
    m_process = 0;
}

Failure DecoderProcess::end(const QString &why)
{
    qCWarning(lcCodecs).noquote() << m_source.path() + QStringLiteral(": ") + why;
    kill();
    return m_source.failure(Failure::Reason::Damaged, why);
}

std::chrono::nanoseconds DecoderProcess::processorTime() const
{
    clockid_t clock = 0;
    timespec time = {};
    if (m_process == 0 || ::clock_getcpuclockid(m_process, &clock) != 0 || ::clock_gettime(clock, &time) != 0)
        return m_lastTime;
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Time is counted in what the process has used, so that a busy machine ends no decoder.
std::optional<Failure> DecoderProcess::watch(std::chrono::nanoseconds begin, std::chrono::nanoseconds allowance)
{
    if (DecodeScope::isUnwanted())
        return end(QStringLiteral("nobody wants it any more"));
    if (WIFSTOPPED(endStatus()))
        return end(QStringLiteral("its decoder was stopped"));
    const std::chrono::nanoseconds used = processorTime();
    const auto now = steady_clock::now();
    if (used != m_lastTime) {
        m_lastTime = used;
        m_lastSeen = now;
    }
    if (now - m_lastSeen > kIdle)
        return end(QStringLiteral("its decoder hangs"));
    if (used - begin > allowance)
        return end(QStringLiteral("its decoder takes too long"));
    return std::nullopt;
}

/// What is there, without waiting.
std::optional<Failure> DecoderProcess::readSome()
{
    std::array<char, 64 * 1024> buffer;
    const ssize_t count = ::recv(m_channel.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count > 0) {
        m_reader.add({buffer.data(), size_t(count)});
        return std::nullopt;
    }
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return std::nullopt;
    return failureOfSilence();
}

/// It has closed the line.
Failure DecoderProcess::failureOfSilence()
{
    const std::optional<Failure> failure = awaitEnd();
    return failure ? *failure : failureOfEnd(0);
}

Outcome<glass::Message> DecoderProcess::receive(std::chrono::milliseconds allowance)
{
    const std::chrono::nanoseconds begin = processorTime();
    m_lastSeen = steady_clock::now();
    auto nextLook = m_lastSeen + kGlance;
    while (true) {
        while (std::optional<glass::Message> message = m_reader.next()) {
            if (message->kind != glass::Kind::Progress)
                return *message;
            const std::optional<double> done = glass::progressOf(message->body);
            if (!done)
                return end(QStringLiteral("its decoder talks nonsense"));
            DecodeScope::tellProgress(*done);
        }
        if (m_reader.isBroken())
            return end(QStringLiteral("its decoder talks nonsense"));
        pollfd line = {m_channel.get(), POLLIN, 0};
        const int ready = ::poll(&line, 1, int(kGlance / 1ms));
        if (ready > 0) {
            if (const std::optional<Failure> failure = readSome())
                return *failure;
        }
        if (steady_clock::now() >= nextLook) {
            if (const std::optional<Failure> failure = watch(begin, allowance))
                return *failure;
            nextLook = steady_clock::now() + kGlance;
        }
    }
}

std::optional<Failure> DecoderProcess::go(qint64 memorySize, qint64 ownMemory, std::chrono::seconds allowance)
{
    if (::ftruncate(m_memory.get(), memorySize) != 0 ||
        ::fcntl(m_memory.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        return m_source.failure(Failure::Reason::OutOfMemory, QString::fromLocal8Bit(std::strerror(errno)));
    m_memorySize = memorySize;
    if (m_process != 0) {
        raiseLimit(m_process, RLIMIT_DATA, ownMemory);
        raiseLimit(m_process, RLIMIT_CPU, (processorTime() / 1s) + allowance.count() + 2);
    }
    const glass::Go go{uint64_t(memorySize), std::max(std::thread::hardware_concurrency(), 1u)};
    const std::string bytes = glass::packed(go);
    if (::send(m_channel.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) == ssize_t(bytes.size()))
        return std::nullopt;
    return failureOfSilence();
}

std::optional<Failure> DecoderProcess::awaitEnd()
{
    const auto deadline = steady_clock::now() + kIdle;
    pollfd line = {m_channel.get(), POLLIN, 0};
    while (true) {
        ::poll(&line, 1, int(kGlance / 1ms)); // it is closed when the process ends, shortly before its status is there
        const int status = endStatus();
        if (status == 0)
            return std::nullopt;
        if (WIFSTOPPED(status))
            return end(QStringLiteral("its decoder was stopped"));
        if (status > 0)
            return failureOfEnd(status);
        if (steady_clock::now() > deadline)
            return end(QStringLiteral("its decoder does not end"));
        std::this_thread::sleep_for(100us);
    }
}

Outcome<QImage> DecoderProcess::takePixels(QSize size, qsizetype bytesPerLine, QImage::Format format)
{
    const auto outOfMemory = [&] {
        return m_source.failure(Failure::Reason::OutOfMemory, QString::fromLocal8Bit(std::strerror(errno)));
    };
    void *const memory =
        ::mmap(nullptr, size_t(m_memorySize), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, m_memory.get(), 0);
    if (memory == MAP_FAILED)
        return outOfMemory();
    auto *const mapping = new Mapping{memory, size_t(m_memorySize)};
    QImage pixels(static_cast<uchar *>(memory), size.width(), size.height(), bytesPerLine, format, unmap, mapping);
    if (pixels.isNull()) {
        unmap(mapping);
        return outOfMemory();
    }
    if (const std::optional<Failure> failure = awaitEnd()) // before a pixel is looked at
        return *failure;
    return pixels;
}

} // namespace hazelmark
