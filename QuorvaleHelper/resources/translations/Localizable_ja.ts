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
    <message id="Find">
        <source></source>
        <translation>検索</translation>
    </message>
    <message id="Find...">
        <source></source>
        <translation>検索...</translation>
    </message>
    <message id="Previous">
        <source></source>
        <translation>前へ</translation>
    </message>
    <message id="Next">
        <source></source>
        <translation>次へ</translation>
    </message>
    <message id="Match Case">
        <source></source>
        <translation>大文字と小文字を区別</translation>
    </message>
    <message id="No Matches">
        <source></source>
        <translation>一致なし</translation>
    </message>
    <message id="%1 of %2">
        <source></source>
        <translation>%1 / %2</translation>
    </message>
    <message id="Save Log">
        <source></source>
        <translation>ログを保存</translation>
    </message>
    <message id="Save...">
        <source></source>
        <translation>保存...</translation>
    </message>
    <message id="The log could not be saved.">
        <source></source>
        <translation>ログを保存できませんでした。</translation>
    </message>
</context>
</TS>
