#include "PictureControl.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "Actions.h"
#include "FileDialogs.h"
#include "MessageBar.h"
#include "PictureFile.h"
#include "PictureView.h"
#include "Player.h"
#include "SnapshotFile.h"

CxPictureControl::CxPictureControl(CxActions& actions, CxPictureView& view, CxPlayer& player,
                                   CxMessageBar& messages, QWidget& window)
    : m_actions(actions)
    , m_view(view)
    , m_player(player)
    , m_messages(messages)
    , m_window(window)
{
    connect(actions.savePicture, &QAction::triggered, this, &CxPictureControl::ask);
    connect(actions.snapshot, &QAction::triggered, this, &CxPictureControl::takeSnapshot);
    connect(actions.snapshotFolder, &QAction::triggered, this, &CxPictureControl::chooseFolder);
    connect(actions.copy, &QAction::triggered, this, [this] {
        QApplication::clipboard()->setImage(m_view.picture().image.copy());
        emit told(tr("Picture %1 is in the clipboard.").arg(m_view.picture().number));
    });
}

void CxPictureControl::setEnabled(bool hasPicture)
{
    for (QAction* const action : {m_actions.savePicture, m_actions.snapshot, m_actions.copy})
        action->setEnabled(hasPicture);
}

QString CxPictureControl::baseName() const
{
    return m_player.isOpen() ? QFileInfo(m_player.info().fileName).completeBaseName() : tr("live");
}

/// Saves the picture shown now, whatever is shown once the file has a name.
void CxPictureControl::ask()
{
    SxShownPicture const picture = m_view.picture();
    QFileDialog* const dialog = CxFileDialogs::pictureToSave(&m_window, baseName(), picture.number);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, picture](QString const& fileName) { save(picture, fileName); });
    dialog->open();
}

void CxPictureControl::save(SxShownPicture const& picture, QString const& fileName)
{
    QString error;
    QString const name = QDir::toNativeSeparators(fileName);
    if (CxPictureFile::save(picture.image, fileName, error))
        emit told(tr("Picture %1 is saved as “%2”.").arg(QString::number(picture.number), name));
    else
        m_messages.showMessage(CxMessageBar::Kind::Warning,
                               tr("Picture %1 could not be saved to “%2”: %3.")
                                   .arg(QString::number(picture.number), name, error));
}

void CxPictureControl::takeSnapshot()
{
    SxShownPicture const& picture = m_view.picture();
    QString error;
    QString const fileName = CxSnapshotFile::reserve(
        QStringLiteral("%1_%2").arg(baseName()).arg(picture.number, 5, 10, QLatin1Char('0')), error);
    if (error.isEmpty()) {
        save(picture, fileName);
        CxSnapshotFile::release(fileName);
    } else {
        m_messages.showMessage(
            CxMessageBar::Kind::Warning,
            tr("Picture %1 could not be saved to “%2”: %3.")
                .arg(QString::number(picture.number), QDir::toNativeSeparators(fileName), error));
    }
}

void CxPictureControl::chooseFolder()
{
    auto* const dialog = new QFileDialog(&m_window, tr("Folder of Snapshots"), CxSnapshotFile::folder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("snapshotDialog"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    connect(dialog, &QFileDialog::fileSelected, this, [this](QString const& folder) {
        CxSnapshotFile::setFolder(folder);
        emit told(tr("Snapshots go to “%1”.").arg(QDir::toNativeSeparators(folder)));
    });
    dialog->open();
}
