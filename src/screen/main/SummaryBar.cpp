#include "SummaryBar.h"

#include "ApplicationDelegate.h"
#include "ElidedLabel.h"
#include "FileAttributes.h"
#include "FormatString.h"
#include "ImageCatalog.h"
#include "PathParts.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace hazelmark {

namespace {
constexpr double kIconPoints = 16;
}

SummaryBar::SummaryBar(ApplicationDelegate &application, QWidget *parent)
    : QWidget(parent)
    , m_application(application)
    , m_txtFilePath(new ElidedLabel(theme::kText))
    , m_txtPhotoSize(new QLabel)
    , m_noticeIcon(new QLabel)
    , m_notice(new QLabel)
    , m_exportText(new ElidedLabel(theme::kQuietText, Qt::AlignRight))
{
    setObjectName(QStringLiteral("vwBottom"));
    m_txtFilePath->setObjectName(QStringLiteral("txtFilePath"));
    m_txtPhotoSize->setObjectName(QStringLiteral("txtPhotoSize"));
    m_exportText->setObjectName(QStringLiteral("txtExport"));
    setFixedHeight(kHeightPoints);
    theme::setGround(*this, theme::kStrip);
    theme::setTextColor(*m_txtPhotoSize, theme::kQuietText);
    m_notice->setObjectName(QStringLiteral("txtNotice"));
    theme::setTextColor(*m_notice, theme::kText);
    m_noticeIcon->setPixmap(
        ImageCatalog::imageNamed(QStringLiteral("warning"), {kIconPoints, kIconPoints}, devicePixelRatioF()));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::kMargin, 0, theme::kMargin, 0);
    layout->setSpacing(theme::kMargin);
    layout->addWidget(m_txtFilePath);
    layout->addWidget(m_txtPhotoSize);
    auto *notice = new QHBoxLayout;
    notice->setSpacing(theme::kSpacing);
    notice->addWidget(m_noticeIcon);
    notice->addWidget(m_notice);
    layout->addLayout(notice);
    layout->addStretch(1);
    layout->addWidget(m_exportText);
}

QString SummaryBar::photoSizeText(double bytes)
{
    constexpr double kKilo = 1000;
    constexpr double kMega = 1000000;
    if (bytes < kKilo)
        return QString::asprintf("%.0f KB", bytes); // small files count in bytes and say KB: that is how it is wanted
    if (bytes < kMega)
        return QString::asprintf("%.0f KB", bytes / kKilo);
    return QString::asprintf("%.2f MB", bytes / kMega);
}

void SummaryBar::setupBottomSummaryInfo(const QString &path)
{
    const std::optional<FileAttributes> attributes = FileAttributes::ofPath(path);
    m_txtPhotoSize->setText(photoSizeText(attributes ? static_cast<double>(attributes->size) : 0));
    m_txtFilePath->setText(lastPathComponent(path));
    setNotice({});
    clearExport();
    show();
}

void SummaryBar::setExportText(const char *key, const QString &path)
{
    m_exportText->setText(
        formatString(m_application.getLocalizedStringForKey(QLatin1String(key)), {lastPathComponent(path)}));
}

void SummaryBar::setNotice(const QString &text)
{
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
    m_noticeIcon->setVisible(!text.isEmpty());
}

void SummaryBar::showPartlyDamaged()
{
    setNotice(m_application.getLocalizedStringForKey(QStringLiteral("PHOTO_PARTLY_DAMAGED")));
}

void SummaryBar::showExporting(const QString &path)
{
    setExportText("EXPORTING", path);
}

void SummaryBar::showExported(const QString &path)
{
    setExportText("EXPORTED", path);
}

void SummaryBar::showMessage(const QString &text)
{
    m_exportText->setText(text);
}

void SummaryBar::clearExport()
{
    m_exportText->setText({});
}

QString SummaryBar::txtFilePath() const
{
    return m_txtFilePath->text();
}

QString SummaryBar::txtPhotoSize() const
{
    return m_txtPhotoSize->text();
}

QString SummaryBar::exportText() const
{
    return m_exportText->text();
}

QString SummaryBar::notice() const
{
    return m_notice->text();
}

} // namespace hazelmark
