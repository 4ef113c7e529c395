#include "SessionFixture.h"

#include "Pictures.h"

#include <QDir>
#include <QFile>

namespace hazelmark {

void SessionFixture::start()
{
    m_settings.blurAmount = 60;
    m_settings.vignetteAmount = 0;
    m_brush.setColor({0, 1, 0, 1});
    m_brush.setHardness(1);
    m_brush.setLineWidth(20);
    m_work.paintingsFolder = m_folder.filePath(QStringLiteral("state/hazelmark/paintings"));
    m_session = std::make_unique<Session>(m_canvas, m_work);
    Session *session = m_session.get();
    QObject::connect(session, &Session::photoRead, session, [this](const OpenPhoto &photo) {
        m_opened << photo.path();
        m_session->setPhoto(photo);
        m_session->painting().reset();
        m_session->painting().setToolType(Painting::kToolPaint);
        m_canvas.setCanvasSize(photo.inputImage->size() / 2);
        m_session->fit(photo.inputImage->size() / 2);
    });
    QObject::connect(session, &Session::refused, session,
                     [this](const Failure &failure) { m_refused.push_back(failure); });
    QObject::connect(session, &Session::previewRendered, session,
                     [this](const QImage &shown) { m_previews.push_back(shown); });
    QObject::connect(session, &Session::exportEnded, session,
                     [this](const PhotoExport::Result &result) { m_results.push_back(result); });
}

QString SessionFixture::photo(const char *name, QSize size) const
{
    const auto half = [&](int x, int) { return x < size.width() / 2 ? Qt::black : Qt::white; };
    EXPECT_TRUE(testing::drawn(size, QImage::Format_RGB32, half).save(out(name), "PNG"));
    return out(name);
}

QString SessionFixture::file(const QString &name, const QByteArray &content) const
{
    QFile file(QDir(m_folder.path()).filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return file.fileName();
}

QByteArray SessionFixture::contentOf(const QString &path) const
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void SessionFixture::open(const QString &path)
{
    m_session->open(path, kView);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_session->photo().path() == path && !m_session->isLoading(); }));
}

void SessionFixture::paint(QPointF from, QPointF to)
{
    const QSizeF size = m_canvas.canvasSize();
    m_canvas.mouseDown({from.x() * size.width(), from.y() * size.height()});
    m_canvas.mouseDragged({to.x() * size.width(), to.y() * size.height()});
}

void SessionFixture::endStroke()
{
    m_session->endStroke();
    requestPreview();
}

void SessionFixture::requestPreview(float blur)
{
    CoreFilterObject settings = m_settings;
    settings.blurAmount = blur;
    m_session->requestPreview(settings);
}

Session::ExportRequest SessionFixture::exportRequest(const QString &path) const
{
    return {path, {QStringLiteral("png")}, QStringLiteral("png"), 1, 1, m_settings};
}

void SessionFixture::exportTo(const QString &path)
{
    const std::size_t before = m_results.size();
    m_session->startExport(exportRequest(path));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_results.size() > before; }));
}

} // namespace hazelmark
