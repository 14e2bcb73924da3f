#pragma once

#include <QCoreApplication>

#include "Recorder.h"

/// What a recording is not as it was asked for, in words for people: while it is chosen, while it runs and
/// at its end.
class CxRecordTexts
{
    Q_DECLARE_TR_FUNCTIONS(CxRecordTexts)

public:
    /// How many pictures the encoder has left out and what would keep them; empty when it left out none.
    static QString skipped(SxEncoderOptions const& used, SxRecordSummary const& summary);

    /// That the source was not whole; empty when nothing speaks against it.
    static QString sourceDamage(SxRecordSummary const& summary);

    /// That what the file cannot hold is lost; empty when it is not.
    static QString notNoted(SxRecordSummary const& summary);

    /// That pictures like \p input are saved with \p width x \p height pixels and why; empty when they are
    /// not.
    static QString shrunk(SxPicBufInfo const& input, quint32 width, quint32 height, int level);

    /// That the encoder named another level than \p level, which was asked for; empty when it did not.
    static QString otherLevel(SxRecordSummary const& summary, int level);
};
