#include "PictureFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

static constexpr int kMostRanges = 8; // of missing numbers that are named

/// Digits from \p at on, without the zeros before them.
static QString fx_NumberAt(QString const& text, int& at)
{
    int const begin = at;
    while (at < text.size() && text[at] >= QLatin1Char('0') && text[at] <= QLatin1Char('9'))
        ++at;
    QString number = text.mid(begin, at - begin);
    int zeros = 0;
    while (zeros + 1 < number.size() && number[zeros] == QLatin1Char('0'))
        ++zeros;
    return number.mid(zeros);
}

bool fx_IsNaturallyBefore(QString const& a, QString const& b)
{
    int i = 0;
    int j = 0;
    while (i < a.size() && j < b.size()) {
        QString const first = fx_NumberAt(a, i);
        QString const second = fx_NumberAt(b, j);
        if (first.isEmpty() != second.isEmpty()) // a digit comes before most else
            return first.isEmpty() ? a[i] < QLatin1Char('0') : b[j] > QLatin1Char('9');
        if (first.size() != second.size())
            return first.size() < second.size();
        if (first != second)
            return first < second;
        if (!first.isEmpty())
            continue;
        if (a[i] != b[j])
            return a[i] < b[j];
        ++i;
        ++j;
    }
    if (a.size() - i != b.size() - j)
        return a.size() - i < b.size() - j;
    return a < b; // but for zeros before a number they are the same
}

static bool fx_IsPictureName(QString const& name)
{
    static QSet<QString> const kEnds = [] {
        QSet<QString> ends;
        for (char const* end :
             {"bmp",    "dpx", "exr", "j2k", "jp2", "jpeg", "jpg", "jxl", "pam",  "pbm",  "pcx", "pgm",
              "pgmyuv", "png", "pnm", "ppm", "qoi", "sgi",  "tga", "tif", "tiff", "webp", "xwd"})
            ends.insert(QString::fromLatin1(end));
        return ends;
    }();
    return kEnds.contains(QFileInfo(name).suffix().toLower());
}

struct SxCloseDir
{
    void operator()(DIR* folder) const { closedir(folder); }
};

/// The names in a folder, hidden ones left out; Qt leaves out those that are no text, which here is an
/// obstacle.
static QStringList fx_NamesIn(QString const& folder, QString& obstacle)
{
    std::unique_ptr<DIR, SxCloseDir> const opened(opendir(QFile::encodeName(folder).constData()));
    if (!opened) {
        obstacle = QStringLiteral("%1: %2.").arg(folder, qt_error_string(errno));
        return {};
    }
    QStringList names;
    while (dirent const* const entry = readdir(opened.get())) {
        QString const name = QFile::decodeName(entry->d_name);
        if (entry->d_name[0] == '.')
            continue;
        if (QFile::encodeName(name) == entry->d_name)
            names += name;
        else if (obstacle.isEmpty() && fx_IsPictureName(name))
            obstacle = QStringLiteral("%1: the name of the file '%2' is no UTF-8 text; rename it.")
                           .arg(folder, name);
    }
    return names;
}

/// True for a file, and for a link to nothing, whose picture would be missed without a word.
static bool fx_MayBeFile(QString const& folder, QString const& name)
{
    QFileInfo const info(QDir(folder).filePath(name));
    return info.isFile() || !info.exists();
}

SxPictureFiles fx_PicturesInFolder(QString const& folder)
{
    SxPictureFiles found;
    QStringList names = fx_NamesIn(folder, found.obstacle);
    auto const others = std::partition(names.begin(), names.end(), [&](QString const& name) {
        return fx_IsPictureName(name) && fx_MayBeFile(folder, name);
    });
    auto const passedOver = names.end() - others;
    names.erase(others, names.end());
    std::sort(names.begin(), names.end(), fx_IsNaturallyBefore);
    for (QString const& name : names)
        found.files += QDir(folder).filePath(name);
    if (passedOver > 0)
        found.note = QStringLiteral("%1: what else is in it, %2 by its name, is passed over.")
                         .arg(folder, passedOver == 1
                                          ? QStringLiteral("one thing that is no picture")
                                          : QStringLiteral("%1 things that are no pictures").arg(passedOver));
    if (found.obstacle.isEmpty() && found.files.isEmpty())
        found.obstacle = QStringLiteral("%1: there is no picture in this folder.").arg(folder);
    return found;
}

/// The one %d of a pattern's last part: where it stands, and how many digits at least. Invalid without
/// exactly one.
static QRegularExpressionMatch fx_NumberIn(QString const& name)
{
    static QRegularExpression const kForm(
        QStringLiteral("\\A((?:[^%]|%%)*)%(?:0([1-9]))?d((?:[^%]|%%)*)\\z"));
    return kForm.match(name);
}

bool fx_IsPicturePattern(QString const& source)
{
    return !QFileInfo::exists(source) && fx_NumberIn(QFileInfo(source).fileName()).hasMatch();
}

/// Which numbers between the first and the last are not there.
static QString fx_Gap(QString const& pattern, QVector<qint64> const& numbers)
{
    QStringList ranges;
    qint64 missing = 0;
    for (int i = 1; i < numbers.size(); ++i) {
        qint64 const from = numbers[i - 1] + 1;
        qint64 const to = numbers[i] - 1;
        if (from > to)
            continue;
        missing += to - from + 1;
        if (ranges.size() < kMostRanges)
            ranges += from == to ? QString::number(from) : QStringLiteral("%1-%2").arg(from).arg(to);
        else if (ranges.size() == kMostRanges)
            ranges += QStringLiteral("...");
    }
    if (missing == 0)
        return QString();
    return pattern +
           QStringLiteral(": %1 from %2 to %3 %4 missing: %5.")
               .arg(missing == 1 ? QStringLiteral("1 number") : QStringLiteral("%1 numbers").arg(missing))
               .arg(numbers.first())
               .arg(numbers.last())
               .arg(missing == 1 ? QStringLiteral("is") : QStringLiteral("are"),
                    ranges.join(QStringLiteral(", ")));
}

SxPictureFiles fx_PicturesOfPattern(QString const& pattern)
{
    SxPictureFiles found;
    QFileInfo const info(pattern);
    QRegularExpressionMatch const parts = fx_NumberIn(info.fileName());
    int const digits = qMax(1, parts.captured(2).toInt());
    auto const literal = [&](int part) {
        return QRegularExpression::escape(
            parts.captured(part).replace(QLatin1String("%%"), QLatin1String("%")));
    };
    // A number with more digits than asked for has no zeros before it.
    QString const number = QStringLiteral("([0-9]{%1}|[1-9][0-9]{%1,17})").arg(digits);
    QRegularExpression const form(QStringLiteral("\\A") + literal(1) + number + literal(3) +
                                  QStringLiteral("\\z"));
    QVector<QPair<qint64, QString>> numbered;
    for (QString const& name : fx_NamesIn(info.path(), found.obstacle)) {
        QRegularExpressionMatch const match = form.match(name);
        if (match.hasMatch() && fx_MayBeFile(info.path(), name))
            numbered.append({match.captured(1).toLongLong(), info.dir().filePath(name)});
    }
    std::sort(numbered.begin(), numbered.end());
    QVector<qint64> numbers;
    for (auto const& picture : numbered) {
        numbers += picture.first;
        found.files += picture.second;
    }
    found.gap = fx_Gap(pattern, numbers);
    if (found.obstacle.isEmpty() && found.files.isEmpty())
        found.obstacle =
            QStringLiteral("%1: there is no such file, and none with a number in that place.").arg(pattern);
    return found;
}
