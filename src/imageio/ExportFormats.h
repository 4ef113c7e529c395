#pragma once

#include "Encoder.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace hazelmark {

/// The formats that an export offers, its photo's own first.
struct ExportFormats
{
    QStringList formats; ///< what the writer addresses by index: "jpeg" or "jpg", "tiff", "bmp", "gif", "png"
    QStringList titles;  ///< for people, in the same order

    /// For a photo with this extension, compared with the lower- and the upper-case form of each.
    static ExportFormats forSource(const QString &extension);

    /// The form of `extension` (any case; "jpg" and "jpeg" are one, "tif" and "tiff" are one) that `formats` holds;
    /// null for an extension of no format.
    QString formFor(const QString &extension) const;

    /// The writer's table; the comparison is case-sensitive ("png" and "PNG", but not "Png").
    static std::optional<WriteFormat> writeFormat(const QString &format);
};

} // namespace hazelmark
