#include "PictureSearch.h"

#include "ZlibStream.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace hazelmark {

namespace {

/// Of encodings in each other.
constexpr int kMostNested = 4;

/// Fewer letters than this are no picture that shows anything.
constexpr qsizetype kLeastLetters = 64;

/// Bytes that the search may unpack or decode, over what is searched itself.
constexpr qsizetype kRoom = 64 * 1024 * 1024;
constexpr qsizetype kRoomPerByte = 64;

constexpr int8_t kNone = -1;
constexpr int8_t kSlash = 63;
constexpr int8_t kLargestDigit = 15;

/// What each letter stands for in either of two alphabets; kNone for others.
constexpr std::array<int8_t, 256> valuesOf(std::string_view letters, std::string_view otherLetters)
{
    std::array<int8_t, 256> values{};
    values.fill(kNone);
    for (size_t i = 0; i < letters.size(); ++i)
        values[size_t(letters[i])] = values[size_t(otherLetters[i])] = int8_t(i);
    return values;
}

constexpr std::array kBase64Values = valuesOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/",
                                              "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_");
constexpr std::array kHexValues = valuesOf("0123456789abcdef", "0123456789ABCDEF");

/// Letters of an encoding as the numbers that they stand for, with nothing between them.
struct Letters
{
    QByteArray values;
    std::vector<qsizetype> starts; ///< where in `values` longer runs begin with the letter that is looked for
};

class Search
{
public:
    explicit Search(qsizetype size)
        : m_room(kRoom + size * kRoomPerByte)
    {
    }

    std::vector<FoundPicture> all(QByteArrayView bytes, SearchIn where)
    {
        std::vector<FoundPicture> found = plainPicturesIn(bytes, where);
        if (!found.empty() && where != SearchIn::Mixture)
            return found;
        addPacked(bytes, where, found);
        if (!found.empty() && where != SearchIn::Mixture)
            return found;
        addSpelt(bytes, where, found);
        return found;
    }

private:
    bool holds(const QByteArray &bytes, bool isTextLikely)
    {
        if (bytes.size() < kLeastPicture || m_nested >= kMostNested)
            return false;
        m_room -= bytes.size();
        if (m_room < 0)
            return true; // made to be searched for ever
        ++m_nested;
        // What is decoded by mistake is noise, in which two bytes say nothing.
        std::vector<FoundPicture> found = plainPicturesIn(bytes, isTextLikely ? SearchIn::Numbers : SearchIn::Value);
        if (found.empty())
            addPacked(bytes, SearchIn::Value, found);
        if (found.empty() && isMostlyLetters(bytes))
            addSpelt(bytes, SearchIn::Value, found);
        --m_nested;
        return !found.empty();
    }

    static bool isMostlyLetters(const QByteArray &bytes)
    {
        const auto letters =
            std::count_if(bytes.begin(), bytes.end(), [](char c) { return kBase64Values[quint8(c)] >= 0; });
        return letters >= bytes.size() / 2;
    }

    // Packed

    static bool beginsStream(QByteArrayView bytes, qsizetype at)
    {
        if (at + 2 > bytes.size())
            return false;
        const int first = quint8(bytes[at]);
        const int second = quint8(bytes[at + 1]);
        const bool isZlib = (first & 15) == 8 && first >> 4 <= 7 && (first * 256 + second) % 31 == 0 && !(second & 32);
        return isZlib || (first == 0x1f && second == 0x8b);
    }

    void addPacked(QByteArrayView bytes, SearchIn where, std::vector<FoundPicture> &found)
    {
        const std::vector<FoundPicture> plain = found;
        auto next = plain.begin();
        for (qsizetype at = 0; at + kLeastPicture <= bytes.size(); ++at) {
            while (next != plain.end() && next->to <= at)
                ++next;
            if (!beginsStream(bytes, at) || (next != plain.end() && next->from <= at))
                continue;
            const Inflater::Content content = m_inflater.unpacked(bytes.sliced(at), m_room);
            if (!holds(content.bytes, false))
                continue;
            const bool endsThere = where == SearchIn::Mixture && content.isWhole;
            found.push_back({at, endsThere ? at + content.taken : bytes.size(), "packed picture"});
            if (!endsThere)
                break;
            at += content.taken - 1;
        }
        std::sort(found.begin(), found.end(), [](const auto &a, const auto &b) { return a.from < b.from; });
    }

    // Spelt in letters

    void addSpelt(QByteArrayView bytes, SearchIn where, std::vector<FoundPicture> &found)
    {
        if (!isInBase64(bytes) && !isInHex(bytes))
            return;
        // Where in a mixture the letters begin is not known for sure.
        const qsizetype from = where == SearchIn::Mixture ? firstLongRun(bytes) : 0;
        while (!found.empty() && found.back().from >= from)
            found.pop_back();
        if (!found.empty())
            found.back().to = std::min(found.back().to, from);
        found.push_back({from, bytes.size(), "picture in letters"});
    }

    static qsizetype firstLongRun(QByteArrayView bytes)
    {
        constexpr int kLong = 16;
        int length = 0;
        for (qsizetype at = 0; at < bytes.size(); ++at) {
            const bool isIgnored = bytes[at] == 0 || bytes[at] == '\n' || bytes[at] == '\r' || bytes[at] == ' ';
            length = kBase64Values[quint8(bytes[at])] >= 0 ? length + 1 : isIgnored ? length : 0;
            if (length == kLong)
                return std::max<qsizetype>(at - 4 * kLong, 0);
        }
        return 0;
    }

    bool isInBase64(QByteArrayView bytes)
    {
        const QByteArray plain = withoutEscapes(bytes);
        const Letters letters = lettersOf(plain, kBase64Values, kSlash);
        if (letters.values.size() < kLeastLetters)
            return false;
        for (qsizetype shift = 0; shift < 4; ++shift) {
            if (holds(fromBase64(letters.values, shift), true))
                return true;
        }
        return std::any_of(letters.starts.begin(), letters.starts.end(),
                           [&](qsizetype start) { return isJpegXlFrom(letters.values, start); });
    }

    bool isInHex(QByteArrayView bytes)
    {
        QByteArray plain = bytes.toByteArray();
        plain.replace("0x", " ").replace("0X", " ");
        const Letters digits = lettersOf(plain, kHexValues, kLargestDigit);
        if (digits.values.size() < kLeastLetters)
            return false;
        for (qsizetype shift = 0; shift < 2; ++shift) {
            if (holds(fromHex(digits.values, shift, digits.values.size()), true))
                return true;
        }
        return std::any_of(digits.starts.begin(), digits.starts.end(), [&](qsizetype start) {
            const qsizetype end = std::min(start + 2 * kJpegXlStart, digits.values.size());
            return !plainPicturesIn(fromHex(digits.values, start, end), SearchIn::Value).empty();
        });
    }

    static QByteArray fromHex(const QByteArray &values, qsizetype from, qsizetype end)
    {
        QByteArray decoded;
        for (qsizetype at = from; at + 2 <= end; at += 2)
            decoded += char(values[at] << 4 | values[at + 1]);
        return decoded;
    }

    /// Addresses escape the three letters that mean something else in them.
    static QByteArray withoutEscapes(QByteArrayView bytes)
    {
        QByteArray plain = bytes.toByteArray();
        if (plain.contains('%')) {
            for (const auto &[escape, letter] : {std::pair("%2B", "+"), {"%2b", "+"}, {"%2F", "/"}, {"%2f", "/"}})
                plain.replace(escape, letter);
            plain.replace("%3D", "").replace("%3d", "").replace("%0A", "").replace("%0D", "");
        }
        return plain;
    }

    static Letters lettersOf(const QByteArray &bytes, const std::array<int8_t, 256> &values, int8_t first)
    {
        Letters letters;
        letters.values.reserve(bytes.size());
        size_t sureStarts = 0; // behind them there are letters enough
        const auto endRun = [&] {
            while (letters.starts.size() > sureStarts && letters.values.size() - letters.starts.back() < kLeastLetters)
                letters.starts.pop_back();
            sureStarts = letters.starts.size();
        };
        bool isNew = true;
        char before = 0;
        for (const char c : bytes) {
            const int8_t value = values[quint8(c)];
            if (value < 0) {
                isNew = isNew || c != 0 || before == 0; // every other byte of UTF-16 text is zero
                before = c;
                if (c != 0 && c != '\\' && !(c >= '\t' && c <= '\r') && c != ' ' && c != ',')
                    endRun();
                continue;
            }
            before = c;
            if (isNew && value == first)
                letters.starts.push_back(letters.values.size());
            isNew = false;
            letters.values += char(value);
        }
        endRun();
        return letters;
    }

    static QByteArray fromBase64(const QByteArray &values, qsizetype from, qsizetype most = -1)
    {
        const qsizetype end = most < 0 ? values.size() : std::min(values.size(), from + most);
        QByteArray decoded;
        for (qsizetype at = from; at + 4 <= end; at += 4) {
            const int bits = values[at] << 18 | values[at + 1] << 12 | values[at + 2] << 6 | values[at + 3];
            decoded += char(bits >> 16);
            decoded += char(bits >> 8);
            decoded += char(bits);
        }
        return decoded;
    }

    /// Its two bytes say nothing in the middle of letters, but where a run begins. Words begin with them, too ("/wo"),
    /// which have no digits and few capitals.
    static bool isJpegXlFrom(const QByteArray &values, qsizetype start)
    {
        if (start + kLeastLetters > values.size() || values[start + 1] != 'w' - 'a' + 26)
            return false;
        const QByteArray run = values.mid(start, 4 * kLeastLetters);
        const auto capitals = std::count_if(run.begin(), run.end(), [](char value) { return value < 26; });
        const auto digits = std::count_if(run.begin(), run.end(), [](char value) { return value >= 52 && value < 62; });
        return capitals > run.size() / 5 && digits > run.size() / 20 &&
               !plainPicturesIn(fromBase64(values, start, kJpegXlStart), SearchIn::Value).empty();
    }

    static constexpr qsizetype kLeastPicture = 24;
    static constexpr qsizetype kJpegXlStart = 256;

    qsizetype m_room;
    int m_nested = 0;
    Inflater m_inflater{Inflater::AnyHeader};
};

} // namespace

std::vector<FoundPicture> picturesIn(QByteArrayView bytes, SearchIn where)
{
    return Search(bytes.size()).all(bytes, where);
}

bool holdsPicture(QByteArrayView bytes, SearchIn where)
{
    return !picturesIn(bytes, where).empty();
}

} // namespace hazelmark
