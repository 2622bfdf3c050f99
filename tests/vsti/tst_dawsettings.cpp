// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/VstiHarness.h"

#include <QtTest/QtTest>

#include <sys/stat.h>

// The DAWs of a machine, and the folders in which the selected one looks for plug-ins.

namespace
{

QByteArray attribute(const QByteArray &text)
{
    return QString::fromUtf8(text).toHtmlEscaped().toUtf8();
}

QByteArray half(const char *name, const QByteArray &value)
{
    return "<string name=\"" + QByteArray(name) + "\" value=\"" + attribute(value) + "\"/>";
}

QByteArray object(const QByteArray &path, const QByteArray &name)
{
    return "<obj class=\"FNPath\">" + half("Name", name) + half("Path", path) + "</obj>\n";
}

QByteArray pathList(const QByteArray &objects)
{
    return "<member name=\"Values\"><member name=\"PathList\"><list name=\"paths\" type=\"obj\">" +
           objects + "</list></member></member>";
}

QByteArray item(const QByteArray &group, const QByteArray &objects)
{
    return "<item><string name=\"Group\" value=\"" + group + "\"/>" + pathList(objects) +
           "</item>\n";
}

QByteArray entries(const QByteArray &items)
{
    return "<list name=\"Entries\" type=\"list\">\n" + items + "</list>\n";
}

QByteArray document(const QByteArray &root, const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<" + root + ">\n" + content + "</" + root +
           ">\n";
}

QByteArray settings(const QByteArray &objects)
{
    return document("Vst2xPlugins", entries(item("Vst2xPlugManager", objects)));
}

QStringList paths(const QList<QDir> &folders)
{
    QStringList list;
    for (const QDir &folder : folders) {
        list.append(folder.path());
    }
    return list;
}

} // namespace

class TestDAWSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<VstiRig>(); }
    void cleanup() { m_rig.reset(); }

    void displayNames_data();
    void displayNames();
    void applicationsThatAreNoDAWArePassedOver_data();
    void applicationsThatAreNoDAWArePassedOver();
    void anApplicationAtVersionOneIsListed();
    void eachEditionIsADAWOfItsOwn();
    void bothNameFormsAreTaken();
    void filesOfOtherNamesAreNoSettings();
    void bothWidthsAreOneDAW();
    void applicationsOfTheUserAreFoundToo();
    void twoApplicationsOfOneDisplayNameShareAnEntryAndTheLaterWins();
    void anApplicationWithoutSettingsGivesNone();
    void aMachineWithoutDAWGivesNone();
    void aDAWInstalledLaterAppearsAtTheNextStart();
    void theSettingFolderIsThatOfTheApplication();
    void withoutADAWThereAreNoFolders();
    void theDAWsOwnFoldersComeFirst();
    void bothXmlFormsAreReadFromBothNameForms_data();
    void bothXmlFormsAreReadFromBothNameForms();
    void thePathIsJoinedWithNothingBetween();
    void allThatMatchIsTakenInItsOrder();
    void aGroupOfAnotherValueIsPassedOverAndTheNextIsTried();
    void aLaterHalfReplacesAnEarlierOne();
    void elementsThatDontFitAreIgnored_data();
    void elementsThatDontFitAreIgnored();
    void anObjectNeedsBothHalves_data();
    void anObjectNeedsBothHalves();
    void aPathThatStandsTwiceStandsOnce_data();
    void aPathThatStandsTwiceStandsOnce();
    void aPathInBothFilesStandsOnce();
    void theApplicationsOwnFolderStandsOnce();
    void aLinkToAFolderIsTheFolder();
    void theTwinOfTheOtherWidthIsReadToo();
    void whereTheMapHoldsTheTwinTheOtherStaysUnread();
    void selectingAnotherDAWReplacesTheFolders();
    void selectingNoDAWLeavesNoFolders();
    void filesOfNoUseLeaveTheDAWsOwnFolders_data();
    void filesOfNoUseLeaveTheDAWsOwnFolders();
    void aBadFileDoesNotHideItsTwin();
    void aPipeIsNotWaitedFor();
    void anEnormousListIsReadInTime();
    void manyGroupsAndValuesInOneItemAreReadInTime();
    void pathsWithLettersOutsideASCIIComeThrough();

private:
    // An application with one settings file in the shared folder.
    void install(const char *application, const char *setting = "Vst2xPlugins Trevia.xml",
                 const QByteArray &content = settings({})) const
    {
        QVERIFY(QDir().mkpath(bundle("system/opt/", application)));
        QVERIFY(writeBytes(settingFile(application, setting), content));
    }
    QString bundle(const char *root, const char *application) const
    {
        return m_rig->path(root) + latin(application) + latin(".app");
    }
    QString settingFile(const char *application, const char *setting) const
    {
        return m_rig->path("home/.config/") + latin(application) + latin("/") + latin(setting);
    }
    QStringList listed() const { return m_rig->info().getDAWList(); }
    // The folders that the settings of a DAW name, without the DAW's own.
    QStringList named(const QByteArray &content, const char *setting = "Vst2xPlugins Trevia.xml")
    {
        install("Trevia 7", setting, content);
        ScannedVSTiInfo info = m_rig->info();
        info.selectDAW(latin("Trevia 7"));
        return paths(info.vst2Folders).mid(2);
    }
    QStringList own(const char *application, const char *below) const
    {
        return {bundle("system/opt/", application) + latin(below),
                bundle("home/Applications/", application) + latin(below)};
    }

    std::unique_ptr<VstiRig> m_rig;
};

void TestDAWSettings::displayNames_data()
{
    QTest::addColumn<QString>("stem");
    QTest::addColumn<QString>("versionText");
    QTest::addColumn<float>("version");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const char *stem, const char *text, float version,
                        const char *name) {
        QTest::newRow(title) << latin(stem) << latin(text) << version << latin(name);
    };
    row("plain edition", "Vst2xPlugins Trevia", "7", 7.0F, "Trevia 7");
    row("plain edition just below 8", "Vst2xPlugins Trevia", "7.9", 7.9F, "Trevia 7.9");
    row("plain edition at 8", "Vst2xPlugins Trevia", "8.0", 8.0F, "Trevia Pro 8.0");
    row("plain edition at 8.5", "Vst2xPlugins Trevia", "8.5", 8.5F, "Trevia Pro 8.5");
    row("later name form", "Vst2xPlugin SearchPaths Trevia", "9", 9.0F, "Trevia Pro 9");
    row("an edition keeps its word", "Vst2xPlugins Trevia Artist", "8", 8.0F, "Trevia Artist 8");
    row("the other product keeps its name", "Vst2xPlugins Ostrel", "8", 8.0F, "Ostrel 8");
    row("the other product's edition", "Vst2xPlugins Ostrel AI", "9.5", 9.5F, "Ostrel AI 9.5");
    row("hidden edition", "Vst2xPlugins Trevia LE", "7", 7.0F, "");
    row("hidden edition at 8", "Vst2xPlugins Trevia LE", "8", 8.0F, "");
    row("hidden edition at 9", "Vst2xPlugin SearchPaths Trevia LE", "9", 9.0F, "");
    row("the other product's small edition", "Vst2xPlugins Ostrel LE", "8", 8.0F, "Ostrel LE 8");
    row("no edition", "Vst2xPlugins", "8", 8.0F, "");
    row("no edition but blanks", "Vst2xPlugin SearchPaths  ", "9", 9.0F, "");
    row("fixed part twice", "Vst2xPlugins Trevia Vst2xPlugins", "8", 8.0F, "Trevia Pro 8");
    row("fixed part in other letters", "vst2xplugins Trevia", "8", 8.0F, "vst2xplugins Trevia 8");
    row("product in other letters", "Vst2xPlugins trevia", "8", 8.0F, "trevia 8");
}

void TestDAWSettings::displayNames()
{
    QFETCH(QString, stem);
    QFETCH(QString, versionText);
    QFETCH(float, version);
    QFETCH(QString, name);
    QCOMPARE(m_rig->info().getDAWDisplayNameFromSettingFileName(stem, versionText, version), name);
}

void TestDAWSettings::applicationsThatAreNoDAWArePassedOver_data()
{
    QTest::addColumn<QByteArray>("application");
    for (const char *name :
         {"Trevia", "Trevia8", "Trevia Pro", "Trevia 8x", "Trevia 0.9", "Trevia 0", "Trevia -8",
          "Trevia inf", "Trevia nan", "Trevia 8 ", "Trevia 8,5", "Trevia 8 Demo", "Other 8",
          "My Trevia 8", "Trevia 1e99"}) {
        QTest::newRow(name) << QByteArray(name);
    }
}

void TestDAWSettings::applicationsThatAreNoDAWArePassedOver()
{
    QFETCH(QByteArray, application);
    install(application.constData());
    QCOMPARE(listed(), QStringList());
}

void TestDAWSettings::anApplicationAtVersionOneIsListed()
{
    install("Trevia 1.0");
    QCOMPARE(listed(), names({"Trevia 1.0"}));
}

void TestDAWSettings::eachEditionIsADAWOfItsOwn()
{
    install("Trevia 8.5", "Vst2xPlugins Trevia.xml");
    install("Trevia 8.5", "Vst2xPlugins Trevia Artist.xml");
    install("Trevia 8.5", "Vst2xPlugins Trevia LE.xml");
    install("Ostrel 7", "Vst2xPlugins Ostrel AI.xml");
    const ScannedVSTiInfo info = m_rig->info();
    QCOMPARE(info.getDAWList(), names({"Ostrel AI 7", "Trevia Artist 8.5", "Trevia Pro 8.5"}));
    QCOMPARE(info.dawSettings.value(latin("Trevia Artist 8.5")),
             qMakePair(latin("Trevia 8.5"), latin("Vst2xPlugins Trevia Artist.xml")));
}

void TestDAWSettings::bothNameFormsAreTaken()
{
    install("Trevia 9", "Vst2xPlugin SearchPaths Trevia.xml");
    install("Ostrel 9", "Vst2xPlugins Ostrel.xml");
    QCOMPARE(listed(), names({"Ostrel 9", "Trevia Pro 9"}));
}

void TestDAWSettings::filesOfOtherNamesAreNoSettings()
{
    install("Trevia 9", "Vst2xPlugins Trevia.txt");
    install("Trevia 9", "Vst2x Trevia.xml");
    install("Trevia 9", "My Vst2xPlugins Trevia.xml");
    QVERIFY(QDir().mkpath(settingFile("Trevia 9", "Vst2xPlugins Folder.xml")));
    QCOMPARE(listed(), QStringList());
}

void TestDAWSettings::bothWidthsAreOneDAW()
{
    install("Trevia 8", "Vst2xPlugins Trevia.xml");
    install("Trevia 8", "Vst2xPlugins Trevia (x86_64).xml");
    QCOMPARE(listed(), names({"Trevia Pro 8"}));
}

void TestDAWSettings::applicationsOfTheUserAreFoundToo()
{
    install("Trevia 8");
    QVERIFY(QDir().rename(bundle("system/opt/", "Trevia 8"), m_rig->path("moved")));
    QVERIFY(QDir().mkpath(m_rig->path("home/Applications")));
    QVERIFY(QDir().rename(m_rig->path("moved"), bundle("home/Applications/", "Trevia 8")));
    QCOMPARE(listed(), names({"Trevia Pro 8"}));
}

void TestDAWSettings::twoApplicationsOfOneDisplayNameShareAnEntryAndTheLaterWins()
{
    install("Trevia One 8");
    QVERIFY(QDir().mkpath(bundle("home/Applications/", "Trevia Two 8")));
    QVERIFY(writeBytes(settingFile("Trevia Two 8", "Vst2xPlugins Trevia.xml"), settings({})));
    const ScannedVSTiInfo info = m_rig->info();
    QCOMPARE(info.getDAWList(), names({"Trevia Pro 8"}));
    QCOMPARE(info.dawSettings.value(latin("Trevia Pro 8")).first, latin("Trevia Two 8"));
}

void TestDAWSettings::anApplicationWithoutSettingsGivesNone()
{
    QVERIFY(QDir().mkpath(bundle("system/opt/", "Trevia 8")));
    QVERIFY(QDir().mkpath(bundle("system/opt/", "Ostrel 8")));
    QVERIFY(QDir().mkpath(m_rig->path("home/.config/Ostrel 8")));
    QCOMPARE(listed(), QStringList());
}

void TestDAWSettings::aMachineWithoutDAWGivesNone()
{
    QCOMPARE(listed(), QStringList());
}

void TestDAWSettings::aDAWInstalledLaterAppearsAtTheNextStart()
{
    const ScannedVSTiInfo running = m_rig->info();
    install("Trevia 8");
    QCOMPARE(running.getDAWList(), QStringList());
    QCOMPARE(listed(), names({"Trevia Pro 8"}));
}

void TestDAWSettings::theSettingFolderIsThatOfTheApplication()
{
    install("Trevia 8");
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(latin("Trevia Pro 8"));
    QCOMPARE(info.dawSettingFolder.path(), m_rig->path("home/.config/Trevia 8"));
    QCOMPARE(info.getDAWSettingFolder(latin("Some 1")).path(), m_rig->path("home/.config/Some 1"));
}

void TestDAWSettings::withoutADAWThereAreNoFolders()
{
    const ScannedVSTiInfo info = m_rig->info();
    QVERIFY(info.vst2Folders.isEmpty());
    QVERIFY(info.vst3Folders.isEmpty());
}

void TestDAWSettings::theDAWsOwnFoldersComeFirst()
{
    install("Trevia 8", "Vst2xPlugins Trevia.xml", settings(object("/some/", "where")));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(latin("Trevia Pro 8"));
    QCOMPARE(paths(info.vst2Folders),
             own("Trevia 8", "/Contents/VSTPlugIns") + names({"/some/where"}));
    QCOMPARE(paths(info.vst3Folders), own("Trevia 8", "/Contents/VST3") +
                                          QStringList({m_rig->path("system/usr/lib/vst3"),
                                                       m_rig->path("system/usr/local/lib/vst3"),
                                                       m_rig->path("home/.vst3")}));
}

void TestDAWSettings::bothXmlFormsAreReadFromBothNameForms_data()
{
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QByteArray>("root");
    QTest::addColumn<QByteArray>("group");
    for (const char *setting : {"Vst2xPlugins Trevia.xml", "Vst2xPlugin SearchPaths Trevia.xml"}) {
        for (const char *root : {"Vst2xPlugins", "Vst2xPathlist"}) {
            for (const char *group : {"Vst2xPlugManager", "PathList"}) {
                QTest::addRow("%s, %s, %s", setting, root, group)
                    << QByteArray(setting) << QByteArray(root) << QByteArray(group);
            }
        }
    }
}

void TestDAWSettings::bothXmlFormsAreReadFromBothNameForms()
{
    QFETCH(QByteArray, setting);
    QFETCH(QByteArray, root);
    QFETCH(QByteArray, group);
    QCOMPARE(named(document(root, entries(item(group, object("/a/", "b")))), setting.constData()),
             names({"/a/b"}));
}

void TestDAWSettings::thePathIsJoinedWithNothingBetween()
{
    QCOMPARE(named(settings(object("/a/b", "c") + object("/a/b/", "c"))),
             names({"/a/bc", "/a/b/c"}));
}

void TestDAWSettings::allThatMatchIsTakenInItsOrder()
{
    const QByteArray manager = "Vst2xPlugManager";
    QCOMPARE(named(document("Vst2xPlugins",
                            entries(item(manager, object("/1/", "a") + object("/2/", "a")) +
                                    item(manager, object("/3/", "a"))) +
                                entries(item("PathList", object("/4/", "a"))))),
             names({"/1/a", "/2/a", "/3/a", "/4/a"}));
}

void TestDAWSettings::aGroupOfAnotherValueIsPassedOverAndTheNextIsTried()
{
    const QByteArray content = "<item><string name=\"Group\" value=\"Else\"/>"
                               "<string name=\"Kind\" value=\"PathList\"/>" +
                               pathList(object("/a/", "b")) +
                               "<string name=\"Group\" value=\"PathList\"/></item>";
    QCOMPARE(named(document("Vst2xPlugins", entries(content))), names({"/a/b"}));
}

void TestDAWSettings::aLaterHalfReplacesAnEarlierOne()
{
    QCOMPARE(
        named(settings("<obj class=\"FNPath\">" + half("Name", "old") + half("Path", "/old/") +
                       half("Path", "/new/") + half("Name", "er") + half("Kind", "x") + "</obj>")),
        names({"/new/er"}));
}

void TestDAWSettings::elementsThatDontFitAreIgnored_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray good = document("Vst2xPlugins", entries(item("PathList", object("/a/", "b"))));
    const auto row = [&good](const char *title, const char *before, const char *after) {
        QByteArray content = good;
        content.replace(before, after);
        QTest::newRow(title) << content;
    };
    row("root", "Vst2xPlugins", "Vst2xplugins");
    row("name of the entries", "\"Entries\"", "\"Entry\"");
    row("type of the entries", "type=\"list\"", "type=\"obj\"");
    row("entries without type", "type=\"list\"", "");
    row("tag of the item", "item>", "Item>");
    row("name of the group", "\"Group\"", "\"group\"");
    row("value of the group", "value=\"PathList\"", "value=\"Pathlist\"");
    row("name of the values", "\"Values\"", "\"Value\"");
    row("name of the path list", "member name=\"PathList\"", "member name=\"paths\"");
    row("name of the paths", "\"paths\"", "\"path\"");
    row("type of the paths", "type=\"obj\"", "type=\"list\"");
    row("class of the object", "\"FNPath\"", "\"FNpath\"");
    row("a level in between", "<obj class", "<x/></list><list><obj class");
}

void TestDAWSettings::elementsThatDontFitAreIgnored()
{
    QFETCH(QByteArray, content);
    QVERIFY(content.startsWith("<?xml"));
    QCOMPARE(named(content), QStringList());
}

void TestDAWSettings::anObjectNeedsBothHalves_data()
{
    QTest::addColumn<QByteArray>("halves");
    QTest::newRow("name alone") << half("Name", "a");
    QTest::newRow("path alone") << half("Path", "/a/");
    QTest::newRow("empty name") << half("Name", "") + half("Path", "/a/");
    QTest::newRow("empty path") << half("Name", "a") + half("Path", "");
    QTest::newRow("emptied later") << half("Name", "a") + half("Path", "/a/") + half("Name", "");
    QTest::newRow("no value") << half("Name", "a") + "<string name=\"Path\"/>";
    QTest::newRow("nothing") << QByteArray();
}

void TestDAWSettings::anObjectNeedsBothHalves()
{
    QFETCH(QByteArray, halves);
    QCOMPARE(named(settings("<obj class=\"FNPath\">" + halves + "</obj>" + object("/b/", "c"))),
             names({"/b/c"}));
}

void TestDAWSettings::aPathThatStandsTwiceStandsOnce_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("a folder that exists") << true;
    QTest::newRow("a folder that doesn't") << false;
}

void TestDAWSettings::aPathThatStandsTwiceStandsOnce()
{
    QFETCH(bool, exists);
    const QString folder = m_rig->path("plugins/some/where");
    if (exists) {
        QVERIFY(QDir().mkpath(folder));
    }
    const QByteArray base = m_rig->path("plugins/").toUtf8();
    QCOMPARE(named(settings(object(base + "some/", "where") + object(base, "some/where") +
                            object(base + "some/", "where/") +
                            object(base + "other/../some/", "where"))),
             QStringList(folder));
}

void TestDAWSettings::aPathInBothFilesStandsOnce()
{
    install("Trevia 7", "Vst2xPlugins Trevia (x86_64).xml",
            settings(object("/b/", "b") + object("/a/", "a")));
    // The map must hold the other file, whichever the listing yields last.
    QVERIFY(QFile::rename(settingFile("Trevia 7", "Vst2xPlugins Trevia (x86_64).xml"),
                          m_rig->path("twin.xml")));
    install("Trevia 7", "Vst2xPlugins Trevia.xml", settings(object("/a/", "a")));
    ScannedVSTiInfo info = m_rig->info();
    QVERIFY(QFile::rename(m_rig->path("twin.xml"),
                          settingFile("Trevia 7", "Vst2xPlugins Trevia (x86_64).xml")));
    info.selectDAW(latin("Trevia 7"));
    QCOMPARE(paths(info.vst2Folders).mid(2), names({"/a/a", "/b/b"}));
}

void TestDAWSettings::theApplicationsOwnFolderStandsOnce()
{
    const QByteArray folder = bundle("system/opt/", "Trevia 7").toUtf8() + "/Contents/";
    QCOMPARE(named(settings(object(folder, "VSTPlugIns") + object("/a/", "b"))), names({"/a/b"}));
}

void TestDAWSettings::aLinkToAFolderIsTheFolder()
{
    QVERIFY(QDir().mkpath(m_rig->path("plugins/real")));
    QVERIFY(QFile::link(m_rig->path("plugins/real"), m_rig->path("plugins/link")));
    const QByteArray base = m_rig->path("plugins/").toUtf8();
    QCOMPARE(named(settings(object(base, "link") + object(base, "real"))),
             QStringList(m_rig->path("plugins/link")));
}

void TestDAWSettings::theTwinOfTheOtherWidthIsReadToo()
{
    install("Trevia 7", "Vst2xPlugins Trevia.xml", settings(object("/a/", "32")));
    ScannedVSTiInfo info = m_rig->info();
    install("Trevia 7", "Vst2xPlugins Trevia (x86_64).xml", settings(object("/a/", "64")));
    info.selectDAW(latin("Trevia 7"));
    QCOMPARE(paths(info.vst2Folders).mid(2), names({"/a/32", "/a/64"}));
}

void TestDAWSettings::whereTheMapHoldsTheTwinTheOtherStaysUnread()
{
    install("Trevia 7", "Vst2xPlugins Trevia (x86_64).xml", settings(object("/a/", "64")));
    ScannedVSTiInfo info = m_rig->info();
    install("Trevia 7", "Vst2xPlugins Trevia.xml", settings(object("/a/", "32")));
    info.selectDAW(latin("Trevia 7"));
    QCOMPARE(paths(info.vst2Folders).mid(2), names({"/a/64"}));
}

void TestDAWSettings::selectingAnotherDAWReplacesTheFolders()
{
    install("Trevia 7", "Vst2xPlugins Trevia.xml", settings(object("/a/", "a")));
    install("Ostrel 7", "Vst2xPlugins Ostrel.xml", settings(object("/b/", "b")));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(latin("Trevia 7"));
    info.selectDAW(latin("Ostrel 7"));
    QCOMPARE(paths(info.vst2Folders), own("Ostrel 7", "/Contents/VSTPlugIns") + names({"/b/b"}));
    QCOMPARE(paths(info.vst3Folders).first(2), own("Ostrel 7", "/Contents/VST3"));
    QCOMPARE(info.vst3Folders.size(), 5);
}

void TestDAWSettings::selectingNoDAWLeavesNoFolders()
{
    install("Trevia 7");
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(latin("Trevia 7"));
    QVERIFY(!info.vst2Folders.isEmpty());
    info.selectDAW(QString());
    QVERIFY(info.vst2Folders.isEmpty());
    QVERIFY(info.vst3Folders.isEmpty());
}

void TestDAWSettings::filesOfNoUseLeaveTheDAWsOwnFolders_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray good = settings(object("/a/", "b"));
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blanks") << QByteArray("  \n\n");
    QTest::newRow("no XML") << QByteArray("[General]\npath=/a/b\n");
    QTest::newRow("cut off") << good.left(good.size() / 2);
    QTest::newRow("cut off at its end") << good.left(good.size() - 3);
    QTest::newRow("two roots") << good + "<Vst2xPlugins/>";
    QTest::newRow("zero bytes") << QByteArray(4096, '\0');
    QTest::newRow("bytes of no text") << QByteArray("\xff\xfe\x00\xd8\xc3\x28", 6);
    QTest::newRow("a wrong byte within") << QByteArray(good).replace("/a/", "/\xff/");
    QTest::newRow("deeply nested") << "<Vst2xPlugins>" + QByteArray("<list>").repeated(100000) +
                                          QByteArray("</list>").repeated(100000) +
                                          "</Vst2xPlugins>";
    QTest::newRow("deeply nested without an end")
        << "<Vst2xPlugins>" + QByteArray("<list>").repeated(1000000);
    QTest::newRow("deeply nested above the list") << document(
        "Vst2xPlugins", QByteArray("<x>").repeated(300) + QByteArray("</x>").repeated(300) +
                            entries(item("PathList", object("/a/", "b"))));
    QTest::newRow("too large") << good + QByteArray(16 * 1024 * 1024, '\n');
    QTest::newRow("entities") << "<!DOCTYPE x [<!ENTITY a \"/a/\"><!ENTITY b \"&a;&a;&a;&a;\">]>" +
                                     settings(object("/a/", "b"))
                                         .mid(static_cast<qsizetype>(
                                             qstrlen("<?xml version=\"1.0\" "
                                                     "encoding=\"utf-8\"?>\n")));
}

void TestDAWSettings::filesOfNoUseLeaveTheDAWsOwnFolders()
{
    QFETCH(QByteArray, content);
    QCOMPARE(named(content), QStringList());
    QCOMPARE(listed(), names({"Trevia 7"}));
}

void TestDAWSettings::aBadFileDoesNotHideItsTwin()
{
    install("Trevia 7", "Vst2xPlugins Trevia.xml", "<Vst2xPlugins>");
    ScannedVSTiInfo info = m_rig->info();
    install("Trevia 7", "Vst2xPlugins Trevia (x86_64).xml", settings(object("/a/", "64")));
    info.selectDAW(latin("Trevia 7"));
    QCOMPARE(paths(info.vst2Folders).mid(2), names({"/a/64"}));
}

void TestDAWSettings::aPipeIsNotWaitedFor()
{
    install("Trevia 7");
    ScannedVSTiInfo info = m_rig->info();
    const QString setting = settingFile("Trevia 7", "Vst2xPlugins Trevia.xml");
    QVERIFY(QFile::remove(setting));
    QCOMPARE(mkfifo(QFile::encodeName(setting).constData(), 0600), 0);
    info.selectDAW(latin("Trevia 7"));
    QCOMPARE(info.vst2Folders.size(), 2);
}

// Sixty thousand folders: asking each pair whether they are one would take minutes.
void TestDAWSettings::anEnormousListIsReadInTime()
{
    constexpr int Folders = 60000;
    QByteArray objects;
    for (int i = 0; i < Folders; ++i) {
        objects += object("/a/", QByteArray::number(i));
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(named(settings(objects)).size(), Folders);
    QVERIFY2(timer.elapsed() < 60000, QByteArray::number(timer.elapsed()).constData());
}

void TestDAWSettings::manyGroupsAndValuesInOneItemAreReadInTime()
{
    const QByteArray content =
        "<item>" + QByteArray("<string name=\"Group\" value=\"PathList\"/>").repeated(60000) +
        QByteArray("<member name=\"Values\"/>").repeated(60000) + pathList(object("/a/", "b")) +
        "</item>";
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(named(document("Vst2xPlugins", entries(content))), names({"/a/b"}));
    QVERIFY2(timer.elapsed() < 60000, QByteArray::number(timer.elapsed()).constData());
}

void TestDAWSettings::pathsWithLettersOutsideASCIIComeThrough()
{
    QCOMPARE(named(settings(object("/J\xc3\xbcrgen & \"Co\"/", "\xe9\x9f\xb3 <1>"))),
             QStringList(QString::fromUtf8("/J\xc3\xbcrgen & \"Co\"/\xe9\x9f\xb3 <1>")));
}

QTEST_GUILESS_MAIN(TestDAWSettings)
#include "tst_dawsettings.moc"
