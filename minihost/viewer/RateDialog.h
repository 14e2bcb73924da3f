#pragma once

#include <QDialog>

#include "PictureRate.h"

class QComboBox;
class QDialogButtonBox;
class QLabel;

/// Asks at which rate the pictures of a recording were taken, and shows how long it is then.
class CxRateDialog : public QDialog
{
    Q_OBJECT

public:
    /// \param rate  known until now, or none. \param noteName  of the file that keeps the answer.
    CxRateDialog(int pictures, SxPictureRate const& rate, QString const& noteName, QWidget* parent);

    void accept() override;

signals:
    void chosen(SxPictureRate const& rate); ///< unknown: it is to be assumed again

private:
    std::optional<SxPictureRate> rate() const;
    void showLength();

    int m_pictures;
    QComboBox* m_rate;
    QLabel* m_length;
    QDialogButtonBox* m_buttons;
};
