<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name></name>
    <message id="Log">
        <source></source>
        <translation>Registro</translation>
    </message>
    <message id="Done">
        <source></source>
        <translation>Listo</translation>
    </message>
    <message id="Protected">
        <source></source>
        <translation>Protegido</translation>
    </message>
    <message id="Unprotected">
        <source></source>
        <translation>Sin protección</translation>
    </message>
    <message id="Copy">
        <source></source>
        <translation>Copiar</translation>
    </message>
    <message id="Select All">
        <source></source>
        <translation>Seleccionar todo</translation>
    </message>
    <message id="Find">
        <source></source>
        <translation>Buscar</translation>
    </message>
    <message id="Find...">
        <source></source>
        <translation>Buscar...</translation>
    </message>
    <message id="Previous">
        <source></source>
        <translation>Anterior</translation>
    </message>
    <message id="Next">
        <source></source>
        <translation>Siguiente</translation>
    </message>
    <message id="Match Case">
        <source></source>
        <translation>Distinguir mayúsculas</translation>
    </message>
    <message id="No Matches">
        <source></source>
        <translation>Sin coincidencias</translation>
    </message>
    <message id="%1 of %2">
        <source></source>
        <translation>%1 de %2</translation>
    </message>
    <message id="Save Log">
        <source></source>
        <translation>Guardar el registro</translation>
    </message>
    <message id="Save...">
        <source></source>
        <translation>Guardar...</translation>
    </message>
    <message id="The log could not be saved.">
        <source></source>
        <translation>No se pudo guardar el registro.</translation>
    </message>
</context>
</TS>
