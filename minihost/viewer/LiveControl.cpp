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

void CxLiveControl::open(QString const& name, SourceFactory const& make, QString const& fileName)
{
    m_coming = {std::make_unique<CxLiveSource>(make), name, fileName};
    CxLiveSource const* const source = m_coming.source.get();
    connect(source, &CxLiveSource::pictureCame, this,
            [this, source](SxShownPicture const& picture) { takePicture(source, picture); });
    connect(source, &CxLiveSource::sourceEnded, this,
            [this, source](QString const& error) { takeEnd(source, error); });
}

void CxLiveControl::begin()
{
    m_live = std::move(m_coming);
    m_coming = {};
    m_isFrozen = false;
    emit begun();
    m_actions.showPlaying(true);
}

void CxLiveControl::close()
{
    m_coming = {};
    if (!isOpen())
        return;
    m_live = {};
    m_actions.showPlaying(false);
}

void CxLiveControl::toggleFrozen()
{
    m_isFrozen = !m_isFrozen;
    m_actions.showPlaying(!m_isFrozen);
}

void CxLiveControl::takePicture(CxLiveSource const* source, SxShownPicture const& picture)
{
    if (source == m_coming.source.get())
        begin();
    if (m_isFrozen)
        return;
    m_view.setPicture(picture);
    m_transport.showLive(picture.number, picture.data->picBuf()->timestamp);
}

void CxLiveControl::takeEnd(CxLiveSource const* source, QString const& error)
{
    bool const isComing = source == m_coming.source.get();
    SxLive& over = isComing ? m_coming : m_live;
    QString const text = error.isEmpty() ? tr("The source has ended.") : tr("The source cannot be read.");
    if (!isComing)
        m_actions.showPlaying(false);
    if (!isComing && m_view.picture().image.isNull())
        m_view.setNotice(text);
    m_messages.showMessage(error.isEmpty() ? CxMessageBar::Kind::Information : CxMessageBar::Kind::Warning,
                           text, error.isEmpty() ? QStringList() : QStringList{error});
    over.source->wait(); // its thread has nothing left to do but to return
    over = {};
    if (isComing)
        emit openFailed();
    else
        emit ended();
}
