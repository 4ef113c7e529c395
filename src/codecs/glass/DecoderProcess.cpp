#include "DecoderProcess.h"

#include "DecodeScope.h"
#include "Log.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <poll.h>
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

/// Little of this program's surroundings is the decoder's business.
std::vector<QByteArray> environment()
{
    std::vector<QByteArray> kept = {"LC_ALL=C.UTF-8", "QT_NO_GLIB=1"};
    for (const char *name : {"LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TZ"}) {
        if (qEnvironmentVariableIsSet(name))
            kept.push_back(QByteArray(name) + '=' + qgetenv(name));
    }
    return kept;
}

/// What the process is made of; all of it is ready before there are two, since after that no memory may be asked for.
struct Start
{
    const char *path;
    char *const *arguments;
    char *const *variables;
    std::array<int, 3> descriptors;
    bool isSilent; ///< what libraries have to say is thrown away
};

/// In the new process.
[[noreturn]] void become(const Start &start)
{
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(nothing, STDOUT_FILENO);
    if (start.isSilent)
        ::dup2(nothing, STDERR_FILENO);
    constexpr std::array kPlaces = {kPhotoPlace, kMemoryPlace, kChannelPlace};
    for (size_t index = 0; index < kPlaces.size(); ++index)
        ::dup2(start.descriptors[index], kPlaces[index]);
    ::execve(start.path, start.arguments, start.variables);
    ::_exit(kNoProgramStatus);
}

/// 0 when there is none. (fork() rather than posix_spawn(), during which this thread would wait for a process that
/// somebody stops.)
pid_t spawn(const QString &program, const QByteArray &kind, const std::array<int, 3> &descriptors)
{
    const QByteArray path = QFile::encodeName(program);
    const std::array<char *, 3> arguments = {const_cast<char *>(path.constData()), const_cast<char *>(kind.constData()),
                                             nullptr};
    const std::vector<QByteArray> variables = environment();
    std::vector<char *> pointers;
    for (const QByteArray &variable : variables)
        pointers.push_back(const_cast<char *>(variable.constData()));
    pointers.push_back(nullptr);
    const Start start{path.constData(), arguments.data(), pointers.data(), descriptors, !lcCodecs().isInfoEnabled()};
    sigset_t all, before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before); // what this program does at a signal is not for the other to do
    const pid_t process = ::fork();
    if (process == 0)
        become(start);
    const int error = errno;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (process < 0)
        qCWarning(lcCodecs).noquote() << program + QStringLiteral(": cannot be started:") << std::strerror(error);
    return std::max(process, 0);
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
    const std::array moved = {movedUp(source.descriptor()), movedUp(memory.get()), movedUp(theirs.get())};
    if (!moved[0] || !moved[1] || !moved[2])
        return source.failure(Failure::Reason::OutOfMemory, QString::fromLocal8Bit(std::strerror(errno)));
    const pid_t process = spawn(path, kind, {moved[0].get(), moved[1].get(), moved[2].get()});
    if (process == 0)
        return source.failure(Failure::Reason::UnsupportedFormat, QStringLiteral("its decoder cannot be started"));
    return std::unique_ptr<DecoderProcess>(new DecoderProcess(source, process, std::move(ours), std::move(memory)));
}

DecoderProcess::DecoderProcess(const SourceFile &source, pid_t process, FileDescriptor channel, FileDescriptor memory)
    : m_source(source)
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
    std::thread(reap, m_process).detach();
}

int DecoderProcess::endStatus()
{
    int status = 0;
    if (::waitpid(m_process, &status, WNOHANG | WUNTRACED) != m_process)
        return -1;
    if (!WIFSTOPPED(status))
        m_process = 0;
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
    if (const int status = endStatus(); status >= 0 && WIFSTOPPED(status))
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
    // It has closed the line, so it ends; one that does not is ended.
    for (int look = 0; look < 20 && m_process != 0; ++look) {
        if (const int status = endStatus(); status >= 0 && !WIFSTOPPED(status))
            return failureOfEnd(status);
        std::this_thread::sleep_for(10ms);
    }
    return end(QStringLiteral("its decoder has fallen silent"));
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
    const int status = endStatus();
    return status >= 0 && !WIFSTOPPED(status) ? failureOfEnd(status)
                                              : end(QStringLiteral("its decoder does not listen"));
}

std::optional<Failure> DecoderProcess::awaitEnd()
{
    const auto deadline = steady_clock::now() + kIdle;
    pollfd line = {m_channel.get(), POLLIN, 0};
    while (m_process != 0) {
        ::poll(&line, 1, int(kGlance / 1ms)); // it is closed when the process ends, shortly before its status is there
        const int status = endStatus();
        if (status >= 0 && WIFSTOPPED(status))
            return end(QStringLiteral("its decoder was stopped"));
        if (status >= 0 && (!WIFEXITED(status) || WEXITSTATUS(status) != 0))
            return failureOfEnd(status);
        if (steady_clock::now() > deadline)
            return end(QStringLiteral("its decoder does not end"));
        if (m_process != 0)
            std::this_thread::sleep_for(100us);
    }
    return std::nullopt;
}

Outcome<QImage> DecoderProcess::takePixels(QSize size, qsizetype bytesPerLine, QImage::Format format)
{
    if (const std::optional<Failure> failure = awaitEnd())
        return *failure;
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
    return pixels;
}

} // namespace hazelmark
