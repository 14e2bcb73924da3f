#include "GoToDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

CxGoToDialog::CxGoToDialog(int shown, int last, QWidget* parent)
    : QDialog(parent)
    , m_last(last)
    , m_number(new QLineEdit(QString::number(shown), this))
    , m_note(new QLabel(this))
{
    setObjectName(QStringLiteral("goToDialog"));
    setWindowTitle(tr("Go to Picture"));
    auto* const label = new QLabel(tr("&Number, 0 to %1:").arg(last), this);
    label->setBuddy(m_number);
    m_number->setObjectName(QStringLiteral("goToNumber"));
    m_number->selectAll();
    m_note->setObjectName(QStringLiteral("goToNote"));
    m_note->hide();
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CxGoToDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CxGoToDialog::reject);
    auto* const column = new QVBoxLayout(this);
    for (QWidget* const widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(m_number),
                                  static_cast<QWidget*>(m_note), static_cast<QWidget*>(buttons)})
        column->addWidget(widget);
}

void CxGoToDialog::accept()
{
    QString const text = m_number->text().trimmed();
    bool isNumber = false;
    int const number = text.toInt(&isNumber);
    if (!isNumber || number < 0 || number > m_last) {
        m_note->setText(tr("There is no picture “%1”: they are numbered from 0 to %2.")
                            .arg(text, QString::number(m_last)));
        m_note->show();
        m_number->selectAll();
        return;
    }
    emit chosen(number);
    QDialog::accept();
}
