#pragma once

#include <QProcess>
#include <QVector>

/// Pictures of a recording that cannot be decoded, one behind the other, for one cause.
struct SxBrokenRange
{
    int first = 0; ///< both included
    int last = 0;
    QString cause; ///< half a sentence
};

/// What examining a recording found.
struct SxVerifyResult
{
    QString error; ///< one sentence when it could not be examined, and then nothing else
    int pictures = 0;
    int examined = 0;
    QVector<SxBrokenRange> broken; ///< ascending
    int missing = 0;               ///< pictures that vanished between others, for certain
    int firstMissing = 0;          ///< the picture before which the first did
    bool isCutOff = false;         ///< at its end are bytes of no picture
    bool wasStopped = false;
    QStringList details; ///< in the words of the command line

    int brokenPictures() const;
};

/// Examines a recording by the program's `verify`, in processes of its own: one that brings the decoder down
/// takes none of ours along. GUI thread.
class CxVerifyJob : public QObject
{
    Q_OBJECT

public:
    /// \param program  that has the command; \param pluginPath  which it is to load.
    CxVerifyJob(QString const& program, QString const& pluginPath);
    ~CxVerifyJob() override; ///< ends it, without a result

    void start(QString const& recording);
    void stop(); ///< early; finished() follows with what is known

signals:
    void progressed(int examined, int pictures);
    void finished(SxVerifyResult const& result);

private:
    void readLines();
    void takeEnd();

    QString m_program;
    QString m_pluginPath;
    QByteArray m_found; ///< JSON
    bool m_isStopping = false;
    QProcess m_process;
};
