#pragma once

#include <QFile>
#include <QObject>
#include <cstdlib>
#include <memory>

#include "IxImageDataSaver.h"
#include "SxPicBuf.h"
#include "openH264Encoder.h"

/// Writes pictures as a raw H.264 file: an Annex B byte stream (ITU-T H.264, annex B) without a
/// container, the encoder's access units in call order with nothing between them.
///
/// One object a recording: the first save() opens the file, truncating it, and takes an encoder from
/// the codec manager, with whatever options that gave it; deleting the saver ends the recording. No
/// failure in between closes the file or drops the encoder. The output QFile is a QObject child of
/// the saver, so a host can follow the recording by its pos(), which counts bytes still buffered.
class CxH264VideoSaver : public QObject, public IxImageDataSaver
{
    Q_OBJECT
    Q_CLASSINFO("CustomName", "H.264 Video Saver (*.264)")

public:
    Q_INVOKABLE CxH264VideoSaver() {} // the host creates us through the meta-object
    ~CxH264VideoSaver() override;

    void setSequenceSize(int count) override; ///< kept, negative as 0; the saver itself does not need it

    /// Encodes and writes one picture of a CxImageData, scaled first where the encoder's level asks
    /// for less. \p index is ignored.
    ///
    /// True also for a picture that the encoder skipped, with nothing written, and for one without
    /// any size. False, reported but for null data, a picture that is null or has a size but no
    /// pixels, and failed memory or scaling: the picture is not in the file and took no number.
    bool save(IxChainData const* data, int index) override;

    QList<CxImageFormat> supportedImageFormats() override;
    void setOutputFile(QString const& fileName) override; ///< without effect on an open file
    bool querySavedImageFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override;
    void setSaverOptions(QMap<QString, QVariant> const& options) override;

    /// A new container with the encoder's options panel; \p parent owns it. Null when there is no
    /// H.264 encoder.
    QWidget* widgetForSaveDlg(QWidget* parent) override;
    QMap<QString, QVariant>
    optionsFromWidgetInSaveDlg(QWidget* widget) override; ///< always {"codec": FourCC}

    /// The encoder's options as \p widget (the container, the panel or an ancestor) shows them, for
    /// the host to hand to the codec manager's encoders. \p fourCC is set in any case.
    QMap<QString, QVariant> codecOptionsFromWigetInSaveDlg(QWidget* widget, unsigned int& fourCC) override;

    /// Opens the output file and, once, takes an encoder. False when either fails; a file that
    /// opened stays open.
    bool open();

    /// Closes the file and deletes the encoder. Reports when the bytes still buffered cannot be written.
    void close();

    /// A buffer of at least \p size bytes, the first \p size of them zero; null without memory. The
    /// saver's own, reused and never shrunk: the next call may move it.
    uchar* allocBuffer(unsigned long size);

private:
    bool scale(SxPicBuf const& picture);
    bool write(SxPicBuf const& picture, unsigned long size);

    QString m_codecName = QStringLiteral("h264");
    int m_sequenceSize = 0;
    int m_frameCounter = 0; ///< frames written; the number of the next
    QString m_outputFileName;
    QMap<QString, QVariant> m_saverOptions;
    QFile m_file{this};
    std::unique_ptr<CxOpenH264Encoder> m_encoder; ///< null until open()
    SxPicBuf m_resized;                           ///< the picture at the encoder's size, when that differs
    SxPicBufInfo m_outputFormat;                  ///< what the encoder asks for, for the current picture
    unsigned long m_capacity = 0;                 ///< bytes of m_buffer as last allocated
    std::unique_ptr<uchar, SxFreeDeleter> m_buffer;
};
