#pragma once

#include "SourceFile.h"

#include <QByteArray>
#include <QList>

namespace hazelmark {

/// A family of formats that is read by a library in the decoder program.
struct ForeignKind
{
    const char *name;           ///< what the decoder program knows it by
    const char *title;          ///< for people
    const char *library;        ///< that reads it
    bool isBuilt;               ///< whether the library was there when the decoder program was built
    const char *extensions;     ///< the usual ones, separated by spaces
    qint64 bytesPerPixel;       ///< of the decoder's own memory, at most, in 8 bits
    double secondsPerMegapixel; ///< processor time, at most: many times what is usual
};

/// Which of them reads the file, by its content alone: null where none of the special ones does.
const ForeignKind *foreignKindOf(const SourceFile &source);

/// For everything that nobody else reads.
const ForeignKind &kindOfQtPlugins();

/// Whether the file is a camera's raw file, TIFF structures included.
bool isCameraRaw(const SourceFile &source);

/// Formats that Qt reads, by the names that it has for them, and that are not read here.
bool isRefusedQtFormat(const QByteArray &format);

/// The usual extensions of all that the decoder program reads. Plugins are asked without being loaded.
QList<QByteArray> foreignExtensions();

} // namespace hazelmark
