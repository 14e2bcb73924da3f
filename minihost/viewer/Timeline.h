#pragma once

#include <QAbstractSlider>
#include <QList>
#include <set>

#include "Marks.h"

/// The recording as a line: where the picture shown lies, where its key frames are, and in red which pictures
/// were found broken. A slider whose
/// value is the picture's number; a click goes to that place, and dragging reports every place passed.
class CxTimeline : public QAbstractSlider
{
    Q_OBJECT

public:
    explicit CxTimeline(QWidget* parent = nullptr);

    void setRecording(int count, double fps, QList<int> const& keyFrames); ///< no pictures: an empty line
    void setRate(double fps) { m_fps = fps; }
    void markBroken(int number);         ///< until the next setRecording()
    void setMarks(SxMarks const& marks); ///< likewise
    void setShownNumber(int number); ///< moves the handle, unless the user holds it, without valueChanged()

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void brokenMarked(int number); ///< by markBroken()
    /// The mouse points there, without a button pressed; -1: nowhere. \p bottom: what is shown of it stands
    /// above this place on the screen, and leaves room for the text.
    void pointed(int number, QPoint const& bottom);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QRectF groove() const;
    double positionOf(int number) const;
    int numberAt(double x) const;
    void paintKeyFrames(QPainter& painter) const;
    void paintBroken(QPainter& painter) const;
    QRectF markedPart() const;

    double m_fps = 0.0;
    QList<int> m_keyFrames;
    std::set<int> m_broken;
    SxMarks m_marks;
    bool m_isHovered = false;
};
