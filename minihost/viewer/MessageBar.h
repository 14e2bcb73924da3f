#pragma once

#include <QFrame>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

/// One message above the picture, in words for people; what the program itself said is one click away
/// under "Details". Stays until it is closed or replaced.
class CxMessageBar : public QFrame
{
    Q_OBJECT

public:
    enum class Kind { Information, Warning };

    explicit CxMessageBar(QWidget* parent = nullptr); ///< hidden until there is a message

    void showMessage(Kind kind, QString const& text, QStringList const& details = {});

    /// Adds a button to the message shown; triggered() is what it does.
    void offer(QString const& actionText);

    Kind kind() const { return m_kind; } ///< of the last message
    QString text() const;
    QString details() const;

public slots:
    void dismiss();

signals:
    void triggered();

private:
    Kind m_kind = Kind::Information;
    QLabel* m_icon;
    QLabel* m_text;
    QPushButton* m_action;
    QPushButton* m_detailsButton;
    QToolButton* m_close;
    QPlainTextEdit* m_details;
};
