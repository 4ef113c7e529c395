#include "ColorProfile.h"
#include "FuzzFile.h"

using namespace hazelmark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QString path = fuzzFile(bytes, size);
    const Outcome<PictureInfo> info = readPictureInfo(path);
    if (!info)
        return 0;
    (void)profileDescription(info->iccProfile);
    if (!isSmall(*info))
        return 0;
    (void)decodePicture(path, {16, 16});
    Outcome<Picture> picture = decodePicture(path);
    if (!picture)
        return 0;
    if (picture->pixels.size() != info->frames.front())
        std::abort(); // the window has laid itself out for another size
    if (picture->fileColorModel == ColorModel::Gray)
        (void)rgbProfileForGray(picture->iccProfile);
    else
        (void)convertedToSrgb(picture->pixels, picture->iccProfile);
    return 0;
}
