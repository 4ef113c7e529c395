#pragma once

#include <QImage>

#include <cstddef>
#include <memory>

namespace hazelmark {

/// Memory for whole pictures, not set. Asked for in large pages where the system has them: a picture of 24 megapixels
/// then costs some fifty page faults when it is first written instead of tens of thousands, which would take as long
/// as blurring it. Throws std::bad_alloc.
void *allocateLarge(std::size_t bytes);
void freeLarge(void *memory);

struct FreeLarge
{
    void operator()(void *memory) const { freeLarge(memory); }
};
template <typename Element>
using LargeArray = std::unique_ptr<Element[], FreeLarge>;

template <typename Element>
LargeArray<Element> makeLargeArray(std::size_t count)
{
    return LargeArray<Element>(static_cast<Element *>(allocateLarge(count * sizeof(Element))));
}

/// A bitmap in such memory, its pixels not set. Null when there is not enough, or `size` is empty.
QImage makeLargeBitmap(QSize size, QImage::Format format);
/// The same in the memory of a picture of that size that nobody else holds, if `room` is one: the system need not clear
/// other memory for it first.
QImage makeBitmapIn(QImage room, QSize size, QImage::Format format);

} // namespace hazelmark
