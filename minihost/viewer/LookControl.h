#pragma once

#include <QObject>

#include "MeasureControl.h"
#include "TurnControl.h"

class CxActions;
class CxLevelsPanel;
class CxLiveControl;
class CxLookActions;
class CxPictureView;
class CxPlayControl;
class QMainWindow;

/// Looks closer at the picture shown: its zoom, its histogram, with which levels it is shown, where it is
/// clipped, what its parts measure, which way up it lies, and what there is to tell of it. Whole pictures are
/// looked through only while there is somebody to see it.
class CxLookControl : public QObject
{
    Q_OBJECT

public:
    CxLookControl(CxActions& actions, CxPictureView& view, CxPlayControl& play, CxLiveControl& live,
                  QWidget& window);

    /// \p pages with the panels beside them. What lies below stays as wide as the window, so that panels
    /// never make that wider.
    QWidget* frame(QWidget* pages);

private:
    void connectZoom(CxActions const& actions);
    void buildLevels();
    void showHistogram();
    void updateLook();

    CxLookActions const& m_actions;
    CxPictureView& m_view;
    QMainWindow* m_frame;
    CxLevelsPanel* m_levels;
    CxPace m_histogram;
    CxMeasureControl m_measure;
    CxTurnControl m_turn;
};
