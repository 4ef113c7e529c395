#include "CommandLine.h"

#include "InfoCommand.h"
#include "MaskCommand.h"
#include "Photo.h"
#include "RenderCommand.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cmath>

namespace hazelmark {

namespace {

const QString kOverview = QStringLiteral(
    "Usage: hazelmark-cli info PHOTO\n"
    "       hazelmark-cli render PHOTO (--mask MASK | --strokes FILE) --output OUT [--blur B] [--vignette V]\n"
    "       hazelmark-cli mask --strokes FILE --output MASK\n"
    "       hazelmark-cli --help | --version\n"
    "\n"
    "Blurs the parts of a photo that a mask marks and writes the result as a new file with the photo's size,\n"
    "colours and metadata. The photo itself is never changed.\n"
    "\n"
    "  info PHOTO      prints what is known of the photo as one JSON object\n"
    "  render PHOTO    writes the blurred photo\n"
    "    --mask MASK     a picture of any size; its green channel, over black, says where to blur (255: fully)\n"
    "    --strokes FILE  in its place, strokes as JSON; the mask is what they paint (see the manual page)\n"
    "    --output OUT    the file to write; its extension says the format: png, jpg, tiff, gif or bmp\n"
    "    --blur B        strength of the blur: the disc's radius is B/5 thousandths of the width. When not given, "
    "what\n"
    "                    the file of strokes says, else 60\n"
    "    --vignette V    darkens what is blurred by 10 x V stops. When not given, what the file says, else 0\n"
    "  mask            writes the mask that strokes paint, green on black, as a picture\n"
    "    --strokes FILE, --output MASK as above\n"
    "\n"
    "  -h, --help      prints this and ends\n"
    "  -v, --version   prints the version and ends\n"
    "  --verbose       lets the program's parts write their log to standard error\n"
    "\n"
    "Ends with 0 only when the file is whole on disk, with 1 when something went wrong and with 2 for wrong usage.\n");

void print(const QString &text)
{
    std::fputs(text.toUtf8().constData(), stdout);
}

/// A finite number; anything else is wrong usage.
std::optional<float> finiteNumber(const QString &text)
{
    bool isNumber = false;
    const float value = text.toFloat(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

CommandLine wrongUsage(const QString &sentence)
{
    printError(sentence + QStringLiteral(" See hazelmark-cli --help."));
    CommandLine result;
    result.exitCode = exitcode::kWrongUsage;
    return result;
}

CommandLine ended(const QString &text)
{
    print(text);
    return {};
}

/// The options of the commands, each of which takes a value.
class Options
{
public:
    explicit Options(QCommandLineParser &parser)
        : m_parser(parser)
    {
        parser.addOptions({m_mask, m_strokes, m_output, m_blur, m_vignette});
    }

    /// The first option that is given and that `command` does not take; null when there is none.
    QString strange(const QString &command) const
    {
        for (const QCommandLineOption *option : {&m_mask, &m_strokes, &m_output, &m_blur, &m_vignette}) {
            const bool isTaken = command == QLatin1String("render") ||
                                 (command == QLatin1String("mask") && (option == &m_strokes || option == &m_output));
            if (m_parser.isSet(*option) && !isTaken)
                return option->names().constFirst();
        }
        return {};
    }

    /// A sentence when something is missing or makes no sense.
    QString fill(RenderRequest &request) const
    {
        request.mask = m_parser.value(m_mask);
        request.strokes = m_parser.value(m_strokes);
        request.output = m_parser.value(m_output);
        if (request.mask.isEmpty() == request.strokes.isEmpty())
            return QStringLiteral("render needs one of --mask MASK, a picture that says where to blur, and --strokes "
                                  "FILE, strokes that paint it.");
        if (request.output.isEmpty())
            return QStringLiteral("render needs --output OUT, the file to write.");
        for (const auto &[option, field] : {std::pair(&m_blur, &request.blur), {&m_vignette, &request.vignette}}) {
            if (!m_parser.isSet(*option))
                continue;
            const std::optional<float> value = finiteNumber(m_parser.value(*option));
            if (!value)
                return QStringLiteral("--%1 needs a number, not \"%2\".")
                    .arg(option->names().constFirst(), m_parser.value(*option));
            *field = value;
        }
        return {};
    }

    QString fill(MaskRequest &request) const
    {
        request.strokes = m_parser.value(m_strokes);
        request.output = m_parser.value(m_output);
        if (request.strokes.isEmpty() || request.output.isEmpty())
            return QStringLiteral("mask needs --strokes FILE and --output MASK.");
        return {};
    }

private:
    QCommandLineParser &m_parser;
    QCommandLineOption m_mask{QStringLiteral("mask"), {}, QStringLiteral("MASK")};
    QCommandLineOption m_strokes{QStringLiteral("strokes"), {}, QStringLiteral("FILE")};
    QCommandLineOption m_output{{QStringLiteral("output"), QStringLiteral("o")}, {}, QStringLiteral("OUT")};
    QCommandLineOption m_blur{QStringLiteral("blur"), {}, QStringLiteral("B")};
    QCommandLineOption m_vignette{QStringLiteral("vignette"), {}, QStringLiteral("V")};
};

/// The request of the command that `words` begin with.
CommandLine request(const QStringList &words, const Options &options)
{
    const QString command = words.value(0);
    const bool isMask = command == QLatin1String("mask");
    if (!isMask && command != QLatin1String("info") && command != QLatin1String("render"))
        return wrongUsage(command.isEmpty() ? QStringLiteral("Say what to do: info, render or mask.")
                                            : QStringLiteral("There is no command \"%1\".").arg(command));
    if (words.size() != (isMask ? 1 : 2))
        return wrongUsage(isMask ? QStringLiteral("mask takes no PHOTO.")
                                 : QStringLiteral("%1 needs exactly one PHOTO.").arg(command));
    const QString strange = options.strange(command);
    if (!strange.isEmpty())
        return wrongUsage(QStringLiteral("%1 takes no --%2.").arg(command, strange));

    CommandLine result;
    QString fault;
    if (isMask)
        fault = options.fill(result.mask.emplace());
    else if (command == QLatin1String("info"))
        result.info = InfoRequest{words[1]};
    else {
        result.render.emplace().photo = words[1];
        fault = options.fill(*result.render);
    }
    return fault.isEmpty() ? result : wrongUsage(fault);
}

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    const QCommandLineOption verbose(QStringLiteral("verbose"));
    parser.addOptions({help, version, verbose});
    const Options options(parser);
    // The parser takes the program's name first.
    if (!parser.parse(QStringList(QStringLiteral("hazelmark-cli")) + arguments))
        return wrongUsage(parser.errorText());
    if (parser.isSet(help))
        return ended(kOverview);
    if (parser.isSet(version))
        return ended(QStringLiteral("hazelmark-cli %1\n").arg(QCoreApplication::applicationVersion()));
    CommandLine result = request(parser.positionalArguments(), options);
    result.verbose = parser.isSet(verbose);
    return result;
}

int runCommandLine(const CommandLine &commandLine)
{
    if (commandLine.info)
        return runInfo(*commandLine.info);
    if (commandLine.render)
        return runRender(*commandLine.render);
    if (commandLine.mask)
        return runMask(*commandLine.mask);
    return commandLine.exitCode;
}

void printError(const QString &sentence)
{
    std::fputs((QStringLiteral("hazelmark-cli: ") + sentence + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

void printPreview(const Photo &photo, const QString &path)
{
    if (photo.info().isEmbeddedPreview)
        printError(QStringLiteral("%1: the colours of its camera are not known; the picture is the camera's own JPEG.")
                       .arg(path));
}

QString unknownFormatSentence(const QString &output)
{
    return QStringLiteral("%1: the extension must be that of a format that can be written: png, jpg, tiff, gif or bmp.")
        .arg(output);
}

} // namespace hazelmark
