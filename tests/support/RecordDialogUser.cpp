#include "support/RecordDialogUser.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

CxRecordDialogUser::CxRecordDialogUser(CxMainWindow& window)
{
    // The dialog before it may have been the active one until now.
    QApplication::setActiveWindow(&window);
    if (!QTest::qWaitForWindowActive(&window))
        qWarning("The window does not become active.");
    QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
    dialog = window.findChild<CxRecordDialog*>();
    isShown = dialog && QTest::qWaitForWindowExposed(dialog);
}

void CxRecordDialogUser::setFile(QString const& fileName) const
{
    auto* const edit = child<QLineEdit>("outputFile");
    edit->selectAll();
    QTest::keyClicks(edit, fileName);
}

void CxRecordDialogUser::setNumber(char const* name, int number) const
{
    auto* const box = child<QSpinBox>(name);
    box->selectAll();
    QTest::keyClicks(box, QString::number(number));
}

void CxRecordDialogUser::click(char const* name) const
{
    auto* const button = child<QAbstractButton>(name);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
}

QString CxRecordDialogUser::note() const { return child<QLabel>("note")->text(); }
