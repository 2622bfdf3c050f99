// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "vsti/VSTiInfo.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtXml/QDomDocument>

// The parameter lists that come with the program, for instruments that can't be asked.

class TestPlugInPresets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theFileIsADocumentOfItsKind();
    void everyIdentifierIsADigitAndTenMore();
    void everyParameterArrivesInItsOrder();
    void noTwoParametersOfAnInstrumentShareAPath();
    void bypassIsTheFirstParameter();
    void instrumentsCanBeToldApartByTheirShortNames();
    void theTrackGroupsAreNotDefinedHereSoThatTheListOffersThem();

private:
    QList<QDomElement> instruments() const
    {
        QList<QDomElement> found;
        for (QDomElement e = m_root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
            found.append(e);
        }
        return found;
    }

    QDir m_resources{QStringLiteral(TRN_SOURCE_DIR "/resources")};
    QTemporaryDir m_data;
    QDomDocument m_document;
    QDomElement m_root;
    std::unique_ptr<VSTiInfo> m_info;
};

namespace
{

QStringList namesOf(const QList<QDomElement> &instruments)
{
    QStringList names;
    for (const QDomElement &instrument : instruments) {
        names.append(instrument.attribute(AttributeVSTiName));
    }
    return names;
}

} // namespace

void TestPlugInPresets::initTestCase()
{
    QFile file(m_resources.filePath(PresetFileName));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(m_document.setContent(&file, true));
    m_root = m_document.documentElement();
    m_info = std::make_unique<VSTiInfo>(m_resources, m_resources, QDir(m_data.path()));
}

void TestPlugInPresets::theFileIsADocumentOfItsKind()
{
    QCOMPARE(m_document.doctype().name(), PresetDocType);
    QCOMPARE(m_root.tagName(), TagVSTiList);
    QVERIFY(!instruments().isEmpty());
    for (const QDomElement &instrument : instruments()) {
        QCOMPARE(instrument.tagName(), TagVSTi);
    }
}

void TestPlugInPresets::everyIdentifierIsADigitAndTenMore()
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{11}$"));
    const QDomNodeList parameters = m_document.elementsByTagName(TagParameter);
    for (int i = 0; i < parameters.size(); ++i) {
        const QString id = parameters.at(i).toElement().attribute(AttributeParameterID);
        QVERIFY2(form.match(id).hasMatch(), qPrintable(id));
        // What the ten digits tell has to fit eight hexadecimal ones.
        QVERIFY2(id.right(10).toLongLong() <= 0xFFFFFFFFLL, qPrintable(id));
    }
}

// A repeated identifier, or a parameter without a name, would be left out.
void TestPlugInPresets::everyParameterArrivesInItsOrder()
{
    for (const QDomElement &instrument : instruments()) {
        const QString name = instrument.attribute(AttributeVSTiName);
        const QDomNodeList rows = instrument.elementsByTagName(TagParameter);
        const QList<VSTiInfo::Parameter> read = m_info->getVSTiParameterList(name);
        QCOMPARE(read.size(), rows.size());
        for (int i = 0; i < rows.size(); ++i) {
            const QString row = rows.at(i).toElement().attribute(AttributeParameterName);
            QVERIFY(!row.isEmpty());
            QCOMPARE(read.at(i).path.constLast(), row);
        }
    }
}

void TestPlugInPresets::noTwoParametersOfAnInstrumentShareAPath()
{
    for (const QString &name : namesOf(instruments())) {
        QSet<QStringList> paths;
        for (const VSTiInfo::Parameter &parameter : m_info->getVSTiParameterList(name)) {
            QVERIFY2(!paths.contains(parameter.path),
                     qPrintable(name + parameter.path.join(QLatin1Char('/'))));
            paths.insert(parameter.path);
        }
    }
}

void TestPlugInPresets::bypassIsTheFirstParameter()
{
    for (const QString &name : namesOf(instruments())) {
        QCOMPARE(m_info->getVSTiParameterList(name).constFirst().id, BypassID);
    }
}

void TestPlugInPresets::instrumentsCanBeToldApartByTheirShortNames()
{
    QStringList shortNames;
    for (const QString &name : namesOf(instruments())) {
        QVERIFY(!name.isEmpty());
        shortNames.append(m_info->getVSTiExtensionNameFromVSTiName(name));
        QCOMPARE(m_info->getVSTiNameFromVSTiExtensionName(shortNames.constLast()), name);
    }
    QCOMPARE(shortNames.removeDuplicates(), 0);
}

// A group that the file defined would have a list, and would stay out of the popup.
void TestPlugInPresets::theTrackGroupsAreNotDefinedHereSoThatTheListOffersThem()
{
    const QStringList groups{AudioTrackName, MIDITrackName, GenericName};
    for (const QString &name : namesOf(instruments())) {
        QVERIFY2(!groups.contains(name), qPrintable(name));
    }
    QCOMPARE(m_info->getVSTiList(), groups);
}

QTEST_GUILESS_MAIN(TestPlugInPresets)
#include "tst_pluginpresets.moc"
