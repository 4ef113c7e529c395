#include "ViewTransform.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

/// Nearer to fit than this it is fit: nobody sees the difference.
constexpr double kSameScale = 1e-3;

bool isSame(double scale, double other)
{
    return std::abs(scale - other) <= kSameScale * other;
}

int wholePixels(double length)
{
    return std::max(1, int(std::lround(length)));
}

/// Where a side of `length` begins in a room, if the fraction `centre` of it is to be in the middle.
double beginning(double length, double room, double centre)
{
    if (length <= room)
        return (room - length) / 2;
    return std::clamp(room / 2 - centre * length, room - length, 0.0);
}

} // namespace

bool ViewTransform::isEmpty() const
{
    return m_place.photo.isEmpty() || m_place.fitted.isEmpty() || m_place.view.isEmpty();
}

double ViewTransform::fitScale() const
{
    if (isEmpty())
        return 1;
    // The longer side tells it best: the other may be a few points.
    const QSizeF &photo = m_place.photo;
    const bool wide = photo.width() > photo.height();
    const double side = wide ? m_place.fitted.width() / photo.width() : m_place.fitted.height() / photo.height();
    return side * m_place.pixelRatio;
}

double ViewTransform::scale() const
{
    return m_scale.value_or(fitScale());
}

double ViewTransform::zoom() const
{
    return m_scale ? *m_scale / fitScale() : 1;
}

void ViewTransform::setPlace(const Place &place)
{
    m_place = place;
    if (m_scale && !isEmpty()) {
        *m_scale = std::clamp(*m_scale, std::min(fitScale(), 1.0), std::max(fitScale(), kLargestScale));
        if (isSame(*m_scale, fitScale()))
            setFit();
    }
    keepInside();
}

void ViewTransform::setFit()
{
    m_scale.reset();
    m_centre = {0.5, 0.5};
}

void ViewTransform::setScale(double scale, QPointF about)
{
    if (isEmpty() || !std::isfinite(scale))
        return;
    const double fit = fitScale();
    scale = std::clamp(scale, std::min(fit, 1.0), std::max(fit, kLargestScale));
    const QRectF before = frame();
    const QRectF seen = visible();
    if (isSame(scale, fit)) {
        setFit();
        return;
    }
    const QPointF place(std::clamp(about.x(), seen.left(), seen.right()),
                        std::clamp(about.y(), seen.top(), seen.bottom()));
    const QPointF fraction((place.x() - before.x()) / before.width(), (place.y() - before.y()) / before.height());
    m_scale = scale;
    const QSizeF size = m_place.photo * scale / m_place.pixelRatio;
    m_centre = {fraction.x() + (m_place.view.width() / 2 - place.x()) / size.width(),
                fraction.y() + (m_place.view.height() / 2 - place.y()) / size.height()};
    keepInside();
}

void ViewTransform::zoomBy(double steps, QPointF about)
{
    const double before = scale();
    double wanted = before * std::pow(kStep, steps);
    if (std::abs(steps) == 1) {
        for (const double stop : {fitScale(), 1.0}) {
            const bool passes = (before < stop && stop < wanted) || (wanted < stop && stop < before);
            if (passes && !isSame(before, stop))
                wanted = stop;
        }
    }
    setScale(wanted, about);
}

void ViewTransform::panBy(QPointF points)
{
    if (isFit() || isEmpty())
        return;
    const QSizeF size = frame().size();
    m_centre -= QPointF(points.x() / size.width(), points.y() / size.height());
    keepInside();
}

void ViewTransform::centreOn(QPointF fraction)
{
    if (isFit())
        return;
    m_centre = fraction;
    keepInside();
}

/// The centre is where it can be, so that what goes beyond an edge does not have to be taken back.
void ViewTransform::keepInside()
{
    if (isEmpty() || isFit()) {
        m_centre = {0.5, 0.5};
        return;
    }
    const QSizeF size = m_place.photo * *m_scale / m_place.pixelRatio;
    const auto inside = [](double centre, double length, double room) {
        const double half = room / 2 / length;
        return half >= 0.5 ? 0.5 : std::clamp(centre, half, 1 - half);
    };
    m_centre = {inside(m_centre.x(), size.width(), m_place.view.width()),
                inside(m_centre.y(), size.height(), m_place.view.height())};
}

QSize ViewTransform::pixels() const
{
    if (isEmpty())
        return {};
    return {wholePixels(m_place.photo.width() * scale()), wholePixels(m_place.photo.height() * scale())};
}

QRect ViewTransform::pixelFrame() const
{
    const QSize size = pixels();
    const QSizeF room = m_place.view * m_place.pixelRatio;
    return {QPoint(int(std::lround(beginning(size.width(), room.width(), m_centre.x()))),
                   int(std::lround(beginning(size.height(), room.height(), m_centre.y())))),
            size};
}

QRectF ViewTransform::frame() const
{
    if (isFit() || isEmpty())
        return m_place.fitted;
    const QRect whole = pixelFrame();
    const double ratio = m_place.pixelRatio;
    return {whole.x() / ratio, whole.y() / ratio, whole.width() / ratio, whole.height() / ratio};
}

QRectF ViewTransform::visible() const
{
    return frame() & QRectF(QPointF(), m_place.view);
}

bool ViewTransform::isCut() const
{
    return !isFit() && visible() != frame();
}

QRect ViewTransform::visiblePixels() const
{
    if (isEmpty())
        return {};
    const QSizeF room = m_place.view * m_place.pixelRatio;
    const QRect whole = pixelFrame();
    const QRect view(0, 0, int(std::ceil(room.width())), int(std::ceil(room.height())));
    return (whole & view).translated(-whole.topLeft());
}

} // namespace hazelmark
