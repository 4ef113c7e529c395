#include "ColorProfile.h"

#include "LargeMemory.h"
#include "LcmsHandles.h"
#include "Log.h"
#include "ParallelFor.h"
#include "PictureSearch.h"
#include "ProfileMaking.h"
#include "TiffBytes.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <vector>

namespace hazelmark {

namespace {

constexpr cmsUInt32Number kTransformFlags = cmsFLAGS_NOCACHE | cmsFLAGS_COPY_ALPHA;

/// sRGB for empty bytes; null when the profile is none for RGB pictures.
ProfileHandle openRgbProfile(const QByteArray &iccProfile)
{
    if (iccProfile.isEmpty())
        return ProfileHandle(cmsCreate_sRGBProfile());
    ProfileHandle profile = openProfile(iccProfile);
    if (profile && cmsGetColorSpace(profile.get()) != cmsSigRgbData)
        profile.reset();
    return profile;
}

using Color16 = std::array<uint16_t, 3>;

/// Less than half an 8-bit step apart.
bool isNearly(const Color16 &a, const Color16 &b)
{
    constexpr int kTolerance = 128;
    return std::abs(a[0] - b[0]) <= kTolerance && std::abs(a[1] - b[1]) <= kTolerance &&
           std::abs(a[2] - b[2]) <= kTolerance;
}

/// Converts a grid of colours through both profiles: true when none moves.
bool leavesColorsAlone(cmsHPROFILE source, cmsHPROFILE target)
{
    constexpr int kSteps = 17;
    const TransformHandle transform(
        cmsCreateTransform(source, TYPE_RGB_16, target, TYPE_RGB_16, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
    if (!transform)
        return false;
    const auto level = [](int step) { return uint16_t(65535 * step / (kSteps - 1)); };
    std::vector<Color16> colors;
    for (int red = 0; red < kSteps; ++red) {
        for (int green = 0; green < kSteps; ++green) {
            for (int blue = 0; blue < kSteps; ++blue)
                colors.push_back({level(red), level(green), level(blue)});
        }
    }
    std::vector<Color16> converted(colors.size());
    cmsDoTransform(transform.get(), colors.data(), converted.data(), cmsUInt32Number(colors.size()));
    return std::equal(colors.begin(), colors.end(), converted.begin(), isNearly);
}

/// The relative luminance curve of a grey profile. One whose connection space is Lab stores lightness, which is turned
/// into luminance here. Null when the profile has no curve.
ToneCurveHandle luminanceCurve(cmsHPROFILE gray)
{
    const auto *stored = static_cast<const cmsToneCurve *>(cmsReadTag(gray, cmsSigGrayTRCTag));
    if (!stored)
        return {};
    if (cmsGetPCS(gray) != cmsSigLabData)
        return ToneCurveHandle(cmsDupToneCurve(stored));
    constexpr int kEntries = 4096;
    std::vector<cmsFloat32Number> table(kEntries);
    for (int i = 0; i < kEntries; ++i) {
        const cmsFloat32Number lightness = cmsEvalToneCurveFloat(stored, float(i) / (kEntries - 1));
        const cmsCIELab lab = {100.0 * double(lightness), 0, 0};
        cmsCIEXYZ xyz;
        cmsLab2XYZ(nullptr, &xyz, &lab);
        table[size_t(i)] = float(xyz.Y);
    }
    return ToneCurveHandle(cmsBuildTabulatedToneCurveFloat(nullptr, kEntries, table.data()));
}

/// Tags without which colours cannot be converted, or look otherwise.
bool isIndispensable(const QByteArray &tag)
{
    static const QList<QByteArray> kTags{"rXYZ", "gXYZ", "bXYZ", "rTRC", "gTRC", "bTRC", "kTRC", "wtpt",
                                         "chad", "A2B0", "A2B1", "A2B2", "B2A0", "B2A1", "B2A2", "D2B0",
                                         "D2B1", "D2B2", "D2B3", "B2D0", "B2D1", "B2D2", "B2D3", "cicp"};
    return kTags.contains(tag);
}

QByteArray bigEndian32(qsizetype value)
{
    return tiffBytes(quint32(value), true);
}

struct ProfileTag
{
    QByteArray name;
    qsizetype place;
    QByteArray data;
};

constexpr qsizetype kProfileHeader = 128;
constexpr qsizetype kTagEntry = 12;

/// Behind its header a profile has a table of its tags: the name, the place and the size of each. Empty when the bytes
/// are no profile.
std::vector<ProfileTag> profileTags(const QByteArray &profile)
{
    constexpr qsizetype kMostTags = 1000;
    const auto number = [&](qsizetype at) { return qsizetype(qFromBigEndian<quint32>(profile.constData() + at)); };
    const qsizetype count = profile.size() < kProfileHeader + 4 ? 0 : number(kProfileHeader);
    const qsizetype tableEnd = kProfileHeader + 4 + count * kTagEntry;
    std::vector<ProfileTag> tags;
    if (count > kMostTags || tableEnd > profile.size())
        return tags;
    for (qsizetype at = kProfileHeader + 4; at < tableEnd; at += kTagEntry)
        tags.push_back({profile.mid(at, 4), number(at + 4), profile.mid(number(at + 4), number(at + 8))});
    return tags;
}

bool holdsPicture(const ProfileTag &tag)
{
    return hazelmark::holdsPicture(tag.data, isIndispensable(tag.name) ? SearchIn::Numbers : SearchIn::Mixture);
}

/// Whether there is a picture between or behind the tags.
bool hasPictureBeside(const std::vector<ProfileTag> &tags, QByteArray profile)
{
    for (const ProfileTag &tag : tags)
        profile.replace(tag.place, tag.data.size(), QByteArray(tag.data.size(), '\0'));
    return hazelmark::holdsPicture(profile, SearchIn::Mixture);
}

QByteArray profileOf(const QByteArray &header, const std::vector<ProfileTag> &tags)
{
    constexpr qsizetype kIdPlace = 84; // a digest of the whole
    constexpr qsizetype kIdSize = 16;
    QByteArray table = bigEndian32(qsizetype(tags.size()));
    QByteArray values;
    std::map<QByteArray, qsizetype> places; // tags may share their values
    const qsizetype start = kProfileHeader + 4 + qsizetype(tags.size()) * kTagEntry;
    for (const ProfileTag &tag : tags) {
        const auto [place, isNew] = places.try_emplace(tag.data, start + values.size());
        if (isNew)
            values += tag.data.leftJustified((tag.data.size() + 3) / 4 * 4, '\0');
        table += tag.name + bigEndian32(place->second) + bigEndian32(tag.data.size());
    }
    QByteArray made = header + table + values;
    made.replace(0, 4, bigEndian32(made.size()));
    return made.replace(kIdPlace, kIdSize, QByteArray(kIdSize, '\0')); // not computed
}

} // namespace

QByteArray savedProfile(cmsHPROFILE profile)
{
    constexpr qsizetype kTimeOffset = 24;
    constexpr char kTime[12] = {0x07, char(0xd0), 0, 1, 0, 1, 0, 0, 0, 0, 0, 0}; // 2000-01-01 00:00:00
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(profile, nullptr, &size))
        return {};
    QByteArray bytes(qsizetype(size), '\0');
    if (!cmsSaveProfileToMem(profile, bytes.data(), &size))
        return {};
    std::memcpy(bytes.data() + kTimeOffset, kTime, sizeof kTime);
    return bytes;
}

void setDescription(cmsHPROFILE profile, const char *text)
{
    cmsMLU *name = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(name, "en", "US", text);
    cmsWriteTag(profile, cmsSigProfileDescriptionTag, name);
    cmsMLUfree(name);
}

QByteArray rgbProfileForGray(const QByteArray &grayProfile)
{
    const ProfileHandle gray = openProfile(grayProfile);
    if (!gray)
        return {};
    if (cmsGetColorSpace(gray.get()) == cmsSigRgbData)
        return grayProfile;
    const ToneCurveHandle curve = cmsGetColorSpace(gray.get()) == cmsSigGrayData ? luminanceCurve(gray.get()) : nullptr;
    if (!curve) {
        qCWarning(lcCodecs) << "The grey picture's colour profile cannot be used.";
        return {};
    }
    constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1.0};
    constexpr cmsCIExyYTRIPLE kSrgbPrimaries = {{0.6400, 0.3300, 1.0}, {0.3000, 0.6000, 1.0}, {0.1500, 0.0600, 1.0}};
    cmsToneCurve *curves[3] = {curve.get(), curve.get(), curve.get()};
    const ProfileHandle rgb(cmsCreateRGBProfile(&kD65, &kSrgbPrimaries, curves));
    if (!rgb)
        return {};
    cmsSetProfileVersion(rgb.get(), cmsGetProfileVersion(gray.get()) < 4 ? 2.4 : 4.3);
    if (const void *white = cmsReadTag(gray.get(), cmsSigMediaWhitePointTag))
        cmsWriteTag(rgb.get(), cmsSigMediaWhitePointTag, white);
    setDescription(rgb.get(), "RGB with a grey picture's tone curve");
    return savedProfile(rgb.get());
}

QByteArray profileWithoutPictures(const QByteArray &iccProfile)
{
    std::vector<ProfileTag> tags = profileTags(iccProfile);
    if (tags.empty())
        return holdsPicture(iccProfile, SearchIn::Numbers) ? QByteArray() : iccProfile;
    const auto isOf = [](const ProfileTag &tag) { return holdsPicture(tag); };
    if (std::none_of(tags.begin(), tags.end(), isOf) && !hasPictureBeside(tags, iccProfile))
        return iccProfile;
    const bool isUsable = std::none_of(tags.begin(), tags.end(),
                                       [&](const ProfileTag &tag) { return isIndispensable(tag.name) && isOf(tag); });
    std::erase_if(tags, isOf);
    const QByteArray harmless = isUsable ? profileOf(iccProfile.left(kProfileHeader), tags) : QByteArray();
    qCInfo(lcCodecs) << "Not carried of the colour profile:" << iccProfile.size() - harmless.size()
                     << "bytes with a picture";
    return harmless;
}

QString profileDescription(const QByteArray &iccProfile)
{
    const ProfileHandle profile = openProfile(iccProfile);
    if (!profile)
        return {};
    const cmsUInt32Number bytes = cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", nullptr, 0);
    std::vector<wchar_t> text(bytes / sizeof(wchar_t) + 1);
    cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", text.data(),
                      cmsUInt32Number(text.size() * sizeof(wchar_t)));
    text.back() = 0;
    return QString::fromWCharArray(text.data()).trimmed();
}

QImage convertedToSrgb(const QImage &pixels, const QByteArray &iccProfile)
{
    if (iccProfile.isEmpty())
        return pixels;
    const auto transform = ColorTransform::between(iccProfile, {}, pixels.format());
    if (!transform)
        qCWarning(lcCodecs) << "The colour profile cannot be used; the colours are written as they are.";
    if (!transform || transform->isIdentity())
        return pixels;
    QImage converted = makeLargeBitmap(pixels.size(), pixels.format());
    if (converted.isNull())
        throw std::bad_alloc();
    constexpr int kBandRows = 32;
    const int height = pixels.height();
    uchar *bits = converted.bits();
    const qsizetype stride = converted.bytesPerLine();
    parallelFor((height + kBandRows - 1) / kBandRows, defaultThreadCount(), [&](int band) {
        const int first = band * kBandRows;
        transform->convertRows(pixels.constScanLine(first), pixels.bytesPerLine(), bits + first * stride, stride,
                               pixels.width(), std::min(kBandRows, height - first));
    });
    return converted;
}

std::shared_ptr<const ColorTransform> ColorTransform::between(const QByteArray &sourceProfile,
                                                              const QByteArray &targetProfile, QImage::Format format)
{
    const bool is16Bit = format == QImage::Format_RGBX64 || format == QImage::Format_RGBA64;
    if (!is16Bit && format != QImage::Format_RGBX8888 && format != QImage::Format_RGBA8888)
        return {};
    const ProfileHandle source = openRgbProfile(sourceProfile);
    const ProfileHandle target = openRgbProfile(targetProfile);
    if (!source || !target)
        return {};
    const cmsUInt32Number layout = is16Bit ? TYPE_RGBA_16 : TYPE_RGBA_8;
    // The library's shortcut for 16 bits is a table that is several levels off between its nodes.
    const cmsUInt32Number flags = kTransformFlags | (is16Bit ? cmsFLAGS_NOOPTIMIZE : 0);
    void *transform = cmsCreateTransform(source.get(), layout, target.get(), layout, INTENT_PERCEPTUAL, flags);
    if (!transform)
        return {};
    std::shared_ptr<ColorTransform> result(new ColorTransform(transform));
    result->m_isIdentity = leavesColorsAlone(source.get(), target.get());
    return result;
}

ColorTransform::ColorTransform(void *transform)
    : m_transform(transform)
{
}

ColorTransform::~ColorTransform()
{
    cmsDeleteTransform(m_transform);
}

void ColorTransform::convertRows(const uchar *source, qsizetype sourceStride, uchar *target, qsizetype targetStride,
                                 int width, int rowCount) const
{
    // Row by row: the library's own strides are 32-bit numbers.
    for (int row = 0; row < rowCount; ++row)
        cmsDoTransform(m_transform, source + row * sourceStride, target + row * targetStride, cmsUInt32Number(width));
}

} // namespace hazelmark
