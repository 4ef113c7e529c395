#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace hazelmark {

/// A picture that was found in some bytes.
struct FoundPicture
{
    qsizetype from;
    qsizetype to;     ///< behind its last byte
    const char *kind; ///< "JPEG", "PNG" and so on, for the log
};

/// What kind of bytes are searched.
enum class SearchIn {
    /// A single value. A picture in it reaches to its end, and the mark that a kind of file begins with is enough.
    Value,
    /// Numbers of several bytes each, in which such a mark may stand by accident: more of the picture must be there.
    Numbers,
    /// Values of unknown kinds one after the other, as in a maker's note: as with numbers; and a picture whose own
    /// structure says where it ends, ends there.
    Mixture,
};

/// The pictures in the bytes, by their content alone and wherever they begin, in ascending order and apart from each
/// other: JPEG (also without its first bytes, where tables and a scan follow), PNG, GIF, WebP, BMP, TIFF, JPEG 2000,
/// JPEG XL, what lies in the boxes of HEIF, AVIF and films, and some rarer kinds; each plain, in a zlib stream, in
/// Base64 (also URL-safe, in UTF-16, or broken by whatever is no letter of it) or in hexadecimal digits, and these in
/// each other. Bytes that are made to be searched for ever count as one picture.
std::vector<FoundPicture> picturesIn(QByteArrayView bytes, SearchIn where);

/// Those that are neither packed nor encoded.
std::vector<FoundPicture> plainPicturesIn(QByteArrayView bytes, SearchIn where);

/// Whether there is any.
bool holdsPicture(QByteArrayView bytes, SearchIn where = SearchIn::Value);

} // namespace hazelmark
