#pragma once

#include <QCoreApplication>

class QWidget;

/// Asks for the file or source to open and for the file to save a picture to. Every answer is remembered, so
/// that the next question begins there, and is empty when the user changed his mind.
class CxFileDialogs
{
    Q_DECLARE_TR_FUNCTIONS(CxFileDialogs)

public:
    static QString recordingToOpen(QWidget* parent);
    static QString sourceToOpen(QWidget* parent);

    /// Suggests "<base>_<number>.png".
    static QString pictureToSave(QWidget* parent, QString const& base, int number);
};
