#include "openH264Panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <wels/codec_api.h>

#include "openH264Levels.h"

/// The panel is part of the encoder for translators too.
static QString fx_Tr(char const* text) { return QCoreApplication::translate("CxOpenH264Encoder", text); }

CxPanel::CxPanel(QWidget* parent)
    : QWidget(parent)
{}

void CxPanel::onAdvanced(bool checked)
{
    findChild<QLabel*>(QStringLiteral("lbH264KeyFramerate"))->setVisible(checked);
    findChild<QSpinBox*>(QStringLiteral("spinH264KeyFramerate"))->setVisible(checked);
    findChild<QLabel*>(QStringLiteral("lbH264Complexity"))->setVisible(checked);
    findChild<QComboBox*>(QStringLiteral("cbH264Complexity"))->setVisible(checked);
    findChild<QLabel*>(QStringLiteral("lbH264ProfileIdc"))->setVisible(checked);
    findChild<QComboBox*>(QStringLiteral("cbH264ProfileIdc"))->setVisible(checked);
    findChild<QLabel*>(QStringLiteral("lbH264LevelIdc"))->setVisible(checked);
    findChild<QComboBox*>(QStringLiteral("cbH264LevelIdc"))->setVisible(checked);
}

/// Selects the item that carries \p value, or else the one at \p fallback. False in that case.
static bool fx_Select(QComboBox* box, int value, int fallback)
{
    int const index = box->findData(value, Qt::UserRole);
    box->setCurrentIndex(index >= 0 ? index : fallback);
    return index >= 0;
}

void CxPanel::onDefault(bool)
{
    SxEncoderOptions const defaults;
    findChild<QSlider*>(QStringLiteral("slH264Quality"))->setValue(defaults.quality);
    findChild<QSpinBox*>(QStringLiteral("spinH264KeyFramerate"))->setValue(defaults.keyFrameInterval);
    fx_Select(findChild<QComboBox*>(QStringLiteral("cbH264Complexity")), defaults.complexity, 0);
    fx_Select(findChild<QComboBox*>(QStringLiteral("cbH264ProfileIdc")), defaults.profile, 0);
    QComboBox* const level = findChild<QComboBox*>(QStringLiteral("cbH264LevelIdc"));
    fx_Select(level, defaults.level, level->count() - 1);
}

static void fx_AddQualityRow(CxPanel* panel, QGridLayout* grid, int quality)
{
    QHBoxLayout* const box = new QHBoxLayout;
    QSlider* const slider = new QSlider(Qt::Horizontal, panel);
    slider->setObjectName(QStringLiteral("slH264Quality"));
    slider->setMinimum(1);
    slider->setMaximum(10);
    slider->setTickInterval(1);
    slider->setValue(quality);
    slider->setTickPosition(QSlider::NoTicks);
    slider->setTracking(true);

    QLabel* const value = new QLabel(QStringLiteral("%1").arg(quality));
    value->setMaximumWidth(30);
    QObject::connect(slider, SIGNAL(valueChanged(int)), value, SLOT(setNum(int)));
    box->addWidget(slider);
    box->addWidget(value);

    grid->addWidget(new QLabel(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Quality:"))), 0, 0);
    grid->addLayout(box, 0, 1, 1, 4);
}

static QLabel* fx_NewLabel(char const* objectName, char const* text)
{
    QLabel* const label = new QLabel(fx_Tr(text));
    label->setObjectName(QLatin1String(objectName));
    return label;
}

static QSpinBox* fx_NewKeyFrameBox(CxPanel* panel, int interval)
{
    QSpinBox* const box = new QSpinBox(panel);
    box->setObjectName(QStringLiteral("spinH264KeyFramerate"));
    box->setMinimum(1);
    box->setMaximum(100);
    box->setValue(interval);
    return box;
}

static QComboBox* fx_NewComplexityBox(CxPanel* panel, int& complexity)
{
    QComboBox* const box = new QComboBox(panel);
    box->setObjectName(QStringLiteral("cbH264Complexity"));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Low")), int(LOW_COMPLEXITY));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Medium")), int(MEDIUM_COMPLEXITY));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "High")), int(HIGH_COMPLEXITY));
    if (!fx_Select(box, complexity, 1))
        complexity = SxEncoderOptions().complexity;
    box->setEnabled(false); // Deliberate: shown, and set by hosts only.
    return box;
}

static QComboBox* fx_NewProfileBox(CxPanel* panel, int& profile)
{
    QComboBox* const box = new QComboBox(panel);
    box->setObjectName(QStringLiteral("cbH264ProfileIdc"));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Baseline")), int(PRO_BASELINE));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Main")), int(PRO_MAIN));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Extended")), int(PRO_EXTENDED));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "High")), int(PRO_HIGH));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "High10")), int(PRO_HIGH10));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "High422")), int(PRO_HIGH422));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "High444")), int(PRO_HIGH444));
    box->addItem(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "CAVLC444")), int(PRO_CAVLC444));
    if (!fx_Select(box, profile, 0))
        profile = SxEncoderOptions().profile;
    box->setEnabled(false); // Deliberate: shown, and set by hosts only.
    return box;
}

static QComboBox* fx_NewLevelBox(CxPanel* panel, int& level)
{
    QComboBox* const box = new QComboBox(panel);
    box->setObjectName(QStringLiteral("cbH264LevelIdc"));
    for (SxLevel const& item : fx_GetLevels())
        box->addItem(fx_Tr(item.name), int(item.level));
    if (!fx_Select(box, level, box->count() - 1))
        level = SxEncoderOptions().level;
    return box;
}

CxPanel* fx_NewPanel(QWidget* parent, SxEncoderOptions& options)
{
    CxPanel* const panel = new CxPanel(parent);
    QGridLayout* const grid = new QGridLayout(panel);
    grid->setContentsMargins(0, 3, 0, 0);
    grid->setSpacing(0);
    grid->setHorizontalSpacing(5);

    // The focus moves in the order in which the widgets are made.
    fx_AddQualityRow(panel, grid, options.quality);
    grid->addWidget(new QLabel(QStringLiteral(" "), panel), 1, 0);

    QCheckBox* const advanced =
        new QCheckBox(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Advanced")), panel);
    advanced->setObjectName(QStringLiteral("chkH264Advanced"));
    advanced->setChecked(options.showAdvanced);
    QObject::connect(advanced, SIGNAL(clicked(bool)), panel, SLOT(onAdvanced(bool)));
    grid->addWidget(advanced, 2, 0, 1, -1);

    QSpinBox* const keyFrameInterval = fx_NewKeyFrameBox(panel, options.keyFrameInterval);
    grid->addWidget(fx_NewLabel("lbH264KeyFramerate", QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Key frames:")),
                    3, 0);
    grid->addWidget(keyFrameInterval, 3, 1);

    QComboBox* const complexity = fx_NewComplexityBox(panel, options.complexity);
    grid->addWidget(fx_NewLabel("lbH264Complexity", QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Complexity:")), 3,
                    2);
    grid->addWidget(complexity, 3, 3);

    QComboBox* const profile = fx_NewProfileBox(panel, options.profile);
    grid->addWidget(fx_NewLabel("lbH264ProfileIdc", QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Profile IDC:")),
                    4, 0);
    grid->addWidget(profile, 4, 1);

    QComboBox* const level = fx_NewLevelBox(panel, options.level);
    grid->addWidget(fx_NewLabel("lbH264LevelIdc", QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Level IDC:")), 4,
                    2);
    grid->addWidget(level, 4, 3);

    QPushButton* const defaults =
        new QPushButton(fx_Tr(QT_TRANSLATE_NOOP("CxOpenH264Encoder", "Default")), panel);
    defaults->setObjectName(QStringLiteral("btnDefault"));
    QObject::connect(defaults, SIGNAL(clicked(bool)), panel, SLOT(onDefault(bool)));
    grid->addWidget(defaults, 5, 4);

    panel->onAdvanced(options.showAdvanced);
    return panel;
}

/// Adds the item data of a combo box, when there is such a box.
static void fx_AddData(QMap<QString, QVariant>& options, QWidget const* widget, QString const& key,
                       QString const& objectName)
{
    if (QComboBox const* const box = widget->findChild<QComboBox*>(objectName))
        options.insert(key, box->currentData(Qt::UserRole).toInt());
}

QMap<QString, QVariant> fx_OptionsFromPanel(QWidget const* widget)
{
    QMap<QString, QVariant> options;
    if (!widget)
        return options;
    if (QSlider const* const quality = widget->findChild<QSlider*>(QStringLiteral("slH264Quality")))
        options.insert(QLatin1String(kQualityKey), quality->value());
    if (QSpinBox const* const rate = widget->findChild<QSpinBox*>(QStringLiteral("spinH264KeyFramerate")))
        options.insert(QLatin1String(kKeyFrameRateKey), rate->value());
    fx_AddData(options, widget, QLatin1String(kComplexityKey), QStringLiteral("cbH264Complexity"));
    fx_AddData(options, widget, QLatin1String(kProfileKey), QStringLiteral("cbH264ProfileIdc"));
    fx_AddData(options, widget, QLatin1String(kLevelKey), QStringLiteral("cbH264LevelIdc"));
    if (QCheckBox const* const advanced = widget->findChild<QCheckBox*>(QStringLiteral("chkH264Advanced")))
        options.insert(QLatin1String(kShowAdvancedKey), advanced->isChecked());
    return options;
}
