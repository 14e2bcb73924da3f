#pragma once

#include <QStringList>

/// What is damaged in one input after the other, told in few sentences however much it is: what comes
/// first when it comes, the rest at the input's end.
class CxInputDamage
{
public:
    void begin(QString const& inputName);
    void
    addPicture(int number);   ///< it was delivered, but is not what it was; \p number from 0 over all inputs
    void addPart(int number); ///< something that no picture came from, before the picture of that number
    void addCut(QString const& how); ///< pictures are missing; the end of a sentence. Only the first counts
    void end();                      ///< of the input
    void forget();                   ///< all of this input since the last takeWarnings()

    bool isAny() const { return m_isAny; } ///< since the first input
    QStringList takeWarnings();

private:
    void warn(QString const& what);

    QString m_inputName;
    bool m_isAny = false;
    bool m_isCut = false;
    int m_pictures = 0;
    int m_lastPicture = 0;
    int m_firstPicture = 0;
    int m_parts = 0;
    QStringList m_ofInput; ///< warnings of this input, yet to be taken
    QStringList m_warnings;
};
