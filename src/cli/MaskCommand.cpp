#include "MaskCommand.h"

#include "ExportFormats.h"
#include "PathParts.h"
#include "SafeFile.h"

namespace hazelmark {

std::optional<StrokesFile> readStrokes(const QString &path)
{
    QString fault;
    std::optional<StrokesFile> strokes = StrokesFile::read(path, fault);
    if (!strokes)
        printError(fault);
    return strokes;
}

QImage maskOfStrokes(const StrokesFile &strokes)
{
    QString fault;
    const QImage mask = strokes.mask(fault);
    if (mask.isNull())
        printError(fault);
    return mask;
}

int runMask(const MaskRequest &request)
{
    const ExportFormats formats = ExportFormats::forSource(QStringLiteral("png"));
    const std::optional<WriteFormat> format =
        ExportFormats::writeFormat(formats.formFor(pathExtension(request.output)));
    if (!format) {
        printError(unknownFormatSentence(request.output));
        return exitcode::kFailed;
    }
    const std::optional<StrokesFile> strokes = readStrokes(request.strokes);
    const QImage mask = strokes ? maskOfStrokes(*strokes) : QImage();
    if (mask.isNull())
        return exitcode::kFailed;
    EncodeOptions options;
    options.format = *format;
    const Outcome<Done> written = encodeSafely(mask, options, request.output, {{request.strokes}});
    if (!written)
        printError(written.failure().sentence());
    return written ? exitcode::kDone : exitcode::kFailed;
}

} // namespace hazelmark
