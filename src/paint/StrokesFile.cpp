#include "StrokesFile.h"

#include "BrushTips.h"
#include "Bundle.h"
#include "FileDescriptor.h"
#include "PaintCanvas.h"
#include "PointString.h"
#include "Utils.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cmath>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace hazelmark {

namespace {

/// A day's painting has some ten thousand steps of 200 bytes.
constexpr qint64 kMostBytes = 256 << 20;

enum class Kind { Point, Number, Boolean };

struct Element
{
    const char *name;
    Kind kind;
};

constexpr Element kElements[PaintStep::kRecordLength] = {
    {"start", Kind::Point},    {"end", Kind::Point},      {"red", Kind::Number},        {"green", Kind::Number},
    {"blue", Kind::Number},    {"alpha", Kind::Number},   {"point size", Kind::Number}, {"hardness", Kind::Number},
    {"eraser", Kind::Boolean}, {"opacity", Kind::Number}, {"pixel step", Kind::Number}};

/// What is wrong with an element; empty when nothing is.
QString faultOf(const QJsonValue &value, Kind kind)
{
    switch (kind) {
    case Kind::Point: {
        const std::optional<QPointF> point = pointFromString(value.toString());
        if (!value.isString() || !point)
            return u"is not a point written as \"{x, y}\""_qs;
        return std::isfinite(point->x()) && std::isfinite(point->y()) ? QString() : u"is not finite"_qs;
    }
    case Kind::Number:
        if (!value.isDouble())
            return u"is not a number"_qs;
        // Steps keep single precision.
        return std::isfinite(float(value.toDouble())) ? QString() : u"is not finite"_qs;
    case Kind::Boolean:
        return value.isBool() || value == 0 || value == 1 ? QString() : u"is not true or false"_qs;
    }
    Q_UNREACHABLE();
}

QString faultOf(const QJsonValue &step)
{
    if (!step.isArray())
        return u"is not a list"_qs;
    const QJsonArray record = step.toArray();
    if (record.size() != PaintStep::kRecordLength)
        return u"has %1 elements instead of %2"_qs.arg(record.size()).arg(PaintStep::kRecordLength);
    for (qsizetype i = 0; i < record.size(); ++i) {
        const auto &[name, kind] = kElements[i];
        const QString fault = faultOf(record[i], kind);
        if (!fault.isEmpty())
            return u"has an element %1 (%2) that %3"_qs.arg(i).arg(QLatin1String(name), fault);
    }
    return {};
}

QString faultOfCanvas(const QJsonValue &value)
{
    const QJsonArray sides = value.toArray();
    if (sides.size() != 2 || !sides[0].isDouble() || !sides[1].isDouble())
        return u"its \"canvas\" is not a list of two numbers, [width, height]"_qs;
    const double width = sides[0].toDouble();
    const double height = sides[1].toDouble();
    if (width < 1 || height < 1)
        return u"its canvas is less than one point wide or high"_qs;
    if (width > ScaledPainting::kLargestSide || height > ScaledPainting::kLargestSide ||
        width * height > ScaledPainting::kMostPixels)
        return u"its canvas is too large"_qs;
    return {};
}

QString faultOfVersion(const QJsonValue &value)
{
    if (value.isUndefined() || (value.isDouble() && value.toDouble() <= StrokesFile::kVersion))
        return {};
    return value.isDouble() ? u"it was written by a newer version"_qs : u"its \"version\" is not a number"_qs;
}

/// A number that may be absent, in single precision.
QString readNumber(const QJsonObject &root, const QString &key, std::optional<float> &number)
{
    const QJsonValue value = root[key];
    if (value.isUndefined())
        return {};
    const QString fault = faultOf(value, Kind::Number);
    if (!fault.isEmpty())
        return u"its \"%1\" %2"_qs.arg(key, fault);
    number = float(value.toDouble());
    return {};
}

QString faultOfScale(const QJsonValue &value, const QJsonArray &sides)
{
    if (value.isUndefined())
        return {};
    const double scale = value.toDouble(0); // 0 for what is no number
    if (!(scale >= 1))
        return u"its \"scale\" is not a number of at least 1"_qs;
    const double width = std::floor(scale * sides[0].toDouble());
    const double height = std::floor(scale * sides[1].toDouble());
    if (width > ScaledPainting::kLargestSide || height > ScaledPainting::kLargestSide ||
        width * height > ScaledPainting::kMostPixels)
        return u"its canvas is too large at its \"scale\""_qs;
    return {};
}

/// A mask of one channel as the green of a picture.
QImage asGreen(const QImage &mask)
{
    QImage green(mask.size(), QImage::Format_RGBX8888);
    if (green.isNull())
        throw std::bad_alloc();
    for (int y = 0; y < mask.height(); ++y) {
        const uchar *from = mask.constScanLine(y);
        uchar *to = green.scanLine(y);
        for (int x = 0; x < mask.width(); ++x, to += 4) {
            to[0] = to[2] = 0;
            to[1] = from[x];
            to[3] = 255;
        }
    }
    return green;
}

/// The step that the byte at `offset` belongs to, counted from 0; -1 for none. Steps are the lists in a list of the
/// outermost object.
int stepAt(const QByteArray &json, qsizetype offset)
{
    int depth = 0;
    int steps = 0;
    bool inString = false;
    for (qsizetype i = 0; i < std::min(offset, json.size()); ++i) {
        const char c = json[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else
                inString = c != '"';
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth == 3)
                ++steps;
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return depth >= 3 ? steps - 1 : -1;
}

} // namespace

std::optional<StrokesFile> StrokesFile::parse(const QByteArray &json, QString &fault)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (document.isNull()) {
        const int step = stepAt(json, error.offset);
        const QString what = step < 0 ? u"it is not valid JSON"_qs : u"step %1 is not valid JSON"_qs.arg(step);
        fault = u"%1: %2 at byte %3."_qs.arg(what, error.errorString()).arg(error.offset);
        return std::nullopt;
    }
    const QJsonObject root = document.object();
    const QJsonValue steps = root[u"steps"];
    StrokesFile file;
    QString wrong = document.isObject() ? faultOfVersion(root[u"version"]) : u"it is not a JSON object"_qs;
    if (wrong.isEmpty())
        wrong = faultOfCanvas(root[u"canvas"]);
    if (wrong.isEmpty())
        wrong = faultOfScale(root[u"scale"], root[u"canvas"].toArray());
    if (wrong.isEmpty())
        wrong = readNumber(root, u"blur"_qs, file.blur);
    if (wrong.isEmpty())
        wrong = readNumber(root, u"vignette"_qs, file.vignette);
    if (wrong.isEmpty() && !steps.isArray())
        wrong = u"its \"steps\" is not a list"_qs;
    const QJsonArray records = steps.toArray();
    for (qsizetype i = 0; wrong.isEmpty() && i < records.size(); ++i) {
        const QString inStep = faultOf(records[i]);
        if (!inStep.isEmpty())
            wrong = u"step %1 %2"_qs.arg(i).arg(inStep);
    }
    if (!wrong.isEmpty()) {
        fault = wrong + u'.';
        return std::nullopt;
    }

    const QJsonArray sides = root[u"canvas"].toArray();
    file.canvas = {sides[0].toDouble(), sides[1].toDouble()};
    file.scale = root[u"scale"].toDouble(1);
    file.photo = root[u"photo"].toString();
    file.steps = std::make_shared<PaintStepList>();
    file.steps->reserve(std::size_t(records.size()));
    for (const QJsonValue record : records) {
        PaintStep &step = file.steps->emplace_back(record.toArray().toVariantList());
        if (!step.coversCanvas()) // that does at every size
            step.setCanvasWidth(file.canvas.width());
    }
    return file;
}

QByteArray StrokesFile::toJson() const
{
    QJsonArray records;
    for (const PaintStep &step : *steps)
        records.append(QJsonArray::fromVariantList(step.data()));
    QJsonObject root{
        {u"version"_qs, kVersion}, {u"canvas"_qs, QJsonArray{canvas.width(), canvas.height()}}, {u"steps"_qs, records}};
    if (scale != 1)
        root[u"scale"] = scale;
    if (blur)
        root[u"blur"] = double(*blur);
    if (vignette)
        root[u"vignette"] = double(*vignette);
    if (!photo.isEmpty())
        root[u"photo"] = photo;
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

std::optional<StrokesFile> StrokesFile::read(const QString &path, QString &fault)
{
    // A pipe would keep the reader waiting for as long as nobody writes to it.
    const FileDescriptor descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const std::error_code error(errno, std::generic_category());
    struct stat status = {};
    QFile file;
    std::optional<StrokesFile> strokes;
    if (!descriptor || ::fstat(descriptor.get(), &status) != 0) {
        fault = u"it cannot be read (%1)."_qs.arg(QString::fromStdString(error.message()));
    } else if (S_ISDIR(status.st_mode)) {
        fault = u"it is a folder."_qs;
    } else if (!S_ISREG(status.st_mode)) {
        fault = u"it is not a regular file."_qs;
    } else if (!file.open(descriptor.get(), QIODevice::ReadOnly)) {
        fault = u"it cannot be read (%1)."_qs.arg(file.errorString());
    } else {
        const QByteArray json = file.read(kMostBytes + 1);
        if (json.size() > kMostBytes)
            fault = u"it is too large to be a file of strokes."_qs;
        else
            strokes = parse(json, fault);
    }
    if (!strokes)
        fault.prepend(path + u": "_qs);
    return strokes;
}

QString StrokesFile::faultOfTips()
{
    if (!BrushTips::shared().tipForHardness(1).isNull())
        return {};
    return u"%1: the brush tips are missing."_qs.arg(Bundle::mainBundle().resourcePath());
}

QImage StrokesFile::mask(QString &fault) const
{
    fault = faultOfTips();
    if (!fault.isEmpty())
        return {};
    PaintCanvas replay;
    replay.setCanvasSize(canvas);
    try {
        if (scale > 1)
            return asGreen(painting().mask());
        replay.restoreDrawedPoints(steps);
        const PhotoImagePtr painted = PhotoImage::fromBitmap(replay.snapshot());
        if (const PhotoImagePtr mask = Utils::sharedUtils().addBackgroundToImage(painted, Qt::black))
            return mask->bitmap();
    } catch (const std::bad_alloc &) {
    }
    fault = u"There is not enough memory for a canvas of %1 x %2."_qs.arg(canvas.width()).arg(canvas.height());
    return {};
}

} // namespace hazelmark
