#pragma once

#include <QObject>
#include <QTimer>

class CxPictureView;
class QWidget;

/// In full screen the transport bar lies over the lower edge of the picture, for a moment after each movement
/// of the mouse; the picture stays where it is.
class CxFullScreenBar : public QObject
{
    Q_OBJECT

public:
    CxFullScreenBar(CxPictureView& view, QWidget& transport);

    void setFullScreen(bool isFullScreen); ///< from its layout onto the picture, and back to the layout's end

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show();
    void hideUnlessUsed();

    CxPictureView& m_view;
    QWidget& m_transport;
    QWidget* m_home = nullptr; ///< whose layout it left; null while it is there
    QTimer m_rest;
};
