#pragma once

#include "CoreFilterObject.h"
#include "Failure.h"
#include "FullPhoto.h"
#include "OpenPhoto.h"
#include "Painting.h"
#include "PaintingKeeper.h"
#include "PhotoExport.h"
#include "PreviewRunner.h"
#include "ViewRunner.h"
#include "WorkQueue.h"

#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QString>

#include <atomic>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace hazelmark {

/// The work on one photo, from its opening to the file that is made of it: the photo, the painting, the previews, the
/// export, and what of it is written. It shows nothing: it has no widget, and says by signals what there is to show.
/// The settings belong to the controls; they come along with each request. Main thread only.
class Session : public QObject
{
    Q_OBJECT

public:
    /// Whether another photo is read meanwhile stands beside this: isLoading().
    enum class State {
        Empty,     ///< no photo was opened yet
        Editing,   ///< a photo is open
        Exporting, ///< its result is rendered and written: the photo, its painting and the settings rest
    };

    /// What takes time. Tests put something else in its place.
    struct Work
    {
        PhotoReading reading;
        PreviewRunner::Render render = PreviewRunner::realRender();
        PhotoExport::Work exporting;
        QString paintingsFolder = PaintingStore::personsFolder();
    };

    /// `canvas` outlives the session.
    Session(PaintCanvas &canvas, Work work, QObject *parent = nullptr);
    ~Session() override;

    State state() const { return m_state; }

    // The photo.

    /// Reads the photo at `path` and leaves everything as it is meanwhile. It ends in photoRead(), when the photo is
    /// whole, or in refused(). Of photos that are asked for while others are still read the last one that is whole is
    /// handed over, wherever another breaks; those before it are left out. A photo that comes during an export waits
    /// for its end.
    void open(const QString &path, const PhotoView &view);
    bool isLoading() const;
    /// The same on the spot: waits for the pixels.
    Outcome<OpenPhoto> read(const QString &path, const PhotoView &view) const
    {
        return m_work.reading.read(path, view);
    }
    /// From now on this is the photo. Nothing that was made of the one before will arrive or count.
    void setPhoto(const OpenPhoto &photo);
    const OpenPhoto &photo() const { return m_photo; }
    /// How large the photo stands on the screen, in pixels: previews are made at this size.
    void fit(QSizeF size);
    const PhotoImagePtr &resizedInputImage() const { return m_resizedInputImage; }

    Painting &painting() { return m_painting; }
    const Painting &painting() const { return m_painting; }

    // Edits of the painting. What comes during a stroke, an export or without a photo changes nothing.

    /// The end of a stroke, from press to release: one edit.
    void endStroke();
    /// What undo() takes back and redo() brings back; nothing when there is nothing, or not now.
    std::optional<PaintEdit> undoEdit() const;
    std::optional<PaintEdit> redoEdit() const;
    void undo();
    void redo();
    void blurEverything();
    void clearPainting();

    // Paintings in files.

    /// What is kept of the open photo, the newest first, at most three; known a moment after the opening. What is
    /// painted now is not among them.
    const std::vector<StoredPainting> &storedPaintings() const { return m_keeper.stored(); }
    /// Puts a stored painting in the place of what is painted; one edit. What fails is in the log.
    void restore(const StoredPainting &painting);
    /// Takes the stored paintings of all photos away.
    void forgetStoredPaintings();
    /// Writes what is painted, with blur and vignette of `settings`, as a file of strokes. paintingSaved() follows, or
    /// paintingRefused().
    void savePaintingAs(const QString &path, const CoreFilterObject &settings);
    /// Puts the painting in a file of strokes in the place of what is painted; one edit. paintingRefused() when it is
    /// none.
    void openPainting(const QString &path);

    // Previews.

    /// Renders what is painted now. Nothing to render: nothing comes. While a picture near the photo is drawn, which is
    /// what is seen, the preview waits for it.
    void requestPreview(const CoreFilterObject &settings);
    bool hasPreviewsUnderWay() const { return m_previews.isBusy(); }
    const PhotoImagePtr &overlayImage() const { return m_overlayImage; }
    void setOverlayImage(const PhotoImagePtr &image) { m_overlayImage = image; }
    const DisplayColors &colors() const { return m_previews.colors(); }
    void setColors(const DisplayColors &colors) { m_previews.setColors(colors); }

    // Near the photo.

    /// The photo in full size, for as long as one is close to it.
    FullPhoto &fullPhoto() { return m_full; }
    /// Wants a picture of what is in sight: `part` of the photo when the whole measures `size` pixels, no more than its
    /// own. `canvasScale`: how many times its size the canvas is wanted over it. viewDrawn() follows, unless another
    /// wish comes; where the photo has to be decoded for it, as soon as that is done. No mark of a preview or an export
    /// changes.
    void requestView(QSize size, const QRect &part, double canvasScale, const CoreFilterObject &settings);
    /// Nothing of it is wanted any more.
    void leaveView();

    // Export.

    /// An export runs, or something else that previews and window wait for; a preview that comes clears it.
    bool isRunningAlgorithm() const { return m_isRunningAlgorithm; }
    void setIsRunningAlgorithm(bool running) { m_isRunningAlgorithm = running; }
    /// Whether the file of the photo is still the one that was opened. `answer` is called later.
    void checkSource(bool forSharing, std::function<void(PhotoExport::Source)> answer);
    /// How the file is to be; the photo and its record are added here.
    struct ExportRequest
    {
        QString path; ///< empty: the result is for sharing, and no file is written
        QStringList formats;
        QString fileType;
        double quality = 1.0;
        double backingScale = 1.0;
        CoreFilterObject settings;
    };
    /// Only while editing. exportEnded() follows.
    void startExport(const ExportRequest &request);
    /// The result as it was exported or shared last; null once a preview was asked for.
    const PhotoImagePtr &lastExportedImage() const { return m_lastExportedImage; }
    void setLastExportedImage(const PhotoImagePtr &image);
    /// Whether there is nothing painted, or a file holds all of it with these settings.
    bool isSaved(const CoreFilterObject &settings) const;

signals:
    /// Reading has begun, or the last one has ended. `fileName`: of what is read; empty when nothing is.
    void loadingChanged(const QString &fileName);
    void photoRead(const OpenPhoto &photo);
    void refused(const Failure &failure);
    void stateChanged();
    /// The photo at its present size, and what a preview looks like (null when it could not be drawn), in the colours
    /// of the screen.
    void inputDrawn(const QImage &shown);
    void previewRendered(const QImage &shown);
    /// A picture of what is in sight, and what there is of the canvas over it.
    void viewDrawn(const hazelmark::ViewPicture &picture);
    /// `path` is empty when the result is for sharing.
    void exportStarted(const QString &path);
    void exportProgressed(double fraction);
    void exportEnded(const hazelmark::PhotoExport::Result &result);
    /// isSaved() may answer otherwise now.
    void editsChanged();
    /// undoEdit() and redoEdit() may answer otherwise now.
    void historyChanged();
    /// The canvas shows another painting, other than by a stroke: the brush is to be what its controls say, and a
    /// preview is due.
    void paintingReplaced();
    /// With a painting came the values that belong to it, as the sliders have them; a value that the file does not
    /// have is empty. Before paintingReplaced().
    void paintingSettingsRead(std::optional<float> blurAmount, std::optional<float> vignetteAmount);
    void storedPaintingsChanged();
    /// Once: paintings cannot be kept. Painting goes on.
    void storingFailed(const Failure &failure);
    void paintingSaved(const QString &path);
    void paintingRefused(const Failure &failure);

private:
    using Request = quint64;
    struct Edits
    {
        CoreFilterObject settings;
        Painting::Version painting;
        bool operator==(const Edits &) const = default;
    };

    /// A picture of what is in sight, as it was asked for.
    struct Sight
    {
        QSize size;
        QRect part;
        double canvasScale;
        CoreFilterObject settings;
    };

    void handOver();
    void drawSight();
    bool mayEdit() const;
    void take(const StrokesFile &painting, bool isStored);
    void paintingChanged();
    void setState(State state);
    Edits edits(const CoreFilterObject &settings) const;

    Work m_work;
    State m_state = State::Empty;
    bool m_isRunningAlgorithm = false;

    Request m_lastRequest = 0;
    std::set<Request> m_underWay;
    std::optional<OpenPhoto> m_whole; ///< of request `*m_oldestWanted`, not handed over yet
    /// What was asked for before it is not read any more.
    std::shared_ptr<std::atomic<Request>> m_oldestWanted = std::make_shared<std::atomic<Request>>(0);

    OpenPhoto m_photo;
    PhotoImagePtr m_resizedInputImage;
    PhotoImagePtr m_fittedImage; ///< what `m_resizedInputImage` was made from
    PhotoImagePtr m_overlayImage;
    PaintCanvas &m_canvas;
    Painting m_painting;
    PaintingKeeper m_keeper;
    PhotoImagePtr m_lastExportedImage;
    std::optional<Edits> m_writtenEdits; ///< of the result that was written last, into a file

    // Last, so that their threads are over before anything else goes.
    WorkQueue m_readers{2}; ///< two: a photo that takes long must not hold up the one that somebody asks for meanwhile
    PreviewRunner m_previews;
    FullPhoto m_full;
    std::optional<Sight> m_sight; ///< asked for last
    ViewRunner m_view;
    PhotoExport m_export;
};

} // namespace hazelmark
