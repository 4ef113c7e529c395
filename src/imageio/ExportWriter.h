#pragma once

#include "Outcome.h"
#include "PhotoFile.h"
#include "SafeFile.h"
#include "Utils.h"

#include <QString>
#include <QStringList>

namespace hazelmark {

/// The last step of an export: turns the finished picture into a file with the source photo's pixel size, orientation
/// and metadata. Made for one export, with everything that it reads; any thread.
class ExportWriter
{
public:
    struct Settings
    {
        PhotoFile selectedImageFile; ///< the source photo; its file must be as it was when the record was made
        QStringList arrformatsSupportedByIM;
        QString fileTypeToExportImage;    ///< extension of the chosen path, as typed; may be empty
        double sliderExportQuality = 1.0; ///< taken along, without effect on the file
        double backingScaleFactor = 1.0;  ///< of the main screen
        SourcePaths otherSources = {};    ///< what else the picture is made from: mask, strokes
    };

    explicit ExportWriter(Settings settings);

    /// Writes `filteredImage` to `path`, in full and with its name; an existing file is replaced. Says nothing about
    /// the outcome: save() does.
    void saveDenoisedImageInDirectoryPath(const QString &path, const PhotoImagePtr &filteredImage) const;

    /// Writes the pixels in the format at `formatIndex` of the list. A format that the writer's table does not hold
    /// writes nothing.
    void saveImageInSelectedFormat(int formatIndex, const QString &FilePath, const PixelImage &ImageRef) const;

    /// saveDenoisedImageInDirectoryPath() with its outcome.
    Outcome<Done> save(const QString &path, const PhotoImagePtr &filteredImage) const;

    /// The position in the list of the format that is to be written: the chosen extension's, or "jpg"'s where the list
    /// does not hold that; -1 where it holds neither.
    int formatIndex() const;

private:
    PhotoImagePtr atTargetSize(PhotoImagePtr filteredImage) const;
    PixelImage turnedAsStored(PixelImage pixels, int formatIndex) const;
    Outcome<Done> write(int formatIndex, const QString &path, const PixelImage &pixels) const;

    Settings m_settings;
};

} // namespace hazelmark
