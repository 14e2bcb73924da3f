#include "RateControl.h"

#include <QAction>
#include <QFileInfo>

#include "Actions.h"
#include "MessageBar.h"
#include "NotedRate.h"
#include "PlayControl.h"
#include "RateDialog.h"

CxRateControl::CxRateControl(CxActions& actions, CxPlayControl& play, CxMessageBar& messages, QWidget& window)
    : m_play(play)
    , m_messages(messages)
    , m_window(window)
{
    connect(actions.setRate, &QAction::triggered, this, &CxRateControl::ask);
}

void CxRateControl::ask()
{
    SxOpenedRecording const& info = m_play.player().info();
    QString const name = info.fileName;
    auto* const dialog =
        new CxRateDialog(info.count, info.rate, QFileInfo(fx_SidecarName(name)).fileName(), &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &CxRateDialog::chosen, this,
            [this, name](SxPictureRate const& rate) { note(name, rate); });
    dialog->open();
}

void CxRateControl::note(QString const& recording, SxPictureRate const& rate)
{
    QString error;
    if (!fx_NoteRate(recording, m_play.player().info().count, rate, error)) {
        m_messages.showMessage(CxMessageBar::Kind::Warning,
                               tr("The frame rate could not be noted beside “%1”, so it stays as it was.")
                                   .arg(QFileInfo(recording).fileName()),
                               {error});
        return;
    }
    m_play.setRate(rate);
    emit told(
        rate.isKnown()
            ? tr("Noted: %1 pictures a second.").arg(m_window.locale().toString(rate.perSecond(), 'g', 5))
            : tr("No frame rate is noted any more."));
}
