#include "PropertyDictionary.h"

#include "ColorProfile.h"
#include "ExifValues.h"
#include "Exiv2Session.h"
#include "IptcNames.h"
#include "IptcRecords.h"
#include "ObjectText.h"
#include "PhotoMetadata.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace hazelmark {

namespace {

/// Of the first directory's tags those that describe the picture, and not how its data lies in the file.
constexpr std::array kTiffTags = {"DocumentName",
                                  "ImageDescription",
                                  "Make",
                                  "Model",
                                  "Orientation",
                                  "XResolution",
                                  "YResolution",
                                  "ResolutionUnit",
                                  "Software",
                                  "DateTime",
                                  "Artist",
                                  "HostComputer",
                                  "Copyright",
                                  "WhitePoint",
                                  "Compression",
                                  "TileWidth",
                                  "PrimaryChromaticities",
                                  "TileLength",
                                  "TransferFunction",
                                  "PhotometricInterpretation"};

constexpr QLatin1String kXmp("http://ns.adobe.com/xap/1.0/");
constexpr QLatin1String kDublinCore("http://purl.org/dc/elements/1.1/");
constexpr QLatin1String kAuxiliary("http://ns.adobe.com/exif/1.0/aux/");
constexpr QLatin1String kMicrosoftPhoto("http://ns.microsoft.com/photo/1.0/");

QString colorModelName(ColorModel model)
{
    constexpr const char *kNames[] = {"RGB", "Gray", "CMYK", "Lab"}; // in the order of the models
    return QLatin1String(kNames[int(model)]);
}

/// Fills the groups of the dictionary from what was parsed. Every group is a step of its own, so that one which makes
/// no sense does not take the others along.
class DictionaryBuilder
{
public:
    DictionaryBuilder(const QString &path, const PictureInfo &info, const PhotoMetadata &metadata)
        : m_path(path)
        , m_info(info)
        , m_metadata(metadata)
    {
    }

    QVariantMap build()
    {
        takeHeader();
        withExiv2(m_path, [this] { takeExifTags(); });
        withExiv2(m_path, [this] { takeOrientation(); });
        takeIptc();
        takePngTexts();
        withExiv2(m_path, [this] { takeRating(); });
        withExiv2(m_path, [this] { takeAuxiliary(); });
        takeResolution();
        for (const auto &[key, group] : {std::pair(kExifGroup, m_exif),
                                         {kTiffGroup, m_tiff},
                                         {kGpsGroup, m_gps},
                                         {kIptcGroup, m_iptc},
                                         {kExifAuxGroup, m_aux},
                                         {kPngGroup, m_png}}) {
            if (!group.isEmpty())
                m_top.insert(key, group);
        }
        return m_top;
    }

private:
    static void insert(QVariantMap &group, const QString &key, const QVariant &object)
    {
        if (object.isValid() && !group.contains(key))
            group.insert(key, object);
    }

    void takeHeader()
    {
        m_top.insert(QStringLiteral("PixelWidth"), qlonglong(m_info.frames.front().width()));
        m_top.insert(QStringLiteral("PixelHeight"), qlonglong(m_info.frames.front().height()));
        m_top.insert(QStringLiteral("Depth"), qlonglong(m_info.bitsPerChannel));
        m_top.insert(QStringLiteral("ColorModel"), colorModelName(m_info.colorModel));
        if (m_info.hasAlpha)
            m_top.insert(QStringLiteral("HasAlpha"), true);
        const QString profile = profileDescription(m_info.iccProfile);
        if (!profile.isEmpty())
            m_top.insert(QStringLiteral("ProfileName"), profile);
    }

    void takeExifTags()
    {
        for (const Exiv2::Exifdatum &datum : m_metadata.exif) {
            const std::string group = datum.groupName();
            const std::string tag = datum.tagName();
            const bool isUnknown = tag.rfind("0x", 0) == 0;
            if (isUnknown)
                continue;
            if (group == "Image")
                takeImageTag(tag, datum.value());
            else if (group == "Photo")
                takePhotoTag(tag, datum.value());
            else if (group == "GPSInfo")
                takeGpsTag(tag, datum.value());
        }
    }

    void takeImageTag(const std::string &tag, const Exiv2::Value &value)
    {
        if (tag != "Orientation" && std::find(kTiffTags.begin(), kTiffTags.end(), tag) != kTiffTags.end())
            insert(m_tiff, QString::fromStdString(tag), exifObject(value));
    }

    void takePhotoTag(const std::string &tag, const Exiv2::Value &value)
    {
        if (tag == "MakerNote" || tag == "InteroperabilityTag") // a block of its own, and a mere offset
            return;
        QVariant object = tag == "UserComment" ? codedText(value, m_metadata.byteOrder) : exifObject(value);
        const bool isArray = object.typeId() == QMetaType::QVariantList;
        if (tag == "ISOSpeedRatings" && object.isValid() && !isArray)
            object = QVariantList{object};
        insert(m_exif, QString::fromStdString(tag), object);
    }

    void takeGpsTag(const std::string &tag, const Exiv2::Value &value)
    {
        const QString key = QString::fromStdString(tag.rfind("GPS", 0) == 0 ? tag.substr(3) : tag);
        if (key.endsWith(QLatin1String("Latitude")) || key.endsWith(QLatin1String("Longitude")))
            insert(m_gps, key, decimalDegrees(value));
        else if (key == QLatin1String("TimeStamp"))
            insert(m_gps, key, timeText(value));
        else if (key == QLatin1String("ProcessingMethod") || key == QLatin1String("AreaInformation"))
            insert(m_gps, key, codedText(value, m_metadata.byteOrder));
        else
            insert(m_gps, key, exifObject(value));
    }

    /// The one place where the tag is read: the top level and "{TIFF}" both have it from here.
    void takeOrientation()
    {
        if (m_info.isTurnedUpright) {
            insert(m_top, QStringLiteral("Orientation"), qlonglong(1));
            insert(m_tiff, QStringLiteral("Orientation"), qlonglong(1));
            return;
        }
        const auto found = m_metadata.exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
        if (found == m_metadata.exif.end())
            return;
        const QVariant orientation = exifObject(found->value());
        if (orientation.typeId() != QMetaType::LongLong)
            return;
        insert(m_top, QStringLiteral("Orientation"), orientation);
        insert(m_tiff, QStringLiteral("Orientation"), orientation);
    }

    void takeIptc()
    {
        QMap<QString, QVariantList> lists;
        for (const IptcRecord &record : iptcRecords(m_metadata.blocks.iptc)) {
            const IptcName *name = record.record == IptcRecord::kApplication ? iptcName(record.dataSet) : nullptr;
            const QString text = name ? metadataText(record.value.toByteArray()) : QString();
            if (text.isEmpty())
                continue;
            const QString key = QLatin1String(name->key);
            if (name->repeats)
                lists[key] << QVariant(text);
            else
                insert(m_iptc, key, text);
        }
        for (auto list = lists.constBegin(); list != lists.constEnd(); ++list)
            m_iptc.insert(list.key(), *list);
        if (!m_iptc.contains(QStringLiteral("Keywords")))
            takeXmpKeywords();
    }

    void takeXmpKeywords()
    {
        QVariantList keywords;
        for (const QString &keyword : xmpValues(kDublinCore, "subject"))
            keywords += metadataText(keyword.toUtf8());
        if (!keywords.isEmpty())
            m_iptc.insert(QStringLiteral("Keywords"), keywords);
    }

    void takePngTexts()
    {
        for (const PngText &text : m_metadata.blocks.texts)
            insert(m_png, QString::fromLatin1(text.keyword), text.text);
    }

    /// Stars: 0 to 5, or -1 for a rejected picture. XMP comes first: it is what editors keep up to date, while cameras
    /// write a 0 into the EXIF tag.
    void takeRating()
    {
        QVariant rating = xmpNumber(kXmp, "Rating");
        if (!rating.isValid())
            rating = exifNumber("Exif.Image.Rating");
        if (!rating.isValid())
            rating = starsOfPercent(exifNumber("Exif.Image.RatingPercent"));
        if (!rating.isValid())
            rating = starsOfPercent(xmpNumber(kMicrosoftPhoto, "Rating"));
        insert(m_exif, QStringLiteral("Rating"), rating);
    }

    QVariant exifNumber(const char *key) const
    {
        const auto found = m_metadata.exif.findKey(Exiv2::ExifKey(key));
        return found == m_metadata.exif.end() ? QVariant() : exifObject(found->value());
    }

    QStringList xmpValues(QLatin1String space, const char *name) const
    {
        return m_metadata.xmp ? m_metadata.xmp->values.value({space, QLatin1String(name)}) : QStringList();
    }

    QVariant xmpNumber(QLatin1String space, const char *name) const
    {
        bool isNumber = false;
        const double value = xmpValues(space, name).value(0).trimmed().toDouble(&isNumber);
        if (!isNumber || !std::isfinite(value))
            return {};
        return value == integerValue(value) ? QVariant(qlonglong(value)) : QVariant(value);
    }

    /// 1, 25, 50, 75 and 99 per cent stand for one to five stars.
    static QVariant starsOfPercent(const QVariant &percent)
    {
        if (!percent.isValid())
            return {};
        constexpr std::array kLeastPercent = {1, 13, 38, 63, 88};
        return qlonglong(std::count_if(kLeastPercent.begin(), kLeastPercent.end(),
                                       [&](int least) { return integerValue(percent) >= least; }));
    }

    void takeAuxiliary()
    {
        static constexpr std::array<std::array<const char *, 2>, 5> kExifSources = {{
            {"LensModel", "LensModel"},
            {"LensSpecification", "LensInfo"},
            {"LensSerialNumber", "LensSerialNumber"},
            {"BodySerialNumber", "SerialNumber"},
            {"CameraOwnerName", "OwnerName"},
        }};
        for (const auto &[from, to] : kExifSources)
            insert(m_aux, QLatin1String(to), m_exif.value(QLatin1String(from)));

        static constexpr std::array<std::array<const char *, 2>, 5> kXmpSources = {{
            {"Lens", "LensModel"},
            {"SerialNumber", "SerialNumber"},
            {"OwnerName", "OwnerName"},
            {"Firmware", "Firmware"},
            {"LensSerialNumber", "LensSerialNumber"},
        }};
        for (const auto &[from, to] : kXmpSources) {
            const QString text = metadataText(xmpValues(kAuxiliary, from).value(0).toUtf8());
            if (!text.isEmpty())
                insert(m_aux, QLatin1String(to), text);
        }
        takeMakerNoteLens();
    }

    /// Older cameras name the lens in their maker notes alone, often as a code that the library has a name for.
    void takeMakerNoteLens()
    {
        const auto lens = Exiv2::lensName(m_metadata.exif);
        if (lens == m_metadata.exif.end())
            return;
        const QString name = metadataText(QByteArray::fromStdString(lens->print(&m_metadata.exif)));
        const bool isName = !name.isEmpty() && name.front().isLetter() && name != QLatin1String("n/a");
        if (isName)
            insert(m_aux, QStringLiteral("LensModel"), name);
    }

    void takeResolution()
    {
        const std::optional<QSizeF> dpi = m_info.dpi ? m_info.dpi : exifResolution();
        if (!dpi)
            return;
        m_top.insert(QStringLiteral("DPIWidth"), dpi->width());
        m_top.insert(QStringLiteral("DPIHeight"), dpi->height());
    }

    std::optional<QSizeF> exifResolution() const
    {
        constexpr int kPerInch = 2;
        constexpr int kPerCentimetre = 3;
        const QSizeF resolution(m_tiff.value(QStringLiteral("XResolution")).toDouble(),
                                m_tiff.value(QStringLiteral("YResolution")).toDouble());
        const int unit = m_tiff.value(QStringLiteral("ResolutionUnit"), kPerInch).toInt();
        if (resolution.isEmpty() || (unit != kPerInch && unit != kPerCentimetre))
            return std::nullopt;
        return unit == kPerInch ? resolution : resolution * kCentimetresPerInch;
    }

    const QString m_path;
    const PictureInfo &m_info;
    const PhotoMetadata &m_metadata;
    QVariantMap m_top;
    QVariantMap m_exif;
    QVariantMap m_tiff;
    QVariantMap m_gps;
    QVariantMap m_iptc;
    QVariantMap m_aux;
    QVariantMap m_png;
};

} // namespace

QVariantMap propertyDictionary(const QString &path, const PictureInfo &info, const PhotoMetadata &metadata)
{
    return DictionaryBuilder(path, info, metadata).build();
}

} // namespace hazelmark
