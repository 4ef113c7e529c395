#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSizeF>
#include <QString>

namespace hazelmark {

/// The interface's images by resource name: vector drawings in the folder "icons" of the program's resources, drawn
/// at the size and backing scale they are asked for. A name may carry the extension of a bitmap ("brush.png"); it
/// does not count. A name without a drawing gives an empty pixmap, and one line in the log.
class ImageCatalog
{
public:
    /// The drawing's own size in points; empty when there is none.
    static QSizeF naturalSize(const QString &name);
    /// The drawing, stretched to `size` points.
    static QPixmap imageNamed(const QString &name, QSizeF size, qreal backingScale);
    /// Drawn at the sizes that menus and window lists show.
    static QIcon iconNamed(const QString &name);
};

} // namespace hazelmark
