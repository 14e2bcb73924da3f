#pragma once

#include <QIcon>
#include <QKeySequence>
#include <QObject>
#include <QPalette>

#include "LookActions.h"

class QAction;
class QActionGroup;
class QMenu;
class QMenuBar;

/// Everything the window can do, once: with text, key and icon, for menus, buttons and the key list alike.
class CxActions : public QObject
{
    Q_OBJECT

public:
    explicit CxActions(QObject* parent);

    void fill(QMenuBar* bar);
    QAction* add(char const* objectName, QString const& text, QList<QKeySequence> const& keys = {});
    void updateIcons(QPalette const& palette);
    void showPlaying(bool isPlaying); ///< the one button plays or pauses

    QMenu* recentMenu = nullptr; ///< filled by CxRecentFiles
    QAction* open;
    QAction* nextFile;
    QAction* previousFile;
    QAction* reload;
    QAction* closeFile;
    QAction* openCamera;
    QAction* openSource;
    QAction* record;
    QAction* savePicture;
    QAction* snapshot;
    QAction* snapshotFolder;
    QAction* verify;
    QAction* quit;
    QAction* copy;
    QAction* setIn;
    QAction* setOut;
    QAction* goToIn;
    QAction* goToOut;
    QAction* clearMarks;
    QAction* play;
    QAction* playBackwards;
    QAction* previousPicture;
    QAction* nextPicture;
    QAction* previousKeyFrame;
    QAction* nextKeyFrame;
    QAction* previousBroken;
    QAction* nextBroken;
    QAction* first;
    QAction* last;
    QAction* back1;    ///< seconds
    QAction* forward1; ///< likewise
    QAction* back10;
    QAction* forward10;
    QAction* goTo;
    QAction* loop;
    QAction* setRate;
    QAction* slower;
    QAction* faster;
    QAction* normalSpeed;
    QActionGroup* speeds; ///< each action's data is a factor
    QAction* fit;
    QAction* actualSize;
    QAction* zoomIn;
    QAction* zoomOut;
    QAction* fullScreen;
    CxLookActions look;
    QAction* keys;
    QAction* about;

private:
    void addReasons();

    QIcon m_playIcon;
    QIcon m_pauseIcon;
    bool m_isPlaying = false;
};
