#pragma once

#include "ImageLoader.h"
#include "Outcome.h"
#include "WorkQueue.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace hazelmark {

/// The open photo in full size, kept while one is close to it: decoded off the main thread when it is first asked for,
/// and handed to an export, which then need not decode it. Where memory is short it is given back, and decoded again
/// when it is next asked for. Main thread only.
class FullPhoto : public QObject
{
    Q_OBJECT

public:
    using Load = std::function<Outcome<ImageLoader::Loaded>(Photo &photo)>;

    explicit FullPhoto(
        Load load = [](Photo &photo) { return ImageLoader::load(photo); }, QObject *parent = nullptr);
    /// Ends a decoding that is under way as soon as it can be.
    ~FullPhoto() override;

    /// Another photo, or none: nothing of the one before is kept, or arrives.
    void setPhoto(const PhotoPtr &photo);
    /// Sees to it that the photo is there: changed() follows, unless it is or cannot be read.
    void ask();
    bool isDecoding() const { return m_isDecoding; }

    /// What is there; null where nothing is.
    PhotoImagePtr image() const { return m_loaded ? m_loaded->photo : nullptr; }
    const std::optional<ImageLoader::Loaded> &loaded() const { return m_loaded; }

    /// Lets go of it.
    void giveBack();
    /// Lets go of it where less memory is free than it takes.
    void giveBackIfShort();

signals:
    /// It is there, or gone, or a decoding has begun or ended.
    void changed();
    /// While it is decoded: the share that is done, 0..1, where the format's decoder tells of it.
    void progressed(double done);

private:
    Load m_load;
    PhotoPtr m_photo;
    std::optional<ImageLoader::Loaded> m_loaded;
    bool m_isDecoding = false;
    bool m_hasFailed = false;
    std::shared_ptr<std::atomic<double>> m_done;                                        ///< written by the decoder
    std::shared_ptr<std::atomic<int>> m_photos = std::make_shared<std::atomic<int>>(0); ///< counts setPhoto()
    QTimer m_poll;
    WorkQueue m_queue{1}; ///< last, so that its thread is over before anything else goes
};

} // namespace hazelmark
