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

    void open(SourceFactory const& make);
    void close();
    bool isOpen() const { return bool(m_source); }
    void toggleFrozen(); ///< the source goes on behind a picture that stands still

    void record(CxRecordJob* job) { m_source->record(job); } ///< while open; see CxLiveSource

signals:
    void ended();

private:
    void takePicture(SxShownPicture const& picture);
    void takeEnd(QString const& error);

    CxActions& m_actions;
    CxPictureView& m_view;
    CxTransportBar& m_transport;
    CxMessageBar& m_messages;
    std::unique_ptr<CxLiveSource> m_source; ///< null while none is open
    bool m_isFrozen = false;
};
