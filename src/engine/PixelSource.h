#pragma once

#include "filters/CellPlanes.h"

#include <QImage>
#include <QPoint>

namespace hazelmark {

/// Where rows of pixels come from that are scaled: values 0..1, four a pixel, premultiplied, or one.
class PixelSource
{
public:
    virtual ~PixelSource() = default;
    virtual int channels() const = 0;
    /// `count` pixels of a line from a column on. `pixels` has room for a multiple of 16 of them.
    virtual void load(int line, int column, int count, float *pixels) const = 0;
};

/// A bitmap of four samples a pixel (see fourSampleFormat()); it outlives this.
class BitmapPixels : public PixelSource
{
public:
    /// `corner`: where the bitmap's first pixel lies.
    explicit BitmapPixels(const QImage &bitmap, QPoint corner = {})
        : m_bitmap(bitmap)
        , m_corner(corner)
    {
    }
    int channels() const override { return 4; }
    void load(int line, int column, int count, float *pixels) const override;

private:
    const QImage &m_bitmap;
    QPoint m_corner;
};

/// The same of Format_Grayscale8, one value a pixel.
class GrayPixels : public PixelSource
{
public:
    explicit GrayPixels(const QImage &bitmap, QPoint corner = {})
        : m_bitmap(bitmap)
        , m_corner(corner)
    {
    }
    int channels() const override { return 1; }
    void load(int line, int column, int count, float *pixels) const override;

private:
    const QImage &m_bitmap;
    QPoint m_corner;
};

/// Blurred cells; lines count from below.
class CellPixels : public PixelSource
{
public:
    explicit CellPixels(const CellPlanes &cells)
        : m_cells(cells)
    {
    }
    int channels() const override { return 4; }
    void load(int line, int column, int count, float *pixels) const override;

private:
    const CellPlanes &m_cells;
};

} // namespace hazelmark
