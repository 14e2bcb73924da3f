#include "RateDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "TimeCode.h"

CxRateDialog::CxRateDialog(int pictures, SxPictureRate const& rate, QString const& noteName, QWidget* parent)
    : QDialog(parent)
    , m_pictures(pictures)
    , m_rate(new QComboBox(this))
    , m_length(new QLabel(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(QStringLiteral("rateDialog"));
    setWindowTitle(tr("Frame Rate"));
    m_rate->setObjectName(QStringLiteral("rateOfRecording"));
    m_rate->setEditable(true);
    m_rate->setCompleter(nullptr); // which would make 24000/1001 of a 2
    m_rate->setInsertPolicy(QComboBox::NoInsert);
    m_rate->addItem(tr("assume %1").arg(kPicturesASecond));
    for (char const* const each : {"5", "10", "12.5", "15", "24000/1001", "24", "25", "30000/1001", "30",
                                   "50", "60000/1001", "60", "100", "120", "240"})
        m_rate->addItem(QLatin1String(each));
    if (rate.isKnown())
        m_rate->setEditText(rate.exact());
    else
        m_rate->setCurrentIndex(0);
    m_rate->lineEdit()->selectAll();
    m_length->setObjectName(QStringLiteral("lengthAtRate"));
    auto* const note =
        new QLabel(tr("It is noted in “%1”; the recording itself stays as it is.").arg(noteName), this);
    note->setWordWrap(true);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &CxRateDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &CxRateDialog::reject);
    connect(m_rate, &QComboBox::editTextChanged, this, &CxRateDialog::showLength);
    auto* const form = new QFormLayout(this);
    form->addRow(tr("&Pictures a second:"), m_rate);
    form->addRow(tr("Length:"), m_length);
    form->addRow(note);
    form->addRow(m_buttons);
    showLength();
}

/// What the box says, an unknown rate for its first entry; nothing when it is no rate.
std::optional<SxPictureRate> CxRateDialog::rate() const
{
    QString text = m_rate->currentText().trimmed();
    if (text == m_rate->itemText(0))
        return SxPictureRate();
    return fx_RateFromText(text.replace(QLatin1Char(','), QLatin1Char('.')));
}

void CxRateDialog::showLength()
{
    std::optional<SxPictureRate> const wanted = rate();
    m_length->setText(wanted ? fx_TimeCode(m_pictures, wanted->orAssumed())
                             : tr("no rate: a number such as 25, 29.97 or 30000/1001 is one"));
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(wanted.has_value());
}

void CxRateDialog::accept()
{
    if (std::optional<SxPictureRate> const wanted = rate()) {
        emit chosen(*wanted);
        QDialog::accept();
    }
}
