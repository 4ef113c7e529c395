#pragma once

#include "SourceFile.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace hazelmark {

/// What the headers of a file say that Qt's readers do not tell before they decode, or not at all: among it whether the
/// file is cut off, which several of those readers pass over.
struct FileHeader
{
    std::vector<QSize> frames; ///< empty: to be asked of the reader
    std::optional<bool> hasAlpha;
    QByteArray iccProfile;
    std::optional<QSizeF> dpi;
    bool isCutOff = false;
    bool isOfAnotherKind = false; ///< Qt has taken the file for what it is not
};

/// BMP, ICO and CUR, WebP by their Qt format names; for other formats nothing is known.
FileHeader readFileHeader(SourceFile &source, const QByteArray &format);

} // namespace hazelmark
