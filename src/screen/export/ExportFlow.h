#pragma once

#include "CoreFilterObject.h"
#include "ExportFormats.h"
#include "PhotoExport.h"
#include "SharePicker.h"

#include <QObject>
#include <QPointer>

#include <functional>

class QWidget;

namespace hazelmark {

class ApplicationDelegate;
class SavePanel;
class Session;

/// Saving and sharing as a person sees it, from the button to the file in its viewer: save panel, share picker, alerts,
/// and what follows an export. The export itself is the session's. Main thread only.
class ExportFlow : public QObject
{
    Q_OBJECT

public:
    using Settings = std::function<CoreFilterObject()>;

    /// `window`: the main window, for sheets. `btnExport`: where the share picker opens. `settings`: those in force.
    /// All outlive the flow.
    ExportFlow(Session &session, ApplicationDelegate &application, QWidget &window, const QWidget &btnExport,
               Settings settings);
    ~ExportFlow() override;

    void btnExportDenoisedImageTapped();
    void btnSocialShareImageTapped();
    /// Starts the render. An empty path, for sharing, writes no file.
    void saveOutPutImage(const QString &path);
    void showSharingServicePickerWithImage(const PhotoImagePtr &image);
    /// Opens the written file itself in its viewer. Nothing was written there by the last export: nothing is opened.
    void openOutputFolder();

    const QString &pathToExportImage() const { return m_pathToExportImage; }
    const QString &fileTypeToExportImage() const { return m_fileTypeToExportImage; }
    const QStringList &arrformatsSupportedByIM() const { return m_formats.formats; }
    bool isExportingPhoto() const { return m_isExportingPhoto; }
    bool isSocialShareTapped() const { return m_isSocialShareTapped; }
    /// Up to the panel's answer.
    bool isSaving() const { return m_asked == Asked::ToSave || !m_savePanel.isNull(); }
    /// Up to the picker's end.
    bool isSharing() const { return m_asked == Asked::ToShare || m_isSocialShareTapped || m_sharePicker.isOpen(); }
    SavePanel *savePanel() const; ///< null unless it waits for an answer
    SharePicker &sharePicker() { return m_sharePicker; }

signals:
    /// isSaving() or isSharing() may answer otherwise now.
    void openChanged();

private:
    enum class Asked { Nothing, ToSave, ToShare };

    QString lookup(const char *key) const;
    QString startFolder() const;
    bool isBusy() const;
    void whenPhotoIsFit(Asked asked, std::function<void()> then);
    void showSavePanel();
    void savePanelChose(const QString &path);
    void share();
    void exportEnded(const PhotoExport::Result &result);
    void scheduleRatePrompt();
    void showCannot(const char *titleKey, PhotoExport::Source source);

    Session &m_session;
    ApplicationDelegate &m_application;
    QWidget &m_window;
    const QWidget &m_btnExport;
    Settings m_settings;
    QPointer<SavePanel> m_savePanel;
    SharePicker m_sharePicker;
    ExportFormats m_formats;
    QString m_fileTypeToExportImage;
    QString m_pathToExportImage;
    double m_exportQuality = 1.0;
    bool m_isExportingPhoto = false;
    bool m_isSocialShareTapped = false;
    Asked m_asked = Asked::Nothing; ///< while it is found out whether the photo is still the same
    bool m_isOutputWritten = false; ///< a whole file of the last export stands at `m_pathToExportImage`
};

} // namespace hazelmark
