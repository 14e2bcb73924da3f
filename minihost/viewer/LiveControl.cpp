#include "LiveControl.h"

#include "Actions.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "TransportBar.h"

CxLiveControl::CxLiveControl(CxActions& actions, CxPictureView& view, CxTransportBar& transport,
                             CxMessageBar& messages)
    : m_actions(actions)
    , m_view(view)
    , m_transport(transport)
    , m_messages(messages)
{}

void CxLiveControl::open(SourceFactory const& make)
{
    m_view.setNotice(tr("Waiting for the first picture…"));
    m_isFrozen = false;
    m_source = std::make_unique<CxLiveSource>(make);
    connect(m_source.get(), &CxLiveSource::pictureCame, this, &CxLiveControl::takePicture);
    connect(m_source.get(), &CxLiveSource::sourceEnded, this, &CxLiveControl::takeEnd);
    m_actions.showPlaying(true);
}

void CxLiveControl::close() { m_source.reset(); }

void CxLiveControl::toggleFrozen()
{
    m_isFrozen = !m_isFrozen;
    m_actions.showPlaying(!m_isFrozen);
}

void CxLiveControl::takePicture(SxShownPicture const& picture)
{
    if (m_isFrozen)
        return;
    m_view.setPicture(picture);
    m_transport.showLive(picture.number, picture.data->picBuf()->timestamp);
}

void CxLiveControl::takeEnd(QString const& error)
{
    m_actions.showPlaying(false);
    QString const text = error.isEmpty() ? tr("The source has ended.") : tr("The source cannot be read.");
    if (m_view.picture().image.isNull())
        m_view.setNotice(text);
    m_messages.showMessage(error.isEmpty() ? CxMessageBar::Kind::Information : CxMessageBar::Kind::Warning,
                           text, error.isEmpty() ? QStringList() : QStringList{error});
    m_source->wait(); // its thread has nothing left to do but to return
    m_source.reset();
    emit ended();
}
