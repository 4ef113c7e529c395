#pragma once

#include <QImage>

#include <memory>

namespace hazelmark::bench {

/// What the blur is measured against: OpenCV's filter2D with the same disc and replicated edges.
class FilterYardstick
{
public:
    explicit FilterYardstick(const QImage &picture);
    ~FilterYardstick();
    void blur(double radius);

private:
    struct Mats;
    std::unique_ptr<Mats> m_mats;
};

} // namespace hazelmark::bench
