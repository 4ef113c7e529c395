#pragma once

#include "Encoder.h"

#include <QImage>
#include <QString>

#include <gtest/gtest.h>

namespace hazelmark {

/// A small picture whose left half is dark and right half bright.
inline QImage testPicture(QSize size = QSize(64, 48))
{
    QImage bitmap(size, QImage::Format_RGBX8888);
    bitmap.fill(QColor(40, 60, 80));
    for (int y = 0; y < size.height(); ++y) {
        for (int x = size.width() / 2; x < size.width(); ++x)
            bitmap.setPixelColor(x, y, QColor(220, 200, 180));
    }
    return bitmap;
}

/// Writes testPicture() into a file of the kind that its extension says.
inline QString writeTestPhoto(const QString &path)
{
    EncodeOptions options;
    options.format = path.endsWith(QLatin1String("png"), Qt::CaseInsensitive) ? WriteFormat::Png : WriteFormat::Jpeg;
    EXPECT_TRUE(encodePicture(testPicture(), options, path));
    return path;
}

} // namespace hazelmark
