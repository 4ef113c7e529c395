#pragma once

#include "FileIdentity.h"
#include "Outcome.h"
#include "StoredPainting.h"
#include "StrokesFile.h"

#include <QString>

#include <atomic>
#include <vector>

namespace hazelmark {

/// The folder in which paintings are kept, as files of strokes that only their owner may read: the last three of each
/// photo, those of the last hundred photos, none for longer than a year. Never a pixel of a photo: it is known by a
/// digest of its content, or else by one of its path.
///
/// All of it takes its time. One thread at a time.
class PaintingStore
{
public:
    static constexpr std::size_t kPaintingsOfAPhoto = 3;
    static constexpr std::size_t kPhotos = 100;
    static constexpr int kDays = 365;

    explicit PaintingStore(QString folder = personsFolder());

    /// "hazelmark/paintings" in `$XDG_STATE_HOME`, or else in "~/.local/state".
    static QString personsFolder();

    /// Both in hexadecimal digits, of one length each. Empty: not known.
    struct Key
    {
        QString content;
        QString path;
    };
    static QString digestOfPath(const QString &path);
    /// Reads all of the photo at `path`. Empty when it cannot be read, is no more the one that was opened, or it is
    /// large and `cancelled` is set meanwhile.
    static QString digestOfContent(const QString &path, const FileIdentity &asOpened,
                                   const std::atomic<bool> &cancelled);

    /// A place for a painting of the photo that nothing has taken.
    QString newPath(const Key &photo) const;
    /// The paintings of the photo but the one at `except`, the newest first. By its path only when there is none by its
    /// content. A file that cannot be used is set aside, and a line in the log says so.
    std::vector<StoredPainting> find(const Key &photo, const QString &except) const;
    /// Whole or not at all. Makes the folder.
    Outcome<Done> write(const QString &path, const StrokesFile &painting) const;
    /// Nothing for a file that cannot be used, which is set aside.
    std::optional<StrokesFile> read(const QString &path) const;
    /// Takes away what is too much or too old.
    void prune() const;
    /// Takes all away.
    void forget() const;

private:
    struct Entry;
    std::vector<Entry> entries() const;

    QString m_folder;
};

} // namespace hazelmark
