#pragma once

#include "PaintStep.h"
#include "ScaledPainting.h"

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>

#include <memory>
#include <optional>

namespace hazelmark {

/// A painting as a JSON file: {"canvas": [width, height], "steps": [[...], ...]}, the canvas in points, each step in
/// the record form of PaintStep::data(). It may have "blur" and "vignette", the sliders' values that belong to the
/// painting, "scale", how many times as large the canvas is drawn so that it is as fine as it was painted (absent: 1),
/// "photo", by which a kept painting knows its photo, and "version" (absent: 1); one of a later version than
/// kVersion is refused. Other keys are ignored.
struct StrokesFile
{
    static constexpr int kVersion = 1;

    QSizeF canvas;
    /// Their canvas width is the canvas's.
    std::shared_ptr<PaintStepList> steps;
    double scale = 1;
    std::optional<float> blur;
    std::optional<float> vignette;
    QString photo;

    QByteArray toJson() const;

    /// Nothing for a file that cannot be read or means nothing; then `fault` is a sentence that names the file and,
    /// where one is to blame, the step, counted from 0.
    static std::optional<StrokesFile> read(const QString &path, QString &fault);
    /// The same without the file's name.
    static std::optional<StrokesFile> parse(const QByteArray &json, QString &fault);

    ScaledPainting painting() const { return {steps, canvas, scale}; }
    /// A sentence when there are no brush tips to draw with; else empty.
    static QString faultOfTips();
    /// The painting on a canvas of this size and scale, over opaque black: Format_RGBX8888, green where it is painted.
    /// Null when there are no brush tips or there is no memory; then `fault` is a sentence.
    QImage mask(QString &fault) const;
};

} // namespace hazelmark
