#pragma once

#include <QString>
#include <QtPlugin>

#include "tarnCoreGlobal.h"

class CxImageData;
class QGraphicsSceneMouseEvent;
class QSettings;

/// What the host asks of a plug-in's one object. The host supplies default bodies for all of it, so
/// a plug-in overrides only what it has to say. Called in the GUI thread.
///
/// Slot order is fixed: the host and its plug-ins are built apart.
class TARNCORE_EXPORT CxPlugin
{
public:
    virtual ~CxPlugin();

    /// Called once after loading: the place to register classes with CxRTTI. False: the host
    /// unloads the plug-in.
    virtual bool init();
    virtual void finish(); ///< called once before unloading
    virtual void loadSettings(QSettings* settings);
    virtual void saveSettings(QSettings* settings);

    virtual QString copyrightNotice() const; ///< licence texts that the host must show
    virtual QString name() const;            ///< short name for lists
    virtual QString author() const;
    virtual QString description() const;
    virtual void version(int& major, int& minor, int& build) const;
    virtual QString version() const; ///< the three numbers as "major.minor.build"
    virtual QString website() const;

    virtual void activeViewChanged(int view);
    virtual void viewAboutToClose(int view);
    virtual void newCameraConnected(void* camera);
    virtual void cameraDisconnected(void* camera);
    virtual void viewGotNewImage(int view, CxImageData const* image);
    virtual void viewMouseBtnPressEvent(int view, QGraphicsSceneMouseEvent* event);
    virtual void viewMouseMoveEvent(int view, QGraphicsSceneMouseEvent* event);
    virtual void viewMouseBtnReleaseEvent(int view, QGraphicsSceneMouseEvent* event);
    virtual void viewMouseDoubleClickEvent(int view, QGraphicsSceneMouseEvent* event);
    virtual void customCommand(QString const& command, int view, int argument, void* in, void* out);
};

Q_DECLARE_INTERFACE(CxPlugin, "com.quarn.CxPlugin")
