#include "Benches.h"
#include "Comparison.h"
#include "TestPicture.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace hazelmark::bench {

namespace {

constexpr QSize kSize(6000, 4000);
constexpr QSize kLargeSize(12000, 8500);

void runProgram(const std::vector<std::string> &words)
{
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::cerr << "hazelmark_bench: " << words[0] << " failed\n";
        std::exit(1);
    }
}

/// The files that the rows share: a JPEG of the test picture and two masks.
class Files
{
public:
    Files()
    {
        writePhoto(photo(), kSize);
        writeMask(allPainted(), 1.0);
        writeMask(tenthPainted(), 0.1);
    }

    void writePhoto(const std::string &file, QSize size) const
    {
        const std::string pixels = path("pixels.ppm");
        std::ofstream ppm(pixels, std::ios::binary);
        ppm << "P6\n" << size.width() << ' ' << size.height() << "\n255\n";
        const QImage rgb = testPicture(size).convertToFormat(QImage::Format_RGB888);
        for (int y = 0; y < rgb.height(); ++y)
            ppm.write(reinterpret_cast<const char *>(rgb.constScanLine(y)), 3 * rgb.width());
        ppm.close();
        runProgram({"cjpeg", "-quality", "92", "-sample", "1x1", "-outfile", file, pixels});
    }

    std::string path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)).toStdString(); }
    std::string photo() const { return path("source.jpg"); }
    std::string allPainted() const { return path("all.png"); }
    std::string tenthPainted() const { return path("tenth.png"); }

private:
    /// As the canvas would hand it over: a screen's worth of pixels, one stroke in the middle.
    static void writeMask(const std::string &file, double part)
    {
        QImage mask(1500, 1000, QImage::Format_RGB32);
        mask.fill(part < 1.0 ? Qt::black : Qt::green);
        const double radius = std::sqrt(part * mask.width() * mask.height() / M_PI);
        if (part < 1.0)
            for (int y = 0; y < mask.height(); ++y)
                for (int x = 0; x < mask.width(); ++x)
                    if (std::hypot(x - mask.width() / 2, y - mask.height() / 2) < radius)
                        mask.setPixel(x, y, qRgb(0, 255, 0));
        mask.save(QString::fromStdString(file));
    }

    QTemporaryDir m_folder;
};

const Files &files()
{
    static const Files made;
    return made;
}

std::vector<std::string> renderCommand(const std::string &photo, const std::string &mask)
{
    return {HAZELMARK_CLI, "render", photo, "--mask", mask, "--output", files().path("out.jpg"), "--blur", "60"};
}

void decodeAndEncode()
{
    runProgram({"djpeg", "-outfile", files().path("decoded.ppm"), files().photo()});
    runProgram({"cjpeg", "-quality", "92", "-sample", "1x1", "-outfile", files().path("encoded.jpg"),
                files().path("decoded.ppm")});
}

/// The most memory that a render of `photo` has held. Measured by a small program in between: a child's peak counts
/// the parent's memory at the start.
double peakBytes(const std::string &photo)
{
    const std::string report = files().path("peak");
    std::vector<std::string> words = {"/usr/bin/time", "-f", "%M", "-o", report};
    for (const std::string &word : renderCommand(photo, files().allPainted()))
        words.push_back(word);
    runProgram(words);
    double kibibytes = 0.0;
    std::ifstream(report) >> kibibytes;
    return kibibytes * 1024.0;
}

double pixelsOf(QSize size)
{
    return double(size.width()) * size.height();
}

} // namespace

void addCommandLineRows()
{
    const char *const kCodecs = "djpeg plus cjpeg, one after the other";
    add(Comparison{"hazelmark-cli render 6000 x 4000, b = 60, all painted", kCodecs, 3.0, 5,
                   [] { runProgram(renderCommand(files().photo(), files().allPainted())); }, decodeAndEncode});
    add(Comparison{"hazelmark-cli render, a tenth painted", kCodecs, 2.2, 5,
                   [] { runProgram(renderCommand(files().photo(), files().tenthPainted())); }, decodeAndEncode});
    add(Figure{"peak memory of hazelmark-cli render, all painted", "4 bytes a pixel", 4.5,
               [] { return peakBytes(files().photo()) / (4.0 * pixelsOf(kSize)); }});
    add(Figure{"peak memory, 12000 x 8500", "4 GiB", 1.0, [] {
                   const std::string large = files().path("large.jpg");
                   files().writePhoto(large, kLargeSize);
                   return peakBytes(large) / (4.0 * 1024 * 1024 * 1024);
               }});
}

} // namespace hazelmark::bench
