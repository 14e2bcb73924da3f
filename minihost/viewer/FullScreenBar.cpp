#include "FullScreenBar.h"

#include <QEvent>
#include <QLayout>

#include "PictureView.h"

static constexpr int kShownFor = 2000; // milliseconds after the mouse has moved

CxFullScreenBar::CxFullScreenBar(CxPictureView& view, QWidget& transport)
    : m_view(view)
    , m_transport(transport)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(kShownFor);
    connect(&m_rest, &QTimer::timeout, this, &CxFullScreenBar::hideUnlessUsed);
}

void CxFullScreenBar::setFullScreen(bool isFullScreen)
{
    if (isFullScreen == (m_home != nullptr))
        return;
    if (isFullScreen) {
        m_home = m_transport.parentWidget();
        m_transport.setParent(&m_view);
        m_transport.setAutoFillBackground(true);
        m_transport.hide();
        m_view.installEventFilter(this);
        return;
    }
    m_view.removeEventFilter(this);
    m_rest.stop();
    m_home->layout()->addWidget(&m_transport);
    m_transport.setAutoFillBackground(false);
    m_transport.show();
    m_home = nullptr;
}

bool CxFullScreenBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseMove)
        show();
    return QObject::eventFilter(watched, event);
}

void CxFullScreenBar::show()
{
    int const height = m_transport.sizeHint().height();
    m_transport.setGeometry(0, m_view.height() - height, m_view.width(), height);
    m_transport.show();
    m_transport.raise();
    m_rest.start();
}

void CxFullScreenBar::hideUnlessUsed()
{
    if (m_transport.underMouse())
        m_rest.start();
    else
        m_transport.hide();
}
