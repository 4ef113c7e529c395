#include "HighlightButton.h"

#include "FocusRing.h"
#include "ImageCatalog.h"
#include "Theme.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <chrono>
#include <cmath>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kPressHighlight{100};
constexpr qreal kFlatRadius = 4.0;
constexpr qreal kDisabledOpacity = 0.4;

} // namespace

HighlightButton::HighlightButton(int tag, const QString &image, const QString &alternateImage, QWidget *parent)
    : QAbstractButton(parent)
    , m_tag(tag)
    , m_imgNormalState(image)
    , m_imgSelectedState(alternateImage)
{
    setFocusPolicy(Qt::TabFocus);
    m_endOfPress.setSingleShot(true);
    m_endOfPress.setInterval(kPressHighlight);
    connect(&m_endOfPress, &QTimer::timeout, this, &HighlightButton::setButtonDefault);
    setButtonDefault();
}

void HighlightButton::setImgNormalState(const QString &name)
{
    m_imgNormalState = name;
    setHighlighted(m_highlighted);
}

void HighlightButton::setImgSelectedState(const QString &name)
{
    m_imgSelectedState = name;
    setHighlighted(m_highlighted);
}

void HighlightButton::setHighlighted(bool highlighted)
{
    m_highlighted = highlighted;
    if (m_tag == kImageTag)
        m_image = highlighted ? m_imgSelectedState : m_imgNormalState;
    if (m_tag == kFlatTag)
        m_background = highlighted ? theme::kBlueHighlight : theme::kBlue;
    updateGeometry();
    update();
}

void HighlightButton::setButtonDefault()
{
    setHighlighted(false);
}

void HighlightButton::setButtonHighlighted()
{
    setHighlighted(true);
}

void HighlightButton::highlight()
{
    setButtonHighlighted();
    m_endOfPress.start();
}

bool HighlightButton::event(QEvent *event)
{
    if (m_hover.follow(*event, *this)) {
        setCursor(m_hover.isHovering() ? Qt::PointingHandCursor : Qt::ArrowCursor);
        setHighlighted(m_hover.isHovering());
    }
    return QAbstractButton::event(event);
}

void HighlightButton::mousePressEvent(QMouseEvent *event)
{
    QAbstractButton::mousePressEvent(event);
    if (isDown())
        highlight();
}

void HighlightButton::keyPressEvent(QKeyEvent *event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat()) {
        highlight();
        click();
        return;
    }
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat())
        highlight();
    QAbstractButton::keyPressEvent(event);
}

QFont HighlightButton::titleFont() const
{
    QFont title = theme::systemFont(font().pixelSize() > 0 ? font().pixelSize() : theme::kTextSize);
    title.setBold(m_highlighted);
    return title;
}

QSize HighlightButton::sizeHint() const
{
    QSizeF size = ImageCatalog::naturalSize(m_image);
    if (!text().isEmpty()) {
        QFont bold = titleFont();
        bold.setBold(true); // room for either weight
        const QSizeF title = QFontMetricsF(bold).size(Qt::TextShowMnemonic, text());
        size = size.expandedTo({title.width() + 2 * theme::kMargin, title.height() + 2 * theme::kSpacing});
    }
    return QSize(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())));
}

void HighlightButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setOpacity(isEnabled() ? 1.0 : kDisabledOpacity);
    if (m_tag == kFlatTag) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_background);
        painter.drawRoundedRect(QRectF(rect()), kFlatRadius, kFlatRadius);
    }
    const QSizeF imageSize = ImageCatalog::naturalSize(m_image);
    const QPixmap pixmap = ImageCatalog::imageNamed(m_image, imageSize, devicePixelRatioF());
    if (!pixmap.isNull())
        painter.drawPixmap(QPointF((width() - imageSize.width()) / 2, (height() - imageSize.height()) / 2), pixmap);
    if (!text().isEmpty()) {
        painter.setPen(Qt::white);
        painter.setFont(titleFont());
        painter.drawText(QRectF(rect()), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    }
    drawFocusRing(painter, *this);
}

} // namespace hazelmark
