#include "SummaryBar.h"

#include "AccessibleRole.h"
#include "ApplicationDelegate.h"
#include "ElidedLabel.h"
#include "FileAttributes.h"
#include "FormatString.h"
#include "ImageCatalog.h"
#include "PathParts.h"
#include "Theme.h"
#include "ZoomField.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace hazelmark {

namespace {
constexpr double kIconPoints = 16;
}

SummaryBar::SummaryBar(ApplicationDelegate &application, QWidget *parent)
    : QWidget(parent)
    , m_application(application)
    , m_txtFilePath(new ElidedLabel(theme::kText))
    , m_txtPhotoSize(new QLabel)
    , m_txtPixelSize(new QLabel)
    , m_noticeIcon(new QLabel)
    , m_notice(new QLabel)
    , m_storedPainting(new ElidedLabel(theme::kText))
    , m_btnRestore(new QPushButton)
    , m_exportText(new ElidedLabel(theme::kQuietText, Qt::AlignRight))
    , m_zoomField(new ZoomField)
    , m_btnCompare(new QPushButton)
{
    setObjectName(QStringLiteral("vwBottom"));
    m_txtFilePath->setObjectName(QStringLiteral("txtFilePath"));
    m_txtPhotoSize->setObjectName(QStringLiteral("txtPhotoSize"));
    m_exportText->setObjectName(QStringLiteral("txtExport"));
    setFixedHeight(kHeightPoints);
    setAccessibleRole(*this, QAccessible::StatusBar);
    setAccessibleRole(*m_btnCompare, QAccessible::Button);
    theme::setGround(*this, theme::kStrip);
    theme::setTextColor(*m_txtPhotoSize, theme::kQuietText);
    theme::setTextColor(*m_txtPixelSize, theme::kQuietText);
    m_txtPixelSize->setObjectName(QStringLiteral("txtPixelSize"));
    m_storedPainting->setObjectName(QStringLiteral("txtStoredPainting"));
    m_btnRestore->setObjectName(QStringLiteral("btnRestore"));
    m_btnCompare->setObjectName(QStringLiteral("btnCompare"));
    m_btnCompare->setCheckable(true);
    for (QPushButton *button : {m_btnRestore, m_btnCompare}) {
        button->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
        button->setCursor(Qt::PointingHandCursor);
    }
    m_notice->setObjectName(QStringLiteral("txtNotice"));
    theme::setTextColor(*m_notice, theme::kText);
    m_noticeIcon->setPixmap(
        ImageCatalog::imageNamed(QStringLiteral("warning"), {kIconPoints, kIconPoints}, devicePixelRatioF()));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::kMargin, 0, theme::kMargin, 0);
    layout->setSpacing(theme::kMargin);
    layout->addWidget(m_txtFilePath);
    layout->addWidget(m_txtPhotoSize);
    layout->addWidget(m_txtPixelSize);
    auto *notice = new QHBoxLayout;
    notice->setSpacing(theme::kSpacing);
    notice->addWidget(m_noticeIcon);
    notice->addWidget(m_notice);
    layout->addLayout(notice);
    auto *painting = new QHBoxLayout;
    painting->setSpacing(theme::kSpacing);
    painting->addWidget(m_storedPainting);
    painting->addWidget(m_btnRestore);
    layout->addLayout(painting);
    layout->addStretch(1);
    layout->addWidget(m_exportText);
    layout->addWidget(m_zoomField);
    layout->addWidget(m_btnCompare);
    setStoredPainting({});
    setLocalizedStrings();
}

void SummaryBar::setLocalizedStrings()
{
    const auto text = [this](const char *key) { return m_application.getLocalizedStringForKey(QLatin1String(key)); };
    setAccessibleName(text("BOTTOM_BAR"));
    m_btnRestore->setText(text("RESTORE"));
    m_btnCompare->setText(text("COMPARE"));
    m_zoomField->setLocalizedStrings(m_application);
    m_btnCompare->setToolTip(text("COMPARE_TIP") + QStringLiteral(" (C)"));
}

/// The style, which says how wide the buttons have to be, is there by now.
void SummaryBar::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    for (QPushButton *button : {m_btnRestore, m_btnCompare}) // rather shorter texts beside them
        button->setFixedWidth(button->sizeHint().width());
}

void SummaryBar::setPixelSize(QSize size)
{
    m_txtPixelSize->setText(formatString(m_application.getLocalizedStringForKey(QStringLiteral("PIXEL_SIZE")),
                                         {QString::number(size.width()), QString::number(size.height())}));
}

void SummaryBar::setStoredPainting(const QString &text)
{
    m_storedPainting->setText(text);
    m_storedPainting->setVisible(!text.isEmpty());
    m_btnRestore->setVisible(!text.isEmpty());
}

QString SummaryBar::txtPixelSize() const
{
    return m_txtPixelSize->text();
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

void SummaryBar::showEmbeddedPreview()
{
    setNotice(m_application.getLocalizedStringForKey(QStringLiteral("PHOTO_EMBEDDED_PREVIEW")));
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
