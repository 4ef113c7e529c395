#include "BlockReaders.h"
#include "JpegSegments.h"
#include "SourceCursor.h"

#include <QtEndian>

namespace hazelmark {

EmbeddedBlocks readWebPBlocks(const SourceFile &source)
{
    constexpr qint64 kRiffHeaderSize = 12;
    EmbeddedBlocks blocks;
    SourceCursor cursor(source, kRiffHeaderSize);
    for (int step = 0; step < kMaxSteps; ++step) {
        const QByteArray head = cursor.read(8);
        if (head.size() < 8)
            return blocks;
        const qint64 size = qFromLittleEndian<quint32>(head.constData() + 4);
        const qint64 next = cursor.position() + size + size % 2;
        const QByteArray type = head.left(4);
        if ((type == "EXIF" || type == "XMP ") && size <= kMaxBlockSize) {
            const QByteArray data = cursor.read(size);
            if (data.size() < size)
                return blocks;
            (type == "EXIF" ? blocks.exif : blocks.xmp) = withoutExifLeadIn(data);
        }
        cursor.seek(next);
        if (cursor.atEnd())
            return blocks;
    }
    return blocks;
}

} // namespace hazelmark
