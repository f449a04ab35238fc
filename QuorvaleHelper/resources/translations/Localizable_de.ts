<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name></name>
    <message id="Log">
        <source></source>
        <translation>Protokoll</translation>
    </message>
    <message id="Done">
        <source></source>
        <translation>Fertig</translation>
    </message>
    <message id="Protected">
        <source></source>
        <translation>Geschützt</translation>
    </message>
    <message id="Unprotected">
        <source></source>
        <translation>Nicht geschützt</translation>
    </message>
    <message id="Copy">
        <source></source>
        <translation>Kopieren</translation>
    </message>
    <message id="Select All">
        <source></source>
        <translation>Alles auswählen</translation>
    </message>
</context>
</TS>
