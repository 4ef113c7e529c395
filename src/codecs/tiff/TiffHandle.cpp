#include "TiffHandle.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace hazelmark {

namespace {

/// No single block that a file makes the library allocate may be larger.
constexpr tmsize_t kMaxBlock = tmsize_t(2) << 30;

/// All values of all tags of one page together, without the pixels: the layers that some editors put into a tag are of
/// no use here.
constexpr tmsize_t kMaxHeaderSize = tmsize_t(32) << 20;

int ignoreClose(thandle_t)
{
    return 0;
}

int refuseMap(thandle_t, void **, toff_t *)
{
    return 0;
}

void ignoreUnmap(thandle_t, void *, toff_t) {}

QString formatted(const char *format, va_list arguments)
{
    char text[300];
    std::vsnprintf(text, sizeof text, format, arguments);
    return QString::fromLatin1(text);
}

} // namespace

TIFFOpenOptions *TiffHandle::makeOptions(TiffHandle *self)
{
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMaxBlock);
    TIFFOpenOptionsSetErrorHandlerExtR(options, &takeError, self);
    TIFFOpenOptionsSetWarningHandlerExtR(options, &takeWarning, self);
    return options;
}

TiffHandle::TiffHandle(SourceFile &source)
    : m_source(&source)
{
    TIFFOpenOptions *options = makeOptions(this);
    m_tiff = TIFFClientOpenExt(
        "picture", "rm", this,
        [](thandle_t handle, void *bytes, tmsize_t count) -> tmsize_t {
            auto *self = static_cast<TiffHandle *>(handle);
            if (self->m_isInHeader && count > kMaxHeaderSize - self->m_headerSize)
                return 0;
            const qint64 got = self->m_source->read(self->m_position, static_cast<char *>(bytes), count);
            if (got < count)
                self->m_hasHitEnd = true;
            self->m_headerSize += got;
            self->m_position += std::max<qint64>(got, 0);
            return got;
        },
        [](thandle_t, void *, tmsize_t) -> tmsize_t { return 0; },
        [](thandle_t handle, toff_t offset, int whence) -> toff_t {
            auto *self = static_cast<TiffHandle *>(handle);
            // The library seeks from the start, save to learn the size.
            const qint64 base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? self->m_position : self->m_source->size();
            const qint64 target = base + qint64(offset);
            if (target < 0 || target > self->m_source->size())
                self->m_hasHitEnd = true;
            if (target < 0)
                return toff_t(-1);
            self->m_position = target;
            return toff_t(target);
        },
        &ignoreClose,
        [](thandle_t handle) -> toff_t { return toff_t(static_cast<TiffHandle *>(handle)->m_source->size()); },
        &refuseMap, &ignoreUnmap, options);
    TIFFOpenOptionsFree(options);
}

TiffHandle::TiffHandle(FileSink &sink, bool isBig, ByteOrder byteOrder)
    : m_sink(&sink)
{
    TIFFOpenOptions *options = makeOptions(this);
    const QByteArray mode = QByteArray("w") + (byteOrder == ByteOrder::BigEndian ? "b" : "l") + (isBig ? "8" : "");
    m_tiff = TIFFClientOpenExt(
        "picture", mode.constData(), this, [](thandle_t, void *, tmsize_t) -> tmsize_t { return 0; },
        [](thandle_t handle, void *bytes, tmsize_t count) -> tmsize_t {
            return static_cast<TiffHandle *>(handle)->m_sink->write(bytes, size_t(count)) ? count : 0;
        },
        [](thandle_t handle, toff_t offset, int whence) -> toff_t {
            return toff_t(static_cast<TiffHandle *>(handle)->m_sink->seek(int64_t(offset), whence));
        },
        &ignoreClose, [](thandle_t) -> toff_t { return 0; }, &refuseMap, &ignoreUnmap, options);
    TIFFOpenOptionsFree(options);
}

void TiffHandle::close()
{
    if (m_tiff)
        TIFFClose(m_tiff);
    m_tiff = nullptr;
}

void TiffHandle::keep(const QString &text)
{
    if (!m_hasError)
        m_message = text;
    m_hasError = true;
}

int TiffHandle::takeError(TIFF *, void *self, const char *, const char *format, va_list arguments)
{
    static_cast<TiffHandle *>(self)->keep(formatted(format, arguments));
    return 1; // the global handler, which prints, is not to be called as well
}

int TiffHandle::takeWarning(TIFF *, void *handle, const char *module, const char *format, va_list arguments)
{
    auto *self = static_cast<TiffHandle *>(handle);
    const QString text = formatted(format, arguments);
    // The JPEG decoder inside the library fills missing data with grey and only warns.
    if (module && qstrcmp(module, "JPEGLib") == 0)
        self->keep(text);
    if (self->m_hasHitEnd && text.contains(QLatin1String("\"ICC Profile\"")))
        self->m_hasLostProfile = true;
    return 1;
}

} // namespace hazelmark
