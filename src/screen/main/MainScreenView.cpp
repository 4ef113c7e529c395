#include "MainScreenView.h"

#include "AccessibleRole.h"
#include "ApplicationDelegate.h"
#include "BarProgressIndicator.h"
#include "DrawTrackingView.h"
#include "FileDraggingView.h"
#include "IMGButton.h"
#include "ImageButton.h"
#include "ImageCatalog.h"
#include "KeyboardCursor.h"
#include "OverviewView.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "PhotoTest.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "Theme.h"
#include "TitlebarWindow.h"
#include "ZoomField.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QPushButton>
#include <QResizeEvent>
#include <QScreen>

#include <cmath>
#include <utility>

namespace hazelmark {

namespace {

constexpr int kPromptIconPoints = 120;
constexpr int kLoadingNoteHeight = 32;
constexpr qreal kLoadingNoteRadius = 6;

/// A tool tip with the key that does the same, as it is written on a keyboard of the person's language.
QString withKey(const QString &toolTip, const QKeySequence &key)
{
    return toolTip + QStringLiteral(" (") + key.toString(QKeySequence::NativeText) + QLatin1Char(')');
}

/// The note that a photo is being opened: legible on any picture.
class LoadingNote : public QLabel
{
public:
    explicit LoadingNote(QWidget *parent)
        : QLabel(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAlignment(Qt::AlignCenter);
        setContentsMargins(theme::kMargin, 0, theme::kMargin, 0);
        hide();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(theme::kHairline);
        painter.setBrush(theme::kField);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kLoadingNoteRadius, kLoadingNoteRadius);
        painter.end();
        QLabel::paintEvent(event);
    }
};

} // namespace

MainScreenView::MainScreenView(ApplicationDelegate &application, QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("MainScreenVC"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    vwMainContainer = new QWidget(this);
    vwMainContainer->setObjectName(QStringLiteral("vwMainContainer"));
    dropTarget = new FileDraggingView(&isReadablePhotoFile, vwMainContainer);
    vwBottom = new SummaryBar(application, this);
    vwRightContainer = new QWidget(this);
    vwRightContainer->setObjectName(QStringLiteral("vwRightContainer"));
    theme::setGround(*vwRightContainer, theme::kPanel);
    makeTitleStrip();
    makePrompt();
    makePhotoArea();
    makeRateUs();
    TitlebarWindow::setMovesWindow(*this);
    TitlebarWindow::setMovesWindow(*vwMainContainer);
    TitlebarWindow::setMovesWindow(*dropTarget);
}

void MainScreenView::makeSettingsPanel(ApplicationDelegate &application)
{
    vwSettingOptions = new SettingsPanel(application, vwRightContainer);
    vwSettingOptions->setGeometry(vwRightContainer->rect());
    vwSettingOptions->show();
}

void MainScreenView::orderTabs(const QList<QWidget *> &windowButtons)
{
    QList<QWidget *> order = vwSettingOptions->tabOrder();
    order << keyboardCursor << vwBottom->btnRestore() << vwBottom->zoomField() << vwBottom->btnCompare() << btnAddPhoto
          << btnShareService << btnExport << windowButtons;
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void MainScreenView::makeTitleStrip()
{
    vwTopContainer = new QWidget(this);
    vwTopContainer->setObjectName(QStringLiteral("vwTopContainer"));
    theme::setGround(*vwTopContainer, theme::kStrip);
    setAccessibleRole(*vwTopContainer, QAccessible::ToolBar);
    TitlebarWindow::setMovesWindow(*vwTopContainer);
    const auto button = [this](const char *name, const QString &image) {
        return imageButton(name, image, image + QStringLiteral("_selected"), vwTopContainer);
    };
    btnAddPhoto = button("btnAddPhoto", QStringLiteral("add"));
    btnShareService = button("btnShareService", QStringLiteral("share"));
    btnExport = button("btnExport", QStringLiteral("export"));
    m_unsavedMark = new QLabel(vwTopContainer);
    m_unsavedMark->setObjectName(QStringLiteral("unsavedMark"));
    m_unsavedMark->hide();
}

void MainScreenView::makePrompt()
{
    vwDragging = new QWidget(dropTarget);
    vwDragging->setObjectName(QStringLiteral("vwDragging"));
    TitlebarWindow::setMovesWindow(*vwDragging);
    auto *icon = new QLabel;
    icon->setPixmap(ImageCatalog::imageNamed(QStringLiteral("drop-hint"), {kPromptIconPoints, kPromptIconPoints},
                                             devicePixelRatioF()));
    txtAddPhoto = new QLabel;
    txtAddPhoto->setObjectName(QStringLiteral("txtAddPhoto"));
    txtAddPhoto->setFont(theme::systemFont(theme::kTextSize + 4));
    btnAddPhotoOnPrompt = new QPushButton;
    btnAddPhotoOnPrompt->setObjectName(QStringLiteral("btnAddPhotoOnPrompt"));
    btnAddPhotoOnPrompt->setDefault(true);

    auto *layout = new QVBoxLayout(vwDragging);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addSpacing(theme::kMargin + theme::kSpacing);
    layout->addWidget(txtAddPhoto, 0, Qt::AlignHCenter);
    layout->addSpacing(theme::kMargin + theme::kSpacing);
    layout->addWidget(btnAddPhotoOnPrompt, 0, Qt::AlignHCenter);
    layout->addStretch();
}

void MainScreenView::makePhotoArea()
{
    vwPreviewContainer = new QWidget(dropTarget);
    vwPreviewContainer->setObjectName(QStringLiteral("vwPreviewContainer"));
    imgvwBeforeBokesh = new PhotoImageView(vwPreviewContainer);
    imgvwBeforeBokesh->setObjectName(QStringLiteral("imgvwBeforeBokesh"));
    imgvwAfterBokesh = new PhotoImageView(vwPreviewContainer);
    imgvwAfterBokesh->setObjectName(QStringLiteral("imgvwAfterBokesh"));
    paintView = new PaintView(vwPreviewContainer);
    paintView->setObjectName(QStringLiteral("paintView"));
    paintView->hide();
    drawTrackingView = new DrawTrackingView(*paintView, vwPreviewContainer);
    drawTrackingView->setObjectName(QStringLiteral("drawTrackingView"));
    drawTrackingView->stackUnder(paintView);
    keyboardCursor = new KeyboardCursor(*paintView, vwPreviewContainer);
    overview = new OverviewView(vwPreviewContainer);
    setAccessibleRole(*overview, QAccessible::Graphic);
    setAccessibleRole(*imgvwBeforeBokesh, QAccessible::Graphic);
    setAccessibleRole(*imgvwAfterBokesh, QAccessible::Graphic);
    m_loadingNote = new LoadingNote(dropTarget);
    m_loadingNote->setObjectName(QStringLiteral("loadingNote"));
    progressBar = new BarProgressIndicator({}, theme::kBlueHighlight, Qt::transparent, 0, 1, 0, vwMainContainer);
    progressBar->setObjectName(QStringLiteral("progressBar"));
    progressBar->hide();
}

void MainScreenView::makeRateUs()
{
    auto *hidden = new QWidget(this);
    hidden->hide();
    const auto named = [](auto *control, const char *name) {
        control->setObjectName(QLatin1String(name));
        return control;
    };
    btnRateUs = named(new QPushButton(hidden), "btnRateUs");
    lblRateusTitle = named(new QLabel(hidden), "lblRateusTitle");
    lblRateusMsg = named(new QLabel(hidden), "lblRateusMsg");
    btnYesOnRateus = named(new QPushButton(hidden), "btnYesOnRateus");
    btnNoOnRateus = named(new QPushButton(hidden), "btnNoOnRateus");
}

void MainScreenView::setLocalizedStrings(ApplicationDelegate &application)
{
    const auto text = [&](const char *key) { return application.getLocalizedStringForKey(QLatin1String(key)); };
    const auto name = [](QWidget *button, const QString &toolTip) {
        button->setToolTip(toolTip);
        button->setAccessibleName(toolTip);
    };
    txtAddPhoto->setText(text("DRAG_DROP_IMAGE"));
    btnAddPhotoOnPrompt->setText(text("OPEN_IMAGE"));
    name(btnAddPhoto, text("ADD_IMAGE"));
    name(btnExport, text("SAVE"));
    name(btnShareService, text("SHARE"));
    btnAddPhoto->setToolTip(withKey(text("ADD_IMAGE"), Qt::CTRL | Qt::Key_O));
    btnExport->setToolTip(withKey(text("SAVE"), Qt::CTRL | Qt::Key_S));
    name(m_unsavedMark, text("UNSAVED_WORK"));
    btnRateUs->setText(text("RATEUS_TITLE"));
    lblRateusTitle->setText(text("RATEUS_TITLE"));
    lblRateusMsg->setText(text("RATEUS_MSG"));
    btnYesOnRateus->setText(text("YES"));
    btnNoOnRateus->setText(text("NO"));
    imgvwBeforeBokesh->setAccessibleName(text("PHOTO_BEFORE"));
    imgvwAfterBokesh->setAccessibleName(text("PHOTO_AREA"));
    keyboardCursor->setAccessibleName(text("CANVAS"));
    name(overview, text("OVERVIEW"));
    progressBar->setAccessibleName(text("EXPORT_PROGRESS"));
    vwTopContainer->setAccessibleName(text("TITLE_STRIP"));
    vwBottom->setLocalizedStrings();
    layOut();
}

void MainScreenView::showAddPhotoLayout()
{
    m_besidePanel = false;
    m_photoShown = false;
    layOut();
}

void MainScreenView::showPhotoLayout()
{
    m_besidePanel = true;
    m_photoShown = true;
    layOut();
}

void MainScreenView::setPanelAndBarVisible(bool visible)
{
    vwRightContainer->setVisible(visible);
    vwBottom->setVisible(visible);
    m_besidePanel = visible;
    layOut();
}

void MainScreenView::placePhoto(const QRectF &picture)
{
    m_picture = m_visiblePicture = picture;
    const QRect whole(QPoint(), vwPreviewContainer->size());
    for (PhotoImageView *view : {imgvwBeforeBokesh, imgvwAfterBokesh}) {
        view->setGeometry(whole);
        view->setPictureFrame(picture);
        view->setDetail({});
    }
    overview->hide();
    paintView->setFrame(picture);
    drawTrackingView->setGeometry(paintView->geometry());
    keyboardCursor->setGeometry(paintView->geometry());
    placeLoadingNote();
}

void MainScreenView::placeNear(const QRectF &whole, const QRectF &visible)
{
    m_visiblePicture = visible;
    for (PhotoImageView *view : {imgvwBeforeBokesh, imgvwAfterBokesh})
        view->setPictureFrame(whole);
    paintView->setShown(whole, visible);
    drawTrackingView->setGeometry(paintView->geometry());
    keyboardCursor->setGeometry(paintView->geometry());
}

QRectF MainScreenView::photoFrame() const
{
    return m_picture;
}

void MainScreenView::showLoading(const QString &text)
{
    m_loadingNote->setText(text);
    m_loadingNote->setVisible(!text.isEmpty());
    setPromptVisible(!m_photoShown && text.isEmpty());
    placeLoadingNote();
}

void MainScreenView::setPromptVisible(bool visible)
{
    if (!visible && window()->focusWidget() == btnAddPhotoOnPrompt) {
        btnAddPhotoOnPrompt->clearFocus();
        m_promptHadFocus = true;
    }
    vwDragging->setVisible(visible);
    if (visible && std::exchange(m_promptHadFocus, false) && !window()->focusWidget())
        btnAddPhotoOnPrompt->setFocus();
}

void MainScreenView::setUnsavedMarkVisible(bool visible)
{
    m_unsavedMark->setVisible(visible);
}

QSize MainScreenView::previewSize() const
{
    return vwPreviewContainer->size();
}

QSize MainScreenView::previewSizeWithPhoto() const
{
    return (mainContainerFrame(true).size() - QSize(kPreviewInsetPoints, kPreviewInsetPoints)).expandedTo({1, 1});
}

QSize MainScreenView::largestPixelSize() const
{
    QSize largest = size() * devicePixelRatioF();
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        largest = largest.expandedTo(screen->size() * screen->devicePixelRatio());
    return largest;
}

void MainScreenView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void MainScreenView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), theme::kSurround);
}

QRect MainScreenView::mainContainerFrame(bool besidePanel) const
{
    const int right = besidePanel ? SettingsPanel::kPanelWidthPoints : 0;
    const int bottom = besidePanel ? SummaryBar::kHeightPoints : 0;
    return rect().adjusted(0, theme::kTitleBarHeight, -right, -bottom);
}

void MainScreenView::layOut()
{
    layOutTitleStrip();
    vwMainContainer->setGeometry(mainContainerFrame(m_besidePanel));
    layOutMainContainer();
    vwRightContainer->setGeometry(width() - SettingsPanel::kPanelWidthPoints, theme::kTitleBarHeight,
                                  SettingsPanel::kPanelWidthPoints, height() - theme::kTitleBarHeight);
    if (vwSettingOptions)
        vwSettingOptions->setGeometry(vwRightContainer->rect());
    vwBottom->setGeometry(0, height() - SummaryBar::kHeightPoints, width() - SettingsPanel::kPanelWidthPoints,
                          SummaryBar::kHeightPoints);
}

void MainScreenView::layOutTitleStrip()
{
    vwTopContainer->setGeometry(0, 0, width(), theme::kTitleBarHeight);
    // The three stand over the panel, the one that ends the work outermost.
    int right = width() - theme::kMargin + theme::kSpacing;
    for (IMGButton *button : {btnExport, btnShareService, btnAddPhoto}) {
        right -= button->width();
        button->move(right, (theme::kTitleBarHeight - button->height()) / 2);
        right -= theme::kSpacing;
    }
    const QPixmap mark = ImageCatalog::imageNamed(
        QStringLiteral("unsaved"), ImageCatalog::naturalSize(QStringLiteral("unsaved")), devicePixelRatioF());
    m_unsavedMark->setPixmap(mark);
    m_unsavedMark->resize(m_unsavedMark->sizeHint());
    m_unsavedMark->move(right - m_unsavedMark->width(), (theme::kTitleBarHeight - m_unsavedMark->height()) / 2);
}

void MainScreenView::layOutMainContainer()
{
    const QRect whole(QPoint(), vwMainContainer->size());
    constexpr int kInset = kPreviewInsetPoints / 2;
    dropTarget->setGeometry(whole);
    vwDragging->setGeometry(whole);
    setPromptVisible(!m_photoShown && m_loadingNote->text().isEmpty());
    vwPreviewContainer->setGeometry(whole.adjusted(kInset, kInset, -kInset, -kInset));
    vwPreviewContainer->setVisible(m_photoShown);
    progressBar->setGeometry(0, 0, whole.width(), kProgressHeightPoints);
    placeLoadingNote();
}

void MainScreenView::placeLoadingNote()
{
    const int width = std::min(m_loadingNote->sizeHint().width(), dropTarget->width());
    const QRect area = dropTarget->rect();
    // Over a photo it stands near the foot, where it hides little.
    const int bottom = m_photoShown ? area.bottom() - kPreviewInsetPoints / 2 - theme::kMargin
                                    : area.center().y() + kLoadingNoteHeight / 2;
    m_loadingNote->setGeometry((area.width() - width) / 2, bottom - kLoadingNoteHeight, width, kLoadingNoteHeight);
}

} // namespace hazelmark
