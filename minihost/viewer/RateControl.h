#pragma once

#include <QObject>

#include "PictureRate.h"

class CxActions;
class CxMessageBar;
class CxPlayControl;
class QWidget;

/// Lets a person say at which rate the recording shown was taken, and keeps that beside it.
class CxRateControl : public QObject
{
    Q_OBJECT

public:
    CxRateControl(CxActions& actions, CxPlayControl& play, CxMessageBar& messages, QWidget& window);

signals:
    void told(QString const& text); ///< what was done, for a person

private:
    void ask();
    void note(QString const& recording, SxPictureRate const& rate);

    CxPlayControl& m_play;
    CxMessageBar& m_messages;
    QWidget& m_window; ///< of its question
};
