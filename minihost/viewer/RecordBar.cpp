#include "RecordBar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "Icons.h"
#include "RecordTexts.h"

CxRecordBar::CxRecordBar(QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_stop(new QPushButton(tr("S&top"), this))
    , m_warning(new QFrame(this))
    , m_warningText(new QLabel(m_warning))
{
    setObjectName(QStringLiteral("recordBar"));
    setFrameShape(QFrame::StyledPanel);
    m_text->setObjectName(QStringLiteral("recordText"));
    m_text->setMinimumWidth(1); // a long name may not widen the window
    m_stop->setObjectName(QStringLiteral("recordStop"));
    m_stop->setIcon(style()->standardIcon(QStyle::SP_MediaStop));
    m_progress->setAccessibleName(tr("Progress of the recording"));

    auto* const lamp = new QLabel(this);
    int const side = fontMetrics().height();
    lamp->setPixmap(fx_RecordIcon().pixmap(side, side));
    auto* const row = new QHBoxLayout;
    row->addWidget(lamp);
    row->addWidget(m_text, 1);
    row->addWidget(m_progress);
    row->addWidget(m_stop);
    auto* const icon = new QLabel(m_warning);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side, side));
    m_warningText->setObjectName(QStringLiteral("recordWarning"));
    m_warningText->setWordWrap(true);
    auto* const warningRow = new QHBoxLayout(m_warning);
    warningRow->setContentsMargins(0, 0, 0, 0);
    warningRow->addWidget(icon);
    warningRow->addWidget(m_warningText, 1);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 8, 4);
    column->addLayout(row);
    column->addWidget(m_warning);
    connect(m_stop, &QPushButton::clicked, this, &CxRecordBar::stopRequested);
    hide();
}

void CxRecordBar::begin(SxRecordRequest const& request, int expectedPictures)
{
    m_request = request;
    m_progress->setVisible(expectedPictures > 0);
    m_progress->setRange(0, std::max(expectedPictures, 1));
    showProgress({});
    show();
}

void CxRecordBar::showProgress(SxRecordSummary const& summary)
{
    m_progress->setValue(summary.given);
    QStringList const parts{tr("%n picture(s)", nullptr, summary.given),
                            locale().formattedDataSize(summary.bytes, 1, QLocale::DataSizeSIFormat)};
    QString const name = QFileInfo(m_request.outputFile).fileName();
    m_text->setText(tr("Recording to %1: %2").arg(name, parts.join(QStringLiteral(", "))));
    m_warningText->setText(CxRecordTexts::skipped(m_request.encoder, summary));
    m_warning->setVisible(!m_warningText->text().isEmpty());
}
