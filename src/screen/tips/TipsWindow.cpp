#include "TipsWindow.h"

#include "AccessibleRole.h"
#include "ApplicationDelegate.h"
#include "DotPageControl.h"
#include "FormatString.h"
#include "ImageCatalog.h"
#include "PageSlider.h"
#include "ScaleToFillImageView.h"
#include "Screen.h"
#include "Theme.h"
#include "UserDefaults.h"

#include <QCheckBox>
#include <QLabel>
#include <QMoveEvent>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

struct Tip
{
    const char *picture;
    const char *titleKey;
    const char *textKey;
};

constexpr std::array<Tip, 4> kTips{{
    {"tip-open", "TIP_OPEN_TITLE", "TIP_OPEN_TEXT"},
    {"tip-paint", "TIP_PAINT_TITLE", "TIP_PAINT_TEXT"},
    {"tip-adjust", "TIP_ADJUST_TITLE", "TIP_ADJUST_TEXT"},
    {"tip-export", "TIP_EXPORT_TITLE", "TIP_EXPORT_TEXT"},
}};

constexpr QSize kPictureSize{480, 264};
constexpr int kHeadingSize = 17; // points
constexpr int kTitleSize = 15;   // points
constexpr int kTextLines = 3;    // the longest language's text
constexpr int kButtonWidth = 96;
constexpr qreal kDotDiameter = 10;
constexpr qreal kDotMargin = 6;
const QString kNotShowTips = QStringLiteral("notShowTipsWindow");

QLabel *label(int size, bool bold)
{
    auto *label = new QLabel;
    label->setFont(bold ? theme::boldFont(size) : theme::systemFont(size));
    label->setWordWrap(true);
    label->setFixedWidth(kPictureSize.width());
    return label;
}

} // namespace

TipsWindow::TipsWindow(ApplicationDelegate &application, QWidget *mainWindow)
    : QWidget(mainWindow, Qt::Dialog)
    , m_application(application)
    , m_lblDemoMsg(label(kHeadingSize, true))
    , m_pageController(new PageSlider)
    , m_pageButtons(new DotPageControl)
    , m_btnCheckShowTipsAgain(new QCheckBox(this))
    , m_btnBackPage(new QPushButton)
    , m_btnNextpage(new QPushButton)
{
    setObjectName(QStringLiteral("demoWin"));
    setAccessibleRole(*this, QAccessible::Dialog);
    mainWindow->installEventFilter(this);
    m_lblDemoMsg->setObjectName(QStringLiteral("lblDemoMsg"));
    for (int page = 0; page < static_cast<int>(kTips.size()); ++page)
        m_pageController->addPage(makePage(page));
    m_pageButtons->setDotSize(kDotDiameter, kDotMargin);
    m_pageButtons->setNumberOfPages(m_pageController->count());
    m_btnCheckShowTipsAgain->setObjectName(QStringLiteral("btnCheckShowTipsAgain"));
    m_btnCheckShowTipsAgain->setChecked(true);
    m_btnCheckShowTipsAgain->hide(); // what it stores nobody reads

    auto *turning = new QHBoxLayout;
    turning->setSpacing(theme::kSpacing);
    turning->addWidget(m_btnBackPage);
    turning->addStretch();
    turning->addWidget(m_pageButtons);
    turning->addStretch();
    turning->addWidget(m_btnNextpage);

    auto *layout = new QVBoxLayout(this);
    const int margin = theme::kMargin + theme::kSpacing;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(theme::kMargin);
    layout->addWidget(m_lblDemoMsg);
    layout->addWidget(m_pageController, 1);
    layout->addLayout(turning);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // As shortcuts: buttons that have the focus would take the arrows to hand it on.
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Left, this), &QShortcut::activated, this, &TipsWindow::btnBackPageTapped);
    connect(new QShortcut(Qt::Key_Right, this), &QShortcut::activated, m_pageController, &PageSlider::navigateForward);
    connect(m_pageButtons, &DotPageControl::pageSelected, this, &TipsWindow::pageButtonsAction);
    connect(m_btnBackPage, &QPushButton::clicked, this, &TipsWindow::btnBackPageTapped);
    connect(m_btnNextpage, &QPushButton::clicked, this, &TipsWindow::btnNextpageTapped);
    connect(m_btnCheckShowTipsAgain, &QCheckBox::clicked, this, &TipsWindow::btnLaunchAppTapped);
    connect(m_pageController, &PageSlider::selectedIndexChanged, this, &TipsWindow::showPage);
    setLocalizedStrings();
}

QWidget *TipsWindow::makePage(int page)
{
    auto *picture = new ScaleToFillImageView;
    picture->setObjectName(QStringLiteral("imageViewTips"));
    picture->setFixedSize(kPictureSize);
    m_pictures.append(picture);
    QLabel *title = label(kTitleSize, true);
    m_titles.append(title);
    QLabel *text = label(theme::kTextSize, false);
    text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    text->setFixedHeight(kTextLines * text->fontMetrics().lineSpacing() + theme::kGrid);
    m_texts.append(text);

    auto *view = new QWidget;
    view->setObjectName(QStringLiteral("tipsBox%1").arg(page));
    auto *layout = new QVBoxLayout(view);
    layout->setContentsMargins({});
    layout->setSpacing(theme::kSpacing);
    layout->addWidget(picture);
    layout->addSpacing(theme::kGrid);
    layout->addWidget(title);
    layout->addWidget(text);
    return view;
}

QString TipsWindow::lookup(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

int TipsWindow::widthOfNext(const char *key)
{
    m_btnNextpage->setText(lookup(key));
    return m_btnNextpage->sizeHint().width();
}

void TipsWindow::setLocalizedStrings()
{
    setWindowTitle(lookup("TIPS_TITLE"));
    m_lblDemoMsg->setText(lookup("ID_ALERT_DEMO_MSG"));
    m_btnBackPage->setText(lookup("TIP_BACK"));
    m_btnCheckShowTipsAgain->setText(lookup("TIPS_SHOW_AGAIN"));
    const int buttonWidth =
        std::max({kButtonWidth, m_btnBackPage->sizeHint().width(), widthOfNext("TIP_NEXT"), widthOfNext("TIP_DONE")});
    m_btnBackPage->setFixedWidth(buttonWidth); // equal, so that the dots stand in the middle
    m_btnNextpage->setFixedWidth(buttonWidth);
    for (int page = 0; page < m_titles.size(); ++page) {
        const Tip &tip = kTips[static_cast<size_t>(page)];
        m_titles[page]->setText(lookup(tip.titleKey));
        m_texts[page]->setText(lookup(tip.textKey));
        m_pictures[page]->setAccessibleName(lookup(tip.titleKey));
    }
    showPage(m_pageController->selectedIndex());
}

void TipsWindow::addDemoWindow(QSize mainWindowSize)
{
    if (isVisible()) {
        raise();
        activateWindow();
        return;
    }
    // Drawn for the screen that it opens on.
    for (int page = 0; page < m_pictures.size(); ++page)
        m_pictures[page]->setImage(ImageCatalog::imageNamed(QLatin1String(kTips[static_cast<size_t>(page)].picture),
                                                            kPictureSize, devicePixelRatioF()));
    m_pageController->setSelectedIndex(0);
    adjustSize();
    const QPointF place((mainWindowSize.width() - width()) * 0.5, (mainWindowSize.height() - height()) * 0.5);
    move((Screen::mainScreen().origin() + place).toPoint());
    show();
    raise();
    activateWindow();
    m_btnNextpage->setFocus();
}

void TipsWindow::pageButtonsAction(int selectedColumn)
{
    m_pageController->setSelectedIndex(selectedColumn);
}

void TipsWindow::btnBackPageTapped()
{
    m_pageController->navigateBack();
}

void TipsWindow::btnNextpageTapped()
{
    if (isLastPage())
        close();
    else
        m_pageController->navigateForward();
}

void TipsWindow::btnLaunchAppTapped()
{
    if (!m_btnCheckShowTipsAgain->isChecked())
        UserDefaults::standardUserDefaults().setBoolean(kNotShowTips, true);
}

bool TipsWindow::isLastPage() const
{
    return m_pageController->selectedIndex() + 1 == m_pageController->count();
}

void TipsWindow::showPage(int page)
{
    m_pageButtons->setCurrentPage(page);
    m_pageButtons->setAccessibleName(
        formatString(lookup("TIP_PAGE"), {QString::number(page + 1), QString::number(m_pageController->count())}));
    m_btnBackPage->setEnabled(page > 0);
    m_btnNextpage->setText(lookup(isLastPage() ? "TIP_DONE" : "TIP_NEXT"));
}

bool TipsWindow::eventFilter(QObject *watched, QEvent *event)
{
    // When it is minimised the desktop hides both.
    if (event->type() == QEvent::Hide && !event->spontaneous())
        close();
    if (event->type() == QEvent::Move && isVisible()) {
        const auto *move = static_cast<QMoveEvent *>(event);
        const QSize size = frameGeometry().size();
        const QRect room = screen()->availableGeometry().marginsRemoved({0, 0, size.width(), size.height()});
        const QPoint wanted = pos() + move->pos() - move->oldPos();
        // Not off the screen, where a window that fills it would send it.
        this->move(std::clamp(wanted.x(), room.left(), std::max(room.left(), room.right())),
                   std::clamp(wanted.y(), room.top(), std::max(room.top(), room.bottom())));
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace hazelmark
