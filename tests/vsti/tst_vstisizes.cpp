// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "vsti/VstiHarness.h"

#include <QtCore/QDateTime>
#include <QtCore/QXmlStreamReader>
#include <QtTest/QtTest>

#include <memory>

// The database as small as a first scan leaves it and as large as a studio's machine: at every size
// the same parameters in the same order, whole sections side by side, and no name lost.

namespace
{

const QString DAW = QStringLiteral("Trevia Pro 8.5");
constexpr int ParametersPerGroup = 25;
constexpr int ParametersPerFolder = 250;

QByteArray nameOf(int instrument)
{
    return "Instrument " + QByteArray::number(instrument) + " of Many";
}

// A fifth of them without a group, the rest two groups down.
QList<QByteArray> groupsOf(int index)
{
    if (index % 5 == 0) {
        return {};
    }
    return {"Folder " + QByteArray::number(index / ParametersPerFolder),
            "Group " + QByteArray::number(index / ParametersPerGroup)};
}

// Each has a name of its own, so that nothing can take another's place unseen.
QByteArray parameterOf(int instrument, int index)
{
    return "Parameter " + QByteArray::number(index) + " in " + QByteArray::number(instrument);
}

QStringList pathOf(int instrument, int index)
{
    QStringList path;
    for (const QByteArray &group : groupsOf(index)) {
        path.append(QString::fromUtf8(group));
    }
    return path << QString::fromUtf8(parameterOf(instrument, index));
}

// In the order of the file: a group's parameters stand together, where the group first stood.
QStringList expectedList(int instrument, int count)
{
    struct Node
    {
        QList<Node> groups;
        QString name;
        QStringList lines; // of the parameters, and the place of a group as an empty one
    };
    Node root;
    for (int index = 0; index < count; ++index) {
        const QStringList path = pathOf(instrument, index);
        Node *node = &root;
        for (const QString &name : path.first(path.size() - 1)) {
            const auto known =
                std::find_if(node->groups.begin(), node->groups.end(),
                             [&name](const Node &group) { return group.name == name; });
            if (known == node->groups.end()) {
                node->lines.append(QString());
                node->groups.append({{}, name, {}});
                node = &node->groups.last();
            } else {
                node = &*known;
            }
        }
        node->lines.append(idOf(index) + QLatin1Char(' ') + path.join(QLatin1Char('/')));
    }
    QStringList lines;
    const auto walk = [&lines](const Node &node, const auto &self) -> void {
        qsizetype group = 0;
        for (const QString &line : node.lines) {
            if (line.isEmpty()) {
                self(node.groups.at(group++), self);
            } else {
                lines.append(line);
            }
        }
    };
    walk(root, walk);
    return lines;
}

// The text of each section, by its DAW.
QMap<QString, QByteArray> sectionsOf(const QByteArray &database)
{
    QMap<QString, QByteArray> sections;
    for (qsizetype start = database.indexOf("<daw "); start >= 0;
         start = database.indexOf("<daw ", start + 1)) {
        const qsizetype name = database.indexOf("name=\"", start) + 6;
        const qsizetype end = database.indexOf("</daw>", start);
        sections.insert(QString::fromUtf8(database.mid(name, database.indexOf('"', name) - name)),
                        database.mid(start, end - start));
    }
    return sections;
}

} // namespace

class TestVSTiSizes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<VstiRig>(); }
    void cleanup() { m_rig.reset(); }

    void everyParameterComesBackInItsOrder_data() { sizes(); }
    void everyParameterComesBackInItsOrder();
    void writingAgainChangesNothing_data() { sizes(); }
    void writingAgainChangesNothing();
    void theOtherSectionsStayByteForByte_data() { sizes(); }
    void theOtherSectionsStayByteForByte();
    void aChangedPluginCostsNoneButItself_data() { sizes(); }
    void aChangedPluginCostsNoneButItself();
    void everyIdIsFoundInAnyCase_data() { sizes(); }
    void everyIdIsFoundInAnyCase();
    void everyShortNameLeadsBack_data() { sizes(); }
    void everyShortNameLeadsBack();
    void presetsComeForWhatIsKnownByNameOnly_data() { sizes(); }
    void presetsComeForWhatIsKnownByNameOnly();
    void aCutFileGivesAnEmptySection_data() { sizes(); }
    void aCutFileGivesAnEmptySection();

private:
    static void sizes()
    {
        QTest::addColumn<int>("instruments");
        QTest::addColumn<int>("parameters");
        QTest::newRow("10 of one") << 1 << 10;
        QTest::newRow("1,000 of ten") << 10 << 100;
        QTest::newRow("20,000 of one") << 1 << 20000;
        QTest::newRow("20,000 of two hundred") << 200 << 100;
    }

    // Made once: to write it again would change its time.
    QString plugin(int instrument) const
    {
        const QString path = m_rig->path(("plugins/" + nameOf(instrument)).constData());
        return QFile::exists(path) ? path : m_rig->plugin(nameOf(instrument).constData());
    }
    static QString name(int instrument) { return QString::fromUtf8(nameOf(instrument)); }

    // As a scan of that many leaves model and file. withParameters: or known by name only.
    void scan(ScannedVSTiInfo *info, const QString &daw, int instruments, int parameters,
              bool withParameters = true) const
    {
        info->selectDAW(daw);
        info->scanResults->clear();
        for (int instrument = 0; instrument < instruments; ++instrument) {
            QList<SVSTiParameterInfo> list;
            for (int index = 0; withParameters && index < parameters; ++index) {
                list.append(scanned(index, parameterOf(instrument, index), groupsOf(index)));
            }
            info->scanResults->append(
                {nameOf(instrument), QFile::encodeName(plugin(instrument)), false, list});
        }
        info->entryVSTiParameter();
    }

    std::unique_ptr<VstiRig> m_rig;
};

// --- Reading and writing -------------------------------------------------------------------------

void TestVSTiSizes::everyParameterComesBackInItsOrder()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    scan(&info, DAW, instruments, parameters);
    ScannedVSTiInfo again = m_rig->info();
    again.selectDAW(DAW);
    QCOMPARE(again.parameterLists.size(), instruments);
    QVERIFY(again.isConsistent());
    for (int instrument = 0; instrument < instruments; ++instrument) {
        QCOMPARE(printed(again.getVSTiParameterList(name(instrument))),
                 expectedList(instrument, parameters));
        QCOMPARE(again.fileInfos.value(name(instrument)).fileInfo.absoluteFilePath(),
                 plugin(instrument));
    }
}

void TestVSTiSizes::writingAgainChangesNothing()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    scan(&info, DAW, instruments, parameters);
    const QByteArray before = bytesOf(m_rig->database());
    QVERIFY(before.size() > instruments * parameters * 30);
    ScannedVSTiInfo again = m_rig->info();
    again.selectDAW(DAW);
    again.entryVSTiParameter();
    QCOMPARE(bytesOf(m_rig->database()).size(), before.size());
    QCOMPARE(bytesOf(m_rig->database()), before);
}

// --- Merging -------------------------------------------------------------------------------------

void TestVSTiSizes::theOtherSectionsStayByteForByte()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    const QStringList others{latin("Ostrel 8"), latin("Trevia Pro 9")};
    scan(&info, others.first(), instruments, parameters);
    scan(&info, DAW, 1, 1);
    scan(&info, others.last(), 1, parameters / instruments);
    const QMap<QString, QByteArray> before = sectionsOf(bytesOf(m_rig->database()));
    QCOMPARE(before.size(), 3);

    scan(&info, DAW, instruments, parameters);
    const QMap<QString, QByteArray> after = sectionsOf(bytesOf(m_rig->database()));
    QCOMPARE(after.keys(), before.keys());
    for (const QString &other : others) {
        QVERIFY(after.value(other) == before.value(other));
    }
    QVERIFY(after.value(DAW).size() > before.value(DAW).size());
    ScannedVSTiInfo again = m_rig->info();
    again.selectDAW(DAW);
    QCOMPARE(again.parameterLists.size(), instruments);
    QCOMPARE(again.getVSTiParameterList(name(instruments - 1)).size(), parameters);
}

void TestVSTiSizes::aChangedPluginCostsNoneButItself()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    scan(&info, DAW, instruments, parameters);
    const int changed = instruments / 2;
    const QString path = plugin(changed);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QFileInfo(path).lastModified().addSecs(-10),
                             QFileDevice::FileModificationTime));
    file.close();

    ScannedVSTiInfo again = m_rig->info();
    again.selectDAW(DAW);
    QCOMPARE(again.parameterLists.size(), instruments - 1);
    QVERIFY(!again.parameterLists.contains(name(changed)));
    // Its next scan finds it once more, and the file then holds all of them.
    QList<SVSTiParameterInfo> list;
    for (int index = 0; index < parameters; ++index) {
        list.append(scanned(index, parameterOf(changed, index), groupsOf(index)));
    }
    again.scanResults->append({nameOf(changed), QFile::encodeName(path), false, list});
    again.entryVSTiParameter();
    ScannedVSTiInfo last = m_rig->info();
    last.selectDAW(DAW);
    QCOMPARE(last.parameterLists.size(), instruments);
    QCOMPARE(printed(last.getVSTiParameterList(name(changed))), expectedList(changed, parameters));
}

// --- Lookups -------------------------------------------------------------------------------------

void TestVSTiSizes::everyIdIsFoundInAnyCase()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    scan(&info, DAW, instruments, parameters);
    for (int instrument = 0; instrument < instruments; ++instrument) {
        const QString vsti = name(instrument);
        QCOMPARE(info.getVSTiParameterMap(vsti).size(), parameters);
        for (int index = 0; index < parameters; ++index) {
            const QStringList path = pathOf(instrument, index);
            QCOMPARE(info.getParameterName(vsti, idOf(index)), path);
            QCOMPARE(info.getVSTiParameterName(vsti, idOf(index).toUpper()), path);
        }
        QVERIFY(info.getParameterName(vsti, idOf(parameters)).isEmpty());
    }
    QVERIFY(info.getParameterName(name(instruments), idOf(0)).isEmpty());
}

void TestVSTiSizes::everyShortNameLeadsBack()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    for (int instrument = 0; instrument < instruments; ++instrument) {
        QList<SVSTiParameterInfo> list;
        for (int index = 0; index < parameters; ++index) {
            list.append(scanned(index, parameterOf(instrument, index)));
        }
        // What tells them apart lies within the twelve characters that a template keeps.
        const QByteArray vsti = QByteArray::number(instrument) + " Synth of the House";
        info.scanResults->append(
            {vsti, QFile::encodeName(m_rig->plugin(vsti.constData())), false, list});
    }
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiList().size(), instruments + 3);
    for (const QString &vsti : info.getVSTiList()) {
        const QString shortName = info.getVSTiExtensionNameFromVSTiName(vsti);
        QVERIFY(shortName.size() <= 12);
        QCOMPARE(info.getVSTiNameFromVSTiExtensionName(shortName), vsti);
    }
}

// --- Presets -------------------------------------------------------------------------------------

void TestVSTiSizes::presetsComeForWhatIsKnownByNameOnly()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    QByteArray rows;
    for (int instrument = 0; instrument < instruments; ++instrument) {
        rows += "<vsti name=\"" + nameOf(instrument) + "\">";
        for (int index = 0; index < parameters; ++index) {
            rows += "<parameter id=\"" + fileIdOf(index) + "\" name=\"" +
                    parameterOf(instrument, index) + "\"/>";
        }
        rows += "</vsti>";
    }
    // One more that nobody has installed.
    rows += "<vsti name=\"Absent\"><parameter id=\"1\" name=\"p\"/></vsti>";
    QVERIFY(m_rig->writePreset(rows));
    ScannedVSTiInfo info = m_rig->info();
    scan(&info, DAW, instruments, parameters, false);
    for (int instrument = 0; instrument < instruments; ++instrument) {
        const QList<VSTiInfo::Parameter> list = info.getVSTiParameterList(name(instrument));
        QCOMPARE(list.size(), parameters);
        QCOMPARE(list.constFirst().path,
                 QStringList(QString::fromUtf8(parameterOf(instrument, 0))));
        QCOMPARE(list.constLast().id, idOf(parameters - 1));
    }
    QVERIFY(info.isConsistent());
    QVERIFY(!info.getVSTiList().contains(latin("Absent")));
    // They are no part of what a scan has found.
    QVERIFY(!bytesOf(m_rig->database()).contains("<parameter"));

    // A plug-in that tells its parameters itself keeps them.
    scan(&info, DAW, instruments, parameters);
    QCOMPARE(info.getVSTiParameterList(name(0)).size(), parameters);
    QCOMPARE(info.getParameterName(name(0), idOf(1)), pathOf(0, 1));
}

// --- Damage --------------------------------------------------------------------------------------

void TestVSTiSizes::aCutFileGivesAnEmptySection()
{
    QFETCH(int, instruments);
    QFETCH(int, parameters);
    ScannedVSTiInfo info = m_rig->info();
    scan(&info, DAW, instruments, parameters);
    const QByteArray whole = bytesOf(m_rig->database());
    for (const qsizetype part : {1, 2, 3}) {
        QVERIFY(writeBytes(m_rig->database(), whole.first(whole.size() * part / 4)));
        ScannedVSTiInfo again = m_rig->info();
        again.selectDAW(DAW);
        QVERIFY(again.parameterLists.isEmpty());
        QVERIFY(again.parameterMaps.isEmpty());
        QVERIFY(again.fileInfos.isEmpty());
    }
}

QTEST_GUILESS_MAIN(TestVSTiSizes)
#include "tst_vstisizes.moc"
