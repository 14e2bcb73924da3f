#include "FolderControl.h"

#include <QAction>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <algorithm>

#include "Actions.h"
#include "PictureFolder.h"
#include "PlayControl.h"

CxFolderControl::CxFolderControl(CxActions& actions, CxPlayControl& play, QWidget& window)
    : m_actions(actions)
    , m_play(play)
{
    window.setAcceptDrops(true);
    window.installEventFilter(this);
    connect(actions.nextFile, &QAction::triggered, this, [this] { go(1); });
    connect(actions.previousFile, &QAction::triggered, this, [this] { go(-1); });
    connect(actions.reload, &QAction::triggered, this, &CxFolderControl::reload);
    // Behind the player's own first picture.
    connect(&play, &CxPlayControl::opened, this, &CxFolderControl::returnToPlace, Qt::QueuedConnection);
}

/// While a recording is under way, nothing else can be opened.
bool CxFolderControl::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::DragEnter) {
        auto* const enter = static_cast<QDragEnterEvent*>(event);
        if (enter->mimeData()->hasUrls() && m_actions.open->isEnabled())
            enter->acceptProposedAction();
        return true;
    }
    if (event->type() == QEvent::Drop) {
        take(*static_cast<QDropEvent*>(event)->mimeData());
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void CxFolderControl::take(QMimeData const& data)
{
    QStringList names;
    for (QUrl const& url : data.urls())
        names.append(url.isLocalFile() ? url.toLocalFile() : url.toString());
    m_files = names.size() > 1 ? names : QStringList();
    if (!names.value(0).isEmpty())
        emit dropped(names.first());
}

bool CxFolderControl::isRecordingName(QString const& fileName)
{
    static QStringList const kSuffixes{QStringLiteral("h264"), QStringLiteral("264")};
    return kSuffixes.contains(QFileInfo(fileName).suffix().toLower());
}

void CxFolderControl::setEnabled(bool isEnabled)
{
    for (QAction* const action : {m_actions.nextFile, m_actions.previousFile, m_actions.reload})
        action->setEnabled(isEnabled);
}

/// In the order in which people count: 2 before 10.
QStringList CxFolderControl::neighbours() const
{
    QString const shown = m_play.player().info().fileName;
    if (m_files.contains(shown))
        return m_files;
    QDir const folder = QFileInfo(shown).absoluteDir();
    QStringList names;
    for (QString const& name : folder.entryList(QDir::Files)) {
        if (isRecordingName(name) || name == QFileInfo(shown).fileName())
            names.append(name);
    }
    std::sort(names.begin(), names.end(), fx_IsNaturallyBefore);
    for (QString& name : names)
        name = folder.filePath(name);
    return names;
}

void CxFolderControl::go(int places)
{
    QStringList const files = neighbours();
    QString const shown = m_play.player().info().fileName;
    auto const here = std::find_if(files.begin(), files.end(), [&](QString const& file) {
        return QFileInfo(file).absoluteFilePath() == QFileInfo(shown).absoluteFilePath();
    });
    QString const wanted = files.value(static_cast<int>(here - files.begin()) + places);
    if (here != files.end() && !wanted.isEmpty())
        emit openRequested(wanted);
    else
        emit told(places > 0 ? tr("This is the last recording.") : tr("This is the first recording."));
}

void CxFolderControl::reload()
{
    m_reloaded = m_play.player().info().fileName;
    m_place = m_play.player().reachedNumber();
    emit openRequested(m_reloaded);
}

void CxFolderControl::returnToPlace()
{
    if (m_play.player().info().fileName == m_reloaded)
        m_play.player().seek(m_place);
    m_reloaded.clear();
}
