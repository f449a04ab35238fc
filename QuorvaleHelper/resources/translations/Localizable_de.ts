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
    <message id="Find">
        <source></source>
        <translation>Suchen</translation>
    </message>
    <message id="Find...">
        <source></source>
        <translation>Suchen...</translation>
    </message>
    <message id="Previous">
        <source></source>
        <translation>Vorheriger</translation>
    </message>
    <message id="Next">
        <source></source>
        <translation>Nächster</translation>
    </message>
    <message id="Match Case">
        <source></source>
        <translation>Groß-/Kleinschreibung beachten</translation>
    </message>
    <message id="No Matches">
        <source></source>
        <translation>Keine Treffer</translation>
    </message>
    <message id="%1 of %2">
        <source></source>
        <translation>%1 von %2</translation>
    </message>
    <message id="Save Log">
        <source></source>
        <translation>Protokoll speichern</translation>
    </message>
    <message id="Save...">
        <source></source>
        <translation>Speichern...</translation>
    </message>
    <message id="The log could not be saved.">
        <source></source>
        <translation>Das Protokoll konnte nicht gespeichert werden.</translation>
    </message>
</context>
</TS>
