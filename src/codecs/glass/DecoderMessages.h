#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hazelmark::glass {

// What the decoder program says, and what it is told. Both sides share this, on one machine, so numbers go as they lie
// in memory. The reader takes every byte for hostile.

/// How pixels lie in the shared memory: rows without gaps but for the filling up to four bytes.
enum class Layout : uint8_t { Gray8, Gray16, Rgbx8, Rgba8, Rgbx16, Rgba16 };

int bytesPerPixel(Layout layout);
bool isGray(Layout layout);
/// Samples of 16 bits.
bool isDeep(Layout layout);
/// The smallest that holds it all.
Layout layoutOf(bool isGray, bool hasAlpha, bool isDeep);
/// Bytes of a row; sides come from checked headers.
int64_t rowBytes(Layout layout, uint32_t width);

struct Size
{
    uint32_t width = 0;
    uint32_t height = 0;

    bool operator==(const Size &) const = default;
};

/// Colours by the numbers of ITU-T H.273; 2 is "unspecified".
struct ColorCodes
{
    uint8_t primaries = 2;
    uint8_t transfer = 2;

    bool operator==(const ColorCodes &) const = default;
};

struct Header
{
    std::string format;       ///< as PictureInfo names it: lower-case letters and digits
    std::vector<Size> frames; ///< the first is the picture that is decoded; none: there are metadata alone
    Layout layout = Layout::Rgbx8;
    uint8_t bitsPerChannel = 8;
    bool hasAlpha = false;
    bool isGray = false;
    bool isTurned = false;    ///< the decoder turns the picture upright itself
    bool isPreview = false;   ///< made by the camera, which nobody else can do
    bool isConverted = false; ///< the file's colours have no profile here; the pixels come in sRGB
    double dotsPerInchX = 0.0;
    double dotsPerInchY = 0.0;
    ColorCodes colors; ///< counts where there is no profile
    std::string iccProfile;
    std::string exif;
    std::string xmp;
    std::string iptc;
    std::string note; ///< for the log

    bool operator==(const Header &) const = default;
};

/// Why there is no picture.
enum class Trouble : uint8_t { NotAPicture, Damaged, Truncated, Unsupported, OutOfMemory, TooLarge };

struct Done
{
    bool isPartlyDamaged = false;
    std::string note; ///< for the log
};

struct Excuse
{
    Trouble trouble = Trouble::Damaged;
    std::string text;
};

/// What the decoder may use while it decodes.
struct Go
{
    uint64_t memorySize = 0;
    uint32_t threads = 1;
};

enum class Kind : uint8_t { Header = 1, Progress = 2, Done = 3, Excuse = 4, Go = 5 };

struct Message
{
    Kind kind = Kind::Excuse;
    std::string body;
};

/// With which the decoder program ends when it has not found the library's decoder.
inline constexpr int kNoDecoderStatus = 3;

/// Longer ones are refused: more than the blocks of any photo.
inline constexpr uint32_t kLongestMessage = 192u * 1024 * 1024;
inline constexpr size_t kMostFrames = 10000;
inline constexpr size_t kLongestText = 1000;

std::string packed(const Header &header);
std::string packed(const Done &done);
std::string packed(const Excuse &excuse);
std::string packed(const Go &go);
/// `done`: 0..1 of the decoding.
std::string packedProgress(double done);

/// Nothing for a body that is too short, too long, or says what cannot be.
std::optional<Header> headerOf(std::string_view body);
std::optional<Done> doneOf(std::string_view body);
std::optional<Excuse> excuseOf(std::string_view body);
std::optional<Go> goOf(std::string_view body);
std::optional<double> progressOf(std::string_view body);

/// Puts messages together from the bytes as they come.
class MessageReader
{
public:
    void add(std::string_view bytes) { m_bytes += bytes; }
    /// The next whole message, once; nothing when more bytes are needed or the stream is broken.
    std::optional<Message> next();
    /// What came is no message: nothing more will be.
    bool isBroken() const { return m_isBroken; }

private:
    std::string m_bytes;
    bool m_isBroken = false;
};

} // namespace hazelmark::glass
