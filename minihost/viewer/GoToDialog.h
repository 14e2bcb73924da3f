#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

/// Asks for the number of a picture or its time, and shows which it is. One that does not exist is refused
/// with those that do, instead of being bent to the nearest.
class CxGoToDialog : public QDialog
{
    Q_OBJECT

public:
    CxGoToDialog(int shown, int last, double fps, QWidget* parent);

    void accept() override;

signals:
    void chosen(int number);

private:
    int number() const;
    void showMeaning();

    int m_last;
    double m_fps;
    QLineEdit* m_place;
    QLabel* m_meaning; ///< number and time of what was entered
    QLabel* m_note;
};
