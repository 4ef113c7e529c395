#include "ExportFlow.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "Bundle.h"
#include "FilePanelLook.h"
#include "FloatSlider.h"
#include "FormatString.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PathParts.h"
#include "PhotoFile.h"
#include "SavePanel.h"
#include "Screen.h"
#include "Session.h"
#include "UserDefaults.h"
#include "ViewSettings.h"
#include "Workspace.h"

#include <QFileInfo>
#include <QTimer>

#include <chrono>
#include <utility>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kAfterExport{200};
const QString kAnsweredVersion = QStringLiteral("appVersion");

} // namespace

ExportFlow::ExportFlow(Session &session, ApplicationDelegate &application, QWidget &window, const QWidget &btnExport,
                       Settings settings)
    : m_session(session)
    , m_application(application)
    , m_window(window)
    , m_btnExport(btnExport)
    , m_settings(std::move(settings))
    , m_sharePicker(application, window)
{
    connect(&session, &Session::exportEnded, this, &ExportFlow::exportEnded);
}

ExportFlow::~ExportFlow()
{
    delete m_savePanel;
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
    const QString last = ViewSettings::exportFolder();
    return !last.isEmpty() && QFileInfo(last).isDir() ? last : picturesFolder();
}

bool ExportFlow::isBusy() const
{
    return m_session.isRunningAlgorithm() || m_session.state() != Session::State::Editing;
}

// Saving

void ExportFlow::btnExportDenoisedImageTapped()
{
    if (!isBusy() && !m_savePanel)
        whenPhotoIsFit(Asked::ToSave, [this] { showSavePanel(); });
}

/// Asks the disk whether the photo is still the one that was opened; otherwise an alert says why nothing is exported.
void ExportFlow::whenPhotoIsFit(Asked asked, std::function<void()> then)
{
    if (m_asked != Asked::Nothing)
        return;
    m_asked = asked;
    const bool forSharing = asked == Asked::ToShare;
    m_session.checkSource(
        forSharing, [self = QPointer(this), forSharing, then = std::move(then)](PhotoExport::Source source) {
            if (!self)
                return;
            self->m_asked = Asked::Nothing;
            if (source == PhotoExport::Source::Unchanged)
                then();
            else
                self->showCannot(forSharing ? "ERROR_CANT_SHARE_IMAGE" : "ERROR_CANT_EXPORT_IMAGE", source);
            emit self->openChanged();
        });
}

void ExportFlow::showCannot(const char *titleKey, PhotoExport::Source source)
{
    using Source = PhotoExport::Source;
    if (source == Source::Closed)
        return;
    const QString message = source == Source::Missing  ? lookup("ERROR_PHOTO_NOT_AVAILABLE")
                            : source == Source::Locked ? lookup("ERROR_ACCESS_DENIED_SOURCE")
                                                       : formatString(lookup("REFUSED_SOURCE_CHANGED"),
                                                                      {m_session.photo().record->fileName()});
    AlertSheet::showAlertWithTitle(m_window, m_application, lookup(titleKey),
                                   formatString(QStringLiteral("\n %@"), {message}));
}

void ExportFlow::showSavePanel()
{
    const PhotoFile &photo = *m_session.photo().record;
    m_formats = ExportFormats::forSource(photo.fileExtension());
    m_savePanel = new SavePanel(m_application, {photo.filePath(), QSize(int(photo.width()), int(photo.height()))},
                                m_formats, startFolder());
    connect(m_savePanel, &SavePanel::chosen, this, &ExportFlow::savePanelChose);
    connect(m_savePanel, &QDialog::rejected, this, [this] {
        m_savePanel.clear();
        emit openChanged();
    });
    SheetQueue::forWindow(m_window).present(m_savePanel);
}

void ExportFlow::savePanelChose(const QString &path)
{
    m_fileTypeToExportImage = pathExtension(path);
    m_pathToExportImage = path;
    ViewSettings::setExportFolder(pathWithoutLastComponent(path));
    m_exportQuality = m_savePanel->sliderExportQuality()->value();
    m_savePanel.clear();
    emit openChanged();
    m_isExportingPhoto = true;
    NotificationCenter::defaultCenter().post(kNotificationSaveChnagesUnsaved);
    saveOutPutImage(path);
    m_isExportingPhoto = false;
}

void ExportFlow::saveOutPutImage(const QString &path)
{
    if (m_session.state() == Session::State::Editing)
        m_session.startExport({path, m_formats.formats, m_fileTypeToExportImage, m_exportQuality,
                               Screen::mainScreen().backingScale(), m_settings()});
}

void ExportFlow::exportEnded(const PhotoExport::Result &result)
{
    // A share goes on below like an export.
    if (std::exchange(m_isSocialShareTapped, false))
        showSharingServicePickerWithImage(result.image);
    else
        m_isOutputWritten = !result.writtenPath.isEmpty();
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

// Sharing

void ExportFlow::btnSocialShareImageTapped()
{
    if (!isBusy())
        whenPhotoIsFit(Asked::ToShare, [this] { share(); });
}

void ExportFlow::share()
{
    NotificationCenter::defaultCenter().post(kNotificationSaveChnagesUnsaved);
    if (const PhotoImagePtr last = m_session.lastExportedImage()) {
        showSharingServicePickerWithImage(last);
        return;
    }
    m_isExportingPhoto = true; // and stays so: nothing hangs on it
    m_isSocialShareTapped = true;
    saveOutPutImage(QString());
}

void ExportFlow::showSharingServicePickerWithImage(const PhotoImagePtr &image)
{
    m_sharePicker.showSharingServicePickerWithImage(image, m_session.photo().path(), m_btnExport);
}

} // namespace hazelmark
