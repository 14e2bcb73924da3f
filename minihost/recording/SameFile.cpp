#include "SameFile.h"

#include <QDir>
#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static bool fx_Stat(QString const& name, struct stat& found)
{
    return stat(QFile::encodeName(name).constData(), &found) == 0;
}

bool fx_IsSameInode(struct stat const& a, struct stat const& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool fx_IsSameFile(QString const& source, QString const& output)
{
    struct stat in = {};
    struct stat out = {};
    bool isFound = source == QLatin1String("-") ? fstat(STDIN_FILENO, &in) == 0 : fx_Stat(source, in);
    if (!isFound && source.startsWith(QLatin1String("file:")))
        isFound = fx_Stat(source.mid(5), in);
    return isFound && fx_Stat(output, out) && S_ISREG(in.st_mode) && fx_IsSameInode(in, out);
}

bool fx_IsReadHere(QString const& fileName)
{
    struct stat named = {};
    if (!fx_Stat(fileName, named) || !S_ISREG(named.st_mode))
        return false;
    for (QString const& number :
         QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files)) {
        int const descriptor = number.toInt();
        struct stat open = {};
        if (fstat(descriptor, &open) == 0 && fx_IsSameInode(open, named) &&
            (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY)
            return true;
    }
    return false;
}

bool fx_IsStandardOutput(QString const& fileName)
{
    struct stat named = {};
    struct stat standard = {};
    return fx_Stat(fileName, named) && fstat(STDOUT_FILENO, &standard) == 0 &&
           fx_IsSameInode(named, standard);
}
