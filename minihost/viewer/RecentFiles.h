#pragma once

#include <QObject>
#include <QStringList>

class QAction;
class QMenu;

/// The recordings opened last, remembered between runs, as the actions of a menu; those that are missing
/// are left out.
class CxRecentFiles : public QObject
{
    Q_OBJECT

public:
    CxRecentFiles(QMenu* menu, QObject* parent); ///< fills \p menu

    void add(QString const& fileName);
    QList<QAction*> actions() const; ///< newest first; add() replaces them

signals:
    void chosen(QString const& fileName);

private:
    void fillMenu(QStringList const& files);

    QMenu* m_menu;
};
