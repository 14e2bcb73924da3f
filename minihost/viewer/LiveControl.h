#pragma once

#include <QObject>
#include <memory>

#include "LiveSource.h"

class CxActions;
class CxMessageBar;
class CxPictureView;
class CxTransportBar;

/// Shows a camera or another running source in the window, and says when it has ended.
class CxLiveControl : public QObject
{
    Q_OBJECT

public:
    CxLiveControl(CxActions& actions, CxPictureView& view, CxTransportBar& transport, CxMessageBar& messages);

    /// Opens a source; begun() or openFailed() follows, with its first picture or without one. Until then,
    /// and when it fails, what was open stays so.
    /// \param name  for people.
    /// \param fileName  what is read, so that nothing is written over it; empty for no file.
    void open(QString const& name, SourceFactory const& make, QString const& fileName);
    void begin(); ///< shows the source being opened without waiting for its first picture
    void cancelOpening() { m_coming = {}; }
    void close();
    bool isOpen() const { return bool(m_live.source); }
    QString const& name() const { return m_live.name; }
    QString const& fileName() const { return m_live.fileName; }
    void toggleFrozen(); ///< the source goes on behind a picture that stands still

    void record(CxRecordJob* job) { m_live.source->record(job); } ///< while open; see CxLiveSource

signals:
    void begun();      ///< its first picture follows
    void openFailed(); ///< the reason is shown
    void ended();

private:
    struct SxLive
    {
        std::unique_ptr<CxLiveSource> source; ///< null for none
        QString name;
        QString fileName;
    };

    void takePicture(CxLiveSource const* source, SxShownPicture const& picture);
    void takeEnd(CxLiveSource const* source, QString const& error);

    CxActions& m_actions;
    CxPictureView& m_view;
    CxTransportBar& m_transport;
    CxMessageBar& m_messages;
    SxLive m_coming; ///< being opened beside what is shown
    SxLive m_live;
    bool m_isFrozen = false;
};
