#pragma once

#include "DecodeScope.h"
#include "Decoder.h"
#include "Encoder.h"

#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

/// A test with a folder of its own that goes with it.
class FolderTest : public ::testing::Test
{
protected:
    QString pathOf(const QString &name) const { return m_folder.filePath(name); }
    QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(pathOf(name));
        file.remove(); // truncating an existing file makes some file systems flush it
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }
    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// The file that the picture is written as; a failure fails the test.
    QByteArray encoded(const QImage &pixels, const EncodeOptions &options) const
    {
        const QString path = pathOf(QStringLiteral("encoded"));
        const auto written = encodePicture(pixels, options, path);
        EXPECT_TRUE(written) << written.failure().sentence().toStdString();
        return written ? contentOf(path) : QByteArray();
    }
    /// Of a file with these bytes; a failure fails the test.
    PictureInfo infoOf(const QByteArray &bytes) const
    {
        const auto info = readPictureInfo(write(QStringLiteral("picture"), bytes));
        EXPECT_TRUE(info) << info.failure().sentence().toStdString();
        return info ? *info : PictureInfo();
    }
    Picture decoded(const QByteArray &bytes, QSize atLeast = {}) const
    {
        const auto picture = decodePicture(write(QStringLiteral("picture"), bytes), atLeast);
        EXPECT_TRUE(picture) << picture.failure().sentence().toStdString();
        return picture ? *picture : Picture();
    }
    /// Told of on the way, in steps that are not too long, up to the end.
    QImage decodedEvenly(const QByteArray &bytes) const
    {
        double done = 0;
        const DecodeScope scope([] { return false; },
                                [&](double now) {
                                    EXPECT_TRUE(now >= done && now <= std::min(1.0, done + 0.5))
                                        << now << " behind " << done;
                                    done = now;
                                });
        const QImage pixels = decoded(bytes).pixels;
        EXPECT_GT(done, 0.9);
        return pixels;
    }
    std::pair<PictureInfo, Picture> read(const QByteArray &bytes) const { return {infoOf(bytes), decoded(bytes)}; }
    /// Why a file with these bytes is not decoded; nothing when it is.
    std::optional<Failure::Reason> reasonFor(const QByteArray &bytes) const
    {
        const auto picture = decodePicture(write(QStringLiteral("picture"), bytes));
        return picture ? std::nullopt : std::optional(picture.failure().reason);
    }

private:
    QTemporaryDir m_folder;
};

/// The low `size` bytes of a number, the lowest first.
inline QByteArray littleEndian(quint32 value, int size = 4)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes += char(value >> 8 * i);
    return bytes;
}

inline QByteArray noiseBytes(qsizetype size, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

/// A picture whose every sample differs from its neighbours: smooth colours with a little noise on them, and in the
/// formats with alpha all of transparent, half-transparent and opaque pixels.
inline QImage makePicture(int width, int height, QImage::Format format, quint32 seed = 1)
{
    QImage deep(width, height, QImage::Format_RGBA64);
    QRandomGenerator random(seed);
    for (int y = 0; y < height; ++y) {
        auto *row = reinterpret_cast<quint16 *>(deep.scanLine(y));
        for (int x = 0; x < width; ++x) {
            row[4 * x] = quint16(60000 * x / width + random.bounded(4000));
            row[4 * x + 1] = quint16(60000 * y / height + random.bounded(4000));
            row[4 * x + 2] = quint16(60000 * (width - x + y) / (width + height) + random.bounded(4000));
            row[4 * x + 3] = quint16(x < width / 4 ? 0 : x < width / 2 ? 65535 * y / height : 65535);
        }
    }
    return deep.convertToFormat(format); // straight to straight: colours under transparent pixels stay
}

inline EncodeOptions optionsFor(WriteFormat format, MetadataBlocks metadata = {})
{
    EncodeOptions options;
    options.format = format;
    options.metadata = std::move(metadata);
    return options;
}

/// The same pixels in every sample, whatever the rows' padding.
inline ::testing::AssertionResult samePixels(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.format() != b.format())
        return ::testing::AssertionFailure()
               << "sizes or formats differ: " << a.width() << "x" << a.height() << " format " << a.format() << ", "
               << b.width() << "x" << b.height() << " format " << b.format();
    for (int y = 0; y < a.height(); ++y) {
        const size_t used = size_t(a.width()) * size_t(a.depth()) / 8;
        if (std::memcmp(a.constScanLine(y), b.constScanLine(y), used) != 0)
            return ::testing::AssertionFailure() << "row " << y << " differs";
    }
    return ::testing::AssertionSuccess();
}

/// The first `count` samples of a row, 8 or 16 bits as the format has them.
inline std::vector<int> samplesOf(const QImage &image, int count, int y = 0)
{
    const uchar *row = image.constScanLine(y);
    const bool isDeep = image.depth() == 64 || image.format() == QImage::Format_Grayscale16;
    std::vector<int> samples;
    for (int i = 0; i < count; ++i)
        samples.push_back(isDeep ? reinterpret_cast<const quint16 *>(row)[i] : row[i]);
    return samples;
}

} // namespace hazelmark
