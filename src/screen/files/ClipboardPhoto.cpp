#include "ClipboardPhoto.h"

#include "Log.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace hazelmark {

namespace {

/// In which of its forms a picture is taken: PNG keeps all. Empty where it has none, or none of pixels.
QString takenForm(const QStringList &forms)
{
    const QString png = QStringLiteral("image/png");
    const auto isOfPixels = [](const QString &form) {
        return form.startsWith(QLatin1String("image/")) && !form.contains(QLatin1String("svg"));
    };
    const auto first = std::find_if(forms.begin(), forms.end(), isOfPixels);
    if (forms.contains(png))
        return png;
    return first == forms.end() ? QString() : *first;
}

QString nameFor(const QString &form)
{
    QString extension = form.section(u'/', 1).section(u'-', -1);
    extension.removeIf([](QChar c) { return !c.isLetterOrNumber(); });
    return QStringLiteral("/Clipboard.") + extension;
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace

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
    // Its bytes come from another program: they are read as any photo's are. What this program has copied has none.
    const QString form = takenForm(data->formats());
    const QByteArray bytes = form.isEmpty() ? QByteArray() : data->data(form);
    const QImage picture = form.isEmpty() && data->hasImage() ? qvariant_cast<QImage>(data->imageData()) : QImage();
    if (bytes.isEmpty() && picture.isNull())
        return done({});
    if (!m_folder)
        m_folder.emplace();
    // A folder each: the photo that is open is never written over.
    const QString folder = m_folder->filePath(QString::number(++m_count));
    m_writer.run(
        [bytes, picture, folder, name = nameFor(form.isEmpty() ? QStringLiteral("image/png") : form)] {
            const QString path = folder + name;
            if (QDir().mkpath(folder) && (picture.isNull() ? write(path, bytes) : picture.save(path)))
                return path;
            qCWarning(lcScreen) << "cannot write the picture on the clipboard into" << folder;
            return QString();
        },
        std::move(done));
}

} // namespace hazelmark
