#include "TransportBar.h"

#include <QActionGroup>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "Actions.h"
#include "TimeCode.h"
#include "Timeline.h"

static constexpr int kButtonSide = 24;
static constexpr int kRecordIconSide = 16;

CxTransportBar::CxTransportBar(CxActions& actions, QWidget* parent)
    : QWidget(parent)
    , m_timeline(new CxTimeline(this))
    , m_number(new QLabel(this))
    , m_time(new QLabel(this))
    , m_speed(new QComboBox(this))
{
    m_timeline->setObjectName(QStringLiteral("timeline"));
    m_timeline->setAccessibleName(tr("Timeline"));
    m_timeline->setAccessibleDescription(
        tr("Number of the picture shown; marks below show key frames, red ones broken pictures"));

    auto* const row = new QHBoxLayout;
    row->setSpacing(2);
    for (QAction* const action :
         {actions.first, actions.previousKeyFrame, actions.previousPicture, actions.play, actions.nextPicture,
          actions.nextKeyFrame, actions.last, actions.loop})
        row->addWidget(newPlayerButton(action));
    connectSpeed(actions);
    row->addSpacing(6);
    row->addWidget(m_speed);
    nameLabels();
    for (QLabel* const label : {m_number, m_time}) {
        row->addSpacing(12);
        row->addWidget(label);
    }
    row->addSpacing(12);
    row->addStretch(1);
    row->addWidget(newRecordButton(actions.record));

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 8, 4);
    column->setSpacing(2);
    column->addWidget(m_timeline);
    column->addLayout(row);
    setRecording({});
}

QToolButton* CxTransportBar::newButton(QAction* action)
{
    auto* const button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setObjectName(action->objectName() + QStringLiteral("Button"));
    button->setFocusPolicy(Qt::TabFocus); // a click leaves the keys to the picture
    button->installEventFilter(this);
    return button;
}

QToolButton* CxTransportBar::newPlayerButton(QAction* action)
{
    QToolButton* const button = newButton(action);
    button->setIconSize({kButtonSide, kButtonSide});
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setAutoRaise(true);
    auto const takeName = [button, action] {
        button->setAccessibleName(QString(action->text()).remove(QLatin1Char('&')));
    };
    takeName();
    connect(action, &QAction::changed, button, takeName);
    return button;
}

QToolButton* CxTransportBar::newRecordButton(QAction* action)
{
    QToolButton* const button = newButton(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setIconSize({kRecordIconSide, kRecordIconSide});
    return button;
}

/// The box shows which of the speeds is checked, and choosing in it triggers that one.
void CxTransportBar::connectSpeed(CxActions& actions)
{
    m_speed->setObjectName(QStringLiteral("speed"));
    m_speed->setAccessibleName(tr("Speed"));
    m_speed->setToolTip(tr("Speed"));
    m_speed->setFocusPolicy(Qt::TabFocus);
    m_speed->installEventFilter(this);
    for (QAction* const action : actions.speeds->actions())
        m_speed->addItem(action->text());
    auto const follow = [this, &actions] {
        m_speed->setCurrentIndex(
            static_cast<int>(actions.speeds->actions().indexOf(actions.speeds->checkedAction())));
    };
    follow();
    QAction* const anySpeed = actions.speeds->actions().first();
    connect(anySpeed, &QAction::changed, this,
            [this, anySpeed] { m_speed->setEnabled(anySpeed->isEnabled()); });
    connect(actions.speeds, &QActionGroup::triggered, this, follow);
    connect(m_speed, QOverload<int>::of(&QComboBox::activated), this,
            [&actions](int index) { actions.speeds->actions().at(index)->trigger(); });
}

void CxTransportBar::nameLabels()
{
    m_number->setObjectName(QStringLiteral("number"));
    m_number->setAccessibleName(tr("Number of the picture shown"));
    m_time->setObjectName(QStringLiteral("time"));
    m_time->setAccessibleName(tr("Time of the picture shown"));
    QFont bold = m_number->font();
    bold.setBold(true);
    m_number->setFont(bold);
}

/// Space is play and pause, except on a control that was reached with Tab: there it presses that.
bool CxTransportBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
        event->accept();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void CxTransportBar::setRecording(SxOpenedRecording const& info)
{
    m_info = info;
    m_timeline->setRecording(info.count, info.fps, info.keyFrames);
    showNumber(-1);
}

void CxTransportBar::setRate(double fps)
{
    m_info.fps = fps;
    m_timeline->setRate(fps);
    showNumber(m_timeline->value());
}

void CxTransportBar::showNumber(int number)
{
    bool const isShown = number >= 0 && m_info.count > 0;
    m_number->setText(isShown ? tr("Picture %1 of 0–%2").arg(number).arg(m_info.count - 1) : QString());
    m_time->setText(isShown ? fx_TimeCode(number, m_info.fps) : QString());
    if (isShown)
        m_timeline->setShownNumber(number);
}

void CxTransportBar::showLive(int number, quint64 timestamp)
{
    m_number->setText(tr("Live, picture %1").arg(number));
    m_time->setText(fx_TimeCode(static_cast<int>(timestamp / 1000), 1000.0));
}
