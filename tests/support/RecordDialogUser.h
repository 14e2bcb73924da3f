#pragma once

#include "MainWindow.h"

/// The save dialog in a user's hands.
class CxRecordDialogUser
{
public:
    explicit CxRecordDialogUser(CxMainWindow& window); ///< opens it with the window's key

    template<class Widget>
    Widget* child(char const* name) const
    {
        return dialog->findChild<Widget*>(QLatin1String(name));
    }
    void setFile(QString const& fileName) const;
    void setNumber(char const* name, int number) const;
    void click(char const* name) const;
    QString note() const;

    CxRecordDialog* dialog; ///< null when none came
    bool isShown = false;
};
