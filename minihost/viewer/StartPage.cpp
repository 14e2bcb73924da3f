#include "StartPage.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "Actions.h"

static QToolButton* fx_NewButton(QAction* action, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setDefaultAction(action);
    button->setAccessibleName(QString(action->text()).remove(QLatin1Char('&')));
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

CxStartPage::CxStartPage(CxActions& actions, QWidget* parent)
    : QScrollArea(parent)
    , m_recentBox(new QWidget(this))
{
    setObjectName(QStringLiteral("startPage"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // the buttons in it have it
    auto* const page = new QWidget(this);
    auto* const title = new QLabel(tr("What would you like to see?"), this);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    title->setFont(large);

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    for (QAction* const action : {actions.open, actions.openCamera, actions.openSource}) {
        QToolButton* const button = fx_NewButton(action, this);
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setIconSize({48, 48});
        button->setMinimumSize(150, 100);
        buttons->addWidget(button);
    }

    auto* const hint = new QLabel(tr("Or drop a recording into this window."), this);
    auto* const recentTitle = new QLabel(tr("Opened before"), m_recentBox);
    QFont bold = recentTitle->font();
    bold.setBold(true);
    recentTitle->setFont(bold);
    m_recent = new QVBoxLayout(m_recentBox);
    m_recent->setSpacing(2);
    m_recent->addWidget(recentTitle);

    auto* const inside = new QVBoxLayout;
    inside->setSpacing(18);
    inside->addWidget(title, 0, Qt::AlignHCenter);
    inside->addLayout(buttons);
    inside->addWidget(hint, 0, Qt::AlignHCenter);
    inside->addWidget(m_recentBox);
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    row->addLayout(inside);
    row->addStretch(1);
    auto* const column = new QVBoxLayout(page);
    column->addStretch(1);
    column->addLayout(row);
    column->addStretch(2);
    setWidget(page);
}

void CxStartPage::setRecent(QList<QAction*> const& actions)
{
    qDeleteAll(m_recentBox->findChildren<QToolButton*>());
    for (QAction* const action : actions) {
        QToolButton* const button = fx_NewButton(action, m_recentBox);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setAutoRaise(true);
        m_recent->addWidget(button);
    }
    m_recentBox->setVisible(!actions.isEmpty());
}
