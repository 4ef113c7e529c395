#include "Decoder.h"
#include "Pictures.h"
#include "SamplePhotos.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

using testing::filled;
using testing::noise;

namespace {

struct Ended
{
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

QStringList wordsOf(const char *line)
{
    return QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

void noCoreFiles()
{
    const rlimit none = {0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

/// Runs the program itself, as a person would.
class CommandLineProgram : public ::testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QImage pixelsOf(const char *name) const { return (*decodePicture(path(name))).pixels; }

    QString picture(const char *name, const QImage &image, WriteFormat format, const MetadataBlocks &metadata = {})
    {
        return writeBytes(m_folder, QLatin1String(name), readBytes(writePhoto(m_pictures, format, metadata, image)));
    }

    Ended run(const QStringList &arguments)
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(QStringLiteral(HAZELMARK_CLI), arguments);
        EXPECT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    Ended render(const QString &photo, const QString &mask, const QString &out, const QStringList &more = {})
    {
        const QStringList arguments{QStringLiteral("render"),   photo, QStringLiteral("--mask"), mask,
                                    QStringLiteral("--output"), out};
        return run(arguments + more);
    }

    /// Exit 1 and one sentence, in a line of its own, that names the file; nothing new in the folder.
    void expectFailure(const QString &photo, const QString &mask, const QString &out, const QString &named)
    {
        const QStringList before = entries();
        const Ended ended = render(photo, mask, out);
        EXPECT_EQ(ended.exitCode, 1) << out.toStdString();
        EXPECT_EQ(ended.errors.count('\n'), 1) << ended.errors.toStdString();
        EXPECT_TRUE(ended.errors.endsWith(".\n"));
        EXPECT_TRUE(QString::fromUtf8(ended.errors).contains(named)) << ended.errors.toStdString();
        EXPECT_EQ(entries(), before);
    }

    QStringList entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    }

    QTemporaryDir m_folder;
    const QTemporaryDir m_pictures;
    const QImage m_image = noise({120, 80}, QImage::Format_RGBX8888);
    const QString m_photo = picture("photo.png", m_image, WriteFormat::Png);
    const QString m_black =
        picture("black.png", filled({60, 40}, QImage::Format_RGBX8888, Qt::black), WriteFormat::Png);
    const QString m_green =
        picture("green.png", filled({60, 40}, QImage::Format_RGBX8888, Qt::green), WriteFormat::Png);
};

} // namespace

TEST_F(CommandLineProgram, WrongUsageEndsWithTwoAndOneSentence)
{
    for (const char *line :
         {"", "blur photo.png", "info", "info a.png b.png", "render photo.png --output out.png",
          "render photo.png --mask black.png", "render --mask black.png --output out.png",
          "render photo.png --mask black.png --output out.png --blur nan",
          "render photo.png --mask black.png --output out.png --vignette inf",
          "render photo.png --mask black.png --output out.png --blur 1e99",
          "render photo.png --mask black.png --output out.png --blur soft",
          "render photo.png --mask black.png --output out.png --sharpen 3",
          "render photo.png --mask black.png --strokes s.json --output out.png", "mask --strokes s.json",
          "mask --output out.png", "mask photo.png --strokes s.json --output out.png",
          "mask --strokes s.json --output out.png --blur 3", "info photo.png --output out.png"}) {
        const Ended ended = run(wordsOf(line));
        EXPECT_EQ(ended.exitCode, 2) << line;
        EXPECT_EQ(ended.errors.count('\n'), 1) << ended.errors.toStdString();
        EXPECT_EQ(ended.output, "") << line;
        EXPECT_FALSE(QFile::exists(path("out.png")));
    }
    for (const char *line : {"--help", "--version", "render --help"}) {
        const Ended ended = run(wordsOf(line));
        EXPECT_EQ(ended.exitCode, 0);
        EXPECT_FALSE(ended.output.isEmpty());
        EXPECT_EQ(ended.errors, "");
    }
}

TEST_F(CommandLineProgram, InfoPrintsEveryField)
{
    const QString photo = writePhoto(m_folder, WriteFormat::Jpeg, richMetadata());
    const Ended ended = run({QStringLiteral("info"), photo});
    ASSERT_EQ(ended.exitCode, 0) << ended.errors.toStdString();
    EXPECT_EQ(ended.errors, "");
    const QJsonObject all = QJsonDocument::fromJson(ended.output).object();
    const QJsonObject file = all[QLatin1String("PhotoFile")].toObject();
    const QJsonObject exif = all[QLatin1String("ExifInfo")].toObject();
    EXPECT_EQ(file[QLatin1String("width")].toInt(), 30); // the tag says a quarter turn
    EXPECT_EQ(file[QLatin1String("filePath")].toString(), photo);
    EXPECT_EQ(exif[QLatin1String("imageSize")].toString(), QStringLiteral("40 x 30"));
    EXPECT_TRUE(exif.contains(QLatin1String("folderName")) && exif[QLatin1String("folderName")].isNull());
    EXPECT_EQ(all[QLatin1String("properties")].toObject()[QLatin1String("PixelHeight")].toInt(), 30);

    const Ended missing = run({QStringLiteral("info"), path("none.png")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.errors.count('\n'), 1);
    EXPECT_EQ(missing.output, "");
}

TEST_F(CommandLineProgram, EveryFormatIsWrittenWhateverTheCaseOfItsExtension)
{
    for (const auto &[name, format] : {std::pair("a.png", "png"),
                                       {"b.JPG", "jpeg"},
                                       {"c.jpeg", "jpeg"},
                                       {"d.TIF", "tiff"},
                                       {"e.tiff", "tiff"},
                                       {"f.Gif", "gif"},
                                       {"g.bmp", "bmp"}}) {
        const Ended ended = render(m_photo, m_black, path(name));
        EXPECT_EQ(ended.exitCode, 0) << name << ended.errors.toStdString();
        EXPECT_EQ(ended.errors, "") << name;
        const auto info = readPictureInfo(path(name));
        ASSERT_TRUE(bool(info)) << name;
        EXPECT_EQ(info->format, format) << name;
        EXPECT_EQ(info->frames.back(), m_image.size()) << name;
    }
    EXPECT_EQ(pixelsOf("a.png"), m_image);
}

TEST_F(CommandLineProgram, PaintedPartsAreBlurredAndTheDefaultsAreThoseOfTheSliders)
{
    const auto rendered = [&](const char *options) {
        EXPECT_EQ(render(m_photo, m_green, path("out.png"), wordsOf(options)).exitCode, 0);
        return pixelsOf("out.png");
    };
    const QImage plain = rendered("");
    EXPECT_NE(plain, m_image);
    EXPECT_EQ(rendered("--blur 60 --vignette 0"), plain);
    EXPECT_EQ(rendered("--blur 0"), m_image);
    EXPECT_EQ(rendered("--blur=-5"), m_image);
    EXPECT_NE(rendered("--blur=0 --vignette 0.1"), m_image);
}

TEST_F(CommandLineProgram, ARotatedPhotoKeepsItsPixelSizeAndTag)
{
    MetadataBlocks blocks;
    blocks.exif = exifBlock({{"Exif.Image.Orientation", "6"}});
    const QString photo = picture("turned.png", m_image, WriteFormat::Png, blocks);
    ASSERT_EQ(render(photo, m_black, path("out.png")).exitCode, 0);
    EXPECT_EQ(pixelsOf("out.png"), m_image); // stored as the source stores it
    const Ended info = run({QStringLiteral("info"), path("out.png")});
    const QJsonObject properties =
        QJsonDocument::fromJson(info.output).object()[QLatin1String("properties")].toObject();
    EXPECT_EQ(properties[QLatin1String("Orientation")].toInt(), 6);
    // A format without the tag gets upright pixels.
    ASSERT_EQ(render(photo, m_black, path("out.bmp")).exitCode, 0);
    EXPECT_EQ(pixelsOf("out.bmp").size(), m_image.size().transposed());
}

TEST_F(CommandLineProgram, StrokesPaintTheMask)
{
    writeBytes(m_folder, QStringLiteral("s.json"),
               R"({"canvas": [60, 40], "steps": [["{0.25, 0.5}", "{0.25, 0.5}", 0, 1, 0, 1, 20, 1, false, 0.5, 2],
                                           ["{0.25, 0.5}", "{0.25, 0.5}", 0, 1, 0, 1, 8, 1, true, 0.5, 0.8]]})");
    Ended ended = run(wordsOf("mask --strokes s.json --output mask.png"));
    ASSERT_EQ(ended.exitCode, 0) << ended.errors.toStdString();
    const QImage mask = pixelsOf("mask.png");
    ASSERT_EQ(mask.size(), QSize(60, 40));
    EXPECT_EQ(mask.pixel(15, 13), qRgb(0, 255, 0)); // within the ring
    EXPECT_EQ(mask.pixel(15, 20), qRgb(0, 0, 0));   // erased
    EXPECT_EQ(mask.pixel(40, 20), qRgb(0, 0, 0));

    ended = run(wordsOf("render photo.png --strokes s.json --output out.png"));
    ASSERT_EQ(ended.exitCode, 0) << ended.errors.toStdString();
    ASSERT_EQ(render(m_photo, path("mask.png"), path("same.png")).exitCode, 0);
    EXPECT_EQ(pixelsOf("out.png"), pixelsOf("same.png"));
    EXPECT_NE(pixelsOf("out.png"), m_image);

    // Every fault is one sentence and leaves nothing behind.
    writeBytes(m_folder, QStringLiteral("bad.json"), R"({"canvas": [60, 40], "steps": [[1, 2]]})");
    const QStringList before = entries();
    for (const char *line :
         {"mask --strokes bad.json --output new.png", "render photo.png --strokes bad.json --output new.png",
          "mask --strokes s.json --output new.json", "mask --strokes s.json --output none/new.png"}) {
        ended = run(wordsOf(line));
        EXPECT_EQ(ended.exitCode, 1) << line;
        EXPECT_EQ(ended.errors.count('\n'), 1) << ended.errors.toStdString();
        EXPECT_EQ(ended.errors.contains("step 0"), QByteArray(line).contains("bad")) << ended.errors.toStdString();
        EXPECT_EQ(entries(), before);
    }
}

TEST_F(CommandLineProgram, AnExportThatIsEndedLeavesWhatWasThereOrTheWholeFile)
{
    const QImage large = noise({900, 700}, QImage::Format_RGBX8888);
    const QString photo = picture("large.png", large, WriteFormat::Png);
    const QString out = writeBytes(m_folder, QStringLiteral("out.tiff"), "precious");
    const QStringList arguments{QStringLiteral("render"),   photo, QStringLiteral("--mask"), m_black,
                                QStringLiteral("--output"), out};
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(render(photo, m_black, path("whole.tiff")).exitCode, 0);
    const qint64 whole = timer.elapsed();
    const QByteArray expected = readBytes(path("whole.tiff"));
    for (const int signal : {SIGKILL, SIGTERM, SIGQUIT}) {
        for (const int percent : {40, 60, 75, 85, 92, 98}) {
            QProcess process;
            process.setChildProcessModifier(noCoreFiles);
            process.start(QStringLiteral(HAZELMARK_CLI), arguments);
            ASSERT_TRUE(process.waitForStarted());
            if (!process.waitForFinished(int(whole * percent / 100)))
                ::kill(pid_t(process.processId()), signal);
            ASSERT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(60000));
            const QByteArray there = readBytes(out);
            EXPECT_TRUE(there == "precious" || there == expected) << signal << " after " << percent << " %";
            EXPECT_TRUE(signal == SIGKILL || entries().filter(QStringLiteral(".hazelmark-")).isEmpty());
        }
    }
    ASSERT_EQ(run(arguments).exitCode, 0);
    EXPECT_TRUE(entries().filter(QStringLiteral(".hazelmark-")).isEmpty());
}

TEST_F(CommandLineProgram, AFileThatMayNotGrowIsOneSentenceAndLeavesNothing)
{
    const QStringList before = entries();
    QProcess process;
    process.setChildProcessModifier([] {
        const rlimit fewBytes = {1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &fewBytes);
    });
    process.start(QStringLiteral(HAZELMARK_CLI), {QStringLiteral("render"), m_photo, QStringLiteral("--mask"), m_black,
                                                  QStringLiteral("--output"), path("out.png")});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(process.readAllStandardError().count('\n'), 1);
    EXPECT_EQ(entries(), before);
}

TEST_F(CommandLineProgram, NoInputIsReplacedAndNoPipeIsWaitedFor)
{
    const QByteArray strokes = R"({"canvas": [60, 40], "steps": []})";
    writeBytes(m_folder, QStringLiteral("s.json"), strokes);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe.png")).constData(), 0600), 0);
    const std::pair<const char *, const char *> links[] = {
        {"photo.png", "soft.png"}, {"black.png", "mask.png"}, {"s.json", "strokes.png"}};
    for (const auto &[file, link] : links)
        ASSERT_TRUE(QFile::link(path(file), path(link)));
    ASSERT_EQ(::link(QFile::encodeName(m_black).constData(), QFile::encodeName(path("hard.png")).constData()), 0);
    for (const char *line :
         {"render photo.png --mask black.png -o photo.png", "render photo.png --mask black.png -o soft.png",
          "render photo.png --mask black.png -o black.png", "render photo.png --mask black.png -o mask.png",
          "render photo.png --mask black.png -o hard.png", "render photo.png --mask hard.png -o black.png",
          "render photo.png --strokes s.json -o strokes.png", "mask --strokes s.json -o strokes.png",
          "render pipe.png --mask black.png -o new.png", "render photo.png --mask pipe.png -o new.png",
          "render photo.png --strokes pipe.png -o new.png", "mask --strokes pipe.png -o new.png", "info pipe.png"}) {
        const Ended ended = run(wordsOf(line));
        EXPECT_EQ(ended.exitCode, 1) << line;
        EXPECT_EQ(ended.errors.count('\n'), 1) << line << ended.errors.toStdString();
        EXPECT_FALSE(QFile::exists(path("new.png"))) << line;
    }
    EXPECT_EQ(pixelsOf("photo.png"), m_image);
    EXPECT_EQ(pixelsOf("black.png").pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(readBytes(path("s.json")), strokes);
}

TEST_F(CommandLineProgram, BadInputIsOneSentenceAndChangesNothing)
{
    const QString out = writeBytes(m_folder, QStringLiteral("out.png"), "precious");
    expectFailure(path("none.png"), m_black, out, path("none.png"));
    expectFailure(m_folder.path(), m_black, out, m_folder.path());
    expectFailure(writeBytes(m_folder, QStringLiteral("text.jpg"), "hello"), m_black, out, path("text.jpg"));
    expectFailure(writeBytes(m_folder, QStringLiteral("empty.jpg"), ""), m_black, out, path("empty.jpg"));
    const QByteArray whole = readBytes(picture("whole.jpg", m_image, WriteFormat::Jpeg));
    const QString half = writeBytes(m_folder, QStringLiteral("half.jpg"), whole.left(whole.size() / 2));
    expectFailure(half, m_black, out, half);
    QByteArray damaged = whole;
    damaged.replace(whole.size() / 2, 200, QByteArray(200, '\xff'));
    const QString opened = writeBytes(m_folder, QStringLiteral("damaged.jpg"), damaged);
    const Ended told = render(opened, m_black, path("told.png"));
    EXPECT_EQ(told.exitCode, 0);
    EXPECT_EQ(QString::fromUtf8(told.errors),
              QStringLiteral("hazelmark-cli: %1: a part of its picture data is damaged.\n").arg(opened));
    expectFailure(m_photo, path("text.jpg"), out, path("text.jpg"));
    expectFailure(m_photo, half, out, half);
    expectFailure(m_photo, m_black, path("none/out.png"), path("none/out.png"));
    expectFailure(m_photo, m_black, path("out.webp"), path("out.webp"));
    expectFailure(m_photo, m_black, path("out"), QStringLiteral("gif"));
    EXPECT_EQ(readBytes(out), "precious");
    ::chmod(QFile::encodeName(out).constData(), 0444);
    expectFailure(m_photo, m_black, out, out);
    EXPECT_EQ(readBytes(out), "precious");
    EXPECT_EQ((*decodePicture(m_photo)).pixels, m_image);
}

} // namespace hazelmark
