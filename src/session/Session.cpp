#include "Session.h"

#include "DecodeScope.h"
#include "PaintCanvas.h"
#include "PathParts.h"
#include "PhotoFile.h"
#include "Utils.h"

#include <limits>

namespace hazelmark {

Session::Session(PaintCanvas &canvas, Work work, QObject *parent)
    : QObject(parent)
    , m_work(std::move(work))
    , m_canvas(canvas)
    , m_painting(canvas)
    , m_keeper(m_painting, m_work.paintingsFolder)
    , m_previews(m_work.render)
    , m_export(m_work.exporting)
{
    connect(&m_previews, &PreviewRunner::inputDrawn, this, &Session::inputDrawn);
    connect(&m_previews, &PreviewRunner::previewRendered, this, [this](const QImage &shown) {
        m_isRunningAlgorithm = false;
        emit previewRendered(shown);
    });
    connect(&m_view, &ViewRunner::drawn, this, &Session::viewDrawn);
    connect(&m_view, &ViewRunner::rested, this, [this] { m_previews.release(); });
    connect(&m_full, &FullPhoto::changed, this, [this] {
        if (m_full.image())
            drawSight();
    });
    connect(&m_export, &PhotoExport::progressChanged, this, &Session::exportProgressed);
    connect(&m_keeper, &PaintingKeeper::storedChanged, this, &Session::storedPaintingsChanged);
    connect(&m_keeper, &PaintingKeeper::failed, this, &Session::storingFailed);
    m_canvas.setStepAppended([this] { m_keeper.touch(); });
}

Session::~Session()
{
    m_canvas.setStepAppended({});
    *m_oldestWanted = std::numeric_limits<Request>::max();
}

void Session::setState(State state)
{
    m_state = state;
    emit stateChanged();
    emit historyChanged();
}

// The photo

void Session::open(const QString &path, const PhotoView &view)
{
    m_full.giveBackIfShort();
    const Request request = ++m_lastRequest;
    m_underWay.insert(request);
    emit loadingChanged(lastPathComponent(path));
    m_readers.run(
        [reading = m_work.reading, path, view, oldestWanted = m_oldestWanted,
         request]() -> std::optional<Outcome<OpenPhoto>> {
            if (request < *oldestWanted)
                return std::nullopt;
            const auto isUnwanted = [=] { return request < *oldestWanted; };
            const DecodeScope scope(isUnwanted);
            Outcome<OpenPhoto> photo = reading.read(path, view);
            return photo || !isUnwanted() ? std::optional(std::move(photo)) : std::nullopt;
        },
        [this, request](const std::optional<Outcome<OpenPhoto>> &photo) {
            m_underWay.erase(request);
            if (photo && !*photo)
                emit refused(photo->failure());
            if (photo && *photo && request > *m_oldestWanted) {
                m_whole = **photo;
                *m_oldestWanted = request;
            }
            handOver();
        },
        int(request)); // the latest first: once it is whole, those before it need not be read
}

/// A photo that is whole waits for those that were asked for after it, and for the end of an export.
void Session::handOver()
{
    if (isLoading())
        return;
    emit loadingChanged({});
    if (m_whole && m_state != State::Exporting)
        emit photoRead(*std::exchange(m_whole, std::nullopt));
}

bool Session::isLoading() const
{
    return m_underWay.upper_bound(*m_oldestWanted) != m_underWay.end();
}

void Session::setPhoto(const OpenPhoto &photo)
{
    m_keeper.startPhoto(photo.record);
    m_previews.startPhoto();
    m_photo = photo;
    m_full.setPhoto(photo.record ? photo.record->photo() : nullptr);
    m_painting.setPhotoSize(photo.inputImage ? photo.inputImage->size() : QSizeF());
    m_sight.reset();
    m_view.forget();
    m_writtenEdits.reset();
    setLastExportedImage(nullptr);
    setState(State::Editing);
}

void Session::fit(QSizeF size)
{
    const PhotoImagePtr &image = m_photo.inputImage;
    if (m_fittedImage != image || m_resizedInputImage->size() != size) {
        // Scaling sets the size of what it scales; the photo keeps its own, or every fit would round the one before.
        const QSizeF own = image->size();
        m_resizedInputImage = Utils::sharedUtils().scaleImage(image, size);
        image->setSize(own);
        m_fittedImage = image;
    }
    m_previews.requestInput(m_resizedInputImage);
}

// Edits

bool Session::mayEdit() const
{
    return m_state == State::Editing && m_painting.isPainting() && !m_painting.history().isStrokeUnderWay();
}

void Session::endStroke()
{
    m_painting.keepStrokes();
    if (m_painting.history().commitStroke())
        emit historyChanged();
}

std::optional<PaintEdit> Session::undoEdit() const
{
    return mayEdit() ? m_painting.history().undoEdit() : std::nullopt;
}

std::optional<PaintEdit> Session::redoEdit() const
{
    return mayEdit() ? m_painting.history().redoEdit() : std::nullopt;
}

void Session::undo()
{
    if (mayEdit() && m_painting.history().undo())
        paintingChanged();
}

void Session::redo()
{
    if (mayEdit() && m_painting.history().redo())
        paintingChanged();
}

void Session::blurEverything()
{
    if (!mayEdit() || m_painting.isFull())
        return;
    m_painting.blurEverything();
    paintingChanged();
}

void Session::clearPainting()
{
    if (!mayEdit() || m_painting.isEmpty())
        return;
    m_keeper.startFile();
    m_painting.clearPainting();
    paintingChanged();
}

void Session::paintingChanged()
{
    m_keeper.touch();
    emit paintingReplaced();
    emit historyChanged();
    emit editsChanged();
}

// Paintings in files

void Session::restore(const StoredPainting &painting)
{
    m_keeper.read(painting.path, true, [this, photo = m_photo.record](const Outcome<StrokesFile> &file) {
        if (file && photo == m_photo.record)
            take(*file, true);
    });
}

void Session::openPainting(const QString &path)
{
    m_keeper.read(path, false, [this, photo = m_photo.record](const Outcome<StrokesFile> &file) {
        if (!file)
            emit paintingRefused(file.failure());
        else if (photo == m_photo.record)
            take(*file, false);
    });
}

void Session::take(const StrokesFile &painting, bool isStored)
{
    if (!mayEdit())
        return;
    m_keeper.startFile();
    m_painting.replaceBy(painting);
    m_keeper.setValues({painting.blur ? painting.blur : m_keeper.values().blur,
                        painting.vignette ? painting.vignette : m_keeper.values().vignette});
    if (isStored)
        m_keeper.setKept();
    emit paintingSettingsRead(painting.blur, painting.vignette);
    paintingChanged();
}

void Session::forgetStoredPaintings()
{
    m_keeper.forget();
}

void Session::savePaintingAs(const QString &path, const CoreFilterObject &settings)
{
    if (m_state == State::Empty)
        return;
    m_keeper.writeTo(path, {settings.blurAmount, settings.vignetteAmount}, [this, path](const Outcome<Done> &written) {
        if (written)
            emit paintingSaved(path);
        else
            emit paintingRefused(written.failure());
    });
}

// Previews

void Session::requestPreview(const CoreFilterObject &settings)
{
    m_keeper.setValues({settings.blurAmount, settings.vignetteAmount});
    setLastExportedImage(nullptr);
    m_painting.updateMask();
    if (!m_resizedInputImage || (!m_painting.maskImage() && !m_overlayImage))
        return;
    m_previews.setSource(m_resizedInputImage, m_painting.maskImage());
    if (m_sight && m_view.isBusy())
        m_previews.hold();
    m_previews.request(settings);
}

// Near the photo

void Session::requestView(QSize size, const QRect &part, double canvasScale, const CoreFilterObject &settings)
{
    m_sight = {size, part, canvasScale, settings};
    drawSight();
}

void Session::drawSight()
{
    const PhotoImagePtr &reduced = m_photo.inputImage;
    if (!reduced || !m_sight)
        return;
    const QSizeF own = reduced->size();
    if (reduced->pixelSize().width() < own.width())
        m_full.ask();
    const auto &[size, part, canvasScale, settings] = *m_sight;
    const ViewJob job{m_full.image(),      reduced,     size,    part, settings, m_painting.scaled(),
                      m_painting.canvas(), canvasScale, colors()};
    if (job.canRun())
        m_view.request(job);
}

void Session::leaveView()
{
    m_sight.reset();
    m_view.forget();
    m_previews.release();
    m_full.giveBackIfShort();
}

// Export

void Session::checkSource(bool forSharing, std::function<void(PhotoExport::Source)> answer)
{
    const auto photo = m_photo.record;
    m_export.checkSource(photo, forSharing, [this, photo, answer = std::move(answer)](PhotoExport::Source source) {
        answer(photo == m_photo.record ? source : PhotoExport::Source::Closed);
    });
}

void Session::startExport(const ExportRequest &request)
{
    Q_ASSERT(m_state == State::Editing);
    m_isRunningAlgorithm = true;
    setState(State::Exporting);
    // All the green that is seen goes into it, also that of a stroke whose preview is still to come.
    if (!m_painting.isEmpty() || m_painting.maskImage())
        m_painting.updateMask();

    ExportJob job;
    job.photo = m_photo.record->photo();
    job.maskImage = m_painting.maskImage();
    if (!m_painting.isEmpty())
        job.painting = m_painting.scaled();
    job.loaded = m_full.loaded();
    job.settings = request.settings;
    const ExportWriter::Settings settings{*m_photo.record, request.formats, request.fileType, request.quality,
                                          request.backingScale};
    emit exportStarted(request.path);
    m_export.start(job, settings, request.path,
                   [this, edits = edits(request.settings)](const PhotoExport::Result &result) {
                       m_isRunningAlgorithm = false;
                       if (!result.writtenPath.isEmpty())
                           m_writtenEdits = edits;
                       setLastExportedImage(result.image);
                       setState(State::Editing);
                       emit exportEnded(result);
                       QMetaObject::invokeMethod(this, &Session::handOver, Qt::QueuedConnection);
                   });
}

void Session::setLastExportedImage(const PhotoImagePtr &image)
{
    m_lastExportedImage = image;
    emit editsChanged();
}

bool Session::isSaved(const CoreFilterObject &settings) const
{
    return m_painting.isEmpty() || m_writtenEdits == edits(settings);
}

Session::Edits Session::edits(const CoreFilterObject &settings) const
{
    Edits edits{settings, m_painting.version()};
    edits.settings.dateString.clear(); // when the record was made
    return edits;
}

} // namespace hazelmark
