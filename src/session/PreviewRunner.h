#pragma once

#include "CoreFilterObject.h"
#include "DisplayColors.h"
#include "PhotoImage.h"
#include "WorkQueue.h"

#include <QImage>
#include <QObject>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace hazelmark {

struct PreviewJob;

/// Draws what the photo area shows: the photo at its present size, and the previews.
///
/// Every preview that is asked for is rendered to its end and handed over; none is merged with another. Each render has
/// all processors to itself, so they go one after the other, and what was asked for last arrives last. Only what
/// belongs to a photo that is no longer open is dropped. Main thread only.
class PreviewRunner : public QObject
{
    Q_OBJECT

public:
    using Render = std::function<PhotoImagePtr(const PreviewJob &job)>;

    /// `render`: runs on a worker's thread.
    explicit PreviewRunner(Render render, QObject *parent = nullptr);

    /// The preview job itself.
    static Render realRender();

    const DisplayColors &colors() const { return m_colors; }
    void setColors(const DisplayColors &colors) { m_colors = colors; }

    /// A photo was opened or closed: nothing that was asked for before this will arrive.
    void startPhoto();

    /// The picture that previews are made from and the mask that goes with it; null for none. A render takes the pair
    /// that is set when it begins, not the one at the time of the request.
    void setSource(const PhotoImagePtr &resizedInputImage, const PhotoImagePtr &maskImage);
    /// Whether something that was asked for has not arrived yet.
    bool isBusy() const { return m_queue.pending() > 0 || !m_held.empty(); }
    /// Asks for a preview.
    void request(const CoreFilterObject &settings);
    /// Previews that are asked for from now on begin with release(): something else needs the processors first.
    void hold() { m_isHeld = true; }
    void release();
    /// Asks for the picture as it is; one that is replaced by another before its turn comes is left out. Releases.
    void requestInput(const PhotoImagePtr &resizedInputImage);

signals:
    /// In the colours of the screen; null when nothing could be drawn.
    void previewRendered(const QImage &shown);
    void inputDrawn(const QImage &shown);

private:
    /// What workers read.
    struct Source
    {
        std::mutex mutex;
        PhotoImagePtr resizedInputImage;
        PhotoImagePtr maskImage;
    };

    Render m_render;
    DisplayColors m_colors;
    bool m_isHeld = false;
    std::vector<CoreFilterObject> m_held; ///< asked for since
    quint64 m_photo = 0;
    std::shared_ptr<Source> m_source = std::make_shared<Source>();
    std::shared_ptr<std::atomic<quint64>> m_latestInput = std::make_shared<std::atomic<quint64>>(0);
    WorkQueue m_queue{1};
};

} // namespace hazelmark
