#include "GoToDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "TimeCode.h"

CxGoToDialog::CxGoToDialog(int shown, int last, double fps, QWidget* parent)
    : QDialog(parent)
    , m_last(last)
    , m_fps(fps)
    , m_place(new QLineEdit(QString::number(shown), this))
    , m_meaning(new QLabel(this))
    , m_note(new QLabel(this))
{
    setObjectName(QStringLiteral("goToDialog"));
    setWindowTitle(tr("Go to Picture or Time"));
    auto* const label = new QLabel(tr("&Number, or time as 1:02.500 or 62.5 s:"), this);
    label->setBuddy(m_place);
    m_place->setObjectName(QStringLiteral("goToNumber"));
    m_place->selectAll();
    m_meaning->setObjectName(QStringLiteral("goToMeaning"));
    m_note->setObjectName(QStringLiteral("goToNote"));
    m_note->setWordWrap(true);
    m_note->hide();
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CxGoToDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CxGoToDialog::reject);
    connect(m_place, &QLineEdit::textChanged, this, &CxGoToDialog::showMeaning);
    auto* const column = new QVBoxLayout(this);
    for (QWidget* const widget :
         {static_cast<QWidget*>(label), static_cast<QWidget*>(m_place), static_cast<QWidget*>(m_meaning),
          static_cast<QWidget*>(m_note), static_cast<QWidget*>(buttons)})
        column->addWidget(widget);
    showMeaning();
}

/// What the text names; -1 when it is no picture of the recording.
int CxGoToDialog::number() const
{
    QString const text = m_place->text().trimmed();
    if (std::optional<qint64> const time = fx_TimeFromText(text)) {
        int const at = fx_PictureAt(*time, m_fps);
        return at <= m_last ? at : -1;
    }
    bool isNumber = false;
    int const number = text.toInt(&isNumber);
    return isNumber && number >= 0 && number <= m_last ? number : -1;
}

void CxGoToDialog::showMeaning()
{
    int const wanted = number();
    m_meaning->setText(wanted >= 0
                           ? tr("Picture %1, %2").arg(QString::number(wanted), fx_TimeCode(wanted, m_fps))
                           : tr("Pictures 0 to %1, times 0:00:00.000 to %2")
                                 .arg(QString::number(m_last), fx_TimeCode(m_last, m_fps)));
}

void CxGoToDialog::accept()
{
    int const wanted = number();
    if (wanted < 0) {
        m_note->setText(
            tr("There is no picture “%1”: they are numbered from 0 to %2, and the last begins at %3.")
                .arg(m_place->text().trimmed(), QString::number(m_last), fx_TimeCode(m_last, m_fps)));
        m_note->show();
        m_place->selectAll();
        return;
    }
    emit chosen(wanted);
    QDialog::accept();
}
