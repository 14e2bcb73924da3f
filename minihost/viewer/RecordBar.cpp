#include "RecordBar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>

#include "Icons.h"

CxRecordBar::CxRecordBar(QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_stop(new QPushButton(tr("S&top"), this))
{
    setObjectName(QStringLiteral("recordBar"));
    setFrameShape(QFrame::StyledPanel);
    m_text->setObjectName(QStringLiteral("recordText"));
    m_stop->setObjectName(QStringLiteral("recordStop"));
    m_stop->setIcon(style()->standardIcon(QStyle::SP_MediaStop));
    m_progress->setAccessibleName(tr("Progress of the recording"));

    auto* const lamp = new QLabel(this);
    int const side = fontMetrics().height();
    lamp->setPixmap(fx_RecordIcon().pixmap(side, side));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->addWidget(lamp);
    row->addWidget(m_text, 1);
    row->addWidget(m_progress);
    row->addWidget(m_stop);
    connect(m_stop, &QPushButton::clicked, this, &CxRecordBar::stopRequested);
    hide();
}

void CxRecordBar::begin(QString const& fileName, int expectedPictures)
{
    m_name = QFileInfo(fileName).fileName();
    m_progress->setVisible(expectedPictures > 0);
    m_progress->setRange(0, std::max(expectedPictures, 1));
    showProgress({});
    show();
}

void CxRecordBar::showProgress(SxRecordSummary const& summary)
{
    m_progress->setValue(summary.given);
    QStringList parts{tr("%n picture(s)", nullptr, summary.given)};
    if (!summary.skipped.isEmpty())
        parts.append(tr("%n skipped", nullptr, static_cast<int>(summary.skipped.size())));
    parts.append(locale().formattedDataSize(summary.bytes, 1, QLocale::DataSizeSIFormat));
    m_text->setText(tr("Recording to %1: %2").arg(m_name, parts.join(QStringLiteral(", "))));
}
