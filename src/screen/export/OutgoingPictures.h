#pragma once

#include "PhotoImage.h"
#include "WorkQueue.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace hazelmark {

/// Pictures on their way out of the program: each an upright file of its own in a temporary folder, which is removed
/// when the program ends and not before, because mail programs fetch attachments late.
class OutgoingPictures : public QObject
{
    Q_OBJECT

public:
    using Ready = std::function<void(const QString &path)>;
    using BytesReady = std::function<void(const QByteArray &png)>;

    explicit OutgoingPictures(QObject *parent = nullptr);
    ~OutgoingPictures() override;

    /// Whether a picture made from the photo at `photoPath` goes out as JPEG; else as PNG.
    static bool goesAsJpeg(const PhotoImagePtr &image, const QString &photoPath);
    static QString mimeType(const PhotoImagePtr &image, const QString &photoPath);

    /// Writes `image` under the base name of `photoPath`, off the main thread; `ready` is called on it, with an empty
    /// path when the picture could not be written. The same image is written once. No metadata goes along but the
    /// colour profile.
    void prepare(const PhotoImagePtr &image, const QString &photoPath, Ready ready);

    /// The image as the bytes of a PNG file, which every program can paste; empty when that failed.
    void preparePng(const PhotoImagePtr &image, BytesReady ready);

    /// The folder with all of them; empty before the first.
    QString folder() const { return m_folder ? m_folder->path() : QString(); }

private:
    void end();
    /// The path of a file in a folder of its own; empty when there can be none.
    QString newPath(const QString &fileName);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::weak_ptr<PhotoImage> m_lastImage;
    QString m_lastPath;
    int m_count = 0;
    std::unique_ptr<WorkQueue> m_queue = std::make_unique<WorkQueue>(1); ///< null when the program ends
};

} // namespace hazelmark
