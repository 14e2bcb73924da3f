<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CxAboutWindow</name>
    <message>
        <source>About and Licences</source>
        <translation>Über und Lizenzen</translation>
    </message>
</context>
<context>
    <name>CxActions</name>
    <message>
        <source>&amp;Open Recording…</source>
        <translation>Aufnahme ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>&amp;Test Camera</source>
        <translation>&amp;Testkamera</translation>
    </message>
    <message>
        <source>Open &amp;Video, Stream or Device…</source>
        <translation>&amp;Video, Stream oder Gerät öffnen …</translation>
    </message>
    <message>
        <source>&amp;Record…</source>
        <translation>Auf&amp;zeichnen …</translation>
    </message>
    <message>
        <source>&amp;Save Picture…</source>
        <translation>Bild &amp;speichern …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Copy Picture</source>
        <translation>Bild &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>&amp;Wiedergeben</translation>
    </message>
    <message>
        <source>Pre&amp;vious Picture</source>
        <translation>&amp;Voriges Bild</translation>
    </message>
    <message>
        <source>&amp;Next Picture</source>
        <translation>&amp;Nächstes Bild</translation>
    </message>
    <message>
        <source>Previous &amp;Key Frame</source>
        <translation>Voriges &amp;Schlüsselbild</translation>
    </message>
    <message>
        <source>Next Key F&amp;rame</source>
        <translation>Nächstes Sch&amp;lüsselbild</translation>
    </message>
    <message>
        <source>&amp;First Picture</source>
        <translation>&amp;Erstes Bild</translation>
    </message>
    <message>
        <source>L&amp;ast Picture</source>
        <translation>Le&amp;tztes Bild</translation>
    </message>
    <message>
        <source>&amp;Loop</source>
        <translation>Endloss&amp;chleife</translation>
    </message>
    <message>
        <source>&amp;Fit to Window</source>
        <translation>An &amp;Fenster anpassen</translation>
    </message>
    <message>
        <source>&amp;Actual Size</source>
        <translation>&amp;Originalgröße</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>F&amp;ull Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>&amp;Keys</source>
        <translation>&amp;Tasten</translation>
    </message>
    <message>
        <source>&amp;About and Licences</source>
        <translation>&amp;Über und Lizenzen</translation>
    </message>
    <message>
        <source>%1 ×</source>
        <translation>%1 ×</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Open R&amp;ecent</source>
        <translation>Zuletzt &amp;geöffnet</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>&amp;Speed</source>
        <translation>Geschwindig&amp;keit</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pause</translation>
    </message>
    <message>
        <source>Set &amp;In Mark</source>
        <translation>&amp;Anfangsmarke setzen</translation>
    </message>
    <message>
        <source>Set &amp;Out Mark</source>
        <translation>&amp;Endmarke setzen</translation>
    </message>
    <message>
        <source>Go to I&amp;n Mark</source>
        <translation>Zur Anfan&amp;gsmarke</translation>
    </message>
    <message>
        <source>Go to O&amp;ut Mark</source>
        <translation>Zur En&amp;dmarke</translation>
    </message>
    <message>
        <source>C&amp;lear Marks</source>
        <translation>&amp;Marken löschen</translation>
    </message>
    <message>
        <source>Play &amp;Backwards</source>
        <translation>&amp;Rückwärts wiedergeben</translation>
    </message>
    <message>
        <source>1 Second Bac&amp;k</source>
        <translation>1 Sekunde &amp;zurück</translation>
    </message>
    <message>
        <source>1 Second &amp;On</source>
        <translation>1 Sekunde &amp;vor</translation>
    </message>
    <message>
        <source>10 Seconds Ba&amp;ck</source>
        <translation>10 Sekunden z&amp;urück</translation>
    </message>
    <message>
        <source>10 Seconds O&amp;n</source>
        <translation>10 Sekunden v&amp;or</translation>
    </message>
    <message>
        <source>&amp;Go to Picture or Time…</source>
        <translation>&amp;Gehe zu Bild oder Zeit …</translation>
    </message>
    <message>
        <source>&amp;Slower</source>
        <translation>&amp;Langsamer</translation>
    </message>
    <message>
        <source>&amp;Faster</source>
        <translation>&amp;Schneller</translation>
    </message>
    <message>
        <source>&amp;Normal Speed</source>
        <translation>&amp;Normale Geschwindigkeit</translation>
    </message>
    <message>
        <source>By &amp;Time</source>
        <translation>Nach &amp;Zeit</translation>
    </message>
    <message>
        <source>&amp;Histogram and Levels</source>
        <translation>&amp;Histogramm und Tonwerte</translation>
    </message>
    <message>
        <source>&amp;Mark Clipped Pixels</source>
        <translation>Ausgefressene &amp;Pixel markieren</translation>
    </message>
    <message>
        <source>Verif&amp;y Recording</source>
        <translation>Aufnahme &amp;prüfen</translation>
    </message>
    <message>
        <source>Prev&amp;ious Broken Picture</source>
        <translation>Vor&amp;iges kaputtes Bild</translation>
    </message>
    <message>
        <source>Ne&amp;xt Broken Picture</source>
        <translation>Nächstes kap&amp;uttes Bild</translation>
    </message>
    <message>
        <source>&amp;Region and Profile</source>
        <translation>&amp;Bereich und Profil</translation>
    </message>
    <message>
        <source>S&amp;napshot</source>
        <translation>Sc&amp;hnappschuss</translation>
    </message>
    <message>
        <source>Snapshot Fol&amp;der…</source>
        <translation>Or&amp;dner der Schnappschüsse …</translation>
    </message>
    <message>
        <source>Info O&amp;verlay</source>
        <translation>&amp;Infos im Bild</translation>
    </message>
    <message>
        <source>Turn &amp;Right</source>
        <translation>Nach &amp;rechts</translation>
    </message>
    <message>
        <source>Turn &amp;Left</source>
        <translation>Nach &amp;links</translation>
    </message>
    <message>
        <source>&amp;Mirror</source>
        <translation>&amp;Spiegeln</translation>
    </message>
    <message>
        <source>&amp;Pixel Shape of the Source</source>
        <translation>&amp;Pixelform der Quelle</translation>
    </message>
    <message>
        <source>&amp;Turn</source>
        <translation>&amp;Drehen</translation>
    </message>
    <message>
        <source>Frame Rate…</source>
        <translation>Bildrate …</translation>
    </message>
    <message>
        <source>&amp;Bytes of Each Picture</source>
        <translation>B&amp;ytes je Bild</translation>
    </message>
    <message>
        <source>Ne&amp;xt Recording</source>
        <translation>&amp;Nächste Aufnahme</translation>
    </message>
    <message>
        <source>Prev&amp;ious Recording</source>
        <translation>V&amp;orige Aufnahme</translation>
    </message>
    <message>
        <source>Re&amp;load</source>
        <translation>Neu &amp;laden</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>needs an open recording that is not being saved</source>
        <translation>braucht eine offene Aufnahme, die nicht gerade gespeichert wird</translation>
    </message>
    <message>
        <source>needs a part that is marked</source>
        <translation>braucht einen markierten Teil</translation>
    </message>
    <message>
        <source>needs a picture found broken, by playing or verifying</source>
        <translation>braucht ein Bild, das beim Wiedergeben oder Prüfen als kaputt gefunden wurde</translation>
    </message>
    <message>
        <source>needs a picture</source>
        <translation>braucht ein Bild</translation>
    </message>
    <message>
        <source>needs an open recording or camera, and no other recording under way</source>
        <translation>braucht eine offene Aufnahme oder Kamera, und keine andere laufende Aufzeichnung</translation>
    </message>
    <message>
        <source>needs something open, and no recording under way</source>
        <translation>braucht etwas Offenes, und keine laufende Aufzeichnung</translation>
    </message>
    <message>
        <source>waits for the end of the recording under way</source>
        <translation>wartet auf das Ende der laufenden Aufzeichnung</translation>
    </message>
</context>
<context>
    <name>CxBrokenList</name>
    <message>
        <source>Broken Pictures</source>
        <translation>Kaputte Bilder</translation>
    </message>
    <message>
        <source>Broken pictures</source>
        <translation>Kaputte Bilder</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Cause</source>
        <translation>Ursache</translation>
    </message>
</context>
<context>
    <name>CxFileDialogs</name>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Open Recording</source>
        <translation>Aufnahme öffnen</translation>
    </message>
    <message>
        <source>Open Video, Stream or Device</source>
        <translation>Video, Stream oder Gerät öffnen</translation>
    </message>
    <message>
        <source>File, address or device, such as clip.mp4, rtsp://camera/stream or v4l2:/dev/video0:</source>
        <translation>Datei, Adresse oder Gerät, etwa clip.mp4, rtsp://kamera/stream oder v4l2:/dev/video0:</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>PNG picture (*.png)</source>
        <translation>PNG-Bild (*.png)</translation>
    </message>
</context>
<context>
    <name>CxFolderControl</name>
    <message>
        <source>This is the last recording.</source>
        <translation>Das ist die letzte Aufnahme.</translation>
    </message>
    <message>
        <source>This is the first recording.</source>
        <translation>Das ist die erste Aufnahme.</translation>
    </message>
</context>
<context>
    <name>CxGoToDialog</name>
    <message>
        <source>Go to Picture or Time</source>
        <translation>Gehe zu Bild oder Zeit</translation>
    </message>
    <message>
        <source>&amp;Number, or time as 1:02.500 or 62.5 s:</source>
        <translation>&amp;Nummer, oder Zeit wie 1:02,500 oder 62,5 s:</translation>
    </message>
    <message>
        <source>Picture %1, %2</source>
        <translation>Bild %1, %2</translation>
    </message>
    <message>
        <source>Pictures 0 to %1, times 0:00:00.000 to %2</source>
        <translation>Bilder 0 bis %1, Zeiten 0:00:00.000 bis %2</translation>
    </message>
    <message>
        <source>There is no picture “%1”: they are numbered from 0 to %2, and the last begins at %3.</source>
        <translation>Es gibt kein Bild „%1“: Die Nummern gehen von 0 bis %2, und das letzte beginnt bei %3.</translation>
    </message>
</context>
<context>
    <name>CxHelpWindow</name>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source> or </source>
        <translation> oder </translation>
    </message>
    <message>
        <source>Leave full screen</source>
        <translation>Vollbild verlassen</translation>
    </message>
    <message>
        <source>Move an enlarged picture</source>
        <translation>Vergrößertes Bild verschieben</translation>
    </message>
    <message>
        <source>Alt+arrow keys, or drag it</source>
        <translation>Alt+Pfeiltasten oder ziehen</translation>
    </message>
    <message>
        <source>Zoom around the mouse</source>
        <translation>Um die Maus herum zoomen</translation>
    </message>
    <message>
        <source>Mouse wheel</source>
        <translation>Mausrad</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>Vollbild</translation>
    </message>
    <message>
        <source>Double click</source>
        <translation>Doppelklick</translation>
    </message>
    <message>
        <source>Zoom the bytes of each picture</source>
        <translation>Bytes je Bild vergrößern</translation>
    </message>
    <message>
        <source>Mouse wheel, or up and down arrow keys there</source>
        <translation>Mausrad oder dort die Pfeiltasten auf und ab</translation>
    </message>
</context>
<context>
    <name>CxHistogramPlot</name>
    <message>
        <source>Value %1: %2 samples</source>
        <translation>Wert %1: %2 Abtastwerte</translation>
    </message>
</context>
<context>
    <name>CxInfoOverlay</name>
    <message>
        <source>%1 × %2, %3-bit grey, %4</source>
        <translation>%1 × %2, %3 Bit grau, %4</translation>
    </message>
    <message>
        <source>%1 × %2, %3-bit colour, %4</source>
        <translation>%1 × %2, %3 Bit farbig, %4</translation>
    </message>
    <message>
        <source>%1 a second</source>
        <translation>%1 je Sekunde</translation>
    </message>
    <message>
        <source>%1 a second (assumed)</source>
        <translation>%1 je Sekunde (angenommen)</translation>
    </message>
    <message>
        <source>Picture %1 of 0–%2, key frame, %3 bytes</source>
        <translation>Bild %1 von 0–%2, Schlüsselbild, %3 Byte</translation>
    </message>
    <message>
        <source>Picture %1 of 0–%2, predicted, %3 bytes</source>
        <translation>Bild %1 von 0–%2, vorhergesagt, %3 Byte</translation>
    </message>
    <message>
        <source>live</source>
        <translation>live</translation>
    </message>
    <message>
        <source>Picture %1</source>
        <translation>Bild %1</translation>
    </message>
</context>
<context>
    <name>CxLevelsPanel</name>
    <message>
        <source>Stripes over pixels at full scale (red) and at 0 (blue), where the picture has lost detail</source>
        <translation>Streifen über Pixeln am oberen Ende der Skala (rot) und bei 0 (blau), wo das Bild keine Zeichnung mehr hat</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>Histogramm</translation>
    </message>
    <message>
        <source>Values up to this are shown black</source>
        <translation>Werte bis hierher erscheinen schwarz</translation>
    </message>
    <message>
        <source>Values from this on are shown white</source>
        <translation>Werte von hier an erscheinen weiß</translation>
    </message>
    <message>
        <source>Above 1 dark parts are shown brighter, below 1 darker</source>
        <translation>Über 1 erscheinen dunkle Teile heller, unter 1 dunkler</translation>
    </message>
    <message>
        <source>&amp;Auto</source>
        <translation>&amp;Automatisch</translation>
    </message>
    <message>
        <source>Spreads the values of this picture from black to white</source>
        <translation>Spreizt die Werte dieses Bildes von Schwarz bis Weiß</translation>
    </message>
    <message>
        <source>Rese&amp;t</source>
        <translation>&amp;Zurücksetzen</translation>
    </message>
    <message>
        <source>Shows the picture as it is</source>
        <translation>Zeigt das Bild, wie es ist</translation>
    </message>
    <message>
        <source>&amp;Black:</source>
        <translation>&amp;Schwarz:</translation>
    </message>
    <message>
        <source>&amp;White:</source>
        <translation>&amp;Weiß:</translation>
    </message>
    <message>
        <source>&amp;Gamma:</source>
        <translation>&amp;Gamma:</translation>
    </message>
    <message>
        <source>Only what is shown changes, not what is saved.</source>
        <translation>Nur die Anzeige ändert sich, nicht was gespeichert wird.</translation>
    </message>
    <message>
        <source>%1 % of the values are 0, %2 % are %3.</source>
        <translation>%1 % der Werte sind 0, %2 % sind %3.</translation>
    </message>
</context>
<context>
    <name>CxLiveControl</name>
    <message>
        <source>The source has ended.</source>
        <translation>Die Quelle ist zu Ende.</translation>
    </message>
    <message>
        <source>The source cannot be read.</source>
        <translation>Die Quelle lässt sich nicht lesen.</translation>
    </message>
</context>
<context>
    <name>CxLookControl</name>
    <message>
        <source>Histogram and Levels</source>
        <translation>Histogramm und Tonwerte</translation>
    </message>
</context>
<context>
    <name>CxMainWindow</name>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Test Camera</source>
        <translation>Testkamera</translation>
    </message>
    <message>
        <source>&amp;Record…</source>
        <translation>Auf&amp;zeichnen …</translation>
    </message>
    <message>
        <source>Save &amp;Part…</source>
        <translation>A&amp;usschnitt speichern …</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Aufzeichnung</translation>
    </message>
    <message>
        <source>A recording is under way. End it and quit?</source>
        <translation>Es wird gerade aufgezeichnet. Aufzeichnung beenden und schließen?</translation>
    </message>
    <message>
        <source>Opening…</source>
        <translation>Wird geöffnet …</translation>
    </message>
    <message>
        <source>Opening “%1”…</source>
        <translation>„%1“ wird geöffnet …</translation>
    </message>
    <message>
        <source>Waiting for the first picture…</source>
        <translation>Warten auf das erste Bild …</translation>
    </message>
</context>
<context>
    <name>CxMarkControl</name>
    <message>
        <source>No part is marked.</source>
        <translation>Kein Teil ist markiert.</translation>
    </message>
    <message>
        <source>Marked: pictures %1 to %2, %3</source>
        <translation>Markiert: Bild %1 bis %2, %3</translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s), %1</source>
        <translation>
            <numerusform>%n Bild, %1</numerusform>
            <numerusform>%n Bilder, %1</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxMeasureControl</name>
    <message>
        <source>Region and Profile</source>
        <translation>Bereich und Profil</translation>
    </message>
</context>
<context>
    <name>CxMeasurePanel</name>
    <message>
        <source>&amp;Region</source>
        <translation>&amp;Bereich</translation>
    </message>
    <message>
        <source>Profile &amp;line</source>
        <translation>&amp;Profillinie</translation>
    </message>
    <message>
        <source>The mouse draws the region in the picture</source>
        <translation>Die Maus zieht den Bereich im Bild auf</translation>
    </message>
    <message>
        <source>The mouse draws the line in the picture</source>
        <translation>Die Maus zieht die Linie im Bild</translation>
    </message>
    <message>
        <source>Profile along the line</source>
        <translation>Profil entlang der Linie</translation>
    </message>
    <message>
        <source>Mean</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Min</source>
        <translation>Min.</translation>
    </message>
    <message>
        <source>Max</source>
        <translation>Max.</translation>
    </message>
    <message>
        <source>Grey</source>
        <translation>Grau</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Left edge of the region</source>
        <translation>Linker Rand des Bereichs</translation>
    </message>
    <message>
        <source>Top edge of the region</source>
        <translation>Oberer Rand des Bereichs</translation>
    </message>
    <message>
        <source>Width of the region</source>
        <translation>Breite des Bereichs</translation>
    </message>
    <message>
        <source>Height of the region</source>
        <translation>Höhe des Bereichs</translation>
    </message>
    <message>
        <source>Where the line begins, from the left</source>
        <translation>Wo die Linie beginnt, von links</translation>
    </message>
    <message>
        <source>Where the line begins, from the top</source>
        <translation>Wo die Linie beginnt, von oben</translation>
    </message>
    <message>
        <source>Where the line ends, from the left</source>
        <translation>Wo die Linie endet, von links</translation>
    </message>
    <message>
        <source>Where the line ends, from the top</source>
        <translation>Wo die Linie endet, von oben</translation>
    </message>
    <message>
        <source>Standard deviation</source>
        <translation>Standardabweichung</translation>
    </message>
    <message>
        <source>X:</source>
        <translation>X:</translation>
    </message>
    <message>
        <source>Y:</source>
        <translation>Y:</translation>
    </message>
    <message>
        <source>Width:</source>
        <translation>Breite:</translation>
    </message>
    <message>
        <source>Height:</source>
        <translation>Höhe:</translation>
    </message>
    <message>
        <source>Dev.</source>
        <translation>Abw.</translation>
    </message>
    <message>
        <source>From X:</source>
        <translation>Von X:</translation>
    </message>
    <message>
        <source>To X:</source>
        <translation>Bis X:</translation>
    </message>
</context>
<context>
    <name>CxMessageBar</name>
    <message>
        <source>&amp;Details</source>
        <translation>&amp;Einzelheiten</translation>
    </message>
    <message>
        <source>Close this message</source>
        <translation>Diese Meldung schließen</translation>
    </message>
    <message>
        <source>Details of the message</source>
        <translation>Einzelheiten der Meldung</translation>
    </message>
</context>
<context>
    <name>CxOverview</name>
    <message>
        <source>Overview</source>
        <translation>Überblick</translation>
    </message>
    <message>
        <source>Bytes of each picture; up and down arrow keys zoom, page keys scroll</source>
        <translation>Bytes jedes Bildes; die Pfeiltasten auf und ab vergrößern und verkleinern, die Bildtasten verschieben</translation>
    </message>
    <message>
        <source>key frame</source>
        <translation>Schlüsselbild</translation>
    </message>
    <message>
        <source>predicted</source>
        <translation>vorhergesagt</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>broken</source>
        <translation>kaputt</translation>
    </message>
    <message>
        <source>%1 skipped before it</source>
        <translation>davor %1 ausgelassen</translation>
    </message>
</context>
<context>
    <name>CxPictureControl</name>
    <message>
        <source>Picture %1 is in the clipboard.</source>
        <translation>Bild %1 ist in der Zwischenablage.</translation>
    </message>
    <message>
        <source>live</source>
        <translation>live</translation>
    </message>
    <message>
        <source>Picture %1 is saved as “%2”.</source>
        <translation>Bild %1 ist als „%2“ gespeichert.</translation>
    </message>
    <message>
        <source>Picture %1 could not be saved to “%2”: %3.</source>
        <translation>Bild %1 ließ sich nicht in „%2“ speichern: %3.</translation>
    </message>
    <message>
        <source>Folder of Snapshots</source>
        <translation>Ordner der Schnappschüsse</translation>
    </message>
    <message>
        <source>Snapshots go to “%1”.</source>
        <translation>Schnappschüsse kommen nach „%1“.</translation>
    </message>
</context>
<context>
    <name>CxPictureFile</name>
    <message>
        <source>there is no picture format “%1”; “png” always works</source>
        <translation>ein Bildformat „%1“ gibt es nicht; „png“ geht immer</translation>
    </message>
</context>
<context>
    <name>CxPlayControl</name>
    <message>
        <source>“%1” does not exist.</source>
        <translation>„%1“ gibt es nicht.</translation>
    </message>
    <message>
        <source>“%1” is a folder, not a recording.</source>
        <translation>„%1“ ist ein Ordner, keine Aufnahme.</translation>
    </message>
    <message>
        <source>You are not allowed to read “%1”.</source>
        <translation>Sie dürfen „%1“ nicht lesen.</translation>
    </message>
    <message>
        <source>“%1” is empty.</source>
        <translation>„%1“ ist leer.</translation>
    </message>
    <message>
        <source>Picture %1 cannot be shown: the recording is damaged there.</source>
        <translation>Bild %1 lässt sich nicht zeigen: Die Aufnahme ist dort beschädigt.</translation>
    </message>
    <message>
        <source>Playing goes on; the timeline marks broken pictures red.</source>
        <translation>Die Wiedergabe läuft weiter; die Zeitleiste zeigt kaputte Bilder rot.</translation>
    </message>
    <message>
        <source>“%1” cannot be read: %2.</source>
        <translation>„%1“ lässt sich nicht lesen: %2.</translation>
    </message>
    <message>
        <source>“%1” is not an H.264 recording. If it is a video of another kind, open it with “Open Video, Stream or Device”.</source>
        <translation>„%1“ ist keine H.264-Aufnahme. Wenn es ein anderes Video ist: mit „Video, Stream oder Gerät öffnen“ öffnen.</translation>
    </message>
    <message>
        <source>“%1” is not damaged, but H.264 video of another encoder, whose pictures cannot be had by their numbers. Open it with “Open Video, Stream or Device”.</source>
        <translation>„%1“ ist nicht beschädigt, sondern H.264-Video eines anderen Encoders, dessen Bilder nicht über ihre Nummern erreichbar sind. Mit „Video, Stream oder Gerät öffnen“ öffnen.</translation>
    </message>
    <message>
        <source>“%1” is not damaged, but %2 video. Open it with “Open Video, Stream or Device”.</source>
        <translation>„%1“ ist nicht beschädigt, sondern %2-Video. Mit „Video, Stream oder Gerät öffnen“ öffnen.</translation>
    </message>
    <message>
        <source>The beginning of “%1” is missing or damaged: the sequence parameter set there, which holds the size of the pictures, cannot be used.</source>
        <translation>Der Anfang von „%1“ fehlt oder ist beschädigt: Der Parametersatz dort, der die Größe der Bilder enthält, ist nicht zu gebrauchen.</translation>
    </message>
    <message>
        <source>Pictures before it may still be fine.</source>
        <translation>Bilder davor können noch in Ordnung sein.</translation>
    </message>
    <message>
        <source>Pictures may be fine again from the next key frame on, picture %1.</source>
        <translation>Ab dem nächsten Schlüsselbild, Bild %1, können Bilder wieder in Ordnung sein.</translation>
    </message>
    <message>
        <source>Picture %1 cannot be shown: the recording is damaged there, or of a kind that the decoder does not support.</source>
        <translation>Bild %1 lässt sich nicht zeigen: Die Aufnahme ist dort beschädigt oder von einer Art, die der Decoder nicht unterstützt.</translation>
    </message>
    <message>
        <source>The notes beside “%1” do not belong to it or are damaged, so its speed is assumed.</source>
        <translation>Die Notizen neben „%1“ gehören nicht dazu oder sind beschädigt; die Geschwindigkeit ist deshalb angenommen.</translation>
    </message>
</context>
<context>
    <name>CxProfilePlot</name>
    <message>
        <source>Step %1: grey %2</source>
        <translation>Schritt %1: Grau %2</translation>
    </message>
    <message>
        <source>Step %1: red %2, green %3, blue %4</source>
        <translation>Schritt %1: Rot %2, Grün %3, Blau %4</translation>
    </message>
</context>
<context>
    <name>CxRateControl</name>
    <message>
        <source>The frame rate could not be noted beside “%1”, so it stays as it was.</source>
        <translation>Die Bildrate konnte neben „%1“ nicht notiert werden und bleibt deshalb, wie sie war.</translation>
    </message>
    <message>
        <source>Noted: %1 pictures a second.</source>
        <translation>Notiert: %1 Bilder je Sekunde.</translation>
    </message>
    <message>
        <source>No frame rate is noted any more.</source>
        <translation>Es ist keine Bildrate mehr notiert.</translation>
    </message>
</context>
<context>
    <name>CxRateDialog</name>
    <message>
        <source>Frame Rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>assume %1</source>
        <translation>%1 annehmen</translation>
    </message>
    <message>
        <source>It is noted in “%1”; the recording itself stays as it is.</source>
        <translation>Sie wird in „%1“ notiert; die Aufnahme selbst bleibt, wie sie ist.</translation>
    </message>
    <message>
        <source>&amp;Pictures a second:</source>
        <translation>&amp;Bilder je Sekunde:</translation>
    </message>
    <message>
        <source>Length:</source>
        <translation>Länge:</translation>
    </message>
    <message>
        <source>no rate: a number such as 25, 29.97 or 30000/1001 is one</source>
        <translation>keine Bildrate: Eine wäre 25; 29,97 oder 30000/1001</translation>
    </message>
</context>
<context>
    <name>CxRecordBar</name>
    <message>
        <source>S&amp;top</source>
        <translation>A&amp;nhalten</translation>
    </message>
    <message>
        <source>Progress of the recording</source>
        <translation>Fortschritt der Aufzeichnung</translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s)</source>
        <translation>
            <numerusform>%n Bild</numerusform>
            <numerusform>%n Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>Recording to %1: %2</source>
        <translation>Aufzeichnung in %1: %2</translation>
    </message>
</context>
<context>
    <name>CxRecordControl</name>
    <message>
        <source>Saving to “%1” failed.</source>
        <translation>Das Speichern in „%1“ ist misslungen.</translation>
    </message>
    <message>
        <source>Stopped: “%1” holds what was saved until then.</source>
        <translation>Angehalten: „%1“ enthält, was bis dahin gespeichert war.</translation>
    </message>
    <message>
        <source>“%1” is complete.</source>
        <translation>„%1“ ist fertig.</translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s) saved, %1.</source>
        <translation>
            <numerusform>%n Bild gespeichert, %1.</numerusform>
            <numerusform>%n Bilder gespeichert, %1.</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Open It</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Saving to “%1” ended at picture %2, which is broken.</source>
        <translation>Das Speichern in „%1“ endete bei Bild %2, das kaputt ist.</translation>
    </message>
    <message>
        <source>“%1” is saved, but not with every picture.</source>
        <translation>„%1“ ist gespeichert, aber nicht mit jedem Bild.</translation>
    </message>
    <message numerus="yes">
        <source>%n broken picture(s) left out, the first is %1.</source>
        <translation>
            <numerusform>%n kaputtes Bild ausgelassen, das erste ist %1.</numerusform>
            <numerusform>%n kaputte Bilder ausgelassen, das erste ist %1.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxRecordDialog</name>
    <message>
        <source>Record</source>
        <translation>Aufzeichnen</translation>
    </message>
    <message>
        <source>Save Part of the Recording</source>
        <translation>Ausschnitt der Aufnahme speichern</translation>
    </message>
    <message>
        <source>&amp;Browse…</source>
        <translation>&amp;Durchsuchen …</translation>
    </message>
    <message>
        <source>&amp;File:</source>
        <translation>D&amp;atei:</translation>
    </message>
    <message>
        <source>F&amp;ormat:</source>
        <translation>F&amp;ormat:</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>Auf&amp;zeichnen</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>when I stop it</source>
        <translation>wenn ich anhalte</translation>
    </message>
    <message>
        <source> pictures</source>
        <translation> Bildern</translation>
    </message>
    <message>
        <source>&amp;End after:</source>
        <translation>&amp;Ende nach:</translation>
    </message>
    <message>
        <source>&amp;to</source>
        <translation>&amp;bis</translation>
    </message>
    <message>
        <source>&amp;Pictures:</source>
        <translation>B&amp;ilder:</translation>
    </message>
    <message>
        <source>No plug-in that can save recordings is loaded.</source>
        <translation>Es ist kein Plug-in geladen, das Aufnahmen speichern kann.</translation>
    </message>
    <message>
        <source>Encoding</source>
        <translation>Kodierung</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>%1_part</source>
        <comment>file name</comment>
        <translation>%1_Ausschnitt</translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s), %1</source>
        <translation>
            <numerusform>%n Bild, %1</numerusform>
            <numerusform>%n Bilder, %1</numerusform>
        </translation>
    </message>
    <message>
        <source>The last lies before the first.</source>
        <translation>Das letzte liegt vor dem ersten.</translation>
    </message>
    <message>
        <source>There is no folder “%1”.</source>
        <translation>Den Ordner „%1“ gibt es nicht.</translation>
    </message>
    <message>
        <source>“%1” exists already. Replace it?</source>
        <translation>„%1“ gibt es schon. Ersetzen?</translation>
    </message>
    <message>
        <source>&amp;Leave out broken pictures instead of stopping there</source>
        <translation>&amp;Kaputte Bilder auslassen statt dort anzuhalten</translation>
    </message>
    <message>
        <source>That file is being read. Please choose another name.</source>
        <translation>Diese Datei wird gerade gelesen. Bitte einen anderen Namen wählen.</translation>
    </message>
</context>
<context>
    <name>CxRecordTexts</name>
    <message numerus="yes">
        <source>%n picture(s) skipped by the encoder to keep the bit rate.</source>
        <translation>
            <numerusform>Der Encoder hat %n Bild ausgelassen, um die Bitrate zu halten.</numerusform>
            <numerusform>Der Encoder hat %n Bilder ausgelassen, um die Bitrate zu halten.</numerusform>
        </translation>
    </message>
    <message>
        <source>The source is damaged or broken off: some of its pictures are missing or not as they were.</source>
        <translation>Die Quelle ist beschädigt oder abgebrochen: Einige ihrer Bilder fehlen oder sind nicht, wie sie waren.</translation>
    </message>
    <message>
        <source>Quality %1 probably keeps them all.</source>
        <translation>Qualität %1 behält wahrscheinlich alle.</translation>
    </message>
    <message>
        <source>Level %1 allows no more, a higher one does.</source>
        <translation>Level %1 erlaubt nicht mehr, ein höheres schon.</translation>
    </message>
    <message>
        <source>Not even the highest quality keeps them all; fewer key frames or smaller pictures may.</source>
        <translation>Auch die höchste Qualität behält nicht alle; weniger Schlüsselbilder oder kleinere Bilder vielleicht.</translation>
    </message>
    <message>
        <source>Its own speed, rotation and skipped pictures could not be noted beside it.</source>
        <translation>Ihre eigene Geschwindigkeit, Drehung und ausgelassenen Bilder konnten nicht daneben notiert werden.</translation>
    </message>
    <message>
        <source>a recording&apos;s sides are even</source>
        <translation>die Seiten einer Aufnahme sind gerade</translation>
    </message>
    <message>
        <source>level %1 allows no larger ones</source>
        <translation>Level %1 erlaubt keine größeren</translation>
    </message>
    <message>
        <source>Pictures are saved as %1 × %2 instead of %3 × %4: %5.</source>
        <translation>Die Bilder werden mit %1 × %2 statt %3 × %4 gespeichert: %5.</translation>
    </message>
    <message>
        <source>OpenH264 made the recording level %1, not level %2 as asked.</source>
        <translation>OpenH264 hat der Aufnahme Level %1 gegeben, nicht wie gewünscht Level %2.</translation>
    </message>
</context>
<context>
    <name>CxStartPage</name>
    <message>
        <source>What would you like to see?</source>
        <translation>Was möchten Sie sehen?</translation>
    </message>
    <message>
        <source>Or drop a recording into this window.</source>
        <translation>Oder ziehen Sie eine Aufnahme in dieses Fenster.</translation>
    </message>
    <message>
        <source>Opened before</source>
        <translation>Früher geöffnet</translation>
    </message>
</context>
<context>
    <name>CxStatusBar</name>
    <message>
        <source>Place and value of the pixel under the mouse</source>
        <translation>Ort und Wert des Pixels unter der Maus</translation>
    </message>
    <message>
        <source>Size of the picture</source>
        <translation>Größe des Bildes</translation>
    </message>
    <message>
        <source>Zoom: screen pixels for each pixel of the picture</source>
        <translation>Zoom: Bildschirmpixel je Pixel des Bildes</translation>
    </message>
    <message>
        <source>Pictures really shown each second</source>
        <translation>Wirklich gezeigte Bilder je Sekunde</translation>
    </message>
    <message>
        <source>%1 pictures/s</source>
        <translation>%1 Bilder/s</translation>
    </message>
    <message>
        <source>grey %1</source>
        <translation>Grau %1</translation>
    </message>
    <message>
        <source>red %1, green %2, blue %3</source>
        <translation>Rot %1, Grün %2, Blau %3</translation>
    </message>
    <message>
        <source>(%1, %2): %3</source>
        <translation>(%1, %2): %3</translation>
    </message>
    <message>
        <source>%1 × %2, %3-bit grey</source>
        <translation>%1 × %2, %3 Bit grau</translation>
    </message>
    <message>
        <source>%1 × %2, %3-bit colour</source>
        <translation>%1 × %2, %3 Bit farbig</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1, fitted</source>
        <translation>%1, angepasst</translation>
    </message>
    <message>
        <source>Pictures found broken so far; the timeline marks them red</source>
        <translation>Bisher als kaputt erkannte Bilder; die Zeitleiste zeigt sie rot</translation>
    </message>
    <message numerus="yes">
        <source>%n broken picture(s)</source>
        <translation>
            <numerusform>%n kaputtes Bild</numerusform>
            <numerusform>%n kaputte Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 a second</source>
        <translation>%1 je Sekunde</translation>
    </message>
    <message>
        <source>%1 a second (assumed)</source>
        <translation>%1 je Sekunde (angenommen)</translation>
    </message>
    <message>
        <source>At which rate the pictures are shown; nothing tells at which they were taken</source>
        <translation>Mit welcher Rate die Bilder gezeigt werden; nichts sagt, mit welcher sie aufgenommen wurden</translation>
    </message>
    <message>
        <source>%1 skipped</source>
        <translation>%1 ausgelassen</translation>
    </message>
    <message>
        <source>turned by %1°</source>
        <translation>um %1° gedreht</translation>
    </message>
    <message>
        <source>At which rate the pictures were taken, how they are turned, and how many of them the encoder skipped, as noted when they were recorded</source>
        <translation>Mit welcher Rate die Bilder aufgenommen wurden, wie sie gedreht werden und wie viele der Encoder ausgelassen hat, wie bei der Aufzeichnung vermerkt</translation>
    </message>
</context>
<context>
    <name>CxTimeline</name>
    <message>
        <source>%1 · %2</source>
        <translation>%1 · %2</translation>
    </message>
    <message>
        <source>%1 · key frame</source>
        <translation>%1 · Schlüsselbild</translation>
    </message>
    <message>
        <source>%1 · broken</source>
        <translation>%1 · kaputt</translation>
    </message>
    <message>
        <source>%1 · in mark</source>
        <translation>%1 · Anfangsmarke</translation>
    </message>
    <message>
        <source>%1 · out mark</source>
        <translation>%1 · Endmarke</translation>
    </message>
</context>
<context>
    <name>CxTransportBar</name>
    <message>
        <source>Timeline</source>
        <translation>Zeitleiste</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <source>Number of the picture shown</source>
        <translation>Nummer des gezeigten Bildes</translation>
    </message>
    <message>
        <source>Time of the picture shown</source>
        <translation>Zeit des gezeigten Bildes</translation>
    </message>
    <message>
        <source>Picture %1 of 0–%2</source>
        <translation>Bild %1 von 0–%2</translation>
    </message>
    <message>
        <source>Live, picture %1</source>
        <translation>Live, Bild %1</translation>
    </message>
    <message>
        <source>Number of the picture shown; marks below show key frames, red ones broken pictures</source>
        <translation>Nummer des gezeigten Bildes; Striche darunter zeigen Schlüsselbilder, rote kaputte Bilder</translation>
    </message>
    <message>
        <source>Time of the picture shown: %1</source>
        <translation>Zeit des gezeigten Bildes: %1</translation>
    </message>
    <message>
        <source>Timeline: %1, %2</source>
        <translation>Zeitleiste: %1, %2</translation>
    </message>
    <message numerus="yes">
        <source>%n key frame(s)</source>
        <translation>
            <numerusform>%n Schlüsselbild</numerusform>
            <numerusform>%n Schlüsselbilder</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxVerifyBar</name>
    <message>
        <source>Progress of verifying</source>
        <translation>Fortschritt der Prüfung</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Stop verifying</source>
        <translation>Prüfung beenden</translation>
    </message>
    <message>
        <source>Verifying</source>
        <translation>Prüfung</translation>
    </message>
    <message>
        <source>%1 of %2 pictures looked at</source>
        <translation>%1 von %2 Bildern angesehen</translation>
    </message>
</context>
<context>
    <name>CxVerifyControl</name>
    <message>
        <source>“%1” could not be verified.</source>
        <translation>„%1“ konnte nicht geprüft werden.</translation>
    </message>
    <message>
        <source>Stopped: %1 of %2 pictures of “%3” were looked at.</source>
        <translation>Beendet: %1 von %2 Bildern von „%3“ wurden angesehen.</translation>
    </message>
    <message>
        <source>“%1”: every picture can be shown, %2.</source>
        <translation>„%1“: Jedes Bild lässt sich zeigen, %2.</translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s)</source>
        <translation>
            <numerusform>%n Bild</numerusform>
            <numerusform>%n Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>“%1”: %2 in %3.</source>
        <translation>„%1“: %2 an %3.</translation>
    </message>
    <message numerus="yes">
        <source>%n broken picture(s)</source>
        <translation>
            <numerusform>%n kaputtes Bild</numerusform>
            <numerusform>%n kaputte Bilder</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n place(s)</source>
        <translation>
            <numerusform>%n Stelle</numerusform>
            <numerusform>%n Stellen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s) vanished, the first before picture %1.</source>
        <translation>
            <numerusform>%n Bild fehlt, vor Bild %1.</numerusform>
            <numerusform>%n Bilder fehlen, das erste vor Bild %1.</numerusform>
        </translation>
    </message>
    <message>
        <source>The last bytes belong to no picture; the file seems cut off.</source>
        <translation>Die letzten Bytes gehören zu keinem Bild; die Datei scheint abgeschnitten.</translation>
    </message>
</context>
</TS>
