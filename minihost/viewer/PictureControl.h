#pragma once

#include <QObject>

#include "ShownPicture.h"

class CxActions;
class CxMessageBar;
class CxPictureView;
class CxPlayer;
class QWidget;

/// Hands the picture shown on: to a file that is asked for, to numbered snapshots in a folder, to the
/// clipboard.
class CxPictureControl : public QObject
{
    Q_OBJECT

public:
    CxPictureControl(CxActions& actions, CxPictureView& view, CxPlayer& player, CxMessageBar& messages,
                     QWidget& window);
    void setEnabled(bool hasPicture);

signals:
    void told(QString const& text); ///< what was done, for a person

private:
    void ask();
    void save(SxShownPicture const& picture, QString const& fileName);
    void takeSnapshot();
    void chooseFolder();
    QString baseName() const;

    CxActions& m_actions;
    CxPictureView& m_view;
    CxPlayer& m_player;
    CxMessageBar& m_messages;
    QWidget& m_window; ///< of its questions
};
