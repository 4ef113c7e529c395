#include "Decoder.h"
#include "Pictures.h"
#include "SamplePhotos.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

using testing::filled;
using testing::noise;

namespace {

struct Ended
{
    int exitCode = -1; ///< -1: not by itself
    QByteArray output;
    QByteArray errors;
};

/// Runs the program itself, as a person would, in a folder with a photo and two masks.
class CommandLineProgram : public ::testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    QImage pixelsOf(const char *name) const { return (*decodePicture(path(name))).pixels; }
    void file(const char *name, const QByteArray &content) { writeBytes(m_folder, QLatin1String(name), content); }
    QStringList entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    }

    /// `prepare` is called in the program's process before it starts.
    Ended run(const char *line, const std::function<void()> &prepare = {})
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.setChildProcessModifier(prepare);
        process.start(QStringLiteral(HAZELMARK_CLI),
                      QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
                process.readAllStandardError()};
    }

    /// One sentence, in a line of its own, that has `part` in it; nothing new in the folder.
    void expectFailure(const char *line, int exitCode, const char *part, const std::function<void()> &prepare = {})
    {
        const QStringList before = entries();
        const Ended ended = run(line, prepare);
        EXPECT_EQ(ended.exitCode, exitCode) << line;
        EXPECT_EQ(ended.output, "") << line;
        EXPECT_EQ(ended.errors.count('\n'), 1) << line << ": " << ended.errors.toStdString();
        EXPECT_TRUE(ended.errors.endsWith(".\n") && ended.errors.contains(part)) << ended.errors.toStdString();
        EXPECT_EQ(entries(), before) << line;
    }

    void SetUp() override
    {
        writePhoto(m_folder, WriteFormat::Png, {}, m_image); // photo.png
        filled({60, 40}, QImage::Format_RGBX8888, Qt::black).save(path("black.png"));
        filled({60, 40}, QImage::Format_RGBX8888, Qt::green).save(path("green.png"));
        file("s.json", m_strokes);
    }

    QTemporaryDir m_folder;
    const QImage m_image = noise({120, 80}, QImage::Format_RGBX8888);
    const QByteArray m_strokes =
        R"({"canvas": [60, 40], "steps": [["{0.25, 0.5}", "{0.25, 0.5}", 0, 1, 0, 1, 20, 1, false, 0.5, 2],
                                          ["{0.25, 0.5}", "{0.25, 0.5}", 0, 1, 0, 1, 8, 1, true, 0.5, 0.8]]})";
};

} // namespace

TEST_F(CommandLineProgram, WrongUsageEndsWithTwoAndOneSentence)
{
    for (const char *line :
         {"", "blur photo.png", "info", "render photo.png --output out.png", "render photo.png --mask black.png",
          "render --mask black.png --output out.png", "render photo.png --mask black.png --output out.png --blur nan",
          "render photo.png --mask black.png --output out.png --blur soft",
          "render photo.png --mask black.png --output out.png --sharpen 3",
          "render photo.png --mask black.png --strokes s.json --output out.png", "mask --strokes s.json",
          "mask photo.png --strokes s.json --output out.png"})
        expectFailure(line, 2, "--help");
    for (const char *line : {"--help", "--version", "render --help"}) {
        const Ended ended = run(line);
        EXPECT_EQ(ended.exitCode, 0);
        EXPECT_FALSE(ended.output.isEmpty());
        EXPECT_EQ(ended.errors, "");
    }
}

TEST_F(CommandLineProgram, BadInputIsOneSentenceAndChangesNothing)
{
    file("out.png", "precious");
    file("text.jpg", "hello");
    file("empty.png", {});
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("folder.jpg")));
    file("bad.json", R"({"canvas": [60, 40], "steps": [[1, 2]]})");
    const QString half = writePhoto(m_folder, WriteFormat::Jpeg, {}, m_image);
    QFile::resize(half, QFile(half).size() / 2);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe.png")).constData(), 0600), 0); // nobody ever writes to it
    ASSERT_TRUE(QFile::link(path("s.json"), path("strokes.png")));
    for (const auto &[line, part] :
         {std::pair("render none.png --mask black.png -o out.png", "none.png: there is no such file"),
          {"render photo.jpg --mask black.png -o out.png", "photo.jpg: its picture data is cut off"},
          {"render photo.png --mask text.jpg -o out.png", "text.jpg: it is not a picture"},
          {"render folder.jpg --mask black.png -o out.png", "folder.jpg: it is a folder"},
          {"render empty.png --mask black.png -o out.png", "empty.png: it is empty"},
          {"info pipe.png", "pipe.png: it is not a regular file"},
          {"render photo.png --strokes pipe.png -o out.png", "pipe.png"},
          {"render photo.png --strokes bad.json -o out.png", "step 0"},
          {"render photo.png --mask black.png -o out.webp", "out.webp"},
          {"render photo.png --mask black.png -o out", "gif"},
          {"render photo.png --mask black.png -o photo.png", "which is never changed"},
          {"render photo.png --mask black.png -o black.png", "black.png"},
          {"render photo.png --strokes s.json -o strokes.png", "strokes.png"},
          {"mask --strokes s.json -o strokes.png", "strokes.png"},
          {"mask --strokes s.json -o new.json", "new.json"}})
        expectFailure(line, 1, part);
    expectFailure("render photo.png --mask black.png -o new.png", 1, "new.png", [] {
        const rlimit fewBytes = {1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &fewBytes);
    });
    EXPECT_EQ(readBytes(path("out.png")), "precious");
    EXPECT_EQ(pixelsOf("photo.png"), m_image);
    EXPECT_EQ(pixelsOf("black.png").pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(readBytes(path("s.json")), m_strokes);
}

TEST_F(CommandLineProgram, InfoPrintsEveryField)
{
    const QString photo = writePhoto(m_folder, WriteFormat::Jpeg, richMetadata());
    const QJsonObject all = QJsonDocument::fromJson(run("info photo.jpg").output).object();
    const QJsonObject file = all[QLatin1String("PhotoFile")].toObject();
    const QJsonObject exif = all[QLatin1String("ExifInfo")].toObject();
    EXPECT_EQ(file[QLatin1String("width")].toInt(), 30); // the tag says a quarter turn
    EXPECT_EQ(file[QLatin1String("filePath")].toString(), photo);
    EXPECT_EQ(exif[QLatin1String("imageSize")].toString(), QStringLiteral("40 x 30"));
    EXPECT_TRUE(exif.contains(QLatin1String("folderName")) && exif[QLatin1String("folderName")].isNull());
    EXPECT_EQ(all[QLatin1String("properties")].toObject()[QLatin1String("PixelHeight")].toInt(), 30);
}

TEST_F(CommandLineProgram, PaintedPartsAreBlurredAndTheDefaultsAreThoseOfTheSliders)
{
    const auto rendered = [&](const QByteArray &options) {
        EXPECT_EQ(run(("render photo.png -o out.png " + options).constData()).exitCode, 0) << options.constData();
        return pixelsOf("out.png");
    };
    const QImage plain = rendered("--mask green.png");
    EXPECT_NE(plain, m_image);
    EXPECT_EQ(rendered("--mask green.png --blur 60 --vignette 0"), plain);
    EXPECT_EQ(rendered("--mask green.png --blur 0"), m_image);
    EXPECT_NE(rendered("--mask green.png --blur=0 --vignette 0.1"), m_image);

    ASSERT_EQ(run("mask --strokes s.json --output mask.png").exitCode, 0);
    const QImage mask = pixelsOf("mask.png");
    ASSERT_EQ(mask.size(), QSize(60, 40));
    EXPECT_EQ(mask.pixel(15, 13), qRgb(0, 255, 0)); // within the ring
    EXPECT_EQ(mask.pixel(15, 20), qRgb(0, 0, 0));   // erased
    EXPECT_EQ(mask.pixel(40, 20), qRgb(0, 0, 0));
    const QImage painted = rendered("--strokes s.json");
    EXPECT_EQ(painted, rendered("--mask mask.png"));
    EXPECT_NE(painted, m_image);
    // What a painting was kept with holds where no option says otherwise.
    file("kept.json",
         QByteArray(m_strokes).replace("{\"canvas", R"({"version": 1, "blur": 20, "vignette": 0.1, "canvas)"));
    EXPECT_EQ(rendered("--strokes kept.json"), rendered("--strokes s.json --blur 20 --vignette 0.1"));
    EXPECT_EQ(rendered("--strokes kept.json --blur 60 --vignette 0"), painted);
    // One that was painted near the photo is drawn as finely.
    file("near.json", QByteArray(m_strokes).replace("{\"canvas", R"({"scale": 4, "canvas)"));
    ASSERT_EQ(run("mask --strokes near.json --output near.png").exitCode, 0);
    EXPECT_EQ(rendered("--strokes near.json"), rendered("--mask near.png"));
    EXPECT_NE(rendered("--strokes near.json"), painted);
}

} // namespace hazelmark
