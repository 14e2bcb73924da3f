#pragma once

#include <QTimer>
#include <functional>

/// Does something at once when asked, but no more than ten times a second, and then for the last request:
/// numbers that change faster nobody reads, and playing has the time.
class CxPace
{
public:
    explicit CxPace(std::function<void()> what)
        : m_what(std::move(what))
    {
        m_pause.setSingleShot(true);
        m_pause.setInterval(100);
        QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] {
            if (m_isWanted)
                request();
        });
    }

    void request()
    {
        m_isWanted = m_pause.isActive();
        if (m_isWanted)
            return;
        m_what();
        m_pause.start();
    }

private:
    std::function<void()> m_what;
    QTimer m_pause;
    bool m_isWanted = false;
};
