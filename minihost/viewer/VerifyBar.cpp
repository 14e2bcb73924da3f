#include "VerifyBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

static constexpr int kWidth = 90;

CxVerifyBar::CxVerifyBar(QWidget* parent)
    : QWidget(parent)
    , m_progress(new QProgressBar(this))
    , m_stop(new QToolButton(this))
{
    setObjectName(QStringLiteral("verifyBar"));
    m_progress->setObjectName(QStringLiteral("verifyProgress"));
    m_progress->setAccessibleName(tr("Progress of verifying"));
    m_progress->setFixedSize(kWidth, fontMetrics().height() + 4);
    m_stop->setObjectName(QStringLiteral("verifyStop"));
    m_stop->setText(tr("Stop"));
    m_stop->setToolTip(tr("Stop verifying"));
    m_stop->setAccessibleName(tr("Stop verifying"));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new QLabel(tr("Verifying"), this));
    row->addWidget(m_progress);
    row->addWidget(m_stop);
    connect(m_stop, &QToolButton::clicked, this, &CxVerifyBar::stopRequested);
}

void CxVerifyBar::showProgress(int examined, int pictures)
{
    m_progress->setRange(0, pictures);
    m_progress->setValue(examined);
    setToolTip(tr("%1 of %2 pictures looked at").arg(QString::number(examined), QString::number(pictures)));
}
