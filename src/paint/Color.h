#pragma once

namespace hazelmark {

/// A colour of the brush: red, green, blue and alpha in 0..1, not premultiplied, at double precision. QColor keeps
/// 16 bits a component, too few to bring a stored component back as it was.
struct Color
{
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    bool operator==(const Color &) const = default;
};

} // namespace hazelmark
