#pragma once

#include "DisplayColors.h"
#include "Failure.h"
#include "Outcome.h"
#include "PhotoImage.h"
#include "WorkQueue.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

namespace hazelmark {

class PhotoFile;

/// A photo as far as the screen needs it.
struct OpenedPhoto
{
    std::shared_ptr<PhotoFile> record;
    QString type; ///< as an extension: that of the name, or what the content is where the name does not tell
    /// Upright. Logical size: the photo's own, in pixels of the file; the bitmap has as many pixels as the screen can
    /// show, or the photo's where those are fewer. The export reads the file anew.
    PhotoImagePtr inputImage;
    /// What the person sees first: the photo at about the size at which it will stand on the screen, in its colours.
    QImage firstSight;
};

/// Brings photos from disk to the screen in two steps, neither of which the main thread waits for: at the door the
/// headers are read, and what is no picture goes no further; then the picture is decoded, turned upright and reduced to
/// what the screen can show. Main thread only.
class PhotoOpener : public QObject
{
    Q_OBJECT

public:
    using Record = std::shared_ptr<PhotoFile>;

    /// What the headers of a file say.
    struct Knocked
    {
        Record record;
        QString type; ///< see OpenedPhoto
    };

    /// The three things that take time; they run off the main thread.
    struct Steps
    {
        /// Whether the content is that of a picture, from the headers; the name of its format.
        std::function<Outcome<QByteArray>(const QString &path)> inspect;
        std::function<Record(const QString &path)> readRecord;
        /// The upright photo, no larger than `bound` pixels.
        std::function<Outcome<PhotoImagePtr>(const QString &path, QSize bound)> load;

        static Steps real();
    };

    /// How large the picture is wanted.
    struct Sizes
    {
        QSize screen;     ///< no view of it will ever be larger, in pixels
        QSize firstSight; ///< the room for the first sight of it, in pixels
    };

    explicit PhotoOpener(Steps steps, QObject *parent = nullptr);
    explicit PhotoOpener(QObject *parent = nullptr);
    ~PhotoOpener() override;

    /// Looks at the file; `admitted` or `refused` follows. Files are answered in the order in which they came.
    void knock(const QString &path);
    /// Reads the picture; `opened` or `failed` follows, unless a later picture was asked for meanwhile.
    void load(const Knocked &knocked, const Sizes &sizes, const DisplayColors &colors);

    bool isLoading() const { return m_loading != 0; }

signals:
    /// The content is that of a picture.
    void admitted(const hazelmark::PhotoOpener::Knocked &knocked);
    void refused(const Failure &failure);
    void opened(const OpenedPhoto &photo);
    /// The headers read, the pixels do not.
    void failed(const Failure &failure);

private:
    Steps m_steps;
    quint64 m_requests = 0;
    quint64 m_loading = 0; ///< the request whose picture is awaited; 0 for none
    std::shared_ptr<std::atomic<quint64>> m_wanted = std::make_shared<std::atomic<quint64>>(0);
    WorkQueue m_door{1};
    /// Two threads: a picture that nobody waits for any more must not hold up the one that somebody does.
    WorkQueue m_loader{2};
};

} // namespace hazelmark
