#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QSizeF>

#include <optional>

namespace hazelmark {

/// Where a photo lies on the screen while one is close to it: how large, and which part is in sight. Points are those
/// of the view that shows it; the photo at a scale is a picture of whole pixels of the screen, which lies on whole
/// pixels, so that at 100 % every pixel of the photo is one of the screen. A value.
///
/// At "fit" the photo lies where it is placed. Elsewhere it is never smaller than fit and 100 % both are, never larger
/// than fit and 800 % both are; a side that the view has room for is centred, the other reaches from edge to edge.
class ViewTransform
{
public:
    struct Place
    {
        QSizeF photo;          ///< in pixels of the file
        QRectF fitted;         ///< at fit, in points
        QSizeF view;           ///< in points
        double pixelRatio = 1; ///< pixels of the screen per point
        bool operator==(const Place &) const = default;
    };
    static constexpr double kLargestScale = 8;
    /// What one step of a wheel or a key does.
    static constexpr double kStep = 1.25;

    /// Keeps the zoom and what lies in the middle.
    void setPlace(const Place &place);
    const Place &place() const { return m_place; }

    /// There is no photo, or no room for it: all of it is empty then.
    bool isEmpty() const;
    bool isFit() const { return !m_scale; }
    /// Pixels of the screen per pixel of the photo.
    double scale() const;
    double fitScale() const;
    /// Times the size at fit.
    double zoom() const;

    void setFit();
    /// So that the place under `about` stays where it is, as far as the edges let it.
    void setScale(double scale, QPointF about);
    /// `steps` times kStep, of any fraction. A whole step that would pass fit or 100 % ends there.
    void zoomBy(double steps, QPointF about);
    /// Moves the photo by points.
    void panBy(QPointF points);
    /// Brings the place at this fraction of the photo into the middle.
    void centreOn(QPointF fraction);

    /// The whole photo and what is in sight of it, in points of the view.
    QRectF frame() const;
    QRectF visible() const;
    /// Whether a part of it is out of sight.
    bool isCut() const;

    /// The whole photo in pixels of the screen, and what is in sight of it; origin top left.
    QSize pixels() const;
    QRect visiblePixels() const;

    bool operator==(const ViewTransform &) const = default;

private:
    QRect pixelFrame() const;
    void keepInside();

    Place m_place;
    std::optional<double> m_scale; ///< none at fit
    QPointF m_centre{0.5, 0.5};    ///< in the middle of the view, as a fraction of the photo
};

} // namespace hazelmark
