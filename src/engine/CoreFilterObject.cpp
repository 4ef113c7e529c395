#include "CoreFilterObject.h"

namespace hazelmark {

namespace {

using Number = CoreFilterObject::Number;

struct NumberKeys
{
    Number CoreFilterObject::*field;
    const char *written;
    const char *read;
};

// In the order of writing.
constexpr NumberKeys kNumbers[] = {
    {&CoreFilterObject::blurAmount, "blurAmount", "applyHDR"},
    {&CoreFilterObject::vignetteAmount, "vignetteAmount", "applyColorCorrection"},
    {&CoreFilterObject::contrastAmount, "contrastAmount", "applyContrastCorrection"},
    {&CoreFilterObject::highlightsAmount, "highlightsAmount", "applySmartTone"},
    {&CoreFilterObject::saturationAmount, "saturationAmount", "applyImageRadiance"},
    {&CoreFilterObject::motionBlurAmount, "motionBlurAmount", "applyColorMapping"},
    {&CoreFilterObject::motionRadialTwist, "motionRadialTwist", "applyColorFilter"},
    {&CoreFilterObject::motionLinearAngle, "motionLinearAngle", "applyVignette"},
    {&CoreFilterObject::inFocusBrightness, "inFocusBrightness", "softnessAmmount"},
    {&CoreFilterObject::inFocusSharpness, "inFocusSharpness", "exposureAmmount"},
    {&CoreFilterObject::inFocusClarity, "inFocusClarity", "brightnessAmmount"},
    {&CoreFilterObject::inFocusVividness, "inFocusVividness", "contrastAmmount"},
};

const QString kFavourite = QStringLiteral("isFavouriteOn");
const QString kDate = QStringLiteral("dateString");
const QString kTitle = QStringLiteral("strPresetTitle");

} // namespace

QVariantMap CoreFilterObject::encodeWithCoder() const
{
    QVariantMap archive;
    if (isFavouriteOn)
        archive[kFavourite] = *isFavouriteOn;
    if (!dateString.isNull())
        archive[kDate] = dateString;
    if (!strPresetTitle.isNull())
        archive[kTitle] = strPresetTitle;
    for (const NumberKeys &number : kNumbers) {
        if (const Number &value = this->*number.field)
            archive[QLatin1String(number.written)] = *value;
    }
    return archive;
}

CoreFilterObject CoreFilterObject::initWithCoder(const QVariantMap &archive)
{
    CoreFilterObject record;
    record.dateString = archive.value(kDate).toString();
    record.strPresetTitle = archive.value(kTitle).toString();
    record.isFavouriteOn =
        archive.contains(kFavourite) ? std::optional<bool>(archive[kFavourite].toBool()) : std::nullopt;
    for (const NumberKeys &number : kNumbers) {
        const QVariant value = archive.value(QLatin1String(number.read));
        record.*number.field = value.isValid() ? Number(value.toFloat()) : std::nullopt;
    }
    record.warmthAmount.reset();
    record.inFocusWarmth.reset();
    return record;
}

} // namespace hazelmark
