#pragma once

#include <QString>
#include <QVector>
#include <atomic>
#include <functional>

#include "EncoderOptions.h"
#include "PictureRate.h"
#include "SxPicBufInfo.h"

class IxPictureSource;

/// What to record and where to.
struct SxRecordRequest
{
    QString outputFile; ///< truncated when it exists; whether that is allowed is the caller's business
    SxEncoderOptions encoder;
    QMap<QString, QVariant> saverOptions{
        {QStringLiteral("codec"), kFourCCH264}}; ///< as the saver's dialog part gives them
    int maxPictures = 0;                         ///< end after this many; 0: when the source ends
    QString sourceName;                          ///< for the sidecar
    bool keepsSidecar = true;                    ///< see fx_RecordWithSidecar()
    std::atomic<bool> const* stop = nullptr;     ///< set from anywhere to end after the current picture
};

/// Whose fault it was.
enum class RecordFailure {
    None,
    Source, ///< it cannot be read, or not on
    Output, ///< it cannot be written, or not on
    Other,
};

/// What became of a recording; also the progress so far while it runs.
struct SxRecordSummary
{
    QString error; ///< one sentence, or empty when nothing failed
    RecordFailure failure = RecordFailure::None;
    bool wasStopped = false;      ///< the stop flag ended it
    bool isCutShort = false;      ///< so pictures are missing that were asked for
    bool isSourceDamaged = false; ///< so not every picture is what it was, or all there
    int expected = -1;            ///< pictures that were to come, as far as known by now; else -1
    int given = 0;                ///< pictures that the source gave, whether they were lost or not
    int coded = 0;                ///< of these, how many the file holds completely
    QVector<int> skipped;         ///< numbers, from 0, of those that the encoder left out without an error
    QVector<int> lost;            ///< numbers of those that a live source gave faster than they were saved
    int missedByCamera = 0;       ///< pictures that a live source left out, by its time stamps; not in given
    qint64 bytes = 0;             ///< in the file, or that a pipe or device took
    qint64 elapsedNs = 0;         ///< from the first picture asked for to the file closed
    qint64 savingNs = 0;          ///< of that, inside the saver
    SxPicBufInfo input;           ///< format of the first picture
    quint32 savedWidth = 0;       ///< size in the file; the encoder shrinks what is odd or too
    quint32 savedHeight = 0;      ///< large for its level
    QString level;                ///< at the end, as the file names it, which may be another than asked for
    SxPictureRate rate;           ///< the source's; unknown when nothing tells it
    int rotation = 0;             ///< degrees clockwise that make the pictures stand upright
    QString sidecar;              ///< file that was written beside the recording; empty when none was needed
    QString sidecarError;         ///< why one is missing, one sentence
    quint32 highestSample = 0; ///< of word pictures whose source does not know their significant bits; else 0
};

using RecordProgress = std::function<void(SxRecordSummary const&)>; ///< called after every picture

/// Records pictures into a raw H.264 file through the plug-in's saver, as the host's recording does:
/// one saver per recording, one save() a picture, the file ended by deleting the saver.
///
/// The output is held against other recordings meanwhile. A pipe or device gets each picture at once. When
/// the output fails, it ends with the last complete picture and the error names the cause.
///
/// A plug-in must be loaded and a CxPluginMessages alive. A start that fails leaves no empty file
/// behind where there was none, and what was there stays until the encoder has taken the first picture.
SxRecordSummary fx_Record(IxPictureSource& source, SxRecordRequest const& request,
                          RecordProgress const& progress = {});
