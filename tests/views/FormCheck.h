// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "images/Artwork.h"
#include "views/EditorOverlap.h"
#include "widgets/COnOffButton.h"
#include "widgets/CText.h"

#include <QtTest/QtTest>

// One widget of a panel's form: its class and place, and the picture and the text that it shows.
struct FormPart
{
    const char *name;
    const char *className;
    QRect place;
    const char *image = nullptr; // of a button
    const char *text = nullptr;  // not looked at if null
};

// What every panel's form must fulfil, and these parts and no others. The test that calls it goes
// on after a failure.
inline void checkForm(const EditorOverlap *panel, const char *className, const char *background,
                      const QList<FormPart> &parts)
{
    QVERIFY(panel != nullptr);
    QCOMPARE(panel->metaObject()->className(), className);
    QCOMPARE(panel->objectName(), QLatin1String(className));
    QCOMPARE(panel->geometry(), QRect(14, 31, 442, 419));
    QCOMPARE(panel->backgroundPixmap().cacheKey(), artwork(background).cacheKey());
    QCOMPARE(panel->font().family(), QStringLiteral("Corvan QRL 8"));
    QVERIFY(panel->font().styleStrategy() & QFont::NoAntialias);
    QVERIFY(!panel->accessibleName().isEmpty());
    QCOMPARE(panel->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size(),
             parts.size());
    for (const FormPart &part : parts) {
        const auto *widget = panel->findChild<QWidget *>(QLatin1String(part.name));
        QVERIFY2(widget != nullptr, part.name);
        QCOMPARE(widget->metaObject()->className(), part.className);
        QCOMPARE(widget->geometry(), part.place);
        if (const auto *skinned = qobject_cast<const COnOffButton *>(widget)) {
            QCOMPARE(skinned->combinedImage().cacheKey(), artwork(part.image).cacheKey());
            QVERIFY(!skinned->hasDownImage());
            QVERIFY2(!skinned->accessibleName().isEmpty(), part.name);
        }
        const auto *text = qobject_cast<const CText *>(widget);
        if (text != nullptr && part.text != nullptr) {
            QCOMPARE(text->text(), QString::fromLatin1(part.text));
        }
        if (QLatin1String(part.name) == QLatin1String("txtMessage")) {
            QCOMPARE(widget->font().family(), QStringLiteral("Corvan QRL 10"));
            QCOMPARE(text->alignment(), Qt::Alignment(Qt::AlignCenter));
        }
    }
}
