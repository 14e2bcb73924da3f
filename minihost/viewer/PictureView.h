#pragma once

#include <QTransform>
#include <QWidget>

#include "Orientation.h"
#include "PictureLook.h"

/// Shows one picture: fitted to the window or enlarged, with wheel and mouse as in any image viewer.
///
/// Enlarged at least twice, pixels are shown as squares, so that each can be told from its neighbours.
/// Reduced, it is drawn from all of its pixels: fine patterns would be alias patterns otherwise.
class CxPictureView : public QWidget
{
    Q_OBJECT

public:
    explicit CxPictureView(QWidget* parent = nullptr);

    /// Keeps zoom and place while the size stays, past pictures that are missing, too.
    void setPicture(SxShownPicture const& picture);
    void setNotice(QString const& text); ///< text in place of a picture
    SxShownPicture const& picture() const { return m_picture; }

    void setLook(SxPictureLook const& look); ///< how it is shown from now on
    SxPictureLook const& look() const { return m_look; }

    void setTurning(SxTurning const& turning); ///< beyond what each picture asks for
    SxOrientation const& orientation() const { return m_orientation; }

    bool isFitted() const { return m_isFitted; }
    double zoom() const;                              ///< screen pixels for each pixel of the picture
    void setZoom(double zoom, QPointF const& anchor); ///< what lies under \p anchor stays there
    QTransform toView() const;                        ///< from places in the picture to those in the widget
    QPoint pixelAt(QPointF const& position) const;    ///< may lie outside the picture

    QSize sizeHint() const override { return {960, 540}; }
    QSize minimumSizeHint() const override { return {160, 90}; }

public slots:
    void fit();
    void showActualSize();
    void zoomIn();
    void zoomOut();
    void pan(QPointF const& distance); ///< moves the picture, in widget coordinates

signals:
    /// Any picture but an empty one. \p isFirst: there was none before.
    void pictureShown(SxShownPicture const& picture, bool isFirst);
    void zoomChanged(double zoom);
    void pixelPointed(QPoint const& pixel); ///< under the mouse; outside the picture when there is none
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QRectF target() const;
    QSizeF shownSize() const;
    QSizeF orientedSize() const;
    double fittingScale() const;
    void keepInside();
    void point(QPointF const& position);
    void redraw();
    QImage screenImage();

    SxShownPicture m_picture;
    SxPictureLook m_look;
    SxTurning m_turning;
    SxOrientation m_orientation; ///< of the last picture that was none of the missing
    QSize m_size;                ///< of the last picture that was none of the missing
    QString m_notice;
    bool m_isFitted = true;
    double m_scale = 1.0;    ///< widget units for each pixel of the picture
    QPointF m_offset;        ///< top left corner of the picture in the widget
    QPointF m_mouse{-1, -1}; ///< last place of the mouse, negative when it is elsewhere
    bool m_isDragging = false;
    QImage m_looked;  ///< the picture as it is to look; null until painted
    QImage m_reduced; ///< that in screen pixels when these are fewer, and turned; null until painted
};
