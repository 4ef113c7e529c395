#pragma once

#include "FilterImage.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace hazelmark {

/// A filter with its inputs set one by one, before outputImage() makes it part of a graph. What it computes is said
/// by the node type of the same name in filters/.
class ImageFilter
{
public:
    static const QString kInputImage;
    static const QString kInputBackgroundImage;
    static const QString kInputTargetImage;
    static const QString kInputMaskImage;

    virtual ~ImageFilter() = default;

    /// The image inputs that this filter has, `kInputImage` among them.
    virtual QStringList imageInputs() const { return {kInputImage}; }
    void setImage(const QString &input, FilterImage image);
    FilterImage image(const QString &input) const { return m_images.value(input); }

    /// The empty picture as long as an input is missing.
    virtual FilterImage outputImage() const = 0;

private:
    QMap<QString, FilterImage> m_images;
};

class AffineClampFilter : public ImageFilter
{
public:
    FilterImage outputImage() const override;
};

class DiscBlurFilter : public ImageFilter
{
public:
    float inputRadius = 8.0f; ///< pixels of the filter image

    FilterImage outputImage() const override;
};

class ExposureAdjustFilter : public ImageFilter
{
public:
    float inputEV = 0.5f; ///< stops

    FilterImage outputImage() const override;
};

/// At its neutral settings only: the colours as they are, three equal planes for a grey picture.
class ColorControlsFilter : public ImageFilter
{
public:
    FilterImage outputImage() const override;
};

class BlendWithMaskFilter : public ImageFilter
{
public:
    QStringList imageInputs() const override { return {kInputImage, kInputBackgroundImage, kInputMaskImage}; }
    FilterImage outputImage() const override;
};

} // namespace hazelmark
