#include "ExportFormats.h"
#include "ExportWriter.h"
#include "FuzzFile.h"
#include "ImageLoader.h"

#include <QTemporaryDir>

using namespace hazelmark;

/// Whatever can be loaded can be exported, and what was written can be read again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/hazelmark-fuzz-XXXXXX"));
    const Outcome<PhotoPtr> photo = Photo::open(fuzzFile(bytes, size));
    if (!photo || !isSmall((*photo)->info()))
        return 0;
    (void)ImageLoader::loadReduced(**photo, {20, 20});
    const Outcome<ImageLoader::Loaded> loaded = ImageLoader::load(**photo);
    if (!loaded)
        return 0;
    ExportWriter::Settings settings{PhotoFile(*photo), ExportFormats::forSource({}).formats, {}};
    for (const auto *form : {"jpeg", "png", "tiff"}) {
        settings.fileTypeToExportImage = QString::fromLatin1(form);
        const QString path = folder.filePath(settings.fileTypeToExportImage);
        if (ExportWriter(settings).save(path, loaded->photo) && !decodePicture(path))
            std::abort();
    }
    return 0;
}
