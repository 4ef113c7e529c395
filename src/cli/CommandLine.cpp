#include "CommandLine.h"

#include "InfoCommand.h"
#include "RenderCommand.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cmath>

namespace hazelmark {

namespace {

const QString kOverview = QStringLiteral(
    "Usage: hazelmark-cli info PHOTO\n"
    "       hazelmark-cli render PHOTO --mask MASK --output OUT [--blur B] [--vignette V]\n"
    "       hazelmark-cli --help | --version\n"
    "\n"
    "Blurs the parts of a photo that a mask marks and writes the result as a new file with the photo's size,\n"
    "colours and metadata. The photo itself is never changed.\n"
    "\n"
    "  info PHOTO      prints what is known of the photo as one JSON object\n"
    "  render PHOTO    writes the blurred photo\n"
    "    --mask MASK     a picture of any size; its green channel, over black, says where to blur (255: fully)\n"
    "    --output OUT    the file to write; its extension says the format: png, jpg, tiff, gif or bmp\n"
    "    --blur B        strength of the blur, 60 when not given: the disc's radius is B/5 thousandths of the width\n"
    "    --vignette V    darkens what is blurred by 10 x V stops, 0 when not given\n"
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
    printError(sentence);
    CommandLine result;
    result.exitCode = exitcode::kWrongUsage;
    return result;
}

CommandLine ended(const QString &text)
{
    print(text);
    return {};
}

/// The options of `render`, each of which takes a value.
class RenderOptions
{
public:
    explicit RenderOptions(QCommandLineParser &parser)
        : m_parser(parser)
    {
        parser.addOptions({m_mask, m_output, m_blur, m_vignette});
    }

    bool any() const
    {
        return m_parser.isSet(m_mask) || m_parser.isSet(m_output) || m_parser.isSet(m_blur) ||
               m_parser.isSet(m_vignette);
    }

    /// A sentence when something is missing or makes no sense.
    QString fill(RenderRequest &request) const
    {
        request.mask = m_parser.value(m_mask);
        request.output = m_parser.value(m_output);
        if (request.mask.isEmpty())
            return QStringLiteral("render needs --mask MASK, a picture that says where to blur.");
        if (request.output.isEmpty())
            return QStringLiteral("render needs --output OUT, the file to write.");
        for (const auto &[option, field] : {std::pair(&m_blur, &request.blur), {&m_vignette, &request.vignette}}) {
            if (!m_parser.isSet(*option))
                continue;
            const std::optional<float> value = finiteNumber(m_parser.value(*option));
            if (!value)
                return QStringLiteral("--%1 needs a number, not \"%2\".")
                    .arg(option->names().constFirst(), m_parser.value(*option));
            *field = *value;
        }
        return {};
    }

private:
    QCommandLineParser &m_parser;
    QCommandLineOption m_mask{QStringLiteral("mask"), {}, QStringLiteral("MASK")};
    QCommandLineOption m_output{{QStringLiteral("output"), QStringLiteral("o")}, {}, QStringLiteral("OUT")};
    QCommandLineOption m_blur{QStringLiteral("blur"), {}, QStringLiteral("B")};
    QCommandLineOption m_vignette{QStringLiteral("vignette"), {}, QStringLiteral("V")};
};

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    const QCommandLineOption verbose(QStringLiteral("verbose"));
    parser.addOptions({help, version, verbose});
    const RenderOptions renderOptions(parser);
    // The parser takes the program's name first.
    if (!parser.parse(QStringList(QStringLiteral("hazelmark-cli")) + arguments))
        return wrongUsage(parser.errorText() + QStringLiteral(" See hazelmark-cli --help."));
    if (parser.isSet(help))
        return ended(kOverview);
    if (parser.isSet(version))
        return ended(QStringLiteral("hazelmark-cli %1\n").arg(QCoreApplication::applicationVersion()));

    const QStringList words = parser.positionalArguments();
    const QString command = words.value(0);
    CommandLine result;
    result.verbose = parser.isSet(verbose);
    if (command != QLatin1String("info") && command != QLatin1String("render"))
        return wrongUsage(command.isEmpty()
                              ? QStringLiteral("Say what to do: info or render. See hazelmark-cli --help.")
                              : QStringLiteral("There is no command \"%1\". See hazelmark-cli --help.").arg(command));
    if (words.size() != 2)
        return wrongUsage(QStringLiteral("%1 needs exactly one PHOTO. See hazelmark-cli --help.").arg(command));
    if (command == QLatin1String("info")) {
        if (renderOptions.any())
            return wrongUsage(QStringLiteral("info takes no options. See hazelmark-cli --help."));
        result.info = InfoRequest{words[1]};
        return result;
    }
    RenderRequest request;
    request.photo = words[1];
    const QString fault = renderOptions.fill(request);
    if (!fault.isEmpty())
        return wrongUsage(fault + QStringLiteral(" See hazelmark-cli --help."));
    result.render = request;
    return result;
}

int runCommandLine(const CommandLine &commandLine)
{
    if (commandLine.info)
        return runInfo(*commandLine.info);
    if (commandLine.render)
        return runRender(*commandLine.render);
    return commandLine.exitCode;
}

void printError(const QString &sentence)
{
    std::fputs((QStringLiteral("hazelmark-cli: ") + sentence + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

} // namespace hazelmark
