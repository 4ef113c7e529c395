#pragma once

#include <QWidget>

class QLabel;

namespace hazelmark {

class ApplicationDelegate;
class ElidedLabel;

/// The strip below the photo: the open photo's name and file size, whether it is damaged, and beside them what became
/// of the last export.
class SummaryBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kHeightPoints = 36;

    explicit SummaryBar(ApplicationDelegate &application, QWidget *parent = nullptr);

    /// Name and size of the photo at `path`; shows the bar. A size that cannot be read is 0.
    void setupBottomSummaryInfo(const QString &path);
    /// A size in bytes: up to 999 the bytes themselves, called KB all the same, then thousands as KB and millions as
    /// MB.
    static QString photoSizeText(double bytes);

    /// Says, until the next photo, that a part of the picture could not be read.
    void showPartlyDamaged();

    void showExporting(const QString &path);
    void showExported(const QString &path);
    void showMessage(const QString &text);
    void clearExport();

    QString txtFilePath() const;
    QString txtPhotoSize() const;
    QString exportText() const;
    /// What is said of the photo itself; empty when nothing is.
    QString notice() const;

private:
    void setNotice(const QString &text);
    void setExportText(const char *key, const QString &path);

    ApplicationDelegate &m_application;
    ElidedLabel *m_txtFilePath;
    QLabel *m_txtPhotoSize;
    QLabel *m_noticeIcon;
    QLabel *m_notice;
    ElidedLabel *m_exportText;
};

} // namespace hazelmark
