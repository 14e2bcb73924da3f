#include "openH264Panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTranslator>

#include "openH264Encoder.h"
#include "support/OpenH264EncoderDouble.h"
#include "support/TestPicture.h"

namespace {

struct SxItem
{
    char const* text;
    int data;
};

std::vector<SxItem> const kComplexities{{"Low", 0}, {"Medium", 1}, {"High", 2}};
std::vector<SxItem> const kProfiles{{"Baseline", 66}, {"Main", 77},     {"Extended", 88}, {"High", 100},
                                    {"High10", 110},  {"High422", 122}, {"High444", 144}, {"CAVLC444", 244}};
std::vector<SxItem> const kLevels{{"1", 10},   {"1b", 9},   {"1.1", 11}, {"1.2", 12}, {"1.3", 13}, {"2", 20},
                                  {"2.1", 21}, {"2.2", 22}, {"3", 30},   {"3.1", 31}, {"3.2", 32}, {"4", 40},
                                  {"4.1", 41}, {"4.2", 42}, {"5", 50},   {"5.1", 51}, {"5.2", 52}};

char const* const kAdvanced[] = {"lbH264KeyFramerate", "spinH264KeyFramerate", "lbH264Complexity",
                                 "cbH264Complexity",   "lbH264ProfileIdc",     "cbH264ProfileIdc",
                                 "lbH264LevelIdc",     "cbH264LevelIdc"};

/// Remembers what was asked to be translated, and answers with the text between brackets.
class CxRecordingTranslator : public QTranslator
{
public:
    QString translate(char const* context, char const* text, char const*, int) const override
    {
        asked.append({QString::fromLatin1(context), QString::fromUtf8(text)});
        return QLatin1Char('[') + QString::fromUtf8(text) + QLatin1Char(']');
    }
    bool isEmpty() const override { return false; }

    mutable QList<QPair<QString, QString>> asked;
};

/// A panel in a window that is shown, as in a dialog.
class CxShownPanel
{
public:
    explicit CxShownPanel(CxOpenH264Encoder& encoder)
        : panel(encoder.widgetForSaveDlg(&m_window))
    {
        m_layout.addWidget(panel);
        m_window.show();
        isShown = QTest::qWaitForWindowExposed(&m_window);
    }

    template<class Widget>
    Widget* child(char const* name) const
    {
        return panel->findChild<Widget*>(QLatin1String(name));
    }
    /// Clicks where a person would: on the box of a check box, in the middle of a button.
    void click(char const* name) const
    {
        QWidget* const widget = child<QWidget>(name);
        QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, widget->height() / 2));
    }

private:
    QWidget m_window;
    QVBoxLayout m_layout{&m_window};

public:
    QWidget* panel;
    bool isShown = false;
};

QLabel* fx_ValueLabel(QWidget const* panel)
{
    auto* const grid = qobject_cast<QGridLayout*>(panel->layout());
    return qobject_cast<QLabel*>(grid->itemAtPosition(0, 1)->layout()->itemAt(1)->widget());
}

} // namespace

class tst_openH264Panel : public QObject
{
    Q_OBJECT

private slots:
    void classHasTwoSlotsAndNoProperty();
    void everyPanelIsNewUnderItsParent();
    void layoutHasItsSpacingAndSize();
    void everyWidgetStandsInItsCell_data();
    void everyWidgetStandsInItsCell();
    void everyCellIsKnown();
    void childrenJoinThePanelInTheirOrder();
    void tabGoesFromQualityToDefault();
    void qualityGoesFromOneToTen();
    void labelShowsTheQuality();
    void keyFrameIntervalGoesFromOneToAHundred();
    void boxesOfferTheirItems_data();
    void boxesOfferTheirItems();
    void connectionsAreMadeByNameAndOnce();
    void showsDefaultsOfTheEncoder();
    void showsEncoderOptions();
    void clampsOutOfRange();
    void replacesUnknownValues();
    void unknownValuesAreReplacedInEncoder_data();
    void unknownValuesAreReplacedInEncoder();
    void level1bIsNumberNine();
    void clickShowsAdvanced();
    void keyShowsAdvanced();
    void codeDoesNotShowAdvanced();
    void optionShowsAdvancedFromTheStart();
    void defaultButtonResetsAllButAdvanced();
    void defaultSlotIgnoresItsArgument();
    void readsAllSixKeys();
    void readsHiddenAndDisabledWidgets();
    void arrowKeysMoveTheSlider();
    void readsThroughAncestor();
    void nullWidgetReadsAsNothing();
    void missingWidgetsAreLeftOut();
    void widgetsOfOtherClassesAreLeftOut();
    void optionsReadAreThoseShown();
    void panelOutlivesItsEncoder();
    void textsAreTranslatedUnderTheEncoder();
};

void tst_openH264Panel::classHasTwoSlotsAndNoProperty()
{
    QMetaObject const& meta = CxPanel::staticMetaObject;
    QCOMPARE(meta.className(), "CxPanel");
    QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("onDefault(bool)"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(), QByteArray("onAdvanced(bool)"));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void tst_openH264Panel::everyPanelIsNewUnderItsParent()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    QVERIFY(qobject_cast<CxPanel*>(panel));
    QCOMPARE(panel->parentWidget(), &parent);
    QVERIFY(!panel->isWindow());
    QVERIFY(encoder.widgetForSaveDlg(&parent) != panel);

    std::unique_ptr<QWidget> const orphan(encoder.widgetForSaveDlg(nullptr));
    QVERIFY(orphan != nullptr);
    QCOMPARE(orphan->parentWidget(), nullptr);
}

void tst_openH264Panel::layoutHasItsSpacingAndSize()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    auto* const grid = qobject_cast<QGridLayout*>(encoder.widgetForSaveDlg(&parent)->layout());
    QVERIFY(grid);
    QCOMPARE(grid->contentsMargins(), QMargins(0, 3, 0, 0));
    QCOMPARE(grid->verticalSpacing(), 0);
    QCOMPARE(grid->horizontalSpacing(), 5);
    QCOMPARE(grid->columnCount(), 5);
    QCOMPARE(grid->rowCount(), 6);
}

void tst_openH264Panel::everyWidgetStandsInItsCell_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVector<int>>("cell"); // row, column, row span, column span
    auto const row = [](char const* name, char const* className, char const* text, QVector<int> const& cell) {
        QTest::newRow(name) << name << className << text << cell;
    };
    row("chkH264Advanced", "QCheckBox", "Advanced", {2, 0, 1, 5});
    row("lbH264KeyFramerate", "QLabel", "Key frames:", {3, 0, 1, 1});
    row("spinH264KeyFramerate", "QSpinBox", "", {3, 1, 1, 1});
    row("lbH264Complexity", "QLabel", "Complexity:", {3, 2, 1, 1});
    row("cbH264Complexity", "QComboBox", "", {3, 3, 1, 1});
    row("lbH264ProfileIdc", "QLabel", "Profile IDC:", {4, 0, 1, 1});
    row("cbH264ProfileIdc", "QComboBox", "", {4, 1, 1, 1});
    row("lbH264LevelIdc", "QLabel", "Level IDC:", {4, 2, 1, 1});
    row("cbH264LevelIdc", "QComboBox", "", {4, 3, 1, 1});
    row("btnDefault", "QPushButton", "Default", {5, 4, 1, 1});
}

void tst_openH264Panel::everyWidgetStandsInItsCell()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(QString, text);
    QFETCH(QVector<int>, cell);
    CxOpenH264Encoder encoder;
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    QCOMPARE(panel->findChildren<QWidget*>(name).size(), 1);
    QWidget* const widget = panel->findChild<QWidget*>(name);
    QCOMPARE(widget->parentWidget(), panel);
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
    if (!text.isEmpty())
        QCOMPARE(widget->property("text").toString(), text);

    auto* const grid = qobject_cast<QGridLayout*>(panel->layout());
    QVector<int> found(4);
    grid->getItemPosition(grid->indexOf(widget), &found[0], &found[1], &found[2], &found[3]);
    QCOMPARE(found, cell);
    QCOMPARE(grid->itemAt(grid->indexOf(widget))->alignment(), Qt::Alignment());
}

void tst_openH264Panel::everyCellIsKnown()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    auto* const grid = qobject_cast<QGridLayout*>(encoder.widgetForSaveDlg(&parent)->layout());
    QCOMPARE(grid->count(), 13); // ten with names, "Quality:", the box beside it and the spacer

    auto* const quality = qobject_cast<QLabel*>(grid->itemAtPosition(0, 0)->widget());
    QVERIFY(quality);
    QCOMPARE(quality->text(), QStringLiteral("Quality:"));
    QVERIFY(quality->objectName().isEmpty());

    auto* const box = qobject_cast<QHBoxLayout*>(grid->itemAtPosition(0, 1)->layout());
    QVERIFY(box);
    int row, column, rows, columns;
    grid->getItemPosition(grid->indexOf(box), &row, &column, &rows, &columns);
    QCOMPARE((QVector<int>{row, column, rows, columns}), (QVector<int>{0, 1, 1, 4}));
    QCOMPARE(grid->itemAt(grid->indexOf(box))->alignment(), Qt::Alignment());
    QCOMPARE(box->count(), 2);
    QCOMPARE(box->itemAt(0)->widget()->objectName(), QStringLiteral("slH264Quality"));
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(box->stretch(i), 0);
        QCOMPARE(box->itemAt(i)->alignment(), Qt::Alignment());
    }

    auto* const spacer = qobject_cast<QLabel*>(grid->itemAtPosition(1, 0)->widget());
    QVERIFY(spacer);
    QCOMPARE(spacer->text(), QStringLiteral(" "));
    QVERIFY(spacer->objectName().isEmpty());
}

void tst_openH264Panel::childrenJoinThePanelInTheirOrder()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    QStringList order;
    for (QWidget* const child : panel->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        QString const name = child->objectName();
        order.append(name.isEmpty() ? child->property("text").toString() : name);
    }
    // A label joins the panel when it is laid out, a control when it is made.
    QCOMPARE(order,
             (QStringList{"slH264Quality", "Quality:", "5", " ", "chkH264Advanced", "spinH264KeyFramerate",
                          "lbH264KeyFramerate", "cbH264Complexity", "lbH264Complexity", "cbH264ProfileIdc",
                          "lbH264ProfileIdc", "cbH264LevelIdc", "lbH264LevelIdc", "btnDefault"}));
}

void tst_openH264Panel::tabGoesFromQualityToDefault()
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_show_advanced", true}});
    CxShownPanel const shown(encoder);
    QVERIFY(shown.isShown);
    QApplication::setActiveWindow(shown.panel->window());
    shown.child<QSlider>("slH264Quality")->setFocus();
    QStringList order;
    for (int i = 0; i < 6; ++i) {
        order.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    // The two disabled boxes are passed over.
    QCOMPARE(order, (QStringList{"slH264Quality", "chkH264Advanced", "spinH264KeyFramerate", "cbH264LevelIdc",
                                 "btnDefault", "slH264Quality"}));
}

void tst_openH264Panel::qualityGoesFromOneToTen()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    auto* const slider =
        encoder.widgetForSaveDlg(&parent)->findChild<QSlider*>(QStringLiteral("slH264Quality"));
    QVERIFY(slider);
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(slider->minimum(), 1);
    QCOMPARE(slider->maximum(), 10);
    QCOMPARE(slider->tickInterval(), 1);
    QCOMPARE(slider->tickPosition(), QSlider::NoTicks);
    QVERIFY(slider->hasTracking());
}

void tst_openH264Panel::labelShowsTheQuality()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    QLabel* const value = fx_ValueLabel(panel);
    QVERIFY(value);
    QCOMPARE(value->text(), QStringLiteral("5"));
    QCOMPARE(value->maximumWidth(), 30);
    QVERIFY(value->objectName().isEmpty());
    auto* const slider = panel->findChild<QSlider*>(QStringLiteral("slH264Quality"));
    slider->setValue(8);
    QCOMPARE(value->text(), QStringLiteral("8"));
    QVariant const quality = encoder.optionsFromWidgetInSaveDlg(panel).value("h264_quality");
    QCOMPARE(quality.userType(), int(QMetaType::Int));
    QCOMPARE(quality.toInt(), 8);
}

void tst_openH264Panel::keyFrameIntervalGoesFromOneToAHundred()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    auto* const box =
        encoder.widgetForSaveDlg(&parent)->findChild<QSpinBox*>(QStringLiteral("spinH264KeyFramerate"));
    QVERIFY(box);
    QCOMPARE(box->minimum(), 1);
    QCOMPARE(box->maximum(), 100);
    QCOMPARE(box->value(), 5);
    QVERIFY(box->isEnabled());
}

void tst_openH264Panel::boxesOfferTheirItems_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("which");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("complexity") << "cbH264Complexity" << 0 << false;
    QTest::newRow("profile") << "cbH264ProfileIdc" << 1 << false;
    QTest::newRow("level") << "cbH264LevelIdc" << 2 << true;
}

void tst_openH264Panel::boxesOfferTheirItems()
{
    QFETCH(QString, name);
    QFETCH(int, which);
    QFETCH(bool, isEnabled);
    std::vector<SxItem> const& items = which == 0 ? kComplexities : which == 1 ? kProfiles : kLevels;
    CxOpenH264Encoder encoder;
    QWidget parent;
    auto* const box = encoder.widgetForSaveDlg(&parent)->findChild<QComboBox*>(name);
    QVERIFY(box);
    QCOMPARE(box->isEnabledTo(&parent), isEnabled);
    QVERIFY(!box->isEditable());
    QCOMPARE(box->count(), static_cast<int>(items.size()));
    for (int i = 0; i < box->count(); ++i) {
        SxItem const& item = items[static_cast<size_t>(i)];
        QCOMPARE(box->itemText(i), QString::fromLatin1(item.text));
        QCOMPARE(box->itemData(i, Qt::UserRole).userType(), int(QMetaType::Int));
        QCOMPARE(box->itemData(i, Qt::UserRole).toInt(), item.data);
    }
}

void tst_openH264Panel::connectionsAreMadeByNameAndOnce()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    auto* const slider = panel->findChild<QSlider*>(QStringLiteral("slH264Quality"));
    auto* const advanced = panel->findChild<QCheckBox*>(QStringLiteral("chkH264Advanced"));
    auto* const defaults = panel->findChild<QPushButton*>(QStringLiteral("btnDefault"));
    // Only a connection made by name can be undone by name; and there is one of each.
    QVERIFY(QObject::disconnect(slider, SIGNAL(valueChanged(int)), fx_ValueLabel(panel), SLOT(setNum(int))));
    QVERIFY(!QObject::disconnect(slider, SIGNAL(valueChanged(int)), fx_ValueLabel(panel), SLOT(setNum(int))));
    QVERIFY(QObject::disconnect(advanced, SIGNAL(clicked(bool)), panel, SLOT(onAdvanced(bool))));
    QVERIFY(!QObject::disconnect(advanced, nullptr, panel, nullptr));
    QVERIFY(QObject::disconnect(defaults, SIGNAL(clicked(bool)), panel, SLOT(onDefault(bool))));
    QVERIFY(!QObject::disconnect(defaults, nullptr, panel, nullptr));
}

void tst_openH264Panel::showsDefaultsOfTheEncoder()
{
    CxOpenH264Encoder encoder;
    CxShownPanel const shown(encoder);
    QCOMPARE(shown.child<QSlider>("slH264Quality")->value(), 5);
    QCOMPARE(fx_ValueLabel(shown.panel)->text(), QStringLiteral("5"));
    QCOMPARE(shown.child<QSpinBox>("spinH264KeyFramerate")->value(), 5);
    QCOMPARE(shown.child<QComboBox>("cbH264Complexity")->currentText(), QStringLiteral("Medium"));
    QCOMPARE(shown.child<QComboBox>("cbH264ProfileIdc")->currentText(), QStringLiteral("Baseline"));
    QCOMPARE(shown.child<QComboBox>("cbH264LevelIdc")->currentText(), QStringLiteral("5.2"));
    QCOMPARE(shown.child<QComboBox>("cbH264LevelIdc")->currentIndex(), 16);
    QVERIFY(!shown.child<QCheckBox>("chkH264Advanced")->isChecked());
    for (char const* const name : kAdvanced)
        QVERIFY2(!shown.child<QWidget>(name)->isVisible(), name);
    for (char const* const name : {"slH264Quality", "chkH264Advanced", "btnDefault"})
        QVERIFY2(shown.child<QWidget>(name)->isVisible(), name);
}

void tst_openH264Panel::showsEncoderOptions()
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_quality", 9},
                               {"h264_keyframerate", 77},
                               {"h264_complexity", 2},
                               {"h264_profile_idc", 244},
                               {"h264_level_idc", 31}});
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    QCOMPARE(panel->findChild<QSlider*>()->value(), 9);
    QCOMPARE(fx_ValueLabel(panel)->text(), QStringLiteral("9"));
    QCOMPARE(panel->findChild<QSpinBox*>()->value(), 77);
    QCOMPARE(panel->findChild<QComboBox*>("cbH264Complexity")->currentText(), QStringLiteral("High"));
    QCOMPARE(panel->findChild<QComboBox*>("cbH264ProfileIdc")->currentText(), QStringLiteral("CAVLC444"));
    QCOMPARE(panel->findChild<QComboBox*>("cbH264LevelIdc")->currentText(), QStringLiteral("3.1"));
}

void tst_openH264Panel::clampsOutOfRange()
{
    QWidget parent;
    SxEncoderOptions options{99, 1000, 1, 66, 52, false};
    QWidget* const high = fx_NewPanel(&parent, options);
    QCOMPARE(high->findChild<QSlider*>()->value(), 10);
    QCOMPARE(high->findChild<QSpinBox*>()->value(), 100);
    QCOMPARE(options.quality, 99); // the widgets clamp, the encoder keeps its numbers
    QCOMPARE(options.keyFrameInterval, 1000);

    options.quality = options.keyFrameInterval = -3;
    QWidget* const low = fx_NewPanel(&parent, options);
    QCOMPARE(low->findChild<QSlider*>()->value(), 1);
    QCOMPARE(low->findChild<QSpinBox*>()->value(), 1);
}

void tst_openH264Panel::replacesUnknownValues()
{
    QWidget parent;
    SxEncoderOptions options{5, 5, 3, 67, 0, false};
    QWidget* const panel = fx_NewPanel(&parent, options);
    QCOMPARE(panel->findChild<QComboBox*>("cbH264Complexity")->currentIndex(), 1);
    QCOMPARE(panel->findChild<QComboBox*>("cbH264ProfileIdc")->currentIndex(), 0);
    QCOMPARE(panel->findChild<QComboBox*>("cbH264LevelIdc")->currentIndex(), 16);
    QCOMPARE(options.complexity, 1);
    QCOMPARE(options.profile, 66);
    QCOMPARE(options.level, 52);
}

void tst_openH264Panel::unknownValuesAreReplacedInEncoder_data()
{
    QTest::addColumn<int>("complexity");
    QTest::addColumn<int>("profile");
    QTest::addColumn<int>("level");
    QTest::addColumn<QVector<int>>("expected");
    QTest::newRow("all zero") << 0 << 0 << 0 << QVector<int>{0, 66, 52}; // low is a complexity
    QTest::newRow("level between two") << 2 << 100 << 14 << QVector<int>{2, 100, 52};
    QTest::newRow("above") << 3 << 245 << 53 << QVector<int>{1, 66, 52};
    QTest::newRow("negative") << -1 << -66 << -52 << QVector<int>{1, 66, 52};
    QTest::newRow("all known") << 0 << 77 << 9 << QVector<int>{0, 77, 9};
}

/// What the library is then given, not only what the panel shows.
void tst_openH264Panel::unknownValuesAreReplacedInEncoder()
{
    QFETCH(int, complexity);
    QFETCH(int, profile);
    QFETCH(int, level);
    fx_OpenH264Double() = SxOpenH264Double();
    CxTestPicture const picture(64, 48);
    QByteArray out(64 * 48 * 2, '\0');
    unsigned long size = static_cast<unsigned long>(out.size());
    {
        CxOpenH264Encoder encoder;
        encoder.setEncoderOptions(
            {{"h264_complexity", complexity}, {"h264_profile_idc", profile}, {"h264_level_idc", level}});
        QWidget parent;
        encoder.widgetForSaveDlg(&parent);
        QVERIFY(encoder.encode(picture.buf, out.data(), size, nullptr));
    }
    QCOMPARE(fx_OpenH264Double().params.size(), size_t(1));
    SEncParamExt const& params = fx_OpenH264Double().params.front();
    SSpatialLayerConfig const& layer = params.sSpatialLayers[0];
    QTEST((QVector<int>{params.iComplexityMode, layer.uiProfileIdc, layer.uiLevelIdc}), "expected");
}

void tst_openH264Panel::level1bIsNumberNine()
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_level_idc", 9}});
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    auto* const level = panel->findChild<QComboBox*>("cbH264LevelIdc");
    QCOMPARE(level->currentIndex(), 1);
    QCOMPARE(level->currentText(), QStringLiteral("1b"));
    QCOMPARE(encoder.optionsFromWidgetInSaveDlg(panel).value("h264_level_idc"), QVariant(9));
}

void tst_openH264Panel::clickShowsAdvanced()
{
    CxOpenH264Encoder encoder;
    CxShownPanel const shown(encoder);
    QVERIFY(shown.isShown);
    for (bool const isAdvanced : {true, false, true}) {
        shown.click("chkH264Advanced");
        QCOMPARE(shown.child<QCheckBox>("chkH264Advanced")->isChecked(), isAdvanced);
        for (char const* const name : kAdvanced)
            QVERIFY2(shown.child<QWidget>(name)->isVisible() == isAdvanced, name);
        QVERIFY(shown.child<QWidget>("btnDefault")->isVisible());
        QVERIFY(shown.child<QWidget>("slH264Quality")->isVisible());
    }
}

void tst_openH264Panel::keyShowsAdvanced()
{
    CxOpenH264Encoder encoder;
    CxShownPanel const shown(encoder);
    QTest::keyClick(shown.child<QCheckBox>("chkH264Advanced"), Qt::Key_Space);
    QVERIFY(shown.child<QWidget>("cbH264LevelIdc")->isVisible());
}

void tst_openH264Panel::codeDoesNotShowAdvanced()
{
    CxOpenH264Encoder encoder;
    CxShownPanel const shown(encoder);
    shown.child<QCheckBox>("chkH264Advanced")->setChecked(true);
    QVERIFY(!shown.child<QWidget>("cbH264LevelIdc")->isVisible());
}

void tst_openH264Panel::optionShowsAdvancedFromTheStart()
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_show_advanced", true}});
    CxShownPanel const shown(encoder);
    QVERIFY(shown.child<QCheckBox>("chkH264Advanced")->isChecked());
    for (char const* const name : kAdvanced)
        QVERIFY2(shown.child<QWidget>(name)->isVisible(), name);
}

void tst_openH264Panel::defaultButtonResetsAllButAdvanced()
{
    for (bool const isAdvanced : {false, true}) {
        CxOpenH264Encoder encoder;
        encoder.setEncoderOptions({{"h264_quality", 1},
                                   {"h264_keyframerate", 100},
                                   {"h264_complexity", 2},
                                   {"h264_profile_idc", 100},
                                   {"h264_level_idc", 10},
                                   {"h264_show_advanced", isAdvanced}});
        CxShownPanel const shown(encoder);
        QVERIFY(shown.isShown);
        shown.click("btnDefault");
        QCOMPARE(encoder.optionsFromWidgetInSaveDlg(shown.panel),
                 (QMap<QString, QVariant>{{"h264_quality", 5},
                                          {"h264_keyframerate", 5},
                                          {"h264_complexity", 1},
                                          {"h264_profile_idc", 66},
                                          {"h264_level_idc", 52},
                                          {"h264_show_advanced", isAdvanced}}));
        QCOMPARE(fx_ValueLabel(shown.panel)->text(), QStringLiteral("5"));
        QCOMPARE(shown.child<QWidget>("cbH264LevelIdc")->isVisible(), isAdvanced);

        // The encoder learns of it only when the host hands it the map.
        QWidget parent;
        QCOMPARE(encoder.widgetForSaveDlg(&parent)->findChild<QSlider*>()->value(), 1);
    }
}

void tst_openH264Panel::defaultSlotIgnoresItsArgument()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    auto* const panel = qobject_cast<CxPanel*>(encoder.widgetForSaveDlg(&parent));
    for (bool const checked : {false, true}) {
        panel->findChild<QSlider*>()->setValue(2);
        panel->onDefault(checked);
        QCOMPARE(panel->findChild<QSlider*>()->value(), 5);
    }
}

void tst_openH264Panel::readsAllSixKeys()
{
    CxOpenH264Encoder encoder;
    QWidget parent;
    QMap<QString, QVariant> const options =
        encoder.optionsFromWidgetInSaveDlg(encoder.widgetForSaveDlg(&parent));
    QCOMPARE(options.keys(), (QStringList{"h264_complexity", "h264_keyframerate", "h264_level_idc",
                                          "h264_profile_idc", "h264_quality", "h264_show_advanced"}));
    for (QString const& key : options.keys())
        QCOMPARE(options.value(key).userType(),
                 int(key == "h264_show_advanced" ? QMetaType::Bool : QMetaType::Int));
}

void tst_openH264Panel::readsHiddenAndDisabledWidgets()
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_keyframerate", 42}, {"h264_complexity", 0}, {"h264_profile_idc", 77}});
    CxShownPanel const shown(encoder);
    QVERIFY(!shown.child<QWidget>("spinH264KeyFramerate")->isVisible());
    QMap<QString, QVariant> const options = encoder.optionsFromWidgetInSaveDlg(shown.panel);
    QCOMPARE(options.size(), 6);
    QCOMPARE(options.value("h264_keyframerate"), QVariant(42));
    QCOMPARE(options.value("h264_complexity"), QVariant(0));
    QCOMPARE(options.value("h264_profile_idc"), QVariant(77));
    QCOMPARE(options.value("h264_show_advanced"), QVariant(false));
}

void tst_openH264Panel::arrowKeysMoveTheSlider()
{
    CxOpenH264Encoder encoder;
    CxShownPanel const shown(encoder);
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(shown.child<QSlider>("slH264Quality"), Qt::Key_Right);
    QCOMPARE(fx_ValueLabel(shown.panel)->text(), QStringLiteral("8"));
    QCOMPARE(encoder.optionsFromWidgetInSaveDlg(shown.panel).value("h264_quality"), QVariant(8));
}

void tst_openH264Panel::readsThroughAncestor()
{
    CxOpenH264Encoder encoder;
    QWidget grandparent;
    auto* const parent = new QWidget(&grandparent);
    QWidget* const panel = encoder.widgetForSaveDlg(parent);
    panel->findChild<QSlider*>()->setValue(3);
    QCOMPARE(encoder.optionsFromWidgetInSaveDlg(&grandparent), encoder.optionsFromWidgetInSaveDlg(panel));
    QCOMPARE(encoder.optionsFromWidgetInSaveDlg(&grandparent).value("h264_quality"), QVariant(3));
}

void tst_openH264Panel::nullWidgetReadsAsNothing()
{
    CxOpenH264Encoder encoder;
    QVERIFY(encoder.optionsFromWidgetInSaveDlg(nullptr).isEmpty());
}

void tst_openH264Panel::missingWidgetsAreLeftOut()
{
    CxOpenH264Encoder encoder;
    QWidget foreign;
    QVERIFY(encoder.optionsFromWidgetInSaveDlg(&foreign).isEmpty());
    (new QSpinBox(&foreign))->setObjectName("spinH264KeyFramerate");
    QCOMPARE(encoder.optionsFromWidgetInSaveDlg(&foreign),
             (QMap<QString, QVariant>{{"h264_keyframerate", 0}}));
    // An empty box has no data, which reads as 0.
    (new QComboBox(&foreign))->setObjectName("cbH264LevelIdc");
    QCOMPARE(encoder.optionsFromWidgetInSaveDlg(&foreign).value("h264_level_idc"), QVariant(0));
}

void tst_openH264Panel::widgetsOfOtherClassesAreLeftOut()
{
    CxOpenH264Encoder encoder;
    QWidget foreign;
    (new QLabel(&foreign))->setObjectName("slH264Quality");
    (new QPushButton(&foreign))->setObjectName("chkH264Advanced");
    QVERIFY(encoder.optionsFromWidgetInSaveDlg(&foreign).isEmpty());
}

void tst_openH264Panel::optionsReadAreThoseShown()
{
    QMap<QString, QVariant> const options{{"h264_quality", 7},    {"h264_keyframerate", 30},
                                          {"h264_complexity", 2}, {"h264_profile_idc", 100},
                                          {"h264_level_idc", 40}, {"h264_show_advanced", true}};
    CxOpenH264Encoder first;
    first.setEncoderOptions(options);
    QWidget parent;
    QMap<QString, QVariant> const read = first.optionsFromWidgetInSaveDlg(first.widgetForSaveDlg(&parent));
    QCOMPARE(read, options);
}

void tst_openH264Panel::panelOutlivesItsEncoder()
{
    QWidget parent;
    CxShownPanel* shown = nullptr;
    {
        CxOpenH264Encoder encoder;
        shown = new CxShownPanel(encoder);
    }
    shown->click("chkH264Advanced");
    shown->child<QSlider>("slH264Quality")->setValue(10);
    QVERIFY(shown->child<QWidget>("cbH264LevelIdc")->isVisible());
    shown->click("btnDefault");
    QCOMPARE(shown->child<QSlider>("slH264Quality")->value(), 5);
    delete shown;
}

void tst_openH264Panel::textsAreTranslatedUnderTheEncoder()
{
    CxRecordingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    CxOpenH264Encoder encoder;
    QWidget parent;
    QWidget* const panel = encoder.widgetForSaveDlg(&parent);
    QCoreApplication::removeTranslator(&translator);

    QStringList expected{
        "Quality:", "Advanced", "Key frames:", "Complexity:", "Profile IDC:", "Level IDC:", "Default"};
    for (auto const* const items : {&kComplexities, &kProfiles, &kLevels}) {
        for (SxItem const& item : *items)
            expected.append(QString::fromLatin1(item.text));
    }
    QStringList asked;
    for (auto const& entry : translator.asked) {
        if (entry.first == QLatin1String("CxOpenH264Encoder"))
            asked.append(entry.second);
        else
            QVERIFY2(!expected.contains(entry.second) && entry.second != QLatin1String("%1"),
                     qPrintable(entry.first + QStringLiteral(": ") + entry.second));
    }
    expected.sort();
    asked.sort();
    QCOMPARE(asked, expected); // "High" stands twice, so nothing more and nothing less

    QCOMPARE(panel->findChild<QCheckBox*>()->text(), QStringLiteral("[Advanced]"));
    QCOMPARE(panel->findChild<QComboBox*>("cbH264LevelIdc")->itemText(1), QStringLiteral("[1b]"));
    QCOMPARE(panel->findChild<QLabel*>("lbH264LevelIdc")->text(), QStringLiteral("[Level IDC:]"));
    QCOMPARE(fx_ValueLabel(panel)->text(), QStringLiteral("5"));
}

QTEST_MAIN(tst_openH264Panel)
#include "tst_openH264Panel.moc"
