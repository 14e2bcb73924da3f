#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <memory>

#include "support/TestPicture.h"

class CxH264VideoSaver;
class CxImageData;

/// A sequence of pictures, what the saver makes of it undisturbed, and what of that a file holds.
class CxSavedSequence
{
public:
    /// \p count pictures, a key frame every fifth, all in all some 2 kB a picture.
    explicit CxSavedSequence(int count);

    /// Records all of it undisturbed, to have something to compare with. False when that fails.
    bool makeReference(QString const& fileName);

    /// Picture \p number, as long as no other is asked for.
    std::unique_ptr<CxImageData> image(int number);

    /// Gives picture \p number to a saver.
    bool save(CxH264VideoSaver& saver, int number);

    int count() const { return m_count; }
    QByteArray bytes() const; ///< the whole stream
    QByteArray frame(int number) const { return m_frames.at(number); }
    QList<QByteArray> const& pictures() const { return m_pictures; } ///< decoded

    /// How many frames of the sequence, from the first on, \p fileName holds whole, when it is the beginning
    /// of the stream, opens and gives exactly the reference's picture for each of them. -1 when it does not.
    int wholeFrames(QString const& fileName) const;

private:
    int const m_count;
    CxTestPicture m_picture;
    QList<QByteArray> m_frames;
    QList<QByteArray> m_pictures;
};
