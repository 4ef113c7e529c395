#include "GifPalette.h"

#include "PixelRows.h"

#include <limits>
#include <memory>

#include <libimagequant.h>

namespace hazelmark {

namespace {

constexpr int kOpaqueFrom = 128;
constexpr int kMaxColors = 256;

struct Destroy
{
    void operator()(liq_attr *attributes) const { liq_attr_destroy(attributes); }
    void operator()(liq_image *image) const { liq_image_destroy(image); }
    void operator()(liq_result *result) const { liq_result_destroy(result); }
};

/// The row's colours with one-bit alpha; what is transparent has no colour. Called from several threads at once.
void supplyRow(liq_color *row, int y, int width, void *pixels)
{
    readRow8(*static_cast<const QImage *>(pixels), y, reinterpret_cast<uint8_t *>(row));
    for (int x = 0; x < width; ++x)
        row[x] = row[x].a >= kOpaqueFrom ? liq_color{row[x].r, row[x].g, row[x].b, 255} : liq_color{0, 0, 0, 0};
}

bool hasTransparentPixels(const QImage &pixels)
{
    if (!hasAlphaFormat(pixels))
        return false;
    std::vector<uint8_t> row(size_t(pixels.width()) * 4);
    for (int y = 0; y < pixels.height(); ++y) {
        readRow8(pixels, y, row.data());
        for (size_t i = 3; i < row.size(); i += 4) {
            if (row[i] < kOpaqueFrom)
                return true;
        }
    }
    return false;
}

int squaredDistance(const GifPalette::Color &a, const uint8_t *b)
{
    const int red = a[0] - b[0];
    const int green = a[1] - b[1];
    const int blue = a[2] - b[2];
    return red * red + green * green + blue * blue;
}

/// Gives every transparent pixel the one transparent index, and takes it away from opaque ones: the quantiser treats
/// alpha as a fourth colour channel and may dither across the border.
void separateTransparent(GifPalette &palette, const QImage &pixels, const std::vector<bool> &isOpaque)
{
    std::vector<uint8_t> row(size_t(pixels.width()) * 4);
    for (int y = 0; y < pixels.height(); ++y) {
        readRow8(pixels, y, row.data());
        uint8_t *indices = palette.indices.data() + qsizetype(y) * pixels.width();
        for (int x = 0; x < pixels.width(); ++x) {
            const uint8_t *color = row.data() + 4 * qsizetype(x);
            if (color[3] < kOpaqueFrom) {
                indices[x] = uint8_t(*palette.transparentIndex);
            } else if (!isOpaque[indices[x]]) {
                int nearest = std::numeric_limits<int>::max();
                for (size_t i = 0; i < isOpaque.size(); ++i) {
                    const int distance = squaredDistance(palette.colors[i], color);
                    if (isOpaque[i] && distance < nearest) {
                        nearest = distance;
                        indices[x] = uint8_t(i);
                    }
                }
            }
        }
    }
}

} // namespace

GifPalette GifPalette::of(const QImage &pixels)
{
    const bool isTransparent = hasTransparentPixels(pixels);
    const std::unique_ptr<liq_attr, Destroy> attributes(liq_attr_create());
    if (!attributes)
        return {};
    liq_set_max_colors(attributes.get(), isTransparent ? kMaxColors - 1 : kMaxColors);
    const std::unique_ptr<liq_image, Destroy> image(liq_image_create_custom(
        attributes.get(), &supplyRow, const_cast<QImage *>(&pixels), pixels.width(), pixels.height(), 0));
    if (!image)
        return {};
    liq_result *quantised = nullptr;
    if (liq_image_quantize(image.get(), attributes.get(), &quantised) != LIQ_OK)
        return {};
    const std::unique_ptr<liq_result, Destroy> result(quantised);
    liq_set_dithering_level(result.get(), 1);

    GifPalette palette;
    palette.indices.resize(size_t(pixels.width()) * size_t(pixels.height()));
    if (liq_write_remapped_image(result.get(), image.get(), palette.indices.data(), palette.indices.size()) != LIQ_OK)
        return {};
    std::vector<bool> isOpaque;
    const liq_palette *entries = liq_get_palette(result.get());
    for (unsigned i = 0; i < entries->count; ++i) {
        const liq_color entry = entries->entries[i];
        palette.colors.push_back({entry.r, entry.g, entry.b});
        isOpaque.push_back(entry.a >= kOpaqueFrom);
    }
    if (isTransparent) {
        palette.transparentIndex = int(palette.colors.size());
        palette.colors.push_back({0, 0, 0});
        separateTransparent(palette, pixels, isOpaque);
    }
    return palette;
}

} // namespace hazelmark
