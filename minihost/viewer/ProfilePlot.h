#pragma once

#include <QWidget>
#include <vector>

#include "ShownPicture.h"

/// The samples along a line, from its beginning on the left, between the lowest and the highest of them.
class CxProfilePlot : public QWidget
{
    Q_OBJECT

public:
    explicit CxProfilePlot(QWidget* parent = nullptr);

    void setProfile(std::vector<SxPixel> const& profile);

    QSize sizeHint() const override { return {220, 110}; }
    QSize minimumSizeHint() const override { return {120, 80}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    double heightOf(int sample) const;

    std::vector<SxPixel> m_profile;
    int m_lowest = 0;
    int m_highest = 0;
};
