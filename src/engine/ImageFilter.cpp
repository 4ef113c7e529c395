#include "ImageFilter.h"

namespace hazelmark {

const QString ImageFilter::kInputImage = QStringLiteral("inputImage");
const QString ImageFilter::kInputBackgroundImage = QStringLiteral("inputBackgroundImage");
const QString ImageFilter::kInputTargetImage = QStringLiteral("inputTargetImage");
const QString ImageFilter::kInputMaskImage = QStringLiteral("inputMaskImage");

void ImageFilter::setImage(const QString &input, FilterImage image)
{
    m_images[input] = std::move(image);
}

FilterImage AffineClampFilter::outputImage() const
{
    return image(kInputImage).clamped();
}

FilterImage DiscBlurFilter::outputImage() const
{
    return image(kInputImage).discBlurred(inputRadius);
}

FilterImage ExposureAdjustFilter::outputImage() const
{
    return image(kInputImage).exposureAdjusted(inputEV);
}

FilterImage ColorControlsFilter::outputImage() const
{
    return image(kInputImage);
}

FilterImage BlendWithMaskFilter::outputImage() const
{
    return FilterImage::blendWithMask(image(kInputImage), image(kInputBackgroundImage), image(kInputMaskImage));
}

} // namespace hazelmark
