#pragma once

#include <QImage>

namespace hazelmark::bench {

/// A picture as a camera might see one, the same every time: light that changes slowly, clouds of all sizes, things
/// with edges, grain. RGBX8888.
QImage testPicture(QSize size);

} // namespace hazelmark::bench
