#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

#include "IxImageDataSaver.h"
#include "MainWindow.h"
#include "Translations.h"
#include "support/ViewerFixture.h"

namespace {

struct SxMessage
{
    QStringList forms; ///< the translation, or singular and plural
    bool isFinished = true;
};

/// By context, text and comment.
using Messages = QMap<QString, SxMessage>;

Messages fx_ReadTs(QString const& fileName)
{
    Messages messages;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString context, source, comment;
    SxMessage message;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            auto const name = xml.name();
            if (name == QLatin1String("name"))
                context = xml.readElementText();
            else if (name == QLatin1String("source"))
                source = xml.readElementText();
            else if (name == QLatin1String("comment"))
                comment = xml.readElementText();
            else if (name == QLatin1String("message"))
                message = {}, comment.clear();
            else if (name == QLatin1String("translation")) {
                message.isFinished = !xml.attributes().hasAttribute(QLatin1String("type"));
                QString text;
                while (!(xml.isEndElement() && xml.name() == QLatin1String("translation"))) {
                    xml.readNext();
                    if (xml.isStartElement())
                        message.forms.append(xml.readElementText());
                    else if (xml.isCharacters())
                        text += xml.text();
                }
                if (message.forms.isEmpty())
                    message.forms.append(text);
            }
        } else if (xml.isEndElement() && xml.name() == QLatin1String("message")) {
            messages.insert(QStringLiteral("%1|%2|%3").arg(context, source, comment), message);
        }
    }
    return xml.hasError() ? Messages() : messages;
}

QStringList fx_Placeholders(QString const& text)
{
    static QRegularExpression const kPlaceholder(QStringLiteral("%(\\d|n)"));
    QStringList found;
    for (auto it = kPlaceholder.globalMatch(text); it.hasNext();)
        found.append(it.next().captured());
    found.sort();
    return found;
}

/// Within each menu every key leads to one entry.
void fx_CheckMenuKeys(CxMainWindow const& window)
{
    QList<QMenu*> const menus = window.menuBar()->findChildren<QMenu*>();
    QVERIFY(menus.size() > 5);
    for (QMenu* const menu : menus) {
        QSet<QChar> keys;
        for (QAction* const action : menu->actions()) {
            auto const mark = action->text().indexOf('&');
            if (mark < 0)
                continue;
            QChar const key = action->text().at(mark + 1).toLower();
            QVERIFY2(!keys.contains(key), qPrintable(action->text()));
            keys.insert(key);
        }
    }
}

} // namespace

class tst_Translations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyTextIsTranslated_data();
    void everyTextIsTranslated();
    void compiledTextsAreThoseOfTheSources_data();
    void compiledTextsAreThoseOfTheSources();
    void pluginTextsStandUnderItsClasses();
    void windowSpeaksEnglish();
    void pluginSpeaksGerman();
    void windowSpeaksGerman();
    void countsInSingularAndPlural();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
};

void tst_Translations::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
}

void tst_Translations::everyTextIsTranslated_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isPluralOnly");
    QTest::newRow("plug-in") << PLUGIN_SOURCES << "tvpCodecOpenH264_de" << false;
    QTest::newRow("viewer") << VIEWER_SOURCES << "minihost_de" << false;
    QTest::newRow("viewer, English") << VIEWER_SOURCES << "minihost_en" << true;
}

void tst_Translations::everyTextIsTranslated()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    QFETCH(bool, isPluralOnly);
    // What the sources hold now, from Qt's own tool.
    QTemporaryDir const temporary;
    QString const fresh = temporary.filePath(QStringLiteral("fresh.ts"));
    QStringList arguments{"-silent", folder, "-locations", "none", "-target-language", "de", "-ts", fresh};
    if (isPluralOnly)
        arguments.prepend(QStringLiteral("-pluralonly"));
    QCOMPARE(QProcess::execute(QStringLiteral(LUPDATE), arguments), 0);
    Messages const inSources = fx_ReadTs(fresh);
    QVERIFY(!inSources.isEmpty());

    Messages const translated = fx_ReadTs(QStringLiteral("%1/translations/%2.ts").arg(folder, name));
    QCOMPARE(QStringList(translated.keys()),
             QStringList(inSources.keys())); // nothing missing, nothing left over
    for (auto it = translated.begin(); it != translated.end(); ++it) {
        QVERIFY2(it->isFinished, qPrintable(it.key()));
        QString const source = it.key().section('|', 1, 1);
        bool const isNumerus = source.contains(QLatin1String("%n"));
        QCOMPARE(it->forms.size(), isNumerus ? 2 : 1);
        for (QString const& form : it->forms) {
            QVERIFY2(!form.trimmed().isEmpty(), qPrintable(it.key()));
            QCOMPARE(fx_Placeholders(form), fx_Placeholders(source));
            QCOMPARE(form.count('&'), source.count('&')); // a key for whatever had one
        }
    }
}

void tst_Translations::compiledTextsAreThoseOfTheSources_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::newRow("plug-in") << PLUGIN_SOURCES << "tvpCodecOpenH264_de";
    QTest::newRow("viewer") << VIEWER_SOURCES << "minihost_de";
}

void tst_Translations::compiledTextsAreThoseOfTheSources()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(TRANSLATIONS "/%1.qm").arg(name)));
    Messages const texts = fx_ReadTs(QStringLiteral("%1/translations/%2.ts").arg(folder, name));
    for (auto it = texts.begin(); it != texts.end(); ++it) {
        QStringList const key = it.key().split('|');
        if (it->forms.size() > 1)
            continue; // those are looked up by number, see countsInSingularAndPlural()
        QByteArray const comment = key[2].toUtf8();
        QCOMPARE(translator.translate(key[0].toUtf8(), key[1].toUtf8(),
                                      comment.isEmpty() ? nullptr : comment.data()),
                 it->forms.first());
        QVERIFY(translator.translate("CxSomeOtherClass", key[1].toUtf8()).isEmpty());
    }
}

void tst_Translations::pluginTextsStandUnderItsClasses()
{
    QSet<QString> contexts;
    Messages const texts = fx_ReadTs(QStringLiteral(PLUGIN_SOURCES "/translations/tvpCodecOpenH264_de.ts"));
    for (QString const& key : texts.keys())
        contexts.insert(key.section('|', 0, 0));
    QCOMPARE(contexts, (QSet<QString>{"CxPluginCodecOpenH264", "CxOpenH264Encoder", "CxH264VideoSaver",
                                      "CxH264VideoLoader"}));
    for (QString const context : {"CxH264VideoSaver", "CxH264VideoLoader"})
        QCOMPARE(texts.value(context + "|H.264 file|").forms, QStringList{"H.264-Datei"});
}

void tst_Translations::windowSpeaksEnglish()
{
    CxMainWindow const window(m_fixture->plugins);
    QCOMPARE(window.menuBar()->actions().first()->text(), QStringLiteral("&File"));
    fx_CheckMenuKeys(window);
}

void tst_Translations::pluginSpeaksGerman()
{
    fx_InstallTranslations(QLocale(QLocale::German), m_fixture->plugins.fileNames());
    QString error;
    auto const saver = fx_Create<IxImageDataSaver>("IxImageDataSaver", error);
    QCOMPARE(saver.as->supportedImageFormats().first().description, QStringLiteral("H.264-Datei (*.h264)"));
    auto const loader = fx_Create<IxImageDataLoader>("IxImageDataLoader", error);
    QCOMPARE(loader.as->supportedImageFormats().first().description, QStringLiteral("H.264-Datei (*.h264)"));
    QWidget parent;
    QWidget* const panel = saver.as->widgetForSaveDlg(&parent);
    QCOMPARE(panel->findChild<QLabel*>("lbH264KeyFramerate")->text(), QStringLiteral("Schlüsselbilder:"));
    QCOMPARE(panel->findChild<QPushButton*>("btnDefault")->text(), QStringLiteral("Standard"));
    QCOMPARE(panel->findChild<QComboBox*>("cbH264Complexity")->itemText(0), QStringLiteral("Niedrig"));
}

void tst_Translations::windowSpeaksGerman()
{
    // Goes on from the test before.
    CxMainWindow const window(m_fixture->plugins);
    QCOMPARE(window.menuBar()->actions().first()->text(), QStringLiteral("&Datei"));
    fx_CheckMenuKeys(window);
}

void tst_Translations::countsInSingularAndPlural()
{
    for (auto const& language : {qMakePair(QStringLiteral("de"), QStringList{"1 Bild", "7 Bilder"}),
                                 qMakePair(QStringLiteral("en"), QStringList{"1 picture", "7 pictures"})}) {
        QTranslator translator;
        QVERIFY(translator.load(QStringLiteral(TRANSLATIONS "/minihost_%1.qm").arg(language.first)));
        auto const text = [&](int n) {
            return translator.translate("CxRecordBar", "%n picture(s)", nullptr, n)
                .replace("%n", QString::number(n));
        };
        QCOMPARE((QStringList{text(1), text(7)}), language.second);
    }
}

QTEST_MAIN(tst_Translations)
#include "tst_Translations.moc"
