#pragma once

#include <QWidget>
#include <map>
#include <set>

#include "OpenedRecording.h"

/// How many pictures were skipped just before each picture of the recording, by its number, where any were;
/// under the number behind the last those at the end.
std::map<int, int> fx_SkippedBefore(QVector<SxPictureRange> const& skipped);

/// The recording as a graph of its pictures' bytes: key frames coloured, broken pictures red, amber where the
/// encoder skipped some. The wheel zooms in as far as single pictures; a click or a drag chooses one.
class CxOverview : public QWidget
{
    Q_OBJECT

public:
    explicit CxOverview(QWidget* parent = nullptr);

    void setRecording(SxOpenedRecording const& info); ///< shows all of it
    void markBroken(int number);                      ///< until the next setRecording()
    void setShownNumber(int number);                  ///< scrolls there when it is outside

    double firstShown() const { return m_first; }      ///< number at the left edge
    double shownCount() const { return m_shownCount; } ///< pictures from there to the right edge

    QSize sizeHint() const override { return {400, 56}; }
    QSize minimumSizeHint() const override { return {120, 40}; }

signals:
    void chosen(int number);
    void pointed(int number, QPoint const& bottom); ///< as CxTimeline tells it

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    struct SxColumn; ///< what one column of the screen shows
    std::vector<SxColumn> columns(int width) const;
    double positionOf(double number) const;
    int numberAt(double x) const;
    void zoom(double factor, double x);
    void scrollTo(double first);
    QString textOf(int number) const;

    SxOpenedRecording m_info;
    std::map<int, int> m_skippedBefore;
    std::set<int> m_broken;
    int m_number = -1;
    double m_first = 0.0;
    double m_shownCount = 1.0;
};
