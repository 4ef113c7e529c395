#include "ImageCatalog.h"

#include "Bundle.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>
#include <map>
#include <memory>

namespace hazelmark {

namespace {

Q_LOGGING_CATEGORY(lcControls, "hazelmark.controls")

// Parsed once a process; the handful of icons is small. Main thread only, as all of the interface.
QSvgRenderer *drawing(const QString &name)
{
    static std::map<QString, std::unique_ptr<QSvgRenderer>> drawings;
    if (name.isEmpty())
        return nullptr;
    const QString base = name.endsWith(QLatin1String(".png")) ? name.chopped(4) : name;
    auto [entry, isNew] = drawings.try_emplace(base);
    if (isNew) {
        const QString path =
            Bundle::mainBundle().pathForResource(QStringLiteral("icons/") + base, QStringLiteral("svg"));
        auto renderer = std::make_unique<QSvgRenderer>();
        if (!path.isEmpty() && renderer->load(path))
            entry->second = std::move(renderer);
        else
            qCWarning(lcControls) << "No image is named" << base;
    }
    return entry->second.get();
}

} // namespace

QSizeF ImageCatalog::naturalSize(const QString &name)
{
    const QSvgRenderer *renderer = drawing(name);
    return renderer ? QSizeF(renderer->defaultSize()) : QSizeF();
}

QPixmap ImageCatalog::imageNamed(const QString &name, QSizeF size, qreal backingScale)
{
    QSvgRenderer *renderer = drawing(name);
    const QSize pixels(qRound(size.width() * backingScale), qRound(size.height() * backingScale));
    if (!renderer || pixels.isEmpty())
        return {};
    const QString key =
        QStringLiteral("hazelmark/%1/%2x%3@%4").arg(name).arg(pixels.width()).arg(pixels.height()).arg(backingScale);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = QPixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer->setAspectRatioMode(Qt::IgnoreAspectRatio);
    renderer->render(&painter, QRectF(QPointF(), QSizeF(pixels)));
    painter.end();
    pixmap.setDevicePixelRatio(backingScale);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

QIcon ImageCatalog::iconNamed(const QString &name)
{
    QIcon icon;
    for (const int size : {16, 20, 24, 32, 48, 64, 128, 256}) {
        const QPixmap pixmap = imageNamed(name, QSizeF(size, size), 1.0);
        if (!pixmap.isNull())
            icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace hazelmark
