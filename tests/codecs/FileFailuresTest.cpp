#include "TestFiles.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

using Reason = Failure::Reason;
using FileFailures = FolderTest;

TEST_F(FileFailures, AreToldByWhatIsThereWhateverItsName)
{
    const auto named = [this](const char *name) { return pathOf(QLatin1String(name)); };
    ASSERT_TRUE(QDir(pathOf({})).mkdir(QStringLiteral("folder.jpg")));
    ASSERT_EQ(mkfifo(QFile::encodeName(named("pipe.jpg")).constData(), 0600), 0);
    const QString secret = write(QStringLiteral("secret.jpg"), "x");
    ASSERT_TRUE(QFile::setPermissions(secret, QFile::WriteOwner));
    const QByteArray png = encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(WriteFormat::Png));
    const std::pair<QString, std::optional<Reason>> rows[] = {
        {named("missing.jpg"), Reason::NoSuchFile},
        {named("folder.jpg"), Reason::IsFolder},
        {named("pipe.jpg"), Reason::NotARegularFile},
        {secret, geteuid() == 0 ? Reason::NotAPicture : Reason::NotReadable}, // root may read everything
        {write(QStringLiteral("empty.png"), {}), Reason::Empty},
        {write(QStringLiteral("text.jpg"), "This is no photo.\n"), Reason::NotAPicture},
        {write(QStringLiteral("page.bmp"), "<html><body>GIF89a</body></html>"), Reason::NotAPicture},
        {write(QStringLiteral("really-a-png.jpg"), png), std::nullopt}};
    for (const auto &[path, reason] : rows) {
        const auto info = readPictureInfo(path);
        const auto picture = decodePicture(path);
        EXPECT_EQ(picture ? std::nullopt : std::optional(picture.failure().reason), reason) << path.toStdString();
        EXPECT_EQ(info ? std::nullopt : std::optional(info.failure().reason), reason) << path.toStdString();
        EXPECT_EQ(info ? path : info.failure().path, path);
    }
}

} // namespace hazelmark
