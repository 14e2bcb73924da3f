#include "RecordDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSpinBox>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "CodecOptions.h"
#include "CxVideoCodecManager.h"
#include "IxVideoEncoder.h"
#include "RecordTexts.h"
#include "SameFile.h"
#include "TimeCode.h"

static QString const kFolderKey = QStringLiteral("record/folder");
static QString const kCodecOptionsKey = QStringLiteral("record/h264");

/// "H.264 file (*.h264)" -> "h264"; empty when the format names no pattern.
static QString fx_Suffix(QString const& description)
{
    static QRegularExpression const kPattern(QStringLiteral("\\*\\.(\\w+)"));
    return kPattern.match(description).captured(1);
}

CxRecordDialog::CxRecordDialog(int pictures, double fps, QString const& sourceFile,
                               SxPicBufInfo const& format, QWidget* parent)
    : QDialog(parent)
    , m_fps(fps)
    , m_sourceFile(sourceFile)
    , m_pictures(format)
    , m_file(new QLineEdit(this))
    , m_format(new QComboBox(this))
    , m_size(new QLabel(this))
    , m_note(new QLabel(this))
    , m_buttons(new QDialogButtonBox(this))
{
    setObjectName(QStringLiteral("recordDialog"));
    bool const isLive = pictures < 0;
    setWindowTitle(isLive ? tr("Record") : tr("Save Part of the Recording"));

    auto* const form = new QFormLayout;
    addFile(form);
    form->addRow(tr("F&ormat:"), m_format);
    m_format->setObjectName(QStringLiteral("format"));
    addRange(form, pictures);

    auto* const column = new QVBoxLayout(this);
    column->addLayout(form);
    addSaverWidget(column);
    m_size->setObjectName(QStringLiteral("size"));
    m_note->setObjectName(QStringLiteral("note"));
    for (QLabel* const label : {m_size, m_note}) {
        label->setWordWrap(true);
        column->addWidget(label);
    }
    column->addStretch(1);
    column->addWidget(m_buttons);
    addButtons(isLive ? tr("&Record") : tr("&Save"));

    m_file->setText(suggestedFile(sourceFile));
    connect(m_file, &QLineEdit::textChanged, this, &CxRecordDialog::updateState);
    updateState();
    // The panel grows when its advanced rows appear: follow it instead of squeezing it.
    column->setSizeConstraint(QLayout::SetFixedSize);
}

void CxRecordDialog::addFile(QFormLayout* form)
{
    auto* const browseButton = new QPushButton(tr("&Browse…"), this);
    browseButton->setObjectName(QStringLiteral("browse"));
    browseButton->setAutoDefault(false);
    connect(browseButton, &QPushButton::clicked, this, &CxRecordDialog::browse);
    m_file->setObjectName(QStringLiteral("outputFile"));
    m_file->setMinimumWidth(fontMetrics().averageCharWidth() * 44);
    auto* const row = new QHBoxLayout;
    row->addWidget(m_file, 1);
    row->addWidget(browseButton);
    form->addRow(tr("&File:"), row);
    qobject_cast<QLabel*>(form->labelForField(row))->setBuddy(m_file);
}

void CxRecordDialog::addButtons(QString const& startText)
{
    m_buttons->addButton(QDialogButtonBox::Cancel);
    QPushButton* const start = m_buttons->addButton(startText, QDialogButtonBox::AcceptRole);
    start->setObjectName(QStringLiteral("start"));
    start->setDefault(true);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &CxRecordDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &CxRecordDialog::reject);
}

void CxRecordDialog::addRange(QFormLayout* form, int pictures)
{
    if (pictures < 0) {
        m_limit = new QSpinBox(this);
        m_limit->setObjectName(QStringLiteral("limit"));
        m_limit->setRange(0, 10000000);
        m_limit->setSpecialValueText(tr("when I stop it"));
        m_limit->setSuffix(tr(" pictures"));
        form->addRow(tr("&End after:"), m_limit);
        return;
    }
    auto const newSpinBox = [&](char const* objectName, int value) {
        auto* const box = new QSpinBox(this);
        box->setObjectName(QLatin1String(objectName));
        box->setRange(0, pictures - 1);
        box->setValue(value);
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &CxRecordDialog::updateState);
        return box;
    };
    m_first = newSpinBox("first", 0);
    m_last = newSpinBox("last", pictures - 1);
    auto* const to = new QLabel(tr("&to"), this);
    to->setBuddy(m_last);
    m_length = new QLabel(this);
    auto* const row = new QHBoxLayout;
    row->addWidget(m_first);
    row->addWidget(to);
    row->addWidget(m_last);
    row->addSpacing(8);
    row->addWidget(m_length, 1);
    form->addRow(tr("&Pictures:"), row);
    qobject_cast<QLabel*>(form->labelForField(row))->setBuddy(m_first);
    m_leaveOutBroken = new QCheckBox(tr("&Leave out broken pictures instead of stopping there"), this);
    m_leaveOutBroken->setObjectName(QStringLiteral("leaveOutBroken"));
    m_leaveOutBroken->setChecked(true);
    form->addRow(QString(), m_leaveOutBroken);
}

void CxRecordDialog::setRange(int first, int last)
{
    m_first->setValue(first);
    m_last->setValue(last);
}

void CxRecordDialog::applyRememberedOptions()
{
    QVariantMap const remembered = QSettings().value(kCodecOptionsKey).toMap();
    if (!remembered.isEmpty())
        fx_SetCodecOptions(kFourCCH264, remembered);
}

void CxRecordDialog::addSaverWidget(QVBoxLayout* column)
{
    QString error;
    m_saver = fx_Create<IxImageDataSaver>("IxImageDataSaver", error);
    if (!m_saver.as) {
        m_note->setText(tr("No plug-in that can save recordings is loaded."));
        return;
    }
    for (CxImageFormat const& format : m_saver.as->supportedImageFormats())
        m_format->addItem(format.description);

    applyRememberedOptions();
    auto* const group = new QGroupBox(tr("Encoding"), this);
    auto* const inside = new QVBoxLayout(group);
    m_saverWidget = m_saver.as->widgetForSaveDlg(group);
    if (!m_saverWidget) {
        delete group;
        return;
    }
    // The panel labels its slider for the eye only: a screen reader would find no name.
    for (QAbstractSlider* const slider : m_saverWidget->findChildren<QAbstractSlider*>())
        slider->setAccessibleName(tr("Quality"));
    inside->addWidget(m_saverWidget);
    column->addWidget(group);
    // The panel has no signal of its own for a changed option.
    for (QComboBox* const box : m_saverWidget->findChildren<QComboBox*>())
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CxRecordDialog::tellSize);
    tellSize();
}

/// Asks an encoder with the options chosen what it would make of the pictures.
void CxRecordDialog::tellSize()
{
    unsigned int fourCC = 0;
    QMap<QString, QVariant> const options = m_saver.as->codecOptionsFromWigetInSaveDlg(m_saverWidget, fourCC);
    QMap<QString, QVariant> const before = fx_CodecOptions(fourCC);
    fx_SetCodecOptions(fourCC, options);
    std::unique_ptr<IxVideoEncoder> const encoder(CxVideoCodecManager::instance()->encoderForFourCC(fourCC));
    fx_SetCodecOptions(fourCC, before); // they are chosen once the dialog is accepted
    QString text;
    if (encoder && m_pictures.width > 0) {
        SxPicBufInfo saved;
        encoder->queryOuputFormat(m_pictures, saved);
        text = CxRecordTexts::shrunk(m_pictures, saved.width, saved.height,
                                     SxEncoderOptions::fromMap(options).level);
    }
    m_size->setText(text);
    m_size->setVisible(!text.isEmpty());
}

QString CxRecordDialog::suggestedFile(QString const& sourceFile) const
{
    QString const remembered = QSettings().value(kFolderKey).toString();
    QString folder = remembered;
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    if (!QDir(folder).exists())
        folder = QDir::homePath();
    QString const base =
        m_limit // a live source
            ? QDateTime::currentDateTime().toString(QStringLiteral("'recording'_yyyy-MM-dd_HH-mm-ss"))
            : tr("%1_part", "file name").arg(QFileInfo(sourceFile).completeBaseName());
    QString const suffix = fx_Suffix(m_format->currentText());
    return QDir(folder).filePath(suffix.isEmpty() ? base : base + QLatin1Char('.') + suffix);
}

void CxRecordDialog::browse()
{
    QStringList filters;
    for (int i = 0; i < m_format->count(); ++i)
        filters.append(m_format->itemText(i));
    QString const chosen =
        QFileDialog::getSaveFileName(this, windowTitle(), m_file->text(), filters.join(QStringLiteral(";;")),
                                     nullptr, QFileDialog::DontConfirmOverwrite);
    if (!chosen.isEmpty())
        m_file->setText(chosen);
}

void CxRecordDialog::updateState()
{
    bool isRange = true;
    if (m_first) {
        int const count = m_last->value() - m_first->value() + 1;
        isRange = count > 0;
        m_length->setText(isRange ? tr("%n picture(s), %1", nullptr, count).arg(fx_TimeCode(count, m_fps))
                                  : tr("The last lies before the first."));
    }
    for (QAbstractButton* const button : m_buttons->buttons()) {
        if (m_buttons->buttonRole(button) == QDialogButtonBox::AcceptRole)
            button->setEnabled(m_saver.as && isRange && !m_file->text().trimmed().isEmpty());
    }
}

/// Asks before something is lost.
bool CxRecordDialog::mayWrite(QString const& fileName)
{
    QFileInfo const info(fileName);
    if (!m_sourceFile.isEmpty() && fx_IsSameFile(m_sourceFile, fileName)) {
        m_note->setText(tr("That file is being read. Please choose another name."));
        return false;
    }
    if (!info.absoluteDir().exists()) {
        m_note->setText(tr("There is no folder “%1”.").arg(QDir::toNativeSeparators(info.absolutePath())));
        return false;
    }
    if (!info.exists())
        return true;
    return QMessageBox::question(this, windowTitle(),
                                 tr("“%1” exists already. Replace it?").arg(info.fileName()),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

void CxRecordDialog::collect()
{
    m_choice.request.outputFile = m_file->text().trimmed();
    m_choice.request.saverOptions = m_saver.as->optionsFromWidgetInSaveDlg(m_saverWidget);
    unsigned int fourCC = 0;
    QMap<QString, QVariant> const options = m_saver.as->codecOptionsFromWigetInSaveDlg(m_saverWidget, fourCC);
    fx_SetCodecOptions(fourCC, options);
    m_choice.request.encoder = SxEncoderOptions::fromMap(options);
    m_choice.request.maxPictures = m_limit ? m_limit->value() : 0;
    if (m_first) {
        m_choice.first = m_first->value();
        m_choice.last = m_last->value();
        m_choice.leavesOutBroken = m_leaveOutBroken->isChecked();
    }
    QSettings settings;
    settings.setValue(kFolderKey, QFileInfo(m_choice.request.outputFile).absolutePath());
    settings.setValue(kCodecOptionsKey, options);
}

void CxRecordDialog::accept()
{
    QString fileName = m_file->text().trimmed();
    QString const suffix = fx_Suffix(m_format->currentText());
    if (QFileInfo(fileName).suffix().isEmpty() && !suffix.isEmpty())
        fileName += QLatin1Char('.') + suffix;
    m_file->setText(fileName);
    if (!mayWrite(fileName))
        return;
    collect();
    QDialog::accept();
}
