#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

namespace hazelmark {

class Photo;

/// What the command line was asked to do. Exit codes: 0 done, 1 it did not happen, 2 wrong usage.
namespace exitcode {
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;
} // namespace exitcode

struct InfoRequest
{
    QString photo;
};

/// Where to blur: exactly one of the two files is named.
struct RenderRequest
{
    QString photo;
    QString mask;    ///< a picture
    QString strokes; ///< strokes to paint the mask with
    QString output;
    // The sliders' values. Where none is given, a file of strokes may have one.
    std::optional<float> blur;
    std::optional<float> vignette;
};

struct MaskRequest
{
    QString strokes;
    QString output;
};

/// The program's arguments, read and checked. Help, version and wrong usage are dealt with while reading: then there
/// is no request, and `exitCode` says how to end.
struct CommandLine
{
    /// `arguments`: without the program's name.
    static CommandLine parse(const QStringList &arguments);

    int exitCode = exitcode::kDone;
    bool verbose = false;
    std::optional<InfoRequest> info;
    std::optional<RenderRequest> render;
    std::optional<MaskRequest> mask;
};

/// Runs what was asked for; the exit code.
int runCommandLine(const CommandLine &commandLine);

/// One sentence, a line of its own, on standard error.
void printError(const QString &sentence);

/// Likewise, where the picture of the photo at `path` is another than its owner may expect.
void printPreview(const Photo &photo, const QString &path);

/// What is printed of an output whose extension says no format.
QString unknownFormatSentence(const QString &output);

} // namespace hazelmark
