#include "ClipboardPhoto.h"

#include "Log.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QUrl>

#include <utility>

namespace hazelmark {

void ClipboardPhoto::asFile(std::function<void(const QString &path)> done)
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return done({});
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile())
            return done(url.toLocalFile());
    }
    const QImage picture = data->hasImage() ? qvariant_cast<QImage>(data->imageData()) : QImage();
    if (picture.isNull())
        return done({});
    if (!m_folder)
        m_folder.emplace();
    // A folder each: the photo that is open is never written over.
    const QString folder = m_folder->filePath(QString::number(++m_count));
    m_writer.run(
        [picture, folder] {
            const QString path = folder + QStringLiteral("/Clipboard.png");
            if (QDir().mkpath(folder) && picture.save(path))
                return path;
            qCWarning(lcScreen) << "cannot write the picture on the clipboard into" << folder;
            return QString();
        },
        std::move(done));
}

} // namespace hazelmark
