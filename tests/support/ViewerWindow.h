#pragma once

#include <QApplication>
#include <QLabel>
#include <QTest>

#include "MainWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "TestCamera.h"
#include "Timeline.h"
#include "support/ViewerFixture.h"

/// A test camera with small pictures: \p frames of them, 0 for one that runs on.
inline SourceFactory fx_Camera(int frames, char const* format)
{
    return [frames, format](std::atomic<bool> const*) {
        SxTestCameraOptions options;
        options.width = 160;
        options.height = 120;
        options.frames = frames;
        options.format = *fx_TestCameraFormat(QString::fromLatin1(format));
        return std::make_unique<CxTestCamera>(options);
    };
}

/// The window as a user has it, and the few things a test looks at.
class CxViewerWindow
{
public:
    explicit CxViewerWindow(CxViewerFixture const& fixture)
        : window(fixture.plugins)
        , view(window.findChild<CxPictureView*>())
        , timeline(window.findChild<CxTimeline*>())
        , bar(window.findChild<CxMessageBar*>())
    {
        window.resize(800, 600);
        window.show();
        QApplication::setActiveWindow(&window);
        isShown = QTest::qWaitForWindowActive(&window);
    }
    bool open(QString const& recording)
    {
        window.openRecording(recording);
        return QTest::qWaitFor([&] { // what was open before stays until then
            return window.player().info().fileName == recording && window.player().shownNumber() == 0;
        });
    }
    void openCamera() { window.openLive(QStringLiteral("camera"), fx_Camera(0, "bgr24")); }
    template<class Widget>
    Widget* child(char const* name) const
    {
        return window.findChild<Widget*>(QLatin1String(name));
    }
    QString text(char const* label) const { return child<QLabel>(label)->text(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&window, key, modifiers); }
    QPoint placeOf(int number) const ///< of a picture on the timeline
    {
        return {8 + (timeline->width() - 16) * number / timeline->maximum(), 8};
    }

    CxMainWindow window;
    CxPictureView* view;
    CxTimeline* timeline;
    CxMessageBar* bar;
    bool isShown = false;
};
