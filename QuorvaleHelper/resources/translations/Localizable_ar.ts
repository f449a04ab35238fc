<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ar">
<context>
    <name></name>
    <message id="Log">
        <source></source>
        <translation>السجل</translation>
    </message>
    <message id="Done">
        <source></source>
        <translation>تم</translation>
    </message>
    <message id="Protected">
        <source></source>
        <translation>محمي</translation>
    </message>
    <message id="Unprotected">
        <source></source>
        <translation>غير محمي</translation>
    </message>
    <message id="Copy">
        <source></source>
        <translation>نسخ</translation>
    </message>
    <message id="Select All">
        <source></source>
        <translation>تحديد الكل</translation>
    </message>
    <message id="Find">
        <source></source>
        <translation>بحث</translation>
    </message>
    <message id="Find...">
        <source></source>
        <translation>بحث...</translation>
    </message>
    <message id="Previous">
        <source></source>
        <translation>السابق</translation>
    </message>
    <message id="Next">
        <source></source>
        <translation>التالي</translation>
    </message>
    <message id="Match Case">
        <source></source>
        <translation>مطابقة حالة الأحرف</translation>
    </message>
    <message id="No Matches">
        <source></source>
        <translation>لا توجد نتائج</translation>
    </message>
    <message id="%1 of %2">
        <source></source>
        <translation>%1 من %2</translation>
    </message>
    <message id="Save Log">
        <source></source>
        <translation>حفظ السجل</translation>
    </message>
    <message id="Save...">
        <source></source>
        <translation>حفظ...</translation>
    </message>
    <message id="The log could not be saved.">
        <source></source>
        <translation>تعذّر حفظ السجل.</translation>
    </message>
</context>
</TS>
