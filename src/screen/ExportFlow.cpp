#include "ExportFlow.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "Bundle.h"
#include "FileAttributes.h"
#include "FileIdentity.h"
#include "FilePanelLook.h"
#include "FloatSlider.h"
#include "FormatString.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PathParts.h"
#include "SavePanel.h"
#include "Screen.h"
#include "ScreenLog.h"
#include "UserDefaults.h"
#include "Workspace.h"

#include <QFileInfo>

#include <chrono>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kAfterExport{200};
constexpr std::chrono::milliseconds kProgressInterval{33};
const QString kAnsweredVersion = QStringLiteral("appVersion");

enum class PhotoState { Unchanged, Missing, Changed, Locked };

/// Waits for the disk. Locked matters to sharing alone.
PhotoState stateOf(const PhotoFile &photo, bool forSharing)
{
    const QString &path = photo.filePath();
    if (!ExportFlow::checkForFileAvailabilityAtFilePath(path))
        return PhotoState::Missing;
    if (FileIdentity::ofPath(path) != photo.identity())
        return PhotoState::Changed;
    return forSharing && ExportFlow::checkForLockedFile(path) ? PhotoState::Locked : PhotoState::Unchanged;
}

} // namespace

ExportFlow::ExportFlow(ExportScreen &screen, ApplicationDelegate &application, QWidget &window,
                       const QWidget &btnExport)
    : ExportFlow(screen, application, window, btnExport, Work())
{
}

ExportFlow::ExportFlow(ExportScreen &screen, ApplicationDelegate &application, QWidget &window,
                       const QWidget &btnExport, const Work &work)
    : m_screen(screen)
    , m_application(application)
    , m_window(window)
    , m_btnExport(btnExport)
    , m_work(work)
    , m_sharePicker(application, window)
{
    m_progressPoll.setInterval(kProgressInterval);
    connect(&m_progressPoll, &QTimer::timeout, this, [this] { emit progressChanged(*m_progress); });
}

ExportFlow::~ExportFlow()
{
    delete m_savePanel;
    m_queue.finish(); // an export that was asked for is made
}

SavePanel *ExportFlow::savePanel() const
{
    return m_savePanel;
}

QString ExportFlow::lookup(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

QString ExportFlow::startFolder() const
{
    const QString last = pathWithoutLastComponent(m_pathToExportImage);
    return !last.isEmpty() && QFileInfo(last).isDir() ? last : picturesFolder();
}

void ExportFlow::btnExportDenoisedImageTapped()
{
    const std::shared_ptr<PhotoFile> photo = m_application.selectedImageFile();
    if (m_screen.isRunningAlgorithm() || m_isExporting || m_savePanel || !photo) {
        m_screen.setExportButtonOff();
        return;
    }
    whenPhotoIsFit(Asked::ToSave, [this] { showSavePanel(); });
}

/// Asks the disk whether the photo is still the one that was opened: strokes belong to the pixels that they were
/// painted on. Only then the export goes on; otherwise an alert says why not.
void ExportFlow::whenPhotoIsFit(Asked asked, std::function<void()> then)
{
    if (m_asked != Asked::Nothing)
        return;
    m_asked = asked;
    const bool forSharing = asked == Asked::ToShare;
    const std::shared_ptr<PhotoFile> photo = m_application.selectedImageFile();
    m_queue.run([photo, forSharing] { return stateOf(*photo, forSharing); },
                [this, photo, forSharing, then = std::move(then)](PhotoState state) {
                    m_asked = Asked::Nothing;
                    const bool isOpen = photo == m_application.selectedImageFile();
                    if (isOpen && state == PhotoState::Unchanged)
                        then();
                    emit openChanged();
                    if (!isOpen || state == PhotoState::Unchanged)
                        return;
                    const char *title = forSharing ? "ERROR_CANT_SHARE_IMAGE" : "ERROR_CANT_EXPORT_IMAGE";
                    if (state == PhotoState::Missing)
                        showCannot(title, lookup("ERROR_PHOTO_NOT_AVAILABLE"));
                    else if (state == PhotoState::Locked)
                        showCannot(title, lookup("ERROR_ACCESS_DENIED_SOURCE"));
                    else
                        showCannot(title, formatString(lookup("REFUSED_SOURCE_CHANGED"), {photo->fileName()}));
                });
}

void ExportFlow::showSavePanel()
{
    const std::shared_ptr<PhotoFile> photo = m_application.selectedImageFile();
    m_formats = ExportFormats::forSource(photo->fileExtension());
    m_savePanel = new SavePanel(m_application, {m_screen.imageUrl(), QSize(int(photo->width()), int(photo->height()))},
                                m_formats, startFolder());
    connect(m_savePanel, &SavePanel::chosen, this, &ExportFlow::savePanelChose);
    connect(m_savePanel, &QDialog::rejected, this, [this] {
        m_savePanel.clear();
        m_screen.setExportButtonOff();
    });
    SheetQueue::forWindow(m_window).present(m_savePanel);
}

void ExportFlow::savePanelChose(const QString &path)
{
    m_screen.setExportButtonOff();
    m_fileTypeToExportImage = pathExtension(path);
    m_pathToExportImage = path;
    m_exportQuality = m_savePanel->sliderExportQuality()->value();
    m_savePanel.clear();
    m_isExportingPhoto = true;
    NotificationCenter::defaultCenter().post(kNotificationSaveChnagesUnsaved);
    saveOutPutImage(path);
    m_isExportingPhoto = false;
}

void ExportFlow::saveOutPutImage(const QString &path)
{
    const std::shared_ptr<PhotoFile> photo = m_application.selectedImageFile();
    if (m_isExporting || !photo)
        return;
    m_isExporting = true;
    m_screen.setIsRunningAlgorithm(true);
    m_screen.setExportLocked(true);
    m_progress = std::make_shared<std::atomic<double>>(0.0);

    ExportJob job;
    job.imageUrl = m_screen.imageUrl();
    job.maskImage = m_screen.maskImage();
    job.settings = m_screen.createPresetObjectFromSettingWithTitle(QString());
    job.progress = [progress = m_progress](double fraction) { *progress = fraction; };
    const ExportWriter::Settings settings{*photo, m_formats.formats, m_fileTypeToExportImage, m_exportQuality,
                                          Screen::mainScreen().backingScale()};
    const bool forSharing = m_isSocialShareTapped;
    m_queue.run(
        [work = m_work, job, settings, path, forSharing] {
            Result result;
            const Outcome<ImageLoader::Loaded> rendered = work.render(job);
            if (rendered)
                result.image = rendered->photo;
            else
                qCWarning(lcScreen).noquote() << rendered.failure().sentence();
            if (!forSharing) {
                // Without a picture too: the writer says what becomes of that.
                const Outcome<Done> written = work.write(settings, path, result.image);
                result.written = bool(written);
                if (!written)
                    qCWarning(lcScreen).noquote() << written.failure().sentence();
            }
            return result;
        },
        [this, path](const Result &result) { completeExport(result, path); });
    emit progressChanged(0);
    emit exportStarted(path);
    m_progressPoll.start();
}

void ExportFlow::completeExport(const Result &result, const QString &path)
{
    m_progressPoll.stop();
    m_isExporting = false;
    if (!m_isSocialShareTapped)
        m_isOutputWritten = result.written;
    m_screen.setExportLocked(false);
    m_screen.setIsRunningAlgorithm(false);
    emit progressChanged(0);
    m_screen.setLastExportedImage(result.image);
    emit exportEnded(result.written ? path : QString());
    // A share goes on below like an export.
    if (std::exchange(m_isSocialShareTapped, false))
        showSharingServicePickerWithImage(result.image);
    scheduleRatePrompt();
    QTimer::singleShot(kAfterExport, this, &ExportFlow::openOutputFolder);
}

void ExportFlow::scheduleRatePrompt()
{
    const QString version = Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString();
    if (UserDefaults::standardUserDefaults().string(kAnsweredVersion) != version)
        QTimer::singleShot(kAfterExport, this, [this] { m_application.showAlertForRateApp(); });
}

void ExportFlow::openOutputFolder()
{
    if (m_isOutputWritten)
        Workspace::sharedWorkspace().openFile(m_pathToExportImage);
}

bool ExportFlow::checkForFileAvailabilityAtFilePath(const QString &path)
{
    return QFileInfo::exists(path);
}

bool ExportFlow::checkForLockedFile(const QString &path)
{
    const std::optional<FileAttributes> attributes = FileAttributes::ofPath(path);
    const bool locked = attributes && attributes->isImmutable;
    if (locked)
        qCInfo(lcScreen) << "File is locked";
    return locked;
}

void ExportFlow::btnSocialShareImageTapped()
{
    m_screen.closeColorPanel();
    if (m_screen.isRunningAlgorithm() || m_isExporting || !m_application.selectedImageFile())
        return;
    whenPhotoIsFit(Asked::ToShare, [this] { share(); });
}

void ExportFlow::share()
{
    NotificationCenter::defaultCenter().post(kNotificationSaveChnagesUnsaved);
    if (const PhotoImagePtr last = m_screen.lastExportedImage()) {
        showSharingServicePickerWithImage(last);
        return;
    }
    m_isExportingPhoto = true; // and stays so: nothing hangs on it
    m_isSocialShareTapped = true;
    saveOutPutImage(QString());
}

void ExportFlow::showCannot(const char *titleKey, const QString &message)
{
    AlertSheet::showAlertWithTitle(m_window, m_application, lookup(titleKey),
                                   formatString(QStringLiteral("\n %@"), {message}));
}

void ExportFlow::showSharingServicePickerWithImage(const PhotoImagePtr &image)
{
    m_sharePicker.showSharingServicePickerWithImage(image, m_screen.imageUrl(), m_btnExport);
}

} // namespace hazelmark
