#pragma once

#include "EmbeddedBlocks.h"

#include <QFile>

namespace hazelmark {

/// Whether the file is a TIFF file with 64-bit offsets.
bool isBigTiff(QFile &file);

/// The metadata of such a file in the form of blocks. The EXIF block has 32-bit offsets: it holds those tags of the
/// first directory that are wanted, and the EXIF and GPS directories, with their values next to each other. So a
/// maker's note stands at another place than in the file.
EmbeddedBlocks readBigTiffBlocks(QFile &file, bool (*isWanted)(quint16 tag));

} // namespace hazelmark
