#pragma once

#include <QDockWidget>

#include "VerifyJob.h"

class QTreeWidget;

/// Below the picture: which pictures are broken and why, each a click or Enter away.
class CxBrokenList : public QDockWidget
{
    Q_OBJECT

public:
    explicit CxBrokenList(QWidget* parent);

    void setRanges(QVector<SxBrokenRange> const& ranges, double fps);
    void setRate(double fps);

signals:
    void chosen(int number);

private:
    void resizeColumns();

    QTreeWidget* m_rows;
};
