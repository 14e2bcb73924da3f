#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

/// Asks for the number of a picture. One that does not exist is refused with the numbers that do, instead of
/// being bent to the nearest.
class CxGoToDialog : public QDialog
{
    Q_OBJECT

public:
    CxGoToDialog(int shown, int last, QWidget* parent);

    void accept() override;

signals:
    void chosen(int number);

private:
    int m_last;
    QLineEdit* m_number;
    QLabel* m_note;
};
