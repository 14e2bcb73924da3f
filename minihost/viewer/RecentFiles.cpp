#include "RecentFiles.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>

static QString const kRecentKey = QStringLiteral("window/recent");
static constexpr int kMostRecent = 6;

CxRecentFiles::CxRecentFiles(QMenu* menu, QObject* parent)
    : QObject(parent)
    , m_menu(menu)
{
    fillMenu(QSettings().value(kRecentKey).toStringList());
}

QList<QAction*> CxRecentFiles::actions() const { return m_menu->actions(); }

void CxRecentFiles::add(QString const& fileName)
{
    QSettings settings;
    QStringList files = settings.value(kRecentKey).toStringList();
    QString const path = QFileInfo(fileName).absoluteFilePath();
    files.removeAll(path);
    files.prepend(path);
    files = files.mid(0, kMostRecent);
    settings.setValue(kRecentKey, files);
    fillMenu(files);
}

void CxRecentFiles::fillMenu(QStringList const& files)
{
    qDeleteAll(m_menu->actions());
    for (QString const& file : files.mid(0, kMostRecent)) {
        if (!QFileInfo::exists(file)) // it stays remembered: a disk may only be unplugged
            continue;
        QString const name = QFileInfo(file).fileName().replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* const action = m_menu->addAction(name);
        action->setToolTip(QDir::toNativeSeparators(file));
        connect(action, &QAction::triggered, this, [this, file] { emit chosen(file); });
    }
}
