#pragma once

#include <QMap>
#include <QString>
#include <QVariant>
#include <QWidget>

#include "openH264Options.h"

/// The encoder's options in the host's save dialog: a plain widget whose children are found by
/// object name and class, here and by hosts, and never through kept pointers. So it works inside
/// any container, and outlives the encoder that built it.
///
/// Children: "slH264Quality" (QSlider), "chkH264Advanced" (QCheckBox), "spinH264KeyFramerate"
/// (QSpinBox), "cbH264Complexity", "cbH264ProfileIdc", "cbH264LevelIdc" (QComboBox, the number as
/// item data), "btnDefault" (QPushButton), and a label "lb..." for each of the advanced four.
class CxPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CxPanel(QWidget* parent);

public slots:
    void onDefault(bool checked);  ///< puts the encoder's defaults into the widgets; the argument is ignored
    void onAdvanced(bool checked); ///< shows or hides the advanced rows
};

/// Builds a panel that shows \p options; \p parent owns it. A complexity, profile or level that the
/// lists do not offer is replaced in \p options too, so that both agree.
CxPanel* fx_NewPanel(QWidget* parent, SxEncoderOptions& options);

/// Reads a panel, or whatever of it is found under \p widget, into the encoder's option keys. Empty
/// for null.
QMap<QString, QVariant> fx_OptionsFromPanel(QWidget const* widget);
