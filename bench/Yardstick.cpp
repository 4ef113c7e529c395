#include "Yardstick.h"

#include "kernels/DiscShape.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstdlib>

namespace hazelmark::bench {

struct FilterYardstick::Mats
{
    cv::Mat picture; // three channels: a fourth would only slow it down
    cv::Mat result;
};

FilterYardstick::FilterYardstick(const QImage &picture)
    : m_mats(std::make_unique<Mats>())
{
    const cv::Mat rgbx(picture.height(), picture.width(), CV_8UC4, const_cast<uchar *>(picture.constBits()),
                       std::size_t(picture.bytesPerLine()));
    cv::cvtColor(rgbx, m_mats->picture, cv::COLOR_RGBA2RGB);
}

FilterYardstick::~FilterYardstick() = default;

void FilterYardstick::blur(double radius)
{
    const int reach = int(std::ceil(radius - 0.5));
    cv::Mat disc(2 * reach + 1, 2 * reach + 1, CV_32F);
    for (int y = -reach; y <= reach; ++y)
        for (int x = -reach; x <= reach; ++x)
            disc.at<float>(y + reach, x + reach) = float(kernels::discCoverage(radius, std::abs(x), std::abs(y)));
    disc /= cv::sum(disc)[0];
    cv::filter2D(m_mats->picture, m_mats->result, -1, disc, cv::Point(-1, -1), 0.0, cv::BORDER_REPLICATE);
}

} // namespace hazelmark::bench
