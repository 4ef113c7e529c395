#pragma once

#include "DisplayColors.h"
#include "Failure.h"
#include "ImageLoader.h"
#include "Outcome.h"
#include "PhotoImage.h"
#include "WorkQueue.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace hazelmark {

class PhotoFile;

/// A photo that was read to its end, as far as the screen needs it.
struct OpenedPhoto
{
    std::shared_ptr<PhotoFile> record;
    QString type; ///< as an extension: that of the name, or what the content is where the name does not tell
    /// Upright. Logical size: the photo's own, in pixels of the file; the bitmap has as many pixels as the screen can
    /// show, or the photo's where those are fewer. The export reads the file anew.
    PhotoImagePtr inputImage;
    /// What the person sees first: the photo at about the size at which it will stand on the screen, in its colours.
    QImage firstSight;
    bool isPartlyDamaged = false; ///< a part of the picture could not be read
};

/// Brings photos from disk to where the screen can show them: whole, or not at all. The main thread waits for none of
/// it. Main thread only.
class PhotoOpener : public QObject
{
    Q_OBJECT

public:
    using Record = std::shared_ptr<PhotoFile>;

    /// The three things that take time; they run off the main thread.
    struct Steps
    {
        /// Whether the content is that of a picture, from the headers; the name of its format.
        std::function<Outcome<QByteArray>(const QString &path)> inspect;
        std::function<Record(const QString &path)> readRecord;
        /// The upright photo, no larger than `bound` pixels.
        std::function<Outcome<ImageLoader::Loaded>(const QString &path, QSize bound)> load;

        static Steps real();
    };

    /// How large the picture is wanted.
    struct Sizes
    {
        QSize screen;     ///< no view of it will ever be larger, in pixels
        QSize firstSight; ///< the room for the first sight of it, in pixels
    };

    explicit PhotoOpener(Steps steps, QObject *parent = nullptr);
    ~PhotoOpener() override;

    /// Reads the photo; `opened` or `refused` follows. Of photos that are asked for while others are still read the
    /// last one that is whole is opened, wherever another breaks; those before it are left out.
    void open(const QString &path, const Sizes &sizes, const DisplayColors &colors);
    /// The same on the thread of the caller, who waits for it.
    Outcome<OpenedPhoto> read(const QString &path, const Sizes &sizes, const DisplayColors &colors) const;

    bool isLoading() const { return !m_requests.empty(); }

signals:
    void opened(const OpenedPhoto &photo);
    void refused(const Failure &failure);

private:
    using Request = quint64;

    void settle(Request request, const Outcome<OpenedPhoto> &photo);

    Steps m_steps;
    Request m_lastRequest = 0;
    /// In the order in which they came: what is still read, and a photo that is whole but waits for what came later.
    std::map<Request, std::optional<OpenedPhoto>> m_requests;
    std::shared_ptr<std::atomic<Request>> m_oldestWanted = std::make_shared<std::atomic<Request>>(0);
    /// Two threads: a photo that takes long must not hold up the one that somebody asks for meanwhile.
    WorkQueue m_queue{2};
};

} // namespace hazelmark
