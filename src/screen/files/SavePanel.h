#pragma once

#include "ExportFormats.h"
#include "Failure.h"

#include <QFileDialog>
#include <QSize>

#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace hazelmark {

class ApplicationDelegate;
class FloatSlider;

/// The panel in which a person chooses name, folder and format of an export; to be shown as a sheet.
///
/// Everything that speaks against a choice is said inside the panel, which stays open: a folder that nothing can be
/// written to, a full disk, the photo itself. It asks before a file is replaced, and asks about the file that will
/// really be written. The path that comes out has one of the formats' own extensions, in the form that the list holds.
class SavePanel : public QFileDialog
{
    Q_OBJECT

public:
    struct Photo
    {
        QString path;
        QSize pixelSize; ///< of the export
    };

    SavePanel(ApplicationDelegate &application, const Photo &photo, const ExportFormats &formats, const QString &folder,
              QWidget *parent = nullptr);

    /// The extensions that a typed name may have.
    QStringList allowedFileTypes() const { return m_allowed.formats; }
    QComboBox *btnPopupFileFormat() const { return m_btnPopupFileFormat; }
    QWidget *viewExportQuality() const { return m_viewExportQuality; }
    FloatSlider *sliderExportQuality() const { return m_sliderExportQuality; }
    QLineEdit *nameField() const { return m_nameField; }
    QPushButton *replaceButton() const { return m_replaceButton; }
    /// What is said inside the panel now; empty when nothing is.
    QString message() const;

    /// The popup's action: from now on the chosen format alone is allowed.
    void selectFormat(int index);

    /// `path` as it will be written: with its extension in the list's form, or with the chosen format's behind it when
    /// it has none, or one that is not allowed.
    QString pathToWrite(const QString &path) const;

signals:
    /// The person is done; `path` passed every test.
    void chosen(const QString &path);

protected:
    void accept() override;

private:
    void makeOptions();
    QWidget *makeQuality();
    QWidget *makeMessage();
    void arrange();
    void showQuality(const QString &format);
    void showFileName(const QString &baseName);
    void followTypedExtension();
    QString namedPath() const;
    std::optional<Failure> objection(const QString &path) const;
    void showMessage(const QString &text, bool canReplace);
    void clearMessage();
    void finish(const QString &path);
    QString lookup(const char *key) const;

    ApplicationDelegate &m_application;
    Photo m_photo;
    ExportFormats m_formats;
    ExportFormats m_allowed;
    QString m_replacing; ///< the path that the panel asks about
    QLineEdit *m_nameField = nullptr;
    QLabel *m_lblFormat = nullptr;
    QWidget *m_viewExportOptions = nullptr;
    QComboBox *m_btnPopupFileFormat = nullptr;
    QWidget *m_viewExportQuality = nullptr;
    FloatSlider *m_sliderExportQuality = nullptr;
    QWidget *m_messageStrip = nullptr;
    QLabel *m_message = nullptr;
    QPushButton *m_replaceButton = nullptr;
};

} // namespace hazelmark
