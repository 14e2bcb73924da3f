#pragma once

#include <QCoreApplication>

class QFileDialog;
class QWidget;

/// Asks for the file or source to open and for the file to save a picture to. Every answer is remembered, so
/// that the next question begins there, and is empty, or never comes, when the user changed his mind.
class CxFileDialogs
{
    Q_DECLARE_TR_FUNCTIONS(CxFileDialogs)

public:
    static QString recordingToOpen(QWidget* parent);
    static QString sourceToOpen(QWidget* parent);

    /// A dialog to be opened, which asks without stopping the window and deletes itself. Suggests
    /// "<base>_<number>.png"; the answer is its fileSelected().
    static QFileDialog* pictureToSave(QWidget* parent, QString const& base, int number);
};
