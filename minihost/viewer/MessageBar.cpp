#include "MessageBar.h"

#include <QAccessible>
#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

CxMessageBar::CxMessageBar(QWidget* parent)
    : QFrame(parent)
    , m_icon(new QLabel(this))
    , m_text(new QLabel(this))
    , m_action(new QPushButton(this))
    , m_detailsButton(new QPushButton(tr("&Details"), this))
    , m_close(new QToolButton(this))
    , m_details(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("messageBar"));
    setFrameShape(QFrame::StyledPanel);
    // The colours of a tool tip: made for short notes, and readable in any palette.
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    m_text->setForegroundRole(QPalette::ToolTipText);
    m_text->setObjectName(QStringLiteral("messageText"));
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_text->setMinimumWidth(1); // nor may a long word widen the window
    m_text->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);

    m_action->setObjectName(QStringLiteral("messageAction"));
    m_detailsButton->setObjectName(QStringLiteral("messageDetails"));
    m_detailsButton->setCheckable(true);
    m_close->setObjectName(QStringLiteral("messageClose"));
    m_close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    m_close->setAutoRaise(true);
    m_close->setToolTip(tr("Close this message"));
    m_close->setAccessibleName(tr("Close this message"));
    m_details->setReadOnly(true);
    m_details->setTabChangesFocus(true);
    m_details->setAccessibleName(tr("Details of the message"));
    m_details->setFixedHeight(5 * fontMetrics().lineSpacing());

    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(8, 6, 8, 6);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_icon, 0, 0);
    grid->addWidget(m_text, 0, 1);
    grid->addWidget(m_action, 0, 2);
    grid->addWidget(m_detailsButton, 0, 3);
    grid->addWidget(m_close, 0, 4);
    grid->addWidget(m_details, 1, 1, 1, 4);

    connect(m_close, &QToolButton::clicked, this, &CxMessageBar::dismiss);
    connect(m_action, &QPushButton::clicked, this, &CxMessageBar::triggered);
    connect(m_detailsButton, &QPushButton::toggled, m_details, &QWidget::setVisible);
    dismiss();
}

void CxMessageBar::showMessage(Kind kind, QString const& text, QStringList const& details)
{
    m_kind = kind;
    QStyle::StandardPixmap const icon =
        kind == Kind::Warning ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    int const side = style()->pixelMetric(QStyle::PM_SmallIconSize);
    m_icon->setPixmap(style()->standardIcon(icon).pixmap(side, side));
    m_text->setText(text);
    m_text->setAccessibleName(text);
    m_details->setPlainText(details.join(QLatin1Char('\n')));
    m_detailsButton->setChecked(false);
    m_detailsButton->setVisible(!details.isEmpty());
    m_details->hide();
    m_action->hide();
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void CxMessageBar::offer(QString const& actionText)
{
    m_action->setText(actionText);
    m_action->show();
}

QString CxMessageBar::text() const { return isHidden() ? QString() : m_text->text(); }

QString CxMessageBar::details() const { return m_details->toPlainText(); }

void CxMessageBar::dismiss() { hide(); }
