#pragma once

#include "DecoderMessages.h"
#include "FileDescriptor.h"
#include "SourceFile.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <chrono>

#include <sys/types.h>

namespace hazelmark {

/// A running `hazelmark-decoder` with one file before it. It holds the file, some shared memory and the line to this
/// program, and has given up everything else. Whatever it does, here it ends in a message or in a failure: when it
/// dies, is stopped, answers with what is no message, uses more time than it was given, or does nothing at all.
class DecoderProcess
{
public:
    /// `kind`: which library it loads. Fails with UnsupportedFormat when the program is not there.
    static Outcome<std::unique_ptr<DecoderProcess>> start(const SourceFile &source, const QByteArray &kind);
    /// Ends the process, whatever it is doing.
    ~DecoderProcess();
    DecoderProcess(const DecoderProcess &) = delete;
    DecoderProcess &operator=(const DecoderProcess &) = delete;

    /// The next message that is none of progress. `allowance`: processor time that it may use meanwhile.
    Outcome<glass::Message> receive(std::chrono::milliseconds allowance);

    /// Gives the shared memory its size, for good, and lets the process decode into it, with so much memory of its own.
    std::optional<Failure> go(qint64 memorySize, qint64 ownMemory, std::chrono::seconds allowance);

    /// The shared memory as a bitmap, once the process has ended, which is waited for.
    Outcome<QImage> takePixels(QSize size, qsizetype bytesPerLine, QImage::Format format);

    /// The program to start in place of the one beside this program, for tests. Empty: that one again.
    static void setProgram(const QString &path);
    static QString program();

private:
    struct Start;
    static int become(void *start);
    static pid_t spawn(Start &start);
    DecoderProcess(const SourceFile &source, pid_t process, std::unique_ptr<Start> start, FileDescriptor channel,
                   FileDescriptor memory);
    Failure end(const QString &why);
    Failure failureOfEnd(int status) const;
    Failure failureOfSilence();
    /// Its status when it has ended or been stopped, or -1, which is neither.
    int endStatus();
    void kill();
    std::chrono::nanoseconds processorTime() const;
    std::optional<Failure> readSome();
    std::optional<Failure> awaitEnd();
    std::optional<Failure> watch(std::chrono::nanoseconds begin, std::chrono::nanoseconds allowance);

    const SourceFile &m_source;
    std::unique_ptr<Start> m_start; ///< as long as the process may live in it
    pid_t m_process;                ///< 0 once it has ended and been taken leave of
    int m_endStatus = 0;            ///< with which it has
    FileDescriptor m_channel;
    FileDescriptor m_memory;
    qint64 m_memorySize = 0;
    glass::MessageReader m_reader;
    std::chrono::nanoseconds m_lastTime{0};           ///< processor time when it was last seen to work
    std::chrono::steady_clock::time_point m_lastSeen; ///< when that was
};

} // namespace hazelmark
