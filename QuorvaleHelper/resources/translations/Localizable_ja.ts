<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja">
<context>
    <name></name>
    <message id="Log">
        <source></source>
        <translation>ログ</translation>
    </message>
    <message id="Done">
        <source></source>
        <translation>完了</translation>
    </message>
    <message id="Protected">
        <source></source>
        <translation>保護されています</translation>
    </message>
    <message id="Unprotected">
        <source></source>
        <translation>保護されていません</translation>
    </message>
    <message id="Copy">
        <source></source>
        <translation>コピー</translation>
    </message>
    <message id="Select All">
        <source></source>
        <translation>すべて選択</translation>
    </message>
</context>
</TS>
