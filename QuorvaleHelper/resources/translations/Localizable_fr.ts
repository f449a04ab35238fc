<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name></name>
    <message id="Log">
        <source></source>
        <translation>Journal</translation>
    </message>
    <message id="Done">
        <source></source>
        <translation>Terminé</translation>
    </message>
    <message id="Protected">
        <source></source>
        <translation>Protégé</translation>
    </message>
    <message id="Unprotected">
        <source></source>
        <translation>Non protégé</translation>
    </message>
    <message id="Copy">
        <source></source>
        <translation>Copier</translation>
    </message>
    <message id="Select All">
        <source></source>
        <translation>Tout sélectionner</translation>
    </message>
    <message id="Find">
        <source></source>
        <translation>Rechercher</translation>
    </message>
    <message id="Find...">
        <source></source>
        <translation>Rechercher...</translation>
    </message>
    <message id="Previous">
        <source></source>
        <translation>Précédent</translation>
    </message>
    <message id="Next">
        <source></source>
        <translation>Suivant</translation>
    </message>
    <message id="Match Case">
        <source></source>
        <translation>Respecter la casse</translation>
    </message>
    <message id="No Matches">
        <source></source>
        <translation>Aucun résultat</translation>
    </message>
    <message id="%1 of %2">
        <source></source>
        <translation>%1 sur %2</translation>
    </message>
    <message id="Save Log">
        <source></source>
        <translation>Enregistrer le journal</translation>
    </message>
    <message id="Save...">
        <source></source>
        <translation>Enregistrer...</translation>
    </message>
    <message id="The log could not be saved.">
        <source></source>
        <translation>Le journal n’a pas pu être enregistré.</translation>
    </message>
</context>
</TS>
