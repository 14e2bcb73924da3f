#pragma once

#include <QObject>
#include <QStringList>

class CxActions;
class CxPlayControl;
class QMimeData;
class QWidget;

/// From the recording shown to the next or previous one: of its folder, or of several that were dropped on
/// the window together. Also opens it again, as it is by now.
class CxFolderControl : public QObject
{
    Q_OBJECT

public:
    CxFolderControl(CxActions& actions, CxPlayControl& play, QWidget& window);

    static bool isRecordingName(QString const& fileName); ///< by its suffix

    void setEnabled(bool isEnabled);

signals:
    void openRequested(QString const& fileName);
    void dropped(QString const& name); ///< a file or an address, to be opened
    void told(QString const& text);    ///< why nothing happens, for a person

protected:
    bool eventFilter(QObject* watched, QEvent* event) override; ///< of the window

private:
    void take(QMimeData const& data);
    void go(int places);
    void reload();
    void returnToPlace();
    QStringList neighbours() const;

    CxActions& m_actions;
    CxPlayControl& m_play;
    QStringList m_files; ///< dropped together: they count while one of them is open
    QString m_reloaded;  ///< the recording being opened again
    int m_place = 0;     ///< the picture that was shown of it
};
