#pragma once

#include <QObject>

#include "Pace.h"

class CxMeasureOverlay;
class CxMeasurePanel;
class CxPictureView;
class QAction;
class QMainWindow;

/// Measures in the picture shown while its panel is shown: statistics of a region, a profile along a line.
class CxMeasureControl : public QObject
{
    Q_OBJECT

public:
    CxMeasureControl(QAction* measure, CxPictureView& view, QMainWindow& frame);

private:
    void connectOverlay();
    void takePlaces();
    void takePicture();
    void measure();

    QAction* m_action;
    CxPictureView& m_view;
    CxMeasurePanel* m_panel;
    CxMeasureOverlay* m_overlay;
    CxPace m_pace;
};
