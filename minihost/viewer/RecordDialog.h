#pragma once

#include <QDialog>

#include "IxImageDataSaver.h"
#include "PluginHost.h"
#include "Recorder.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QSpinBox;

/// What the user chose in the save dialog.
struct SxRecordChoice
{
    SxRecordRequest request;
    int first = 0; ///< of a recording: numbers of the pictures at both ends
    int last = -1;
    bool leavesOutBroken = false; ///< or ends at the first broken picture
};

/// Asks where to record to and how: the saver's formats, its own widget with the encoder's options, and
/// how much. Remembers the choice for the next time.
class CxRecordDialog : public QDialog
{
    Q_OBJECT

public:
    /// \param pictures  of the recording to save from; -1 for a live source.
    /// \param sourceFile  what is being read, which cannot be the output; may be empty.
    /// \param format  of the pictures, to tell what the encoder will shrink; without sizes when unknown.
    CxRecordDialog(int pictures, double fps, QString const& sourceFile, SxPicBufInfo const& format,
                   QWidget* parent);

    void setRange(int first, int last); ///< of a recording: the part to begin with

    SxRecordChoice choice() const { return m_choice; } ///< valid once accepted

    /// Gives the codec manager the codec options that the user last chose, so that panels show them.
    static void applyRememberedOptions();

public slots:
    void accept() override;

private:
    void addFile(class QFormLayout* form);
    void addRange(class QFormLayout* form, int pictures);
    void addSaverWidget(class QVBoxLayout* column);
    void addButtons(QString const& startText);
    void browse();
    void updateState();
    void tellSize();
    QString suggestedFile(QString const& sourceFile) const;
    bool mayWrite(QString const& fileName);
    void collect();

    double m_fps;
    QString m_sourceFile;
    SxPicBufInfo m_pictures;
    SxCreated<IxImageDataSaver> m_saver;
    QWidget* m_saverWidget = nullptr; ///< null when the saver has nothing to choose
    QLineEdit* m_file;
    QComboBox* m_format;
    QSpinBox* m_first = nullptr; ///< for a recording
    QSpinBox* m_last = nullptr;
    QCheckBox* m_leaveOutBroken = nullptr;
    QSpinBox* m_limit = nullptr; ///< for a live source
    QLabel* m_length = nullptr;
    QLabel* m_size; ///< says that the pictures will be smaller
    QLabel* m_note;
    QDialogButtonBox* m_buttons;
    SxRecordChoice m_choice;
};
