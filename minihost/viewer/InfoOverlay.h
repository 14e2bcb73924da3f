#pragma once

#include <QLabel>

class CxLiveControl;
class CxPictureView;
class CxPlayControl;
class QAction;

/// Written over the picture, while its action is checked: what is shown, how it was coded, and which picture.
class CxInfoOverlay : public QLabel
{
    Q_OBJECT

public:
    CxInfoOverlay(QAction* action, CxPictureView& view, CxPlayControl& play, CxLiveControl const& live);

private:
    void showInfo();
    QStringList recordingLines() const;
    QStringList liveLines() const;
    QString formatLine(QString const& rate) const;

    CxPictureView& m_view;
    CxPlayControl& m_play;
    CxLiveControl const& m_live;
};
