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
static constexpr int kLeastWidth = 300;
static constexpr int kGaps = 60;   // margins, and the space between buttons and labels
static constexpr int kWordGap = 6; // between the record button's icon and its words

CxTransportBar::CxTransportBar(CxActions& actions, QWidget* parent)
    : QWidget(parent)
    , m_row(new QHBoxLayout)
    , m_timeline(new CxTimeline(this))
    , m_number(new QLabel(this))
    , m_time(new QLabel(this))
    , m_speed(new QComboBox(this))
{
    m_timeline->setObjectName(QStringLiteral("timeline"));
    m_timeline->setAccessibleName(tr("Timeline"));
    m_timeline->setAccessibleDescription(
        tr("Number of the picture shown; marks below show key frames, red ones broken pictures"));

    QHBoxLayout* const row = m_row;
    row->setSpacing(2);
    QVector<QWidget*> buttons;
    for (QAction* const action :
         {actions.first, actions.previousKeyFrame, actions.previousPicture, actions.play, actions.nextPicture,
          actions.nextKeyFrame, actions.last, actions.loop})
        buttons.append(newPlayerButton(action));
    for (QWidget* const button : buttons)
        row->addWidget(button);
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
    m_record = newRecordButton(actions.record);
    row->addWidget(m_record);
    // Previous and next picture, play and the number stay.
    m_leftOut = {{m_time}, {buttons[7]}, {m_speed}, {buttons[0], buttons[6]}, {buttons[1], buttons[5]}};

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

QSize CxTransportBar::minimumSizeHint() const { return {kLeastWidth, QWidget::minimumSizeHint().height()}; }

void CxTransportBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    fitRow();
}

/// Leaves out what there is no room for; all of it can be done with keys and in the menus, too.
void CxTransportBar::fitRow()
{
    int const words = fontMetrics().horizontalAdvance(m_record->text()) + kWordGap;
    int needed = kGaps;
    for (int i = 0; i < m_row->count(); ++i) {
        if (QWidget const* const widget = m_row->itemAt(i)->widget())
            needed += widget->sizeHint().width() + m_row->spacing();
    }
    if (m_record->toolButtonStyle() == Qt::ToolButtonIconOnly)
        needed += words;
    bool const hasWords = needed <= width();
    m_record->setToolButtonStyle(hasWords ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
    needed -= hasWords ? 0 : words;
    for (QVector<QWidget*> const& group : m_leftOut) {
        bool const hasRoom = needed <= width();
        for (QWidget* const widget : group) {
            widget->setVisible(hasRoom);
            needed -= hasRoom ? 0 : widget->sizeHint().width() + m_row->spacing();
        }
    }
}

/// The names are what a screen reader says of them.
void CxTransportBar::showTexts(QString const& number, QString const& time)
{
    m_number->setText(number);
    m_number->setAccessibleName(number.isEmpty() ? tr("Number of the picture shown") : number);
    m_time->setText(time);
    m_time->setAccessibleName(time.isEmpty() ? tr("Time of the picture shown")
                                             : tr("Time of the picture shown: %1").arg(time));
    fitRow();
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
    showTexts(isShown ? tr("Picture %1 of 0–%2").arg(number).arg(m_info.count - 1) : QString(),
              isShown ? fx_TimeCode(number, m_info.fps) : QString());
    if (!isShown)
        return;
    m_timeline->setShownNumber(number);
    m_timeline->setAccessibleName(tr("Timeline: %1, %2")
                                      .arg(m_number->text(), tr("%n key frame(s)", nullptr,
                                                                static_cast<int>(m_info.keyFrames.size()))));
}

void CxTransportBar::showLive(int number, quint64 timestamp)
{
    showTexts(tr("Live, picture %1").arg(number), fx_TimeCode(static_cast<int>(timestamp / 1000), 1000.0));
}
