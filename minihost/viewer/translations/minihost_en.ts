<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>CxMarkControl</name>
    <message numerus="yes">
        <source>%n picture(s), %1</source>
        <translation>
            <numerusform>%n picture, %1</numerusform>
            <numerusform>%n pictures, %1</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxRecordBar</name>
    <message numerus="yes">
        <source>%n picture(s)</source>
        <translation>
            <numerusform>%n picture</numerusform>
            <numerusform>%n pictures</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxRecordControl</name>
    <message numerus="yes">
        <source>%n picture(s) saved, %1.</source>
        <translation>
            <numerusform>%n picture saved, %1.</numerusform>
            <numerusform>%n pictures saved, %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n broken picture(s) left out, the first is %1.</source>
        <translation>
            <numerusform>%n broken picture left out, the first is %1.</numerusform>
            <numerusform>%n broken pictures left out, the first is %1.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxRecordDialog</name>
    <message numerus="yes">
        <source>%n picture(s), %1</source>
        <translation>
            <numerusform>%n picture, %1</numerusform>
            <numerusform>%n pictures, %1</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxRecordTexts</name>
    <message numerus="yes">
        <source>%n picture(s) skipped by the encoder to keep the bit rate.</source>
        <translation>
            <numerusform>%n picture skipped by the encoder to keep the bit rate.</numerusform>
            <numerusform>%n pictures skipped by the encoder to keep the bit rate.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxStatusBar</name>
    <message numerus="yes">
        <source>%n broken picture(s)</source>
        <translation>
            <numerusform>%n broken picture</numerusform>
            <numerusform>%n broken pictures</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxTransportBar</name>
    <message numerus="yes">
        <source>%n key frame(s)</source>
        <translation>
            <numerusform>%n key frame</numerusform>
            <numerusform>%n key frames</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CxVerifyControl</name>
    <message numerus="yes">
        <source>%n picture(s)</source>
        <translation>
            <numerusform>%n picture</numerusform>
            <numerusform>%n pictures</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n broken picture(s)</source>
        <translation>
            <numerusform>%n broken picture</numerusform>
            <numerusform>%n broken pictures</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n place(s)</source>
        <translation>
            <numerusform>%n place</numerusform>
            <numerusform>%n places</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s) vanished, the first before picture %1.</source>
        <translation>
            <numerusform>%n picture vanished, before picture %1.</numerusform>
            <numerusform>%n pictures vanished, the first before picture %1.</numerusform>
        </translation>
    </message>
</context>
</TS>
