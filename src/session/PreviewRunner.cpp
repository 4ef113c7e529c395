#include "PreviewRunner.h"

#include "Log.h"
#include "RenderJobs.h"

#include <new>
#include <utility>

namespace hazelmark {

namespace {

template <typename Draw>
QImage withinMemory(const Draw &draw)
{
    try {
        return draw();
    } catch (const std::bad_alloc &) {
        qCWarning(lcSession, "no memory to draw the preview");
        return {};
    }
}

QImage shown(PhotoImagePtr picture, const DisplayColors &colors)
{
    if (!picture)
        return {};
    QImage pixels = picture->bitmap();
    const QByteArray profile = picture->iccProfile();
    picture.reset(); // a picture that was only made to be shown needs no second set of pixels
    return colors.shown(std::move(pixels), profile);
}

} // namespace

PreviewRunner::PreviewRunner(Render render, QObject *parent)
    : QObject(parent)
    , m_render(std::move(render))
{
}

PreviewRunner::Render PreviewRunner::realRender()
{
    return [](const PreviewJob &job) { return job.run(); };
}

void PreviewRunner::startPhoto()
{
    release();
    ++m_photo;
    setSource(nullptr, nullptr);
}

void PreviewRunner::setSource(const PhotoImagePtr &resizedInputImage, const PhotoImagePtr &maskImage)
{
    std::lock_guard lock(m_source->mutex);
    m_source->resizedInputImage = resizedInputImage;
    m_source->maskImage = maskImage;
}

void PreviewRunner::release()
{
    m_isHeld = false;
    for (const CoreFilterObject &settings : std::exchange(m_held, {}))
        request(settings);
}

void PreviewRunner::request(const CoreFilterObject &settings)
{
    if (m_isHeld) {
        m_held.push_back(settings);
        return;
    }
    m_queue.run(
        [render = m_render, source = m_source, colors = m_colors, settings] {
            PreviewJob job;
            job.settings = settings;
            {
                std::lock_guard lock(source->mutex);
                job.resizedInputImage = source->resizedInputImage;
                job.maskImage = source->maskImage;
            }
            return withinMemory([&] {
                if (job.resizedInputImage)
                    job.resizedInputImage->bitmap(); // else every render would scale it anew
                return shown(render(job), colors);
            });
        },
        [this, photo = m_photo](const QImage &picture) {
            if (photo == m_photo)
                emit previewRendered(picture);
        });
}

void PreviewRunner::requestInput(const PhotoImagePtr &resizedInputImage)
{
    release();
    const quint64 request = ++*m_latestInput;
    m_queue.run(
        [resizedInputImage, colors = m_colors, latest = m_latestInput, request] {
            if (*latest != request)
                return QImage();
            return withinMemory([&] { return shown(resizedInputImage, colors); });
        },
        [this, photo = m_photo](const QImage &picture) {
            if (photo == m_photo && !picture.isNull())
                emit inputDrawn(picture);
        });
}

} // namespace hazelmark
