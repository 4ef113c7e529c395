#include "Tile.h"

#include <new>

namespace hazelmark {

namespace {
constexpr std::align_val_t kRowAlignment{64};
}

Tile::Tile(const QRect &rect, int channels)
    : m_rect(rect)
    , m_channels(channels)
    , m_stride((std::size_t(rect.width()) + kRowPadding - 1) / kRowPadding * kRowPadding)
{
    const std::size_t floats = m_stride * std::size_t(rect.height()) * std::size_t(channels);
    m_data.reset(static_cast<float *>(::operator new[](floats * sizeof(float), kRowAlignment)));
}

void Tile::Release::operator()(float *block) const
{
    ::operator delete[](block, kRowAlignment);
}

} // namespace hazelmark
