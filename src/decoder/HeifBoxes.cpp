#include "HeifBoxes.h"

#include "IsoBoxes.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace hazelmark::glass {

namespace {

using Bytes = std::span<const std::byte>;

/// The numbers of the properties of an item, counted from 1.
std::vector<size_t> propertiesOf(uint64_t item, Bytes association)
{
    BoxFields fields(association);
    const uint64_t version = fields.next(1);
    const uint64_t flags = fields.next(3);
    const uint64_t count = fields.next(4);
    for (uint64_t entry = 0; entry < count && !fields.isBeyond(); ++entry) {
        const bool isWanted = fields.next(version < 1 ? 2 : 4) == item;
        std::vector<size_t> numbers;
        for (uint64_t left = fields.next(1); left > 0; --left)
            numbers.push_back((flags & 1) ? fields.next(2) & 0x7fff : fields.next(1) & 0x7f);
        if (isWanted)
            return numbers;
    }
    return {};
}

void takeProperty(const Box &box, HeifPrimary &primary)
{
    BoxFields fields(box.content);
    HeifStep step{};
    if (box.type == "irot") {
        step.kind = HeifStep::Kind::Turn;
        step.quarterTurns = int(fields.next(1) & 3);
        primary.steps.push_back(step);
    } else if (box.type == "imir") {
        step.kind = HeifStep::Kind::Mirror;
        step.isTopToBottom = (fields.next(1) & 1) == 0;
        primary.steps.push_back(step);
    } else if (box.type == "clap") {
        step.kind = HeifStep::Kind::Crop;
        for (uint32_t &number : step.crop)
            number = uint32_t(fields.next(4));
        for (int32_t &number : step.cropOffset)
            number = int32_t(fields.next(4));
        primary.steps.push_back(step);
    } else if (box.type == "pixi") {
        fields.next(4);
        primary.channels = int(fields.next(1));
    } else if (box.type == "av1C" && primary.channels == 0) {
        fields.next(2);
        primary.channels = (fields.next(1) & 0x10) ? 1 : 3;
    } else if (box.type == "hvcC" && primary.channels == 0) {
        fields.next(16);
        primary.channels = (fields.next(1) & 3) == 0 ? 1 : 3;
    }
}

/// Of a "clap" box, by the middle that it states, both as numerator and denominator; in pixels from the left, or the
/// top.
std::optional<std::pair<int64_t, int64_t>> croppedSide(const uint32_t *size, const int32_t *offset, int64_t whole)
{
    if (size[1] == 0 || offset[1] == 0)
        return std::nullopt;
    const double length = std::floor(double(size[0]) / size[1]);
    const double first = std::floor(double(offset[0]) / offset[1] + (double(whole) - 1) / 2 - (length - 1) / 2);
    if (length < 1 || first < 0 || first + length > double(whole))
        return std::nullopt;
    return std::pair(int64_t(first), int64_t(length));
}

/// The path with one more step behind it: pixel (x, y) now comes from where (a·x + b·y + c, ...) came from.
void lead(PixelPath &path, const PixelPath::Row &across, const PixelPath::Row &down)
{
    for (PixelPath::Row *row : {&path.across, &path.down}) {
        const int64_t x = (*row)[0];
        const int64_t y = (*row)[1];
        (*row)[0] = x * across[0] + y * down[0];
        (*row)[1] = x * across[1] + y * down[1];
        (*row)[2] += x * across[2] + y * down[2];
    }
}

} // namespace

bool HeifPrimary::isMirrored() const
{
    return std::any_of(steps.begin(), steps.end(),
                       [](const HeifStep &step) { return step.kind == HeifStep::Kind::Mirror; });
}

std::optional<HeifPrimary> readHeifPrimary(std::span<const std::byte> file)
{
    const std::optional<Bytes> meta = contentOf(boxesIn(file), "meta");
    if (!meta || meta->size() < 4)
        return std::nullopt;
    const std::vector<Box> boxes = boxesIn(meta->subspan(4));
    const std::optional<Bytes> primaryItem = contentOf(boxes, "pitm");
    const std::optional<Bytes> properties = contentOf(boxes, "iprp");
    if (!primaryItem || !properties)
        return std::nullopt;
    BoxFields item(*primaryItem);
    const uint64_t version = item.next(4) >> 24;
    const uint64_t number = item.next(version == 0 ? 2 : 4);

    HeifPrimary primary;
    primary.isProtected = contentOf(boxes, "ipro").has_value();
    const std::vector<Box> parts = boxesIn(*properties);
    const std::optional<Bytes> container = contentOf(parts, "ipco");
    if (!container)
        return std::nullopt;
    const std::vector<Box> all = boxesIn(*container);
    for (const Box &part : parts) {
        if (part.type != "ipma")
            continue;
        for (const size_t index : propertiesOf(number, part.content)) {
            if (index >= 1 && index <= all.size())
                takeProperty(all[index - 1], primary);
        }
    }
    return primary;
}

std::optional<PixelPath> pathThrough(const std::vector<HeifStep> &steps, uint32_t width, uint32_t height)
{
    PixelPath path;
    path.width = width;
    path.height = height;
    for (const HeifStep &step : steps) {
        if (step.kind == HeifStep::Kind::Crop) {
            const auto columns = croppedSide(step.crop, step.cropOffset, path.width);
            const auto rows = croppedSide(step.crop + 2, step.cropOffset + 2, path.height);
            if (!columns || !rows)
                return std::nullopt;
            lead(path, {1, 0, columns->first}, {0, 1, rows->first});
            path.width = columns->second;
            path.height = rows->second;
        } else if (step.kind == HeifStep::Kind::Mirror) {
            if (step.isTopToBottom)
                lead(path, {1, 0, 0}, {0, -1, path.height - 1});
            else
                lead(path, {-1, 0, path.width - 1}, {0, 1, 0});
        } else {
            for (int turn = 0; turn < step.quarterTurns; ++turn) {
                lead(path, {0, -1, path.width - 1}, {1, 0, 0});
                std::swap(path.width, path.height);
            }
        }
    }
    return path;
}

} // namespace hazelmark::glass
