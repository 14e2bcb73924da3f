#include <QComboBox>
#include <QGridLayout>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTranslator>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxPlugin.h"
#include "CxRTTI.h"
#include "H264VideoSaver.h"
#include "openH264Encoder.h"
#include "openH264Panel.h"
#include "support/MessageRecorder.h"

static unsigned int const kH264 = 0x34363248;

/// An encoder without a panel. Counts its objects, and keeps the last at hand.
class CxPanelessEncoder : public QObject, public IxVideoEncoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxPanelessEncoder()
    {
        ++s_alive;
        s_last = this;
    }
    ~CxPanelessEncoder() override { --s_alive; }

    QString name() override { return QStringLiteral("none"); }
    unsigned int fourCC() override { return kH264; }
    bool encode(SxPicBuf const&, void*, unsigned long&, bool*) override { return false; }
    unsigned long maxEncodedSize(SxPicBufInfo const&) override { return 0; }
    void queryOuputFormat(SxPicBufInfo const&, SxPicBufInfo&) override {}
    void setEncoderOptions(QMap<QString, QVariant> const&) override {}
    QWidget* widgetForSaveDlg(QWidget* parent) override
    {
        s_parent = parent;
        return nullptr;
    }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override { return {{"read", true}}; }

    static int s_alive;
    static QPointer<CxPanelessEncoder> s_last;
    static QPointer<QWidget> s_parent;
};

int CxPanelessEncoder::s_alive = 0;
QPointer<CxPanelessEncoder> CxPanelessEncoder::s_last;
QPointer<QWidget> CxPanelessEncoder::s_parent;

class tst_H264VideoSaverDialog : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void saverOptionsAreTheFourCCOnly();
    void containerHoldsThePanel();
    void panelOutlivesEncoder();
    void optionsAreKeptUnderTheFourCC();
    void readsPanelItself();
    void nullWidgetGivesNothing();
    void foreignWidgetGivesNothing();
    void showsCodecOptions();
    void changesOfPanelStayThere();
    void withoutEncoderNothingIsShown();
    void encoderWithoutPanelShowsNothing();
    void keepsOnlySecondOptions();
    void worksThroughTheInterfaceAlone();
    void offersOneFileFormat();
    void formatsAreTranslated();

private:
    void registerEncoder(QMetaObject const& metaObject)
    {
        QVERIFY(CxRTTI::instance()->registerClass(&m_plugin, metaObject, QStringLiteral("IxVideoEncoder")));
    }
    CxPlugin m_plugin;
};

void tst_H264VideoSaverDialog::cleanup()
{
    fx_UnregisterClasses(&m_plugin);
    fx_SetCodecOptions(kH264, {});
}

void tst_H264VideoSaverDialog::saverOptionsAreTheFourCCOnly()
{
    CxH264VideoSaver saver;
    QWidget widget;
    for (QWidget* const any : {static_cast<QWidget*>(nullptr), &widget}) {
        QMap<QString, QVariant> const options = saver.optionsFromWidgetInSaveDlg(any);
        QCOMPARE(options.size(), 1);
        QCOMPARE(options.value("codec").userType(), int(QMetaType::UInt));
        QCOMPARE(options.value("codec").toUInt(), 875967048u);
    }
    // Also with options of another kind set.
    saver.setSaverOptions({{"codec", 1u}, {"more", 2}});
    QCOMPARE(saver.optionsFromWidgetInSaveDlg(nullptr), (QMap<QString, QVariant>{{"codec", 875967048u}}));
}

void tst_H264VideoSaverDialog::containerHoldsThePanel()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    CxH264VideoSaver saver;
    QWidget parent;
    QWidget* const container = saver.widgetForSaveDlg(&parent);
    QVERIFY(container);
    QCOMPARE(container->metaObject(), &QWidget::staticMetaObject);
    QCOMPARE(container->parentWidget(), &parent);
    QVERIFY(!container->isWindow());

    auto* const grid = qobject_cast<QGridLayout*>(container->layout());
    QVERIFY(grid);
    QCOMPARE(grid->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(grid->count(), 1);
    QWidget* const panel = grid->itemAtPosition(0, 0)->widget();
    QVERIFY(qobject_cast<CxPanel*>(panel));
    QCOMPARE(panel->parentWidget(), container);
    QCOMPARE(grid->itemAt(0)->alignment(), Qt::Alignment());
    int row, column, rows, columns;
    grid->getItemPosition(0, &row, &column, &rows, &columns);
    QCOMPARE((QVector<int>{row, column, rows, columns}), (QVector<int>{0, 0, 1, 1}));
}

void tst_H264VideoSaverDialog::panelOutlivesEncoder()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    QWidget window;
    QVBoxLayout column(&window);
    QWidget* container = nullptr;
    {
        CxH264VideoSaver saver;
        container = saver.widgetForSaveDlg(&window);
    }
    column.addWidget(container);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto* const advanced = container->findChild<QWidget*>("chkH264Advanced");
    QTest::mouseClick(advanced, Qt::LeftButton, {}, QPoint(8, advanced->height() / 2));
    QVERIFY(container->findChild<QWidget*>("cbH264LevelIdc")->isVisible());
    container->findChild<QSlider*>()->setValue(9);
    QTest::mouseClick(container->findChild<QPushButton*>("btnDefault"), Qt::LeftButton);
    QCOMPARE(container->findChild<QSlider*>()->value(), 5);
}

void tst_H264VideoSaverDialog::optionsAreKeptUnderTheFourCC()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    CxH264VideoSaver saver;
    QWidget parent;
    QWidget* const container = saver.widgetForSaveDlg(&parent);
    container->findChild<QSlider*>()->setValue(8);
    container->findChild<QSpinBox*>()->setValue(30);
    container->findChild<QComboBox*>("cbH264LevelIdc")->setCurrentText("3.1");
    unsigned int fourCC = 0;
    QMap<QString, QVariant> const expected{{"h264_quality", 8},    {"h264_keyframerate", 30},
                                           {"h264_complexity", 1}, {"h264_profile_idc", 66},
                                           {"h264_level_idc", 31}, {"h264_show_advanced", false}};
    QCOMPARE(saver.codecOptionsFromWigetInSaveDlg(container, fourCC), expected);
    QCOMPARE(fourCC, kH264);
    QCOMPARE(saver.codecOptionsFromWigetInSaveDlg(&parent, fourCC), expected); // any ancestor serves
}

void tst_H264VideoSaverDialog::readsPanelItself()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    CxH264VideoSaver saver;
    QWidget parent;
    QWidget* const container = saver.widgetForSaveDlg(&parent);
    unsigned int fourCC = 0;
    QMap<QString, QVariant> const read =
        saver.codecOptionsFromWigetInSaveDlg(container->findChild<CxPanel*>(), fourCC);
    QCOMPARE(read.size(), 6);
    QCOMPARE(read, saver.codecOptionsFromWigetInSaveDlg(container, fourCC));
}

void tst_H264VideoSaverDialog::nullWidgetGivesNothing()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    CxH264VideoSaver saver;
    unsigned int fourCC = 7;
    QVERIFY(saver.codecOptionsFromWigetInSaveDlg(nullptr, fourCC).isEmpty());
    QCOMPARE(fourCC, kH264);

    std::unique_ptr<QWidget> const orphan(saver.widgetForSaveDlg(nullptr));
    QVERIFY(orphan != nullptr);
    QCOMPARE(saver.codecOptionsFromWigetInSaveDlg(orphan.get(), fourCC).size(), 6);
}

void tst_H264VideoSaverDialog::foreignWidgetGivesNothing()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    CxH264VideoSaver saver;
    QWidget foreign;
    unsigned int fourCC = 7;
    QVERIFY(saver.codecOptionsFromWigetInSaveDlg(&foreign, fourCC).isEmpty());
    QCOMPARE(fourCC, kH264);
    auto* const slider = new QSlider(&foreign);
    slider->setObjectName("slH264Quality");
    slider->setRange(0, 50);
    slider->setValue(33);
    QCOMPARE(saver.codecOptionsFromWigetInSaveDlg(&foreign, fourCC),
             (QMap<QString, QVariant>{{"h264_quality", 33}}));
}

void tst_H264VideoSaverDialog::showsCodecOptions()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    QMap<QString, QVariant> const chosen{{"h264_quality", 3},    {"h264_keyframerate", 60},
                                         {"h264_complexity", 0}, {"h264_profile_idc", 77},
                                         {"h264_level_idc", 9},  {"h264_show_advanced", true}};
    fx_SetCodecOptions(kH264, chosen);
    CxH264VideoSaver saver;
    QWidget parent;
    unsigned int fourCC = 0;
    QCOMPARE(saver.codecOptionsFromWigetInSaveDlg(saver.widgetForSaveDlg(&parent), fourCC), chosen);
}

void tst_H264VideoSaverDialog::changesOfPanelStayThere()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    CxH264VideoSaver saver;
    QWidget parent;
    saver.widgetForSaveDlg(&parent)->findChild<QSlider*>()->setValue(1);
    QCOMPARE(saver.widgetForSaveDlg(&parent)->findChild<QSlider*>()->value(), 5);
    QVERIFY(fx_CodecOptions(kH264).isEmpty()); // giving them to the codec manager is the host's part
}

void tst_H264VideoSaverDialog::withoutEncoderNothingIsShown()
{
    CxMessageRecorder messages;
    CxH264VideoSaver saver;
    QWidget parent;
    QCOMPARE(saver.widgetForSaveDlg(&parent), nullptr);
    QVERIFY(parent.children().isEmpty());
    unsigned int fourCC = 7;
    QVERIFY(saver.codecOptionsFromWigetInSaveDlg(&parent, fourCC).isEmpty());
    QCOMPARE(fourCC, kH264);
    QCOMPARE(saver.optionsFromWidgetInSaveDlg(nullptr).value("codec").toUInt(), kH264);
    QVERIFY(messages.takeRaw().isEmpty());
}

void tst_H264VideoSaverDialog::encoderWithoutPanelShowsNothing()
{
    registerEncoder(CxPanelessEncoder::staticMetaObject);
    CxMessageRecorder messages;
    CxH264VideoSaver saver;
    QWidget parent;
    QCOMPARE(saver.widgetForSaveDlg(&parent), nullptr);
    QVERIFY(parent.children().isEmpty());
    QVERIFY(CxPanelessEncoder::s_parent.isNull()); // the container that it was offered is gone
    // Deliberate: this one encoder is left to the host.
    QCOMPARE(CxPanelessEncoder::s_alive, 1);
    delete CxPanelessEncoder::s_last;

    unsigned int fourCC = 7;
    QCOMPARE(saver.codecOptionsFromWigetInSaveDlg(&parent, fourCC),
             (QMap<QString, QVariant>{{"read", true}}));
    QCOMPARE(fourCC, kH264);
    QCOMPARE(CxPanelessEncoder::s_alive, 0);
    QVERIFY(messages.takeRaw().isEmpty());
}

void tst_H264VideoSaverDialog::keepsOnlySecondOptions()
{
    CxMessageRecorder messages;
    CxH264VideoSaver saver;
    QMap<QString, QVariant> first{{"codec", 1u}};
    saver.setSaverOptions(first);
    QVERIFY(!first.isDetached()); // the saver's copy shares it
    saver.setSaverOptions({{"codec", kH264}});
    // Only the second map is kept: the first is ours alone again.
    QVERIFY(first.isDetached());
    saver.setSaverOptions({});
    QVERIFY(messages.takeRaw().isEmpty());
}

void tst_H264VideoSaverDialog::worksThroughTheInterfaceAlone()
{
    registerEncoder(CxOpenH264Encoder::staticMetaObject);
    std::unique_ptr<QObject> const object(CxH264VideoSaver::staticMetaObject.newInstance());
    auto* const saver = static_cast<IxImageDataSaver*>(object->qt_metacast("IxImageDataSaver"));
    QVERIFY(saver);
    QWidget parent;
    saver->setSaverOptions(saver->optionsFromWidgetInSaveDlg(nullptr));
    QWidget* const container = saver->widgetForSaveDlg(&parent);
    QVERIFY(container);
    unsigned int fourCC = 0;
    QCOMPARE(saver->codecOptionsFromWigetInSaveDlg(container, fourCC).size(), 6);
    QCOMPARE(fourCC, kH264);
}

void tst_H264VideoSaverDialog::offersOneFileFormat()
{
    CxH264VideoSaver saver;
    QList<CxImageFormat> const formats = saver.supportedImageFormats();
    QCOMPARE(formats.size(), 1);
    QCOMPARE(formats.first().description, QStringLiteral("H.264 file (*.h264)"));
    QCOMPARE(formats.first().kind, 2);
}

void tst_H264VideoSaverDialog::formatsAreTranslated()
{
    class CxSaverTranslator : public QTranslator
    {
    public:
        QString translate(char const* context, char const* text, char const*, int) const override
        {
            return qstrcmp(context, "CxH264VideoSaver") == 0 && qstrcmp(text, "H.264 file") == 0
                       ? QStringLiteral("Datei")
                       : QString();
        }
        bool isEmpty() const override { return false; }
    } translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QString const description = CxH264VideoSaver().supportedImageFormats().first().description;
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(description, QStringLiteral("Datei (*.h264)"));
}

QTEST_MAIN(tst_H264VideoSaverDialog)
#include "tst_H264VideoSaverDialog.moc"
