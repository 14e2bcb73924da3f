#pragma once

#include <QScrollArea>

class CxActions;
class QAction;
class QVBoxLayout;

/// What the window shows before anything is open: the ways to begin. It scrolls where there is no room for
/// them.
class CxStartPage : public QScrollArea
{
    Q_OBJECT

public:
    CxStartPage(CxActions& actions, QWidget* parent);

    void setRecent(QList<QAction*> const& actions); ///< recordings opened last, each opened by its action

private:
    QVBoxLayout* m_recent;
    QWidget* m_recentBox;
};
