#include "OutgoingPictures.h"

#include "Encoder.h"
#include "Log.h"
#include "PathParts.h"

#include <QCoreApplication>
#include <QDir>

#include <new>

namespace hazelmark {

namespace {

/// Qt has none where the environment names one that does not exist.
QString temporaryFolder()
{
    const QString path = QDir::tempPath();
    return path.isEmpty() ? QStringLiteral("/tmp") : path;
}

/// Done, or a line in the log.
bool write(const PhotoImagePtr &image, bool asJpeg, const QString &path)
{
    EncodeOptions options;
    options.format = asJpeg ? WriteFormat::Jpeg : WriteFormat::Png;
    options.metadata.iccProfile = image->iccProfile();
    try {
        const Outcome<Done> done = encodePicture(image->bitmap(), options, path);
        if (done)
            return true;
        qCWarning(lcScreen).noquote() << done.failure().sentence();
    } catch (const std::bad_alloc &) {
        qCWarning(lcScreen) << "No memory to share" << path;
    }
    return false;
}

} // namespace

OutgoingPictures::OutgoingPictures(QObject *parent)
    : QObject(parent)
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &OutgoingPictures::end);
}

OutgoingPictures::~OutgoingPictures()
{
    end();
}

void OutgoingPictures::end()
{
    m_queue.reset(); // waits for a picture that is being written
    m_folder.reset();
}

bool OutgoingPictures::goesAsJpeg(const PhotoImagePtr &image, const QString &photoPath)
{
    const QString extension = pathExtension(photoPath).toLower();
    const bool fromJpeg = extension == QLatin1String("jpg") || extension == QLatin1String("jpeg");
    return fromJpeg && !image->bitmap().hasAlphaChannel();
}

QString OutgoingPictures::mimeType(const PhotoImagePtr &image, const QString &photoPath)
{
    return goesAsJpeg(image, photoPath) ? QStringLiteral("image/jpeg") : QStringLiteral("image/png");
}

void OutgoingPictures::prepare(const PhotoImagePtr &image, const QString &photoPath, Ready ready)
{
    if (image == m_lastImage.lock() && QFile::exists(m_lastPath)) {
        ready(m_lastPath);
        return;
    }
    const bool asJpeg = goesAsJpeg(image, photoPath);
    const QString path =
        newPath(nameWithoutExtension(photoPath) + (asJpeg ? QStringLiteral(".jpg") : QStringLiteral(".png")));
    if (path.isEmpty()) {
        ready({});
        return;
    }
    m_queue->run([image, asJpeg, path] { return write(image, asJpeg, path); },
                 [this, path, weak = std::weak_ptr(image), ready = std::move(ready)](bool written) {
                     if (written) {
                         m_lastImage = weak;
                         m_lastPath = path;
                     }
                     ready(written ? path : QString());
                 });
}

void OutgoingPictures::preparePng(const PhotoImagePtr &image, BytesReady ready)
{
    const QString path = newPath(QStringLiteral("clipboard.png"));
    if (path.isEmpty()) {
        ready({});
        return;
    }
    m_queue->run(
        [image, path] {
            QFile file(path);
            const bool readable = write(image, false, path) && file.open(QIODevice::ReadOnly);
            const QByteArray bytes = readable ? file.readAll() : QByteArray();
            file.remove();
            return bytes;
        },
        ready);
}

QString OutgoingPictures::newPath(const QString &fileName)
{
    if (!m_queue)
        return {};
    if (!m_folder)
        m_folder = std::make_unique<QTemporaryDir>(temporaryFolder() + QStringLiteral("/hazelmark-XXXXXX"));
    const QString folder = m_folder->filePath(QString::number(++m_count));
    if (m_folder->isValid() && QDir().mkpath(folder))
        return folder + QLatin1Char('/') + fileName;
    qCWarning(lcScreen) << "No temporary folder for shared pictures:" << m_folder->errorString();
    return {};
}

} // namespace hazelmark
