#include "BrokenList.h"

#include <QHeaderView>
#include <QTreeWidget>

#include "TimeCode.h"

static constexpr int kLeastLines = 4;

CxBrokenList::CxBrokenList(QWidget* parent)
    : QDockWidget(tr("Broken Pictures"), parent)
    , m_rows(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("brokenList"));
    setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
    m_rows->setObjectName(QStringLiteral("brokenRows"));
    m_rows->setAccessibleName(tr("Broken pictures"));
    m_rows->setHeaderLabels({tr("Pictures"), tr("Time"), tr("Cause")});
    m_rows->setRootIsDecorated(false);
    m_rows->setAlternatingRowColors(true);
    m_rows->setUniformRowHeights(true);
    m_rows->setMinimumHeight(kLeastLines * m_rows->fontMetrics().lineSpacing());
    setWidget(m_rows);
    auto const choose = [this](QTreeWidgetItem const* row) {
        emit chosen(row->data(0, Qt::UserRole).toInt());
    };
    connect(m_rows, &QTreeWidget::itemClicked, this, choose);
    connect(m_rows, &QTreeWidget::itemActivated, this, choose); // Enter
}

void CxBrokenList::setRanges(QVector<SxBrokenRange> const& ranges, double fps)
{
    m_rows->clear();
    for (SxBrokenRange const& range : ranges) {
        QString const numbers =
            range.first == range.last
                ? QString::number(range.first)
                : QStringLiteral("%1–%2").arg(QString::number(range.first), QString::number(range.last));
        auto* const row = new QTreeWidgetItem(m_rows, {numbers, fx_TimeCode(range.first, fps), range.cause});
        row->setData(0, Qt::UserRole, range.first);
        row->setToolTip(2, range.cause);
    }
    resizeColumns();
}

void CxBrokenList::resizeColumns()
{
    for (int const column : {0, 1})
        m_rows->resizeColumnToContents(column);
}

void CxBrokenList::setRate(double fps)
{
    for (int i = 0; i < m_rows->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const row = m_rows->topLevelItem(i);
        row->setText(1, fx_TimeCode(row->data(0, Qt::UserRole).toInt(), fps));
    }
    resizeColumns();
}
