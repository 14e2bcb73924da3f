#pragma once

#include <QLine>
#include <QRect>
#include <QWidget>

class CxPictureView;

/// Lies over the picture while something is measured: shows the region and the line, and lets the mouse draw
/// them. Both are in pixels of the picture; what the mouse does else goes on to the view.
class CxMeasureOverlay : public QWidget
{
    Q_OBJECT

public:
    enum class Draws { Region, Line };

    explicit CxMeasureOverlay(CxPictureView& view);

    void setDraws(Draws what) { m_draws = what; }
    void setRegion(QRect const& region);
    void setLine(QLine const& line);

signals:
    void regionDrawn(QRect const& region); ///< inside the picture; while the mouse moves, too
    void lineDrawn(QLine const& line);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPoint pixelUnder(QMouseEvent const& event) const;

    CxPictureView& m_view;
    Draws m_draws = Draws::Region;
    QRect m_region;
    QLine m_line;
    bool m_isDrawing = false;
    QPoint m_start; ///< in pixels of the picture
};
