// What it costs that foreign files are decoded in a program of their own: against the same library, and the same code
// around it, in this process.
#include "Benches.h"
#include "Comparison.h"
#include "Decoder.h"
#include "ForeignDecoder.h"
#include "TestPicture.h"

#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <map>
#include <string>
#include <thread>

#include <dlfcn.h>

namespace hazelmark::bench {

namespace {

QString folder()
{
    static const QTemporaryDir folder;
    return folder.path();
}

struct Kind
{
    const char *name; ///< of the decoder
    const char *title;
    const char *extension;
    const char *command; ///< that makes a file of a picture
};

QString made(const Kind &kind, QSize size)
{
    const QString input = QStringLiteral("%1/%2.png").arg(folder()).arg(size.width());
    if (!QFile::exists(input))
        testPicture(size).save(input, "png", 100);
    const QString output =
        QStringLiteral("%1/%2.%3").arg(folder()).arg(size.width()).arg(QLatin1String(kind.extension));
    if (QFile::exists(output))
        return output;
    QProcess program;
    program.startCommand(QString::fromLatin1(kind.command).arg(input, output));
    if (!program.waitForFinished(-1) || program.exitCode() != 0)
        qFatal("cannot make %s", qPrintable(output));
    return output;
}

/// The decoder of the program, loaded into this one.
void decodeHere(const Kind &kind, const QString &path)
{
    const std::string library = std::string(HAZELMARK_DECODERS "/decoder-") + kind.name + ".so";
    static std::map<std::string, void *> loaded;
    void *&handle = loaded[library];
    if (!handle)
        handle = ::dlopen(library.c_str(), RTLD_NOW);
    const auto make = reinterpret_cast<glass::MakeForeignDecoder>(::dlsym(handle, "makeForeignDecoder"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot open %s", qPrintable(path));
    const QByteArray bytes = file.readAll();
    const glass::Photo photo{std::as_bytes(std::span(bytes.constData(), size_t(bytes.size()))), file.handle()};
    const std::unique_ptr<glass::ForeignDecoder> decoder(make(photo));
    const glass::Header header = decoder->readHeader();
    const glass::Size size = header.frames.front();
    const auto stride = size_t(glass::rowBytes(header.layout, size.width));
    const std::unique_ptr<std::byte[]> memory(new std::byte[stride * size.height]);
    decoder->decode({memory.get(), stride, size, std::thread::hardware_concurrency(), [](uint32_t) {}});
}

void decodeBehindGlass(const QString &path)
{
    if (const auto picture = decodePicture(path); !picture)
        qFatal("%s", qPrintable(picture.failure().sentence()));
}

double secondsOf(const std::function<void()> &step)
{
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// By turns, so that whatever else the machine does meanwhile hits both; the least of each counts.
double millisecondsMore(const std::function<void()> &ours, const std::function<void()> &yardstick)
{
    double behindGlass = 1e9, here = 1e9;
    for (int round = 0; round < 25; ++round) {
        behindGlass = std::min(behindGlass, secondsOf(ours));
        here = std::min(here, secondsOf(yardstick));
    }
    return 1000.0 * (behindGlass - here);
}

constexpr Kind kKinds[] = {
    {"heif", "HEIC", "heic", "heif-enc -q 90 %1 -o %2"},
    {"heif", "AVIF", "avif", "avifenc -s 10 -j 2 --min 18 --max 22 %1 %2"},
    {"jxl", "JPEG XL", "jxl", "cjxl -d 1 -e 3 %1 %2"},
    {"jp2", "JPEG 2000", "jp2", "opj_compress -r 8 -i %1 -o %2"},
    {"qt", "WebP", "webp", "cwebp -quiet -m 0 -q 90 %1 -o %2"},
};

} // namespace

void addGlassRows()
{
    for (const Kind &kind : kKinds) {
        if (!QFile::exists(QStringLiteral(HAZELMARK_DECODERS "/decoder-%1.so").arg(QLatin1String(kind.name))))
            continue;
        const std::string name = kind.title;
        add(Comparison{"decode " + name + ", 24 MP, behind glass", "the same library in this process", 1.1, 3,
                       [&kind] { decodeBehindGlass(made(kind, QSize(6000, 4000))); },
                       [&kind] { decodeHere(kind, made(kind, QSize(6000, 4000))); }});
        add(Figure{"decode " + name + ", 1 MP, behind glass, ms more", "the same library in this process", 25.0,
                   [&kind] {
                       const QString path = made(kind, QSize(1200, 834));
                       return millisecondsMore([&] { decodeBehindGlass(path); }, [&] { decodeHere(kind, path); });
                   }});
    }
}

} // namespace hazelmark::bench
