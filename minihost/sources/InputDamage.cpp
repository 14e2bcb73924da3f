#include "InputDamage.h"

void CxInputDamage::warn(QString const& what)
{
    m_ofInput += QStringLiteral("%1: %2.").arg(m_inputName, what);
    m_isAny = true;
}

void CxInputDamage::begin(QString const& inputName)
{
    m_inputName = inputName;
    m_isCut = false;
    m_pictures = 0;
    m_parts = 0;
}

void CxInputDamage::addPicture(int number)
{
    if (++m_pictures == 1) {
        m_firstPicture = number;
        warn(QStringLiteral("picture %1 is damaged").arg(number));
    }
    m_lastPicture = number;
}

void CxInputDamage::addPart(int number)
{
    if (++m_parts == 1)
        warn(QStringLiteral("a damaged part before picture %1 cannot be decoded").arg(number));
}

void CxInputDamage::addCut(QString const& how)
{
    if (!m_isCut)
        warn(how);
    m_isCut = true;
}

void CxInputDamage::end()
{
    if (m_pictures > 1)
        warn(QStringLiteral("%1 pictures are damaged, the first is %2, the last %3")
                 .arg(m_pictures)
                 .arg(m_firstPicture)
                 .arg(m_lastPicture));
    if (m_parts > 1)
        warn(QStringLiteral("%1 damaged parts cannot be decoded").arg(m_parts));
    m_warnings += m_ofInput;
    forget();
}

void CxInputDamage::forget()
{
    m_ofInput.clear();
    begin(m_inputName);
}

QStringList CxInputDamage::takeWarnings()
{
    QStringList warnings = m_warnings + m_ofInput;
    m_warnings.clear();
    m_ofInput.clear();
    return warnings;
}
