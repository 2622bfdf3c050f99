// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/NumberFormat.h"

#include "widgets/WheelSteps.h"

#include <QtTest/QtTest>

#include <climits>
#include <cmath>
#include <limits>

// The text of a number by a printf format that may come from anywhere, and the steps of wheels.

class TestNumberFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNumberIsWrittenByItsFormat_data();
    void aNumberIsWrittenByItsFormat();
    void aFormatThatMakesNoSenseStandsAsItIsWritten_data();
    void aFormatThatMakesNoSenseStandsAsItIsWritten();
    void widthAndPrecisionHaveAnEnd();
    void numbersThatAreNoneAreHarmless();

    void wheelsStepOncePerNotch_data();
    void wheelsStepOncePerNotch();
};

void TestNumberFormat::aNumberIsWrittenByItsFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole, the default of the controls") << "%.0f" << 64.0 << "64";
    QTest::newRow("negative") << "%.0f" << -64.0 << "-64";
    QTest::newRow("decimals") << "%.2f" << 3.14159 << "3.14";
    QTest::newRow("sign") << "%+.1f" << 2.5 << "+2.5";
    QTest::newRow("width") << "%6.1f" << 2.5 << "   2.5";
    QTest::newRow("zeros") << "%03.0f" << 7.0 << "007";
    QTest::newRow("left") << "%-5.0f|" << 7.0 << "7    |";
    QTest::newRow("general") << "%g" << 0.5 << "0.5";
    QTest::newRow("exponent") << "%.1e" << 12345.0 << "1.2e+04";
    QTest::newRow("words around it") << "CC %.0f up" << 7.0 << "CC 7 up";
    QTest::newRow("percent sign") << "%.1f %%" << 50.4 << "50.4 %";
    QTest::newRow("percent signs before it") << "%%%%%.0f" << 1.0 << "%%1";
    QTest::newRow("whole number conversion") << "%d" << 12.9 << "12";
    QTest::newRow("whole number with zeros") << "%03d" << 7.0 << "007";
    QTest::newRow("hexadecimal") << "%02X" << 171.0 << "AB";
    QTest::newRow("lengths") << "%lf %%" << 1.0 << "1.000000 %";
    QTest::newRow("letters beyond ASCII")
        << QStringLiteral("\u00b1%.0f\u20ac") << 3.0 << QStringLiteral("\u00b13\u20ac");
}

void TestNumberFormat::aNumberIsWrittenByItsFormat()
{
    QFETCH(QString, format);
    QFETCH(double, number);
    QFETCH(QString, text);
    QCOMPARE(formatNumber(format, number), text);
}

void TestNumberFormat::aFormatThatMakesNoSenseStandsAsItIsWritten_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("null") << QString() << "";
    QTest::newRow("no conversion") << "name"
                                   << "name";
    QTest::newRow("string") << "%s"
                            << "%s";
    QTest::newRow("pointer") << "%p"
                             << "%p";
    QTest::newRow("count of characters") << "%n"
                                         << "%n";
    QTest::newRow("width from an argument") << "%*f"
                                            << "%*f";
    QTest::newRow("precision from an argument") << "%.*f"
                                                << "%.*f";
    QTest::newRow("percent sign at the end") << "7%"
                                             << "7%";
    QTest::newRow("cut in the middle") << "%-08."
                                       << "%-08.";
    QTest::newRow("a second conversion") << "%.0f %.0f %s"
                                         << "5 %.0f %s";
    QTest::newRow("a letter beyond ASCII")
        << QStringLiteral("%\u00e4") << QStringLiteral("%\u00e4");
    QTest::newRow("many") << QStringLiteral("%s").repeated(5000)
                          << QStringLiteral("%s").repeated(5000);
}

void TestNumberFormat::aFormatThatMakesNoSenseStandsAsItIsWritten()
{
    QFETCH(QString, format);
    QFETCH(QString, text);
    QCOMPARE(formatNumber(format, 5), text);
}

void TestNumberFormat::widthAndPrecisionHaveAnEnd()
{
    QCOMPARE(formatNumber(QStringLiteral("%999999999999.0f"), 5).size(), 99);
    QCOMPARE(formatNumber(QStringLiteral("%.999999999f"), 5).size(), 2 + 99);
    QVERIFY(formatNumber(QStringLiteral("%99999999d"), 5).size() <= 99);
    QVERIFY(formatNumber(QStringLiteral("%.99999999d"), 5).size() <= 99);
}

void TestNumberFormat::numbersThatAreNoneAreHarmless()
{
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    for (const char *format : {"%.0f", "%d", "%x", "%e", "%g", "%a"}) {
        for (const double number : {Infinity, -Infinity, std::nan(""), 1e308, -1e308, 5e-324}) {
            QVERIFY(!formatNumber(QString::fromLatin1(format), number).isEmpty());
        }
    }
}

void TestNumberFormat::wheelsStepOncePerNotch_data()
{
    QTest::addColumn<QList<int>>("angles");
    QTest::addColumn<QList<int>>("steps");
    QTest::newRow("a notch") << QList<int>{120, -120} << QList<int>{1, -1};
    QTest::newRow("several at once") << QList<int>{360, -240} << QList<int>{3, -2};
    QTest::newRow("a fine wheel") << QList<int>{30, 30, 30, 30, 30} << QList<int>{0, 0, 0, 1, 0};
    QTest::newRow("the rest is carried over") << QList<int>{100, 100, 40} << QList<int>{0, 1, 1};
    QTest::newRow("downwards") << QList<int>{-50, -50, -50} << QList<int>{0, 0, -1};
    QTest::newRow("to and fro") << QList<int>{60, -60, 60, 60} << QList<int>{0, 0, 0, 1};
    QTest::newRow("nothing") << QList<int>{0, 0} << QList<int>{0, 0};
    QTest::newRow("as much as there is")
        << QList<int>{INT_MAX, INT_MIN, 0} << QList<int>{INT_MAX / 120, -(INT_MAX / 120), 0};
}

void TestNumberFormat::wheelsStepOncePerNotch()
{
    QFETCH(QList<int>, angles);
    QFETCH(QList<int>, steps);
    WheelSteps wheel;
    QList<int> taken;
    for (const int angle : angles) {
        taken.append(wheel.take(angle));
    }
    QCOMPARE(taken, steps);
}

QTEST_GUILESS_MAIN(TestNumberFormat)
#include "tst_numberformat.moc"
