#include "ProgressLine.h"

#include <QStringList>
#include <algorithm>

#include "Console.h"
#include "Readable.h"

static constexpr int kBarWidth = 20;
static constexpr qint64 kRedrawMs = 100;

CxProgressLine::CxProgressLine(int total)
    : m_total(total)
{
    m_running.start();
    m_sinceShown.start();
}

void CxProgressLine::update(int done, qint64 bytes, QString const& remark)
{
    if (!Console::showsTransient() || m_sinceShown.elapsed() < kRedrawMs)
        return;
    m_sinceShown.start();

    double const seconds = std::max(static_cast<double>(m_running.nsecsElapsed()) / 1e9, 1e-3);
    double const speed = done / seconds;
    QStringList parts;
    if (m_total > 0) {
        int const filled = static_cast<int>(std::min<qint64>(qint64{kBarWidth} * done / m_total, kBarWidth));
        parts += QStringLiteral("[%1%2]").arg(QString(filled, QLatin1Char('#')),
                                              QString(kBarWidth - filled, QLatin1Char('.')));
        parts += QStringLiteral("%1/%2").arg(done).arg(m_total);
    } else {
        parts += fx_Count(done, "picture");
    }
    parts += QStringLiteral("%1/s").arg(speed, 0, 'f', speed < 10 ? 1 : 0);
    parts += fx_ReadableTime(seconds);
    if (m_total > done && speed > 0)
        parts += fx_ReadableTime((m_total - done) / speed) + QStringLiteral(" left");
    if (bytes >= 0)
        parts += fx_ReadableSize(bytes);
    if (!remark.isEmpty())
        parts += remark;
    Console::transient(parts.join(QStringLiteral("  ")));
}
