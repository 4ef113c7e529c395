#include "Scene.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include <cmath>
#include <random>

namespace {

/// The same on every platform, unlike the distributions of the standard library.
class Random
{
public:
    explicit Random(unsigned seed)
        : m_engine(seed)
    {
    }
    double between(double low, double high) { return low + (high - low) * m_engine() / 4294967295.0; }

private:
    std::mt19937 m_engine;
};

/// Fractal noise of one dimension: the outline of a ridge.
double ridge(double x, unsigned seed)
{
    double height = 0, amplitude = 1, frequency = 1;
    for (int octave = 0; octave < 7; ++octave) {
        const auto value = [&](double at) {
            const double s = std::sin(at * 127.1 + seed * 311.7 + octave * 74.7) * 43758.5453;
            return s - std::floor(s);
        };
        const double at = x * frequency, whole = std::floor(at), part = at - whole;
        const double smooth = part * part * (3 - 2 * part);
        height += amplitude * (value(whole) + (value(whole + 1) - value(whole)) * smooth - 0.5);
        amplitude *= 0.5;
        frequency *= 2;
    }
    return height;
}

QPainterPath leafOutline(QPointF foot, double angle, double length)
{
    const double width = length * 0.42;
    QPainterPath half;
    half.moveTo(0, 0);
    half.cubicTo(length * 0.1, width * 0.9, length * 0.65, width * 1.25, length, 0);
    half.cubicTo(length * 0.65, -width * 1.25, length * 0.1, -width * 0.9, 0, 0);
    QTransform place;
    place.translate(foot.x(), foot.y());
    place.rotateRadians(angle);
    return place.map(half);
}

} // namespace

Scene::Scene(QSize size)
    : m_size(size)
{
    growTwig();
}

void Scene::growTwig()
{
    Random random(11);
    const double w = m_size.width(), h = m_size.height();
    m_stem.moveTo(-0.02 * w, 0.93 * h);
    m_stem.cubicTo(0.22 * w, 0.78 * h, 0.38 * w, 0.66 * h, 0.72 * w, 0.34 * h);
    for (int i = 0; i < 11; ++i) {
        const double along = 0.18 + 0.078 * i;
        const QPointF foot = m_stem.pointAtPercent(along);
        const double stemAngle = -qDegreesToRadians(m_stem.angleAtPercent(along));
        const double side = i % 2 ? 1.0 : -1.0;
        const double angle = stemAngle + side * random.between(0.6, 1.1);
        const double length = w * random.between(0.11, 0.15) * (1.15 - 0.5 * along);
        m_leaves.push_back({leafOutline(foot, angle, length), foot,
                            foot + QPointF(std::cos(angle), std::sin(angle)) * length, int(random.between(0, 40))});
        if (i % 4 == 2)
            m_nuts.push_back(foot + QPointF(-side * 0.012 * w, 0.03 * h));
    }
}

QImage Scene::background() const
{
    QImage image(m_size, QImage::Format_RGBX8888);
    const double w = m_size.width(), h = m_size.height();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 0.7 * h);
    sky.setColorAt(0.0, QColor(52, 74, 118));
    sky.setColorAt(0.55, QColor(196, 142, 138));
    sky.setColorAt(1.0, QColor(250, 205, 142));
    painter.fillRect(image.rect(), sky);
    const QPointF sun(0.7 * w, 0.5 * h);
    QRadialGradient glow(sun, 0.4 * w);
    glow.setColorAt(0.0, QColor(255, 240, 205, 255));
    glow.setColorAt(0.07, QColor(255, 232, 180, 200));
    glow.setColorAt(1.0, QColor(255, 210, 150, 0));
    painter.fillRect(image.rect(), glow);

    for (int layer = 0; layer < 6; ++layer) {
        const double base = (0.52 + 0.085 * layer) * h, reach = (0.10 - 0.008 * layer) * h;
        QPainterPath hill(QPointF(0, h));
        for (int x = 0; x <= m_size.width(); x += 3)
            hill.lineTo(x, base - reach * ridge(x / w * (2.0 + layer), unsigned(layer + 1)));
        hill.lineTo(w, h);
        const double near = layer / 5.0;
        painter.fillPath(
            hill, QColor::fromRgbF(float(0.52 - 0.42 * near), float(0.42 - 0.26 * near), float(0.45 - 0.31 * near)));
    }
    Random random(5);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 240; ++i) { // the lights of a village
        const QPointF at(random.between(0.05, 0.95) * w, random.between(0.74, 0.97) * h);
        const double size = random.between(0.0008, 0.003) * w;
        painter.setBrush(QColor(255, int(random.between(180, 235)), int(random.between(90, 170))));
        painter.drawEllipse(at, size, size);
    }
    return image;
}

void Scene::drawTwig(QPainter &painter) const
{
    const double w = m_size.width();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(74, 50, 34), 0.008 * w, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(m_stem);
    painter.setPen(QPen(QColor(118, 84, 56), 0.003 * w, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(m_stem.translated(-0.001 * w, -0.002 * w));
    for (const Leaf &leaf : m_leaves) {
        QLinearGradient green(leaf.foot, leaf.tip);
        green.setColorAt(0.0, QColor(48 + leaf.tone, 92 + leaf.tone, 34));
        green.setColorAt(1.0, QColor(104 + leaf.tone, 150 + leaf.tone, 58));
        painter.setPen(QPen(QColor(36, 66, 26), 0.0008 * w));
        painter.setBrush(green);
        painter.drawPath(leaf.outline);
        painter.setClipPath(leaf.outline);
        painter.setPen(QPen(QColor(190, 205, 120, 170), 0.0011 * w));
        painter.drawLine(leaf.foot, leaf.tip);
        const QPointF axis = leaf.tip - leaf.foot, across(-axis.y(), axis.x());
        for (int vein = 1; vein < 9; ++vein) {
            const QPointF from = leaf.foot + axis * (vein / 9.5);
            painter.drawLine(from, from + axis * 0.16 + across * 0.3);
            painter.drawLine(from, from + axis * 0.16 - across * 0.3);
        }
        painter.setClipping(false);
    }
    for (const QPointF &nut : m_nuts) {
        QRadialGradient shell(nut, 0.02 * w, nut - QPointF(0.006 * w, 0.008 * w));
        shell.setColorAt(0.0, QColor(226, 176, 112));
        shell.setColorAt(1.0, QColor(122, 74, 36));
        painter.setPen(QPen(QColor(84, 52, 26), 0.0008 * w));
        painter.setBrush(shell);
        painter.drawEllipse(nut, 0.0145 * w, 0.0165 * w);
    }
}

QImage Scene::photo() const
{
    QImage image = background();
    QPainter painter(&image);
    drawTwig(painter);
    return image;
}

QImage Scene::mask() const
{
    const double w = m_size.width();
    QImage image(m_size, QImage::Format_RGBX8888);
    image.fill(QColor(0, 255, 0));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto erase = [&](double border) {
        painter.setPen(QPen(Qt::black, border, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(m_stem);
        painter.setBrush(Qt::black);
        for (const Leaf &leaf : m_leaves)
            painter.drawPath(leaf.outline);
        for (const QPointF &nut : m_nuts)
            painter.drawEllipse(nut, 0.0145 * w, 0.0165 * w);
    };
    painter.setOpacity(0.2);
    for (double border : {0.022, 0.018, 0.014, 0.010})
        erase(border * w);
    painter.setOpacity(1.0);
    erase(0.006 * w);
    return image;
}
