#pragma once

#include <QByteArray>

#include <sys/types.h>

namespace hazelmark {

/// The name that a file has for as long as it is not in its place: ".hazelmark-" and six letters or digits, in the
/// folder of that place. It is taken away when this goes, and by the signals that end a program.
///
/// A program that is killed leaves the name behind. The file that it leads to is locked (flock) as long as its program
/// runs; a name whose file nobody has locked is stale, and the next export into the folder takes it away.
///
/// Descriptors are the caller's; the folder's must outlive the name. Functions that fail set errno.
class TemporaryName
{
public:
    TemporaryName() = default; ///< none
    TemporaryName(TemporaryName &&other) noexcept;
    ~TemporaryName();

    /// A new, empty, locked file without a name, open for reading and writing; -1 where the file system has none such.
    static int openUnnamed(int folder);
    /// The same with `name` as its name, and with `mode` less what the process takes off new files.
    static int openNamed(int folder, mode_t mode, TemporaryName &name);
    /// Gives a file without a name the name `final`, where there is nothing.
    static bool link(int file, int folder, const char *final);
    /// Takes the names away that killed programs left in the folder.
    static void removeStale(int folder);

    explicit operator bool() const { return !m_name.isEmpty(); }
    /// Gives the file, which has none, a temporary name.
    bool give(int file, int folder);
    /// Puts the file under the name `final`, in place of what is there.
    bool renameTo(const char *final);

    /// Takes the names of this program away; for signal handlers.
    static void removeAll();

private:
    void set(int folder, const QByteArray &name);
    void forget();

    int m_folder = -1;
    QByteArray m_name;
    int m_slot = -1; ///< among those that removeAll() knows; -1 where that has no room
};

} // namespace hazelmark
