#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

#include "CxImageFormat.h"
#include "IxChainDataSaver.h"
#include "SxPicBufInfo.h"

class QWidget;

/// A saver whose chain data are pictures (CxImageData), with its part in the host's save dialog.
///
/// Dialog operations run in the GUI thread. A widget belongs to the parent it was made with.
class IxImageDataSaver : public IxChainDataSaver
{
public:
    virtual QList<CxImageFormat> supportedImageFormats() = 0; ///< for the host's save dialog
    virtual void setOutputFile(QString const& fileName) = 0;  ///< taken at the first save()

    /// The format in which a picture of format \p input will be stored. False, with \p output
    /// untouched, when the saver cannot tell.
    virtual bool querySavedImageFormat(SxPicBufInfo const& input, SxPicBufInfo& output) = 0;

    /// What optionsFromWidgetInSaveDlg() gave; codec options go to the codec manager instead.
    virtual void setSaverOptions(QMap<QString, QVariant> const& options) = 0;
    virtual QWidget* widgetForSaveDlg(QWidget* parent) = 0; ///< null when there is nothing to choose

    /// The saver's own options as \p widget, of widgetForSaveDlg(), shows them.
    virtual QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget* widget) = 0;

    /// The options of the codec that \p widget shows, and the FourCC of that codec. The host gives
    /// them to the codec manager's encoders. The misspelling is the host's.
    virtual QMap<QString, QVariant> codecOptionsFromWigetInSaveDlg(QWidget* widget, unsigned int& fourCC) = 0;
};
