// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/GalleryWindow.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CTextSlider.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtGui/QAccessible>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

// What the gallery's specimens say to one who doesn't see them, or not what they mean.

namespace
{

// The controls that are pictures, and the pictures that are lamps.
bool isPicture(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        return !label->pixmap().isNull();
    }
    if (const auto *button = qobject_cast<const COnOffButton *>(widget)) {
        return !button->combinedImage().isNull();
    }
    return qobject_cast<const CRadioButton *>(widget) || qobject_cast<const CSpinButton *>(widget);
}

bool isEditor(const QWidget *widget)
{
    return qobject_cast<const CTextSlider *>(widget) ||
           (qobject_cast<const QLineEdit *>(widget) &&
            !qobject_cast<const CTextSlider *>(widget->parentWidget()));
}

QString where(const QWidget *widget)
{
    const QPoint at = widget->mapTo(widget->window(), QPoint(0, 0));
    return QStringLiteral("%1 at %2, %3")
        .arg(QString::fromLatin1(widget->metaObject()->className()))
        .arg(at.x())
        .arg(at.y());
}

} // namespace

class TestGallery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(loadApplicationFonts());
        QApplication::setStyle(new RemoteEditorStyle);
    }

    void everyPictureIsSaid()
    {
        GalleryWindow window;
        int pictures = 0;
        for (QWidget *widget : window.findChildren<QWidget *>()) {
            if (!isPicture(widget) && !isEditor(widget)) {
                continue;
            }
            ++pictures;
            QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(widget);
            QVERIFY(accessible != nullptr);
            const QString said = widget->accessibleName();
            QVERIFY2(!said.isEmpty(), qPrintable(where(widget)));
            QCOMPARE(accessible->text(QAccessible::Name), said);
            // The name of a file is no name. The page of all pictures is about their files.
            if (!qobject_cast<QLabel *>(widget)) {
                QVERIFY2(!said.contains(u'_'), qPrintable(where(widget) + said));
            }
            if (isPicture(widget)) {
                QVERIFY2(!widget->toolTip().isEmpty(), qPrintable(where(widget) + said));
            }
        }
        QVERIFY(pictures > 100);
    }
};

QTEST_MAIN(TestGallery)
#include "tst_gallery.moc"
