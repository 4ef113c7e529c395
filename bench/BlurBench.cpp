#include "Benches.h"
#include "Comparison.h"
#include "FilterImage.h"
#include "PhotoImage.h"
#include "RenderJobs.h"
#include "Renderer.h"
#include "TestPicture.h"
#include "Yardstick.h"

#include <string>

namespace hazelmark::bench {

namespace {

const char *const kOpenCv = "OpenCV filter2D, same disc";

const QImage &photo()
{
    static const QImage picture = testPicture(QSize(6000, 4000));
    return picture;
}

FilterYardstick &photoYardstick()
{
    static FilterYardstick yardstick(photo());
    return yardstick;
}

void blur(const QImage &picture, float radius, int threads)
{
    Renderer(threads).draw(FilterImage(picture).clamped().discBlurred(radius));
}

PhotoImagePtr paintedAllOver(QSize size)
{
    QImage mask(size, QImage::Format_RGBX8888);
    mask.fill(Qt::green);
    return PhotoImage::fromBitmap(mask);
}

} // namespace

void addBlurRows()
{
    struct Aim
    {
        float radius;
        double wanted;
        int repetitions;
    };
    for (const Aim aim :
         {Aim{12, 0.30, 5}, Aim{20, 0.0, 3}, Aim{36, 0.30, 4}, Aim{72, 0.20, 4}, Aim{120, 0.10, 3}, Aim{480, 0.06, 3}})
        add(Comparison{"blur 6000 x 4000, radius " + std::to_string(int(aim.radius)), kOpenCv, aim.wanted,
                       aim.repetitions, [=] { blur(photo(), aim.radius, 2); },
                       [=] { photoYardstick().blur(double(aim.radius)); }});
    add(Comparison{"radius 480", "radius 12", 2.0, 7, [] { blur(photo(), 480, 2); }, [] { blur(photo(), 12, 2); }});
    for (const float radius : {12.0f, 72.0f})
        add(Comparison{"two threads, radius " + std::to_string(int(radius)), "one thread", 0.58, 7,
                       [=] { blur(photo(), radius, 2); }, [=] { blur(photo(), radius, 1); }});
    static const QSize kPreview(1200, 800);
    add(Comparison{"preview job 1200 x 800, b = 60, all painted", "OpenCV filter2D alone, same picture", 0.30, 15,
                   [] {
                       static const PhotoImagePtr picture = PhotoImage::fromBitmap(testPicture(kPreview));
                       static const PhotoImagePtr mask = paintedAllOver(kPreview);
                       PreviewJob job{picture, mask, {}};
                       job.settings.blurAmount = 60.0f;
                       job.run(2);
                   },
                   [] {
                       static FilterYardstick yardstick(testPicture(kPreview));
                       yardstick.blur(14.4);
                   }});
    add(Comparison{"thumbnail 300 x 200, b = 60, two threads", "one thread", 0.0, 200,
                   [] {
                       static const QImage picture = testPicture(QSize(300, 200));
                       blur(picture, 3.6f, 2);
                   },
                   [] {
                       static const QImage picture = testPicture(QSize(300, 200));
                       blur(picture, 3.6f, 1);
                   }});
}

} // namespace hazelmark::bench
