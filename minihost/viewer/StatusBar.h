#pragma once

#include <QStatusBar>

#include "OpenedRecording.h"
#include "ShownPicture.h"

class CxPictureView;
class QLabel;

/// What there is to know of the picture in the view: the pixel under the mouse, format, zoom, and how many
/// pictures a second are shown; how many were found broken; and at which rate it was recorded.
class CxStatusBar : public QStatusBar
{
    Q_OBJECT

public:
    CxStatusBar(CxPictureView const& view, QWidget* parent); ///< follows \p view

    void clearTexts();
    void showRate(double picturesPerSecond);            ///< 0 while not playing
    void showBroken(int pictures);                      ///< found broken so far
    void confirm(QString const& text);                  ///< what was just done, for some seconds
    void showNotes(SxOpenedRecording const& recording); ///< what is known of it beyond its pictures

private:
    void showPixel(QPoint const& position);
    void showFormat(SxShownPicture const& picture);
    void showZoom(double zoom);

    CxPictureView const& m_view;
    QLabel* m_pixel;
    QLabel* m_format;
    QLabel* m_zoom;
    QLabel* m_rate;
    QLabel* m_broken;
    QLabel* m_notes;
};
