#pragma once

#include <QStringList>

#include "ProgressLine.h"
#include "Recorder.h"

class CxQualityTrial;
class IxPictureSource;

/// What the user reads while a recording runs.
class CxRecordWatcher
{
public:
    /// How much of it.
    enum class Tells {
        All,
        NoSkips, ///< they will be made up for
        News,    ///< likewise, and what an attempt before told is known
        NextPart ///< all, but what the file before told of the source is known
    };

    /// \param told  warnings of attempts before, which are not repeated
    CxRecordWatcher(IxPictureSource& source, SxRecordRequest const& request, Tells tells = Tells::All,
                    QStringList const& told = {});

    void onPicture(SxRecordSummary const& summary);

    /// \param trial  null when the source cannot be read again
    void onEnd(SxRecordSummary const& summary, CxQualityTrial* trial);

    void warn(QString const& sentence);
    QStringList const& warnings() const { return m_warnings; } ///< with those of attempts before

private:
    bool tellsSkips() const { return m_tells == Tells::All || m_tells == Tells::NextPart; }
    void passWarnings();
    void adviseBits(SxRecordSummary const& summary);
    void onFirstPicture(SxRecordSummary const& summary);
    void tellAboutScaling(SxRecordSummary const& summary);

    IxPictureSource& m_source;
    SxRecordRequest const& m_request;
    Tells m_tells;
    CxProgressLine m_line;
    QStringList m_warnings;
    bool m_hasJudgedBits = false;
};
