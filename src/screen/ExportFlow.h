#pragma once

#include "CoreFilterObject.h"
#include "ExportFormats.h"
#include "ExportWriter.h"
#include "PhotoImage.h"
#include "RenderJobs.h"
#include "SharePicker.h"
#include "WorkQueue.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

class QWidget;

namespace hazelmark {

class ApplicationDelegate;
class SavePanel;

/// What the export and share flow needs of the main screen.
class ExportScreen
{
public:
    virtual ~ExportScreen() = default;

    virtual bool isRunningAlgorithm() const = 0;
    virtual void setIsRunningAlgorithm(bool running) = 0;
    virtual const QString &imageUrl() const = 0; ///< path of the open photo
    virtual const PhotoImagePtr &maskImage() const = 0;
    virtual const PhotoImagePtr &lastExportedImage() const = 0;
    virtual void setLastExportedImage(const PhotoImagePtr &image) = 0;
    /// While an export runs: no second one, no sharing, no other settings, no painting, no other photo.
    virtual void setExportLocked(bool locked) = 0;
    virtual CoreFilterObject createPresetObjectFromSettingWithTitle(const QString &title) const = 0;
    virtual void setExportButtonOff() = 0;
    virtual void closeColorPanel() = 0;
};

/// Saving and sharing, from the button to the file: save panel, full-resolution render and writing off the main
/// thread, and what follows. Everything that an export needs goes along when it starts. Main thread only.
///
/// When it is destroyed an export that was started is waited for.
class ExportFlow : public QObject
{
    Q_OBJECT

public:
    /// What takes time. Tests put something else in its place.
    struct Work
    {
        std::function<Outcome<ImageLoader::Loaded>(const ExportJob &)> render = [](const ExportJob &job) {
            return job.run();
        };
        std::function<Outcome<Done>(const ExportWriter::Settings &, const QString &path, const PhotoImagePtr &)> write =
            [](const ExportWriter::Settings &settings, const QString &path, const PhotoImagePtr &image) {
                return ExportWriter(settings).save(path, image);
            };
    };

    /// `window`: the main window, for sheets. `btnExport`: where the share picker opens. All outlive the flow.
    ExportFlow(ExportScreen &screen, ApplicationDelegate &application, QWidget &window, const QWidget &btnExport);
    ExportFlow(ExportScreen &screen, ApplicationDelegate &application, QWidget &window, const QWidget &btnExport,
               const Work &work);
    ~ExportFlow() override;

    void btnExportDenoisedImageTapped();
    void btnSocialShareImageTapped();
    /// Starts the render. An empty path, for sharing, writes no file.
    void saveOutPutImage(const QString &path);
    void showSharingServicePickerWithImage(const PhotoImagePtr &image);
    /// Opens the written file itself in its viewer. Nothing was written there by the last export: nothing is opened.
    void openOutputFolder();

    static bool checkForFileAvailabilityAtFilePath(const QString &path);
    /// Whether the file has the immutable flag; then a line in the log says so.
    static bool checkForLockedFile(const QString &path);

    const QString &pathToExportImage() const { return m_pathToExportImage; }
    const QString &fileTypeToExportImage() const { return m_fileTypeToExportImage; }
    const QStringList &arrformatsSupportedByIM() const { return m_formats.formats; }
    bool isExportingPhoto() const { return m_isExportingPhoto; }
    bool isSocialShareTapped() const { return m_isSocialShareTapped; }
    /// Up to the panel's answer.
    bool isSaving() const { return m_asked == Asked::ToSave || !m_savePanel.isNull(); }
    /// Up to the picker's end.
    bool isSharing() const { return m_asked == Asked::ToShare || m_isSocialShareTapped || m_sharePicker.isOpen(); }
    bool isExporting() const { return m_isExporting; } ///< a render for a file or for sharing is under way
    SavePanel *savePanel() const;                      ///< null unless it waits for an answer
    SharePicker &sharePicker() { return m_sharePicker; }

signals:
    /// A panel has opened, or will not.
    void openChanged();
    /// `path`: of the file that will be written; empty when the render is for sharing.
    void exportStarted(const QString &path);
    /// The share of tiles really done, 0 to 1; 0 again at the end.
    void progressChanged(double fraction);
    /// `writtenPath`: of the file that is there now, whole; empty when none was written.
    void exportEnded(const QString &writtenPath);

private:
    struct Result
    {
        PhotoImagePtr image; ///< null when the photo could not be loaded
        bool written = false;
    };

    QString lookup(const char *key) const;
    QString startFolder() const;
    enum class Asked { Nothing, ToSave, ToShare };

    void whenPhotoIsFit(Asked asked, std::function<void()> then);
    void showSavePanel();
    void savePanelChose(const QString &path);
    void share();
    void completeExport(const Result &result, const QString &path);
    void scheduleRatePrompt();
    void showCannot(const char *titleKey, const QString &message);

    ExportScreen &m_screen;
    ApplicationDelegate &m_application;
    QWidget &m_window;
    const QWidget &m_btnExport;
    Work m_work;
    QPointer<SavePanel> m_savePanel;
    SharePicker m_sharePicker;
    ExportFormats m_formats;
    QString m_fileTypeToExportImage;
    QString m_pathToExportImage;
    double m_exportQuality = 1.0;
    bool m_isExportingPhoto = false;
    bool m_isSocialShareTapped = false;
    bool m_isExporting = false;
    Asked m_asked = Asked::Nothing; ///< while it is found out whether the photo is still the same
    bool m_isOutputWritten = false; ///< a whole file of the last export stands at `m_pathToExportImage`
    std::shared_ptr<std::atomic<double>> m_progress; ///< written by the render
    QTimer m_progressPoll;
    WorkQueue m_queue{1}; ///< last, so that its thread is over before anything else goes
};

} // namespace hazelmark
