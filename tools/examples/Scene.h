#pragma once

#include <QImage>
#include <QPainterPath>

#include <vector>

/// A hazel twig before hills at dusk: something sharp in front of something that is better blurred. The same pixels
/// at every build.
class Scene
{
public:
    explicit Scene(QSize size);

    QImage photo() const;
    /// Green where the background shows, black over the twig, soft between: what a person would have painted.
    QImage mask() const;

private:
    struct Leaf
    {
        QPainterPath outline;
        QPointF foot;
        QPointF tip;
        int tone;
    };

    void growTwig();
    QImage background() const;
    void drawTwig(QPainter &painter) const;

    QSize m_size;
    QPainterPath m_stem;
    std::vector<Leaf> m_leaves;
    std::vector<QPointF> m_nuts;
};
