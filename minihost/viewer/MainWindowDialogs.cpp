// What the window asks its user; what it does is in MainWindow.cpp.
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QSettings>
#include <QStandardPaths>

#include "CxPlugin.h"
#include "HelpWindow.h"
#include "MainWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "PluginHost.h"

static QString const kOpenFolderKey = QStringLiteral("open/folder");
static QString const kPictureFolderKey = QStringLiteral("picture/folder");
static QString const kSourceKey = QStringLiteral("open/source");

static QString fx_Folder(QString const& key, QStandardPaths::StandardLocation fallback)
{
    return QSettings().value(key, QStandardPaths::writableLocation(fallback)).toString();
}

void CxMainWindow::askForRecording()
{
    QString error;
    SxCreated<IxImageDataLoader> const loader = fx_Create<IxImageDataLoader>("IxImageDataLoader", error);
    QStringList filters;
    if (loader.as) {
        for (CxImageFormat const& format : loader.as->supportedImageFormats())
            filters.append(format.description);
    }
    filters.append(tr("All files (*)"));
    QString const fileName = QFileDialog::getOpenFileName(
        this, tr("Open Recording"), fx_Folder(kOpenFolderKey, QStandardPaths::MoviesLocation),
        filters.join(QStringLiteral(";;")));
    if (fileName.isEmpty())
        return;
    QSettings().setValue(kOpenFolderKey, QFileInfo(fileName).absolutePath());
    openRecording(fileName);
}

void CxMainWindow::askForSource()
{
    bool isChosen = false;
    QString const name = QInputDialog::getText(
        this, tr("Open Video, Stream or Device"),
        tr("File, address or device, such as clip.mp4, rtsp://camera/stream or v4l2:/dev/video0:"),
        QLineEdit::Normal, QSettings().value(kSourceKey).toString(), &isChosen);
    if (!isChosen || name.trimmed().isEmpty())
        return;
    QSettings().setValue(kSourceKey, name.trimmed());
    openNamed(name.trimmed());
}

void CxMainWindow::askForNumber()
{
    bool isChosen = false;
    int const last = m_player.info().count - 1;
    int const number = QInputDialog::getInt(this, tr("Go to Picture"), tr("Number, 0 to %1:").arg(last),
                                            std::max(m_player.shownNumber(), 0), 0, last, 1, &isChosen);
    if (isChosen)
        m_player.seek(number);
}

void CxMainWindow::askForPictureFile()
{
    SxShownPicture const picture = m_view->picture(); // the one on the screen now, however long this takes
    QString const base =
        m_player.isOpen() ? QFileInfo(m_player.info().fileName).completeBaseName() : tr("live");
    QDir const folder(fx_Folder(kPictureFolderKey, QStandardPaths::PicturesLocation));
    QString const suggested =
        folder.filePath(QStringLiteral("%1_%2.png").arg(base).arg(picture.number, 5, 10, QLatin1Char('0')));
    QString fileName =
        QFileDialog::getSaveFileName(this, tr("Save Picture"), suggested, tr("PNG picture (*.png)"));
    if (fileName.isEmpty())
        return;
    if (QFileInfo(fileName).suffix().isEmpty())
        fileName += QStringLiteral(".png");
    QSettings().setValue(kPictureFolderKey, QFileInfo(fileName).absolutePath());
    savePictureAs(fileName);
}

void CxMainWindow::askHowToRecord()
{
    bool const isLive = bool(m_live);
    auto* const dialog = isLive ? new CxRecordDialog(-1, 0.0, {}, this)
                                : new CxRecordDialog(m_player.info().count, m_player.info().fps,
                                                     m_player.info().fileName, this);
    m_player.setPlaying(false);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { startRecording(dialog->choice()); });
    dialog->open();
}

void CxMainWindow::showAbout()
{
    QString text = QStringLiteral("minihost %1\n").arg(QApplication::applicationVersion());
    for (CxPlugin* const plugin : m_plugins.plugins()) {
        text += QStringLiteral("\n%1 %2\n%3\n%4\n\n%5\n\n%6\n")
                    .arg(plugin->name(), plugin->version(), plugin->author(), plugin->website(),
                         plugin->description(), plugin->copyrightNotice());
    }
    auto* const window = new CxAboutWindow(text, this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}
