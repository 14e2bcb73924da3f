#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "SxPicBuf.h"
#include "tarnCoreGlobal.h"

class QWidget;

/// Turns pictures into a coded video stream: one object a stream, one thread at a time.
class TARNCORE_EXPORT IxVideoEncoder
{
public:
    virtual ~IxVideoEncoder() {}

    virtual QString name() = 0;
    virtual unsigned int fourCC() = 0; ///< four characters, the first in the lowest byte

    /// Encodes one picture. \p size: in, the bytes at \p buffer; out, the bytes written, 0 when the
    /// encoder skipped the picture. \p keyFrame may be null. False: nothing usable was written.
    virtual bool encode(SxPicBuf const& picture, void* buffer, unsigned long& size, bool* keyFrame) = 0;

    virtual unsigned long maxEncodedSize(SxPicBufInfo const& format) = 0; ///< bytes that encode() may need

    /// The format in which the encoder wants pictures of format \p input. The misspelling is the host's.
    virtual void queryOuputFormat(SxPicBufInfo const& input, SxPicBufInfo& output) = 0;

    virtual void setEncoderOptions(QMap<QString, QVariant> const& options) = 0; ///< before the first encode()
    virtual double getForcedFps(); ///< frame rate to use whatever the pictures say; 0 for none, the default

    virtual QWidget* widgetForSaveDlg(QWidget* parent) = 0; ///< shows the options, belongs to \p parent

    /// What such a widget shows, for setEncoderOptions().
    virtual QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget* widget) = 0;
};
