#pragma once

#include "CellGrid.h"

#include <vector>

namespace hazelmark {

/// The weights of one axis of a picture at another size: output i is the sum of weights[t] x input (first + t). What an
/// output gets depends on its place alone, not on which others are asked for.
class ScaleAxis
{
public:
    ScaleAxis() = default;

    /// Cubic convolution (Keys, a = -0.5), stretched over the input when the picture shrinks, so that every input pixel
    /// counts. `sourceStart`, `sourceLength`: what becomes the pixels 0 .. `outputLength`; of these the `count` from
    /// `begin` on are told. Inputs beyond `inputFirst` .. `inputLast` are those at the ends.
    static ScaleAxis cubic(double sourceStart, double sourceLength, int outputLength, int inputFirst, int inputLast,
                           int begin, int count);
    /// The same of a whole picture of `sourceLength` pixels.
    static ScaleAxis cubic(int sourceLength, int outputLength, int begin, int count);
    /// Out of the cells of a blurred picture of `sourceLength` pixels. Columns count as in pictures, lines from below.
    static ScaleAxis columnsOfCells(const CellGrid &grid, int sourceLength, int outputLength, int begin, int count);
    static ScaleAxis linesOfCells(const CellGrid &grid, int sourceLength, int outputLength, int begin, int count);
    /// Output i is input i - `offset`.
    static ScaleAxis plain(int offset, int begin, int count);

    int begin() const { return m_begin; }
    int count() const { return m_count; }
    int taps() const { return m_taps; }
    /// Whether outputs are inputs. A picture of one pixel has one tap as well, for any number of outputs.
    bool isPlain() const { return m_isPlain; }
    /// Whether the picture gets smaller.
    bool shrinks() const { return m_shrinks; }

    int inputBegin(int output) const { return m_first[index(output)]; }
    int inputEnd(int output) const { return m_first[index(output)] + m_taps; }
    /// Of `output` and those behind it. Behind the last there are kPadding more, which are as it is.
    const int *first(int output) const { return m_first.data() + index(output); }
    const float *weights(int output) const { return m_weights.data() + index(output) * std::size_t(m_taps); }

    static constexpr int kPadding = 16;

private:
    ScaleAxis(int begin, int count, int taps, bool shrinks);
    std::size_t index(int output) const { return std::size_t(output - m_begin); }
    void pad();
    template <typename PlaceOf>
    static ScaleAxis ofCells(int begin, int count, const PlaceOf &placeOf);

    int m_begin = 0;
    int m_count = 0;
    int m_taps = 1;
    bool m_shrinks = false;
    bool m_isPlain = false;
    std::vector<int> m_first;
    std::vector<float> m_weights;
};

} // namespace hazelmark
