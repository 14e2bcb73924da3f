#pragma once

#include <QWidget>

class CxActions;
class QAction;
class QVBoxLayout;

/// What the window shows before anything is open: the ways to begin.
class CxStartPage : public QWidget
{
    Q_OBJECT

public:
    CxStartPage(CxActions& actions, QWidget* parent);

    void setRecent(QList<QAction*> const& actions); ///< recordings opened last, each opened by its action

private:
    QVBoxLayout* m_recent;
    QWidget* m_recentBox;
};
