#include "FileDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QSettings>
#include <QStandardPaths>

#include "CxImageFormat.h"
#include "IxImageDataLoader.h"
#include "PluginHost.h"

static QString const kOpenFolderKey = QStringLiteral("open/folder");
static QString const kPictureFolderKey = QStringLiteral("picture/folder");
static QString const kSourceKey = QStringLiteral("open/source");

static QString fx_Folder(QString const& key, QStandardPaths::StandardLocation fallback)
{
    return QSettings().value(key, QStandardPaths::writableLocation(fallback)).toString();
}

QString CxFileDialogs::recordingToOpen(QWidget* parent)
{
    QString error;
    SxCreated<IxImageDataLoader> const loader = fx_Create<IxImageDataLoader>("IxImageDataLoader", error);
    QStringList filters;
    if (loader.as) {
        for (CxImageFormat const& format : loader.as->supportedImageFormats())
            filters.append(format.description);
    }
    filters.append(tr("All files (*)"));
    QString fileName = QFileDialog::getOpenFileName(parent, tr("Open Recording"),
                                                    fx_Folder(kOpenFolderKey, QStandardPaths::MoviesLocation),
                                                    filters.join(QStringLiteral(";;")));
    if (!fileName.isEmpty())
        QSettings().setValue(kOpenFolderKey, QFileInfo(fileName).absolutePath());
    return fileName;
}

QString CxFileDialogs::sourceToOpen(QWidget* parent)
{
    bool isChosen = false;
    QString const text = QInputDialog::getText(
        parent, tr("Open Video, Stream or Device"),
        tr("File, address or device, such as clip.mp4, rtsp://camera/stream or v4l2:/dev/video0:"),
        QLineEdit::Normal, QSettings().value(kSourceKey).toString(), &isChosen);
    QString name = text.trimmed();
    if (!isChosen || name.isEmpty())
        return {};
    QSettings().setValue(kSourceKey, name);
    return name;
}

QFileDialog* CxFileDialogs::pictureToSave(QWidget* parent, QString const& base, int number)
{
    QDir const folder(fx_Folder(kPictureFolderKey, QStandardPaths::PicturesLocation));
    auto* const dialog =
        new QFileDialog(parent, tr("Save Picture"), folder.path(), tr("PNG picture (*.png)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("pictureDialog"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(QStringLiteral("png")); // before it asks whether to replace a file
    dialog->selectFile(base + QStringLiteral("_%1.png").arg(number, 5, 10, QLatin1Char('0')));
    QObject::connect(dialog, &QFileDialog::fileSelected, [](QString const& fileName) {
        QSettings().setValue(kPictureFolderKey, QFileInfo(fileName).absolutePath());
    });
    return dialog;
}
