#include "PromotionWindow.h"

#include "AccessibleRole.h"
#include "Bundle.h"
#include "DotPageControl.h"
#include "ImageCatalog.h"
#include "Localisation.h"
#include "Log.h"
#include "PropertyList.h"
#include "Theme.h"
#include "Workspace.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace hazelmark {

namespace {

constexpr int kWidth = 460;    // points
constexpr int kLogoSize = 96;  // points
constexpr int kTitleSize = 17; // points
constexpr int kNameSize = 20;  // points
constexpr int kDescLines = 2;  // the longest language's line
constexpr qreal kDotDiameter = 25.0;
constexpr qreal kDotMargin = 5.0;

QLabel *centred(int size, bool bold)
{
    auto *label = new QLabel;
    label->setFont(bold ? theme::boldFont(size) : theme::systemFont(size));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

PromotionWindow::PromotionWindow(Localisation &texts, InstalledTest isInstalled)
    : m_texts(texts)
    , m_isInstalled(std::move(isInstalled))
    , m_control(new DotPageControl)
    , m_lblRecommendedTitle(centred(kTitleSize, true))
    , m_imgViewAppLogo(new QLabel)
    , m_lblAppName(centred(kNameSize, true))
    , m_lblAppDesc(centred(theme::kTextSize, false))
    , m_btnCheckDontShow(new QCheckBox)
    , m_btnOpenSuggestedApp(new QPushButton)
    , m_btnQuitAppPromotion(new QPushButton)
{
    setObjectName(QStringLiteral("windowPromotion"));
    setAccessibleRole(*this, QAccessible::Dialog);
    setWindowTitle(Bundle::infoDictionary().value(QStringLiteral("CFBundleName")).toString());
    layOut();
    m_timerOfApps.setInterval(kPageTime);
    connect(&m_timerOfApps, &QTimer::timeout, this, &PromotionWindow::changeAppDetail);
    connect(m_control, &DotPageControl::pageSelected, this, &PromotionWindow::pageControlDidSelectPageAtIndex);
    connect(m_btnOpenSuggestedApp, &QPushButton::clicked, this, &PromotionWindow::btnOpenSuggestedAppTapped);
    connect(m_btnQuitAppPromotion, &QPushButton::clicked, this, &PromotionWindow::quitTapped);
    setLocalizedStrings();
}

void PromotionWindow::layOut()
{
    m_imgViewAppLogo->setFixedHeight(kLogoSize);
    m_imgViewAppLogo->setAlignment(Qt::AlignCenter);
    m_lblAppDesc->setFixedHeight(kDescLines * m_lblAppDesc->fontMetrics().lineSpacing() + theme::kGrid);
    m_lblAppDesc->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_btnQuitAppPromotion->setDefault(true);

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_btnCheckDontShow);
    bottom->addStretch();
    bottom->addWidget(m_btnQuitAppPromotion);
    auto *layout = new QVBoxLayout(this);
    const int margin = theme::kMargin + theme::kSpacing;
    layout->setContentsMargins(margin, margin, margin, theme::kMargin);
    layout->setSpacing(theme::kSpacing);
    layout->addWidget(m_lblRecommendedTitle);
    layout->addSpacing(theme::kMargin);
    layout->addWidget(m_imgViewAppLogo);
    layout->addSpacing(theme::kSpacing);
    layout->addWidget(m_lblAppName);
    layout->addWidget(m_lblAppDesc);
    layout->addWidget(m_btnOpenSuggestedApp, 0, Qt::AlignHCenter);
    layout->addSpacing(theme::kSpacing);
    layout->addWidget(m_control, 0, Qt::AlignHCenter);
    layout->addSpacing(theme::kMargin);
    layout->addLayout(bottom);
    setFixedWidth(kWidth);
}

void PromotionWindow::setLocalizedStrings()
{
    const auto lookup = [this](const char *key) { return m_texts.getLocalizedStringForKey(QLatin1String(key)); };
    m_lblRecommendedTitle->setText(lookup("RECOMMENDED_APPS"));
    m_control->setAccessibleName(lookup("RECOMMENDED_APPS"));
    m_btnQuitAppPromotion->setText(lookup("QUIT"));
    m_btnCheckDontShow->setText(lookup("DONT_REMIND_AGAIN"));
    m_btnOpenSuggestedApp->setText(lookup("OPEN_IN_STORE"));
}

bool PromotionWindow::isApplicationInstalledWithName(const QString &name)
{
    return QFileInfo::exists(QStringLiteral("/Applications/%1.app").arg(name));
}

void PromotionWindow::promotionWindowSetup()
{
    const QString path =
        Bundle::mainBundle().pathForResource(QStringLiteral("PromotedApplications"), QStringLiteral("plist"));
    const QVariantList all =
        readPropertyList(path).value_or(QVariantMap()).value(QStringLiteral("applications")).toList();
    m_arrOurApps.clear();
    for (const QVariant &item : all) {
        QVariantMap entry = item.toMap();
        if (m_isInstalled(entry.value(QStringLiteral("appName")).toString()))
            continue;
        const QString descriptionKey = entry.take(QStringLiteral("descriptionKey")).toString();
        entry.insert(QStringLiteral("Desc"), m_texts.getLocalizedStringForKey(descriptionKey));
        m_arrOurApps.append(entry);
    }
    setupPageControl();
}

void PromotionWindow::setupPageControl()
{
    m_control->setDotSize(kDotDiameter, kDotMargin);
    m_control->setDotColors(theme::kRaised, theme::kGreen, theme::kDisabledText);
    m_control->setNumberOfPages(static_cast<int>(m_arrOurApps.size()));
    showEntry(0);
}

void PromotionWindow::showEntry(int index)
{
    m_selectedRecommendedAppIndex = index;
    m_control->setCurrentPage(index);
    const QVariantMap entry = m_arrOurApps.value(index).toMap();
    m_lblAppName->setText(entry.value(QStringLiteral("appName")).toString());
    m_lblAppDesc->setText(entry.value(QStringLiteral("Desc")).toString());
    const QString image = entry.value(QStringLiteral("imageName")).toString();
    m_imgViewAppLogo->setPixmap(
        image.isEmpty() ? QPixmap()
                        : ImageCatalog::imageNamed(image, QSizeF(kLogoSize, kLogoSize), devicePixelRatioF()));
    m_btnOpenSuggestedApp->setEnabled(!entry.value(QStringLiteral("url")).toString().isEmpty());
}

void PromotionWindow::present()
{
    promotionWindowSetup();
    hide();
    show();
    raise();
    activateWindow();
    m_btnQuitAppPromotion->setFocus();
    m_timerOfApps.start();
}

void PromotionWindow::hideEvent(QHideEvent *event)
{
    m_timerOfApps.stop();
    QWidget::hideEvent(event);
}

void PromotionWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        pressFocusedButton();
}

void PromotionWindow::pressFocusedButton()
{
    auto *focused = qobject_cast<QPushButton *>(focusWidget());
    (focused ? focused : m_btnQuitAppPromotion)->click();
}

void PromotionWindow::changeAppDetail()
{
    const int next = m_selectedRecommendedAppIndex + 1;
    showEntry(next < m_arrOurApps.size() ? next : 0);
}

void PromotionWindow::pageControlDidSelectPageAtIndex(int index)
{
    m_timerOfApps.stop();
    qCInfo(lcApp, "PromotionWindow: Selected page at index: %d", index);
    showEntry(index);
}

void PromotionWindow::btnOpenSuggestedAppTapped()
{
    if (m_selectedRecommendedAppIndex >= m_arrOurApps.size())
        return;
    const QVariantMap entry = m_arrOurApps.at(m_selectedRecommendedAppIndex).toMap();
    Workspace::sharedWorkspace().openUrl(QUrl(entry.value(QStringLiteral("url")).toString()));
}

} // namespace hazelmark
