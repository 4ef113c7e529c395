#pragma once

#include "../support/Gate.h"
#include "PaintCanvas.h"
#include "PaintControl.h"
#include "PhotoFile.h"
#include "Session.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <memory>
#include <vector>

namespace hazelmark {

/// A session with a canvas that nobody sees. Reading, rendering and writing are the real ones unless `work` says
/// otherwise before `start()`. A photo that is handed over is opened at half its size, ready to be painted on.
class SessionFixture : public testing::Test
{
protected:
    void start();

    /// A photo that is black on the left and white on the right; its path.
    QString photo(const char *name, QSize size = {300, 200}) const;
    /// `name`: in the folder, or a whole path.
    QString file(const QString &name, const QByteArray &content) const;
    QByteArray contentOf(const QString &path) const;

    void open(const QString &path);
    /// A segment between two fractions of the canvas.
    void paint(QPointF from, QPointF to);
    /// The end of a stroke, and what the screen does about it.
    void endStroke();
    void requestPreview(float blur = 60);
    /// Exports, or shares with an empty path, and waits for the end.
    void exportTo(const QString &path);
    Session::ExportRequest exportRequest(const QString &path) const;
    QString out(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    static constexpr QPointF kLeft{0.25, 0.5}, kRight{0.75, 0.5};
    const PhotoView kView{{1600, 1000}, {800, 600}, DisplayColors()};
    QTemporaryDir m_folder;
    PaintCanvas m_canvas;
    PaintControl m_brush{&m_canvas};
    CoreFilterObject m_settings;
    Session::Work m_work;
    std::unique_ptr<Session> m_session;
    QStringList m_opened; ///< paths, as they were handed over
    std::vector<Failure> m_refused;
    std::vector<QImage> m_previews;
    std::vector<PhotoExport::Result> m_results;
};

} // namespace hazelmark
