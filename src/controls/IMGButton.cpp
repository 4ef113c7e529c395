#include "IMGButton.h"

#include "FocusRing.h"
#include "ImageCatalog.h"
#include "Theme.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace hazelmark {

namespace {

const QString kMeasuringFamily = QStringLiteral("Lucida Grande"); // or what the system has for it
constexpr int kSmallestSize = 4;
constexpr int kLargestSize = 50;
constexpr double kBoldFromWidth = 200;
constexpr double kBoldToWidth = 245;
constexpr int kBoldSize = 20;
constexpr QColor kDisabledGray{96, 96, 96};

QFont measuringFont(int size)
{
    QFont font(kMeasuringFamily);
    font.setPixelSize(size);
    return font;
}

QSizeF measure(const QString &text, const QFont &font)
{
    return QFontMetricsF(font).size(0, text);
}

} // namespace

IMGButton::IMGButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
    m_colors.fill(Qt::white);
    m_colors[OnStateDis] = m_colors[OffStateDis] = kDisabledGray;
}

void IMGButton::setEndCaps(const EndCaps &caps)
{
    m_images[OffState].end = caps.off;
    m_images[OffStateDwn].end = m_images[OffStateDis].end = caps.offDisabled;
    m_images[OnState].end = caps.on;
    m_images[OnStateDwn].end = m_images[OnStateDis].end = caps.onDisabled;
    setImgMouseHover(caps.hover);
    resize(sizeHint());
}

QSize IMGButton::sizeHint() const
{
    const Pieces &off = m_images[OffState];
    QSizeF size(0, 0);
    for (const QString &name : {off.start, off.middle, off.end}) {
        const QSizeF piece = ImageCatalog::naturalSize(name);
        if (!piece.isEmpty())
            size = QSizeF(size.width() + piece.width(), std::max(size.height(), piece.height()));
    }
    if (!text().isEmpty()) {
        const QSizeF title = measure(text(), theme::systemFont());
        size = size.expandedTo({std::ceil(title.width()) + m_marginLeft + m_marginRight,
                                std::ceil(title.height()) + m_marginTop + m_marginBottom});
    }
    return size.toSize();
}

bool IMGButton::event(QEvent *event)
{
    if (m_hover.follow(*event, *this))
        update();
    switch (event->type()) {
    case QEvent::Enter:
        // A sheet that opened in the middle of a press has taken its release.
        if (!(QGuiApplication::mouseButtons() & Qt::LeftButton))
            endPressWithoutRelease();
        break;
    case QEvent::Hide:
        endPressWithoutRelease();
        break;
    case QEvent::MouseButtonRelease:
        // The press has disabled the button, and disabled widgets are not told of a release.
        if (m_mouseDown) {
            mouseReleaseEvent(static_cast<QMouseEvent *>(event));
            return true;
        }
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void IMGButton::endPressWithoutRelease()
{
    if (std::exchange(m_mouseDown, false))
        setEnabled(true);
}

void IMGButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (!isEnabled())
        return;
    m_mouseDown = true;
    setEnabled(false); // which draws it anew
}

void IMGButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_mouseDown || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_mouseDown = false;
    const QPointF point = event->position();
    const bool inside = point.x() >= 0 && point.x() <= width() && point.y() >= 0 && point.y() <= height();
    if (inside)
        sendActionAndToggle();
    else
        setEnabled(true);
}

void IMGButton::sendActionAndToggle()
{
    const QPointer<IMGButton> self = this; // an action may end its button
    emit clicked(isChecked());
    if (self)
        endClick();
}

void IMGButton::endClick()
{
    setChecked(!isChecked());
    if (m_enableImmediately)
        setEnabled(true);
    emit clickOver();
}

void IMGButton::keyPressEvent(QKeyEvent *event)
{
    const bool acts = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (acts && !event->isAutoRepeat() && !m_mouseDown) {
        setEnabled(m_enableImmediately);
        sendActionAndToggle();
    } else if (!acts) {
        QAbstractButton::keyPressEvent(event);
    }
}

void IMGButton::keyReleaseEvent(QKeyEvent *event)
{
    // The base class would click on the release of the space bar.
    if (event->key() != Qt::Key_Space)
        QAbstractButton::keyReleaseEvent(event);
}

void IMGButton::nextCheckState()
{
    // Reached by assistive technology, before the action is sent: the state flips after it, as with the mouse.
    QMetaObject::invokeMethod(this, &IMGButton::endClick, Qt::QueuedConnection);
}

bool IMGButton::focusNextPrevChild(bool next)
{
    // Being disabled for the length of a press is no reason to hand the focus on.
    return m_mouseDown || QAbstractButton::focusNextPrevChild(next);
}

IMGButton::State IMGButton::currentState() const
{
    if (!isEnabled())
        return isChecked() ? OnStateDis : OffStateDis;
    if (m_mouseDown)
        return isChecked() ? OnStateDwn : OffStateDwn;
    return isChecked() ? OnState : OffState;
}

void IMGButton::drawPieces(QPainter &painter, const Pieces &pieces) const
{
    const QRectF bounds = rect();
    const qreal scale = devicePixelRatioF();
    const qreal startWidth = std::min(ImageCatalog::naturalSize(pieces.start).width(), bounds.width());
    const qreal endWidth = std::min(ImageCatalog::naturalSize(pieces.end).width(), bounds.width());
    const auto draw = [&](const QString &name, const QRectF &target) {
        const QPixmap pixmap = ImageCatalog::imageNamed(name, target.size(), scale);
        if (!pixmap.isNull())
            painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
    };
    draw(pieces.middle, bounds.adjusted(startWidth, 0, -endWidth, 0));
    draw(pieces.start, QRectF(0, 0, startWidth, bounds.height()));
    draw(pieces.end, QRectF(bounds.width() - endWidth, 0, endWidth, bounds.height()));
}

QStringList IMGButton::titleParts() const
{
    return m_multiLineStr.isEmpty() ? QStringList(text()) : text().split(m_multiLineStr);
}

void IMGButton::breakTitle()
{
    m_mTitle = text();
    const QStringList parts = titleParts();
    if (parts.size() < 2)
        return;
    const qsizetype firstLine = parts.size() / 2; // the middle, rounded down
    m_mTitle =
        parts.mid(0, firstLine).join(m_multiLineStr) + QLatin1Char('\n') + parts.mid(firstLine).join(m_multiLineStr);
}

const IMGButton::Layout &IMGButton::getAttributesForRect(const QRectF &rect, bool multi)
{
    Layout &layout = multi ? m_twoLines : m_singleLine;
    if (multi)
        breakTitle();
    const QString title = multi ? m_mTitle : text();
    const int top = multi ? m_marginTopML : m_marginTop;
    const int bottom = multi ? m_marginBottomML : m_marginBottom;
    const QRectF area = rect.adjusted(m_marginLeft, top, -m_marginRight, -bottom);

    int size = kSmallestSize;
    QSizeF failing = measure(title, measuringFont(size + 1));
    while (failing.width() <= area.width() && failing.height() <= area.height()) {
        ++size;
        if (size + 1 > kLargestSize)
            return layout; // every size fits
        failing = measure(title, measuringFont(size + 1));
    }
    layout.font = theme::systemFont(size);
    if (m_makeBoldFont && failing.width() > kBoldFromWidth && failing.width() < kBoldToWidth) {
        layout.font = measuringFont(kBoldSize);
        layout.font.setBold(true);
    }
    layout.measured = measure(title, layout.font);
    layout.rect = area.translated(0, (area.height() - layout.measured.height()) / 2);
    return layout;
}

void IMGButton::drawTitle(QPainter &painter)
{
    m_mTitle = text();
    if (m_mTitle.isEmpty())
        return; // nothing to fit: most of these buttons are an image alone
    const QRectF bounds = rect();
    if (isEnabled())
        painter.setPen(m_colors[isChecked() ? OnState : OffState]);
    else
        painter.setPen(m_colors[isChecked() ? OnStateDis : OffStateDis]);
    const auto draw = [&](const Layout &layout, const QString &title, QPointF offset, int wrapping) {
        if (layout.measured.isEmpty())
            return; // none was made so far
        painter.setFont(layout.font);
        painter.drawText(layout.rect.translated(offset), Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip | wrapping,
                         title);
    };
    const Layout &single = getAttributesForRect(bounds);
    if (titleParts().size() < 2 && !text().contains(QLatin1Char('\n')))
        return draw(single, text(), {}, 0);
    const Layout &two = getAttributesForRect(bounds, true);
    const QPointF offset = m_mouseDown ? QPointF(1, 1) : QPointF();
    const bool twoAreLarger =
        two.measured.width() * two.measured.height() > single.measured.width() * single.measured.height();
    if (twoAreLarger)
        draw(two, m_mTitle, offset, Qt::TextWordWrap);
    else
        draw(single, text(), offset, 0);
}

void IMGButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    drawPieces(painter, m_images[currentState()]);
    drawTitle(painter);
    if (m_hover.isHovering() && !isChecked()) {
        drawPieces(painter, {m_images[OnState].start, m_images[OnState].middle, m_imgMouseHover});
        drawTitle(painter);
    }
    drawFocusRing(painter, *this);
}

} // namespace hazelmark
