#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace hazelmark {

class ApplicationDelegate;
class ElidedLabel;
class ZoomField;

/// The strip below the photo: the open photo's name, file size and pixel size, whether it is damaged, and beside them a
/// painting that can be restored, what became of the last export, and the button that shows the photo as it was.
class SummaryBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kHeightPoints = 36;

    explicit SummaryBar(ApplicationDelegate &application, QWidget *parent = nullptr);

    /// Name and size of the photo at `path`; shows the bar. A size that cannot be read is 0.
    void setupBottomSummaryInfo(const QString &path);
    /// Of the photo, in pixels.
    void setPixelSize(QSize size);
    /// Offers a painting that was kept of the photo; an empty text takes the offer away.
    void setStoredPainting(const QString &text);
    /// The texts of the buttons, in the interface language.
    void setLocalizedStrings();
    /// A size in bytes: up to 999 the bytes themselves, called KB all the same, then thousands as KB and millions as
    /// MB.
    static QString photoSizeText(double bytes);

    /// Says, until the next photo, that a part of the picture could not be read.
    void showPartlyDamaged();
    /// Likewise that it is the camera's own picture of its raw samples.
    void showEmbeddedPreview();

    void showExporting(const QString &path);
    void showExported(const QString &path);
    void showMessage(const QString &text);
    void clearExport();

    QString txtFilePath() const;
    QString txtPhotoSize() const;
    QString txtPixelSize() const;
    QString exportText() const;
    /// How large the photo is seen.
    ZoomField *zoomField() const { return m_zoomField; }
    QPushButton *btnRestore() const { return m_btnRestore; }
    /// Shows the photo as it was as long as it is held, or, after a click, until the next one.
    QPushButton *btnCompare() const { return m_btnCompare; }
    /// What is said of the photo itself; empty when nothing is.
    QString notice() const;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void setNotice(const QString &text);
    void setExportText(const char *key, const QString &path);

    ApplicationDelegate &m_application;
    ElidedLabel *m_txtFilePath;
    QLabel *m_txtPhotoSize;
    QLabel *m_txtPixelSize;
    QLabel *m_noticeIcon;
    QLabel *m_notice;
    ElidedLabel *m_storedPainting;
    QPushButton *m_btnRestore;
    ElidedLabel *m_exportText;
    ZoomField *m_zoomField;
    QPushButton *m_btnCompare;
};

} // namespace hazelmark
