// SPDX-License-Identifier: GPL-3.0-or-later
#include "VSTiPathFinder/source/CVSTiPathFinder.h"
#include "VSTiPathFinder/source/InstrumentNames.h"
#include "VSTiPathFinder/source/filesearch.h"

#include "vsti/PathRig.h"
#include "vsti/PluginXml.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <set>

// Which files a scan has to examine, the list of those that are no instruments, and the instruments
// that are known by their names.

using Paths = std::vector<std::string>;

class TestPathFinder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<PathRig>(); }
    void cleanup() { m_rig.reset(); }

    void withoutFoldersThereIsNoSearch();
    void foldersThatArentThereGiveNothing();
    void vst3IsSearchedForVST3Alone();
    void vst2IsSearchedForBundlesAndSharedObjects();
    void aBundleComesBeforeTheSharedObjectInIt();
    void aSharedObjectInABundleIsPartOfItWhateverIsKnown();
    void aFolderNamedAsABundleMayBeSearched();
    void bundlesComeBeforeSharedObjectsWhateverTheListing();
    void theEffectsOfTheDAWAreSkippedForVST2_data();
    void theEffectsOfTheDAWAreSkippedForVST2();
    void theFirstFolderHidesANameInTheSecond();
    void aNameHidesOtherExtensionsToo();
    void whatWasFoundBeforeCounts();
    void theLimitOfPathsHoldsPerFolder();
    void storingNeedsEachKeyword();
    void storingTakesPackageTypesLast();
    void ignorableIsTheFileNameInAnyFolder();
    void ignorablePathsWithoutName();
    void knownFilesAreNotFound();
    void listedFilesAreNotFound();
    void listLinesAreFileNamesInTheirOrder();
    void theListIsComparedByWholeLines_data();
    void theListIsComparedByWholeLines();
    void aLineOfMoreThan1023BytesFitsNothing();
    void theListIsReadAnewWhenItChanges();
    void withoutAListNothingIsExcluded_data();
    void withoutAListNothingIsExcluded();
    void aFolderWithOrWithoutSlashHoldsTheList();
    void pathsWithoutNameAreNotListed();
    void aListThatCannotBeWrittenIsForgotten();
    void whatStandsInThePlaceOfAListIsNotOpened();
    void aListThatWasCutOffKeepsItsLines();
    void namesWithLineFeedsDontListOthers();
    void namesOfAnyBytesAreListed();
    void anEnormousListIsReadInTime();
    void theTableHas62Rows();
    void nineRowsHaveNamesOfTheirOwn();
    void namesOfTheTable_data();
    void namesOfTheTable();
    void thePresetsAreInStepWithTheTable();

private:
    CVSTiPathFinder finder() const { return CVSTiPathFinder(m_rig->root()); }
    Paths search(const Paths &folders, bool isVST2) const
    {
        Paths found;
        CVSTiPathFinder finder(m_rig->root());
        return finder.SearchAllFiles(folders, &found, isVST2) ? found : Paths{"false"};
    }
    std::string listText() const { return m_rig->content("NotSynthList.txt"); }

    std::unique_ptr<PathRig> m_rig;
};

void TestPathFinder::withoutFoldersThereIsNoSearch()
{
    Paths found;
    QVERIFY(!finder().SearchAllFiles({}, &found, true));
    QVERIFY(!finder().SearchAllFiles({m_rig->root()}, nullptr, true));
    QVERIFY(finder().SearchAllFiles({""}, &found, true));
    QVERIFY(found.empty());
}

void TestPathFinder::foldersThatArentThereGiveNothing()
{
    const std::string file = m_rig->file("p/a.vst3");
    QCOMPARE(search({m_rig->path("missing/"), m_rig->path("p/a.vst3/"), m_rig->path("p/")}, false),
             Paths{file});
}

void TestPathFinder::vst3IsSearchedForVST3Alone()
{
    m_rig->file("p/a.vst");
    m_rig->file("p/b.so");
    m_rig->file("p/c.vst3/Contents/x86_64-linux/c.so");
    m_rig->file("p/Reverb/d.vst3");
    Paths found = search({m_rig->path("p/")}, false);
    std::sort(found.begin(), found.end());
    QCOMPARE(found, (Paths{m_rig->path("p/Reverb/d.vst3"), m_rig->path("p/c.vst3")}));
}

void TestPathFinder::vst2IsSearchedForBundlesAndSharedObjects()
{
    m_rig->file("p/a.vst/x");
    m_rig->file("p/b.vst3");
    m_rig->file("p/in/c.so");
#ifdef Q_OS_MACOS
    QCOMPARE(search({m_rig->path("p/")}, true), (Paths{m_rig->path("p/a.vst")}));
#else
    QCOMPARE(search({m_rig->path("p/")}, true),
             (Paths{m_rig->path("p/a.vst"), m_rig->path("p/in/c.so")}));
#endif
}

void TestPathFinder::aBundleComesBeforeTheSharedObjectInIt()
{
    m_rig->file("p/a.vst/a.so");
    QCOMPARE(search({m_rig->path("p/")}, true), (Paths{m_rig->path("p/a.vst")}));
}

void TestPathFinder::aSharedObjectInABundleIsPartOfItWhateverIsKnown()
{
    m_rig->file("p/a.vst/a.so");
    m_rig->file("p/B.VST/Contents/lib.so");
    m_rig->file("p/c.vst3/Contents/x86_64-linux/c.so");
    m_rig->file("p/.vst/d.so");
    const Paths bundles = {m_rig->path("p/B.VST"), m_rig->path("p/a.vst")};
    const std::string object = m_rig->path("p/.vst/d.so");
    Paths found = search({m_rig->path("p")}, true);
    std::sort(found.begin(), found.end());
    QCOMPARE(found, (Paths{object, bundles[0], bundles[1]}));

    CVSTiPathFinder finder(m_rig->path("data"));
    finder.SetIgnorableVSTis({"a.vst"});
    m_rig->folder("data");
    finder.AddNotSynthList(bundles[0]);
    found.clear();
    QVERIFY(finder.SearchAllFiles({m_rig->path("p")}, &found, true));
    QCOMPARE(found, (Paths{object}));
}

void TestPathFinder::aFolderNamedAsABundleMayBeSearched()
{
    const std::string object = m_rig->file("my.vst/p/a.so");
    QCOMPARE(search({m_rig->path("my.vst/p")}, true), (Paths{object}));
    QCOMPARE(search({m_rig->path("my.vst")}, true), (Paths{object}));
    QCOMPARE(search({m_rig->path("my.vst/")}, true), (Paths{object}));
}

void TestPathFinder::bundlesComeBeforeSharedObjectsWhateverTheListing()
{
    for (const char *name : {"a", "b", "c", "d", "e", "f"}) {
        m_rig->file(std::string("p/1/") + name + ".so");
        m_rig->folder(std::string("p/2/") + name + ".vst");
    }
    const Paths found = search({m_rig->path("p/")}, true);
    QCOMPARE(found.size(), size_t(6));
    for (const std::string &path : found) {
        QVERIFY2(path.find("/p/2/") != std::string::npos, path.c_str());
    }
}

void TestPathFinder::theEffectsOfTheDAWAreSkippedForVST2_data()
{
    QTest::addColumn<QByteArray>("folder");
    for (const char *name : {"Distortion", "Dynamics", "Filter", "Modulation", "Restoration",
                             "Reverb", "Surround", "Tools", "Spatial"}) {
        QTest::newRow(name) << QByteArray(name);
    }
}

void TestPathFinder::theEffectsOfTheDAWAreSkippedForVST2()
{
    QFETCH(QByteArray, folder);
    const std::string name = folder.toStdString();
    m_rig->folder("p/" + name + "/skipped.vst");
    const std::string kept = m_rig->folder("p/in/" + name + "/kept.vst");
    const std::string three = m_rig->folder("p/" + name + "/kept.vst3");
    QCOMPARE(search({m_rig->path("p/")}, true), Paths{kept});
    QCOMPARE(search({m_rig->path("p")}, true), Paths{kept});
    QCOMPARE(search({m_rig->path("p/")}, false), Paths{three});
}

void TestPathFinder::theFirstFolderHidesANameInTheSecond()
{
    const std::string first = m_rig->folder("p/in/a.vst");
    m_rig->folder("q/a.vst");
    const std::string other = m_rig->folder("q/b.vst");
    QCOMPARE(search({m_rig->path("p/"), m_rig->path("q/")}, true), (Paths{first, other}));
    QCOMPARE(search({m_rig->path("q/in/"), m_rig->path("p/")}, true), Paths{first});
}

void TestPathFinder::aNameHidesOtherExtensionsToo()
{
    CVSTiPathFinder finder(m_rig->root());
    Paths found;
    finder.AddPath("/p/a.vst", &found);
    finder.AddPath("/q/a.so", &found);
    finder.AddPath("/q/A.so", &found);
    finder.AddPath("/q/a.b.so", &found);
    finder.AddPath("", &found);
    finder.AddPath("/q/", &found);
    finder.AddPath("relative.so", &found);
    finder.AddPath("/p/c.vst", nullptr);
    QCOMPARE(found, (Paths{"/p/a.vst", "/q/A.so", "/q/a.b.so"}));
}

void TestPathFinder::whatWasFoundBeforeCounts()
{
    m_rig->folder("p/a.vst");
    const std::string other = m_rig->folder("p/b.vst");
    Paths found = {"/x/a.vst"};
    QVERIFY(finder().SearchAllFiles({m_rig->path("p/")}, &found, true));
    QCOMPARE(found, (Paths{"/x/a.vst", other}));
}

void TestPathFinder::theLimitOfPathsHoldsPerFolder()
{
    for (int i = 0; i < 1030; ++i) {
        m_rig->folder("p/p" + std::to_string(i) + ".vst3");
        m_rig->folder("q/q" + std::to_string(i) + ".vst3");
    }
    QCOMPARE(search({m_rig->path("p/"), m_rig->path("q/")}, false).size(),
             2 * CFileSearch::MaximumPaths);
}

void TestPathFinder::storingNeedsEachKeyword()
{
    CVSTiPathFinder finder(m_rig->root());
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.AddPath("/p/a.vst", nullptr, true);
    Paths found;
    QVERIFY(!finder.StoreFilePath(search, nullptr, true));
    QVERIFY(!finder.StoreFilePath(search, &found, false));
    QVERIFY(found.empty());
    // What comes before the missing one is stored.
    QVERIFY(!finder.StoreFilePath(search, &found, true));
    QCOMPARE(found, Paths{"/p/a.vst"});
    search.SetSearchExtension("vst3");
    QVERIFY(finder.StoreFilePath(search, &found, false));
}

void TestPathFinder::storingTakesPackageTypesLast()
{
    CVSTiPathFinder finder(m_rig->root());
    CFileSearch search;
    search.SetSearchPackageType("aPcs");
    search.SetSearchExtension("so");
    search.SetSearchExtension("vst");
    search.AddPath("/p/a", "aPcs", true);
    search.AddPath("/p/b.so", nullptr, true);
    search.AddPath("/p/c.vst", nullptr, true);
    Paths found;
    QVERIFY(finder.StoreFilePath(search, &found, true));
#ifdef Q_OS_MACOS
    QCOMPARE(found, (Paths{"/p/c.vst", "/p/a"}));
#else
    QCOMPARE(found, (Paths{"/p/c.vst", "/p/b.so", "/p/a"}));
#endif
}

void TestPathFinder::ignorableIsTheFileNameInAnyFolder()
{
    CVSTiPathFinder finder(m_rig->root());
    QVERIFY(!finder.IsIgnorable("/p/a.vst"));
    finder.SetIgnorableVSTis({"a.vst", "b.so"});
    QVERIFY(finder.IsIgnorable("/p/a.vst"));
    QVERIFY(finder.IsIgnorable("/q/r/b.so"));
    QVERIFY(!finder.IsIgnorable("/p/a.vst3"));
    QVERIFY(!finder.IsIgnorable("/p/A.vst"));
    finder.SetIgnorableVSTis({"c.vst"});
    QVERIFY(!finder.IsIgnorable("/p/a.vst"));
}

void TestPathFinder::ignorablePathsWithoutName()
{
    const CVSTiPathFinder finder(m_rig->root());
    QVERIFY(finder.IsIgnorable(""));
    QVERIFY(finder.IsIgnorable("relative.vst"));
}

void TestPathFinder::knownFilesAreNotFound()
{
    m_rig->folder("p/a.vst");
    const std::string other = m_rig->folder("p/b.vst");
    CVSTiPathFinder finder(m_rig->root());
    finder.SetIgnorableVSTis({"a.vst"});
    Paths found;
    QVERIFY(finder.SearchAllFiles({m_rig->path("p/")}, &found, true));
    QCOMPARE(found, Paths{other});
}

void TestPathFinder::listedFilesAreNotFound()
{
    const std::string listed = m_rig->folder("p/a.vst");
    const std::string other = m_rig->folder("p/b.vst");
    CVSTiPathFinder finder(m_rig->root());
    QVERIFY(finder.CheckNotSynthList(listed));
    QVERIFY(finder.AddNotSynthList(listed));
    QVERIFY(!finder.CheckNotSynthList(listed));
    QVERIFY(!finder.CheckNotSynthList("/elsewhere/a.vst"));
    QVERIFY(finder.CheckNotSynthList("/elsewhere/a.vst3"));
    QVERIFY(!finder.CheckNotSynthList("relative.vst"));
    Paths found;
    QVERIFY(finder.SearchAllFiles({m_rig->path("p/")}, &found, true));
    QCOMPARE(found, Paths{other});
}

void TestPathFinder::listLinesAreFileNamesInTheirOrder()
{
    const CVSTiPathFinder finder(m_rig->root());
    for (const char *path : {"/p/b.vst", "/p/a.vst3", "/q/b.vst", "/q/c"}) {
        QVERIFY(finder.AddNotSynthList(path));
    }
    QCOMPARE(listText(), std::string("b.vst\na.vst3\nb.vst\nc\n"));
}

void TestPathFinder::theListIsComparedByWholeLines_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isListed");
    QTest::newRow("alone") << QByteArray("a.vst\n") << true;
    QTest::newRow("without line feed") << QByteArray("a.vst") << true;
    QTest::newRow("in the middle") << QByteArray("x\na.vst\ny\n") << true;
    QTest::newRow("behind empty lines") << QByteArray("\n\n\na.vst\n") << true;
    QTest::newRow("behind zero bytes") << QByteArray("\0\0\0\na.vst\n", 10) << true;
    QTest::newRow("beginning of a line") << QByteArray("a.vst3\n") << false;
    QTest::newRow("end of a line") << QByteArray("aa.vst\n") << false;
    QTest::newRow("other letters") << QByteArray("A.vst\n") << false;
    QTest::newRow("carriage return") << QByteArray("a.vst\r\n") << false;
    QTest::newRow("blank") << QByteArray("a.vst \n") << false;
    QTest::newRow("zero byte") << QByteArray("a.vst\0\n", 7) << false;
    QTest::newRow("folder") << QByteArray("/p/a.vst\n") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void TestPathFinder::theListIsComparedByWholeLines()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isListed);
    m_rig->file("NotSynthList.txt", text.toStdString());
    QCOMPARE(!finder().CheckNotSynthList("/p/a.vst"), isListed);
}

void TestPathFinder::aLineOfMoreThan1023BytesFitsNothing()
{
    const std::string longest(1023, 'x');
    m_rig->file("NotSynthList.txt", longest + "a.vst\n" + longest + "x\n" + longest + "\nb.vst\n");
    QVERIFY(finder().CheckNotSynthList("/p/a.vst"));
    QVERIFY(finder().CheckNotSynthList('/' + longest + 'x'));
    QVERIFY(!finder().CheckNotSynthList('/' + longest));
    QVERIFY(!finder().CheckNotSynthList("/p/b.vst"));
}

void TestPathFinder::theListIsReadAnewWhenItChanges()
{
    const CVSTiPathFinder finder(m_rig->root());
    QVERIFY(finder.CheckNotSynthList("/p/a.vst"));
    m_rig->file("NotSynthList.txt", "a.vst\n");
    QVERIFY(!finder.CheckNotSynthList("/p/a.vst"));
    m_rig->file("NotSynthList.txt", "other.vst\n");
    QVERIFY(finder.CheckNotSynthList("/p/a.vst"));
    QVERIFY(!finder.CheckNotSynthList("/p/other.vst"));
    QCOMPARE(unlink(m_rig->path("NotSynthList.txt").c_str()), 0);
    QVERIFY(finder.CheckNotSynthList("/p/other.vst"));
}

void TestPathFinder::withoutAListNothingIsExcluded_data()
{
    QTest::addColumn<QByteArray>("kind");
    for (const char *kind :
         {"no folder", "missing", "folder", "pipe", "link to itself", "unreadable"}) {
        QTest::newRow(kind) << QByteArray(kind);
    }
}

void TestPathFinder::withoutAListNothingIsExcluded()
{
    QFETCH(QByteArray, kind);
    const std::string list = m_rig->path("NotSynthList.txt");
    if (kind == "folder") {
        m_rig->folder("NotSynthList.txt");
    } else if (kind == "pipe") {
        QCOMPARE(mkfifo(list.c_str(), 0600), 0);
    } else if (kind == "link to itself") {
        m_rig->link("NotSynthList.txt", "NotSynthList.txt");
    } else if (kind == "unreadable") {
        m_rig->file("NotSynthList.txt", "a.vst\n");
        QCOMPARE(chmod(list.c_str(), 0), 0);
        QCOMPARE(chmod(m_rig->root().c_str(), 0755), 0);
    }
    // Nobody but the owner may look into the folder, so another user is no use for the rest.
    const std::unique_ptr<OrdinaryUser> user =
        kind == "unreadable" ? std::make_unique<OrdinaryUser>() : nullptr;
    const bool isFree = CVSTiPathFinder(kind == "no folder" ? std::string() : m_rig->root())
                            .CheckNotSynthList("/p/a.vst");
    QVERIFY(isFree);
}

void TestPathFinder::aFolderWithOrWithoutSlashHoldsTheList()
{
    QVERIFY(CVSTiPathFinder(m_rig->root() + '/').AddNotSynthList("/p/a.vst"));
    QVERIFY(CVSTiPathFinder(m_rig->root()).AddNotSynthList("/p/b.vst"));
    QCOMPARE(listText(), std::string("a.vst\nb.vst\n"));
}

void TestPathFinder::pathsWithoutNameAreNotListed()
{
    QVERIFY(!finder().AddNotSynthList(""));
    QVERIFY(!finder().AddNotSynthList("relative.vst"));
    QVERIFY(!finder().AddNotSynthList("/p/"));
    QVERIFY(!CVSTiPathFinder(std::string()).AddNotSynthList("/p/a.vst"));
    QCOMPARE(listText(), std::string());
}

void TestPathFinder::aListThatCannotBeWrittenIsForgotten()
{
    const CVSTiPathFinder finder(m_rig->path("missing"));
    QVERIFY(finder.AddNotSynthList("/p/a.vst"));
    QVERIFY(finder.CheckNotSynthList("/p/a.vst"));
}

void TestPathFinder::whatStandsInThePlaceOfAListIsNotOpened()
{
    const std::string list = m_rig->path("NotSynthList.txt");
    // Both ways to open it would wait for somebody at the other end.
    QCOMPARE(mkfifo(list.c_str(), 0600), 0);
    QVERIFY(finder().AddNotSynthList("/p/a.vst"));
    QVERIFY(finder().CheckNotSynthList("/p/a.vst"));
}

void TestPathFinder::aListThatWasCutOffKeepsItsLines()
{
    m_rig->file("NotSynthList.txt", "a.vst\nb.vst");
    QVERIFY(finder().AddNotSynthList("/p/c.vst"));
    QCOMPARE(listText(), std::string("a.vst\nb.vst\nc.vst\n"));
    m_rig->file("NotSynthList.txt");
    QVERIFY(finder().AddNotSynthList("/p/c.vst"));
    QCOMPARE(listText(), std::string("c.vst\n"));
}

void TestPathFinder::namesWithLineFeedsDontListOthers()
{
    const std::string path = "/p/bad\ngood.vst";
    QVERIFY(finder().AddNotSynthList(path));
    QVERIFY(finder().CheckNotSynthList("/p/good.vst"));
    QVERIFY(finder().CheckNotSynthList(path));
}

void TestPathFinder::namesOfAnyBytesAreListed()
{
    const CVSTiPathFinder finder(m_rig->root());
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/' || byte == '\n') {
            continue;
        }
        const std::string path = "/p/n" + std::string(1, static_cast<char>(byte)) + ".vst";
        QVERIFY2(finder.CheckNotSynthList(path), path.c_str());
        QVERIFY(finder.AddNotSynthList(path));
        QVERIFY2(!finder.CheckNotSynthList(path), path.c_str());
    }
}

// Each of a thousand files is looked up.
void TestPathFinder::anEnormousListIsReadInTime()
{
    std::string text;
    while (text.size() < 4 * CVSTiPathFinder::MaximumListBytes) {
        text += "some plug-in of number " + std::to_string(text.size()) + ".vst3\n";
    }
    m_rig->file("NotSynthList.txt", text);
    for (int i = 0; i < 1000; ++i) {
        m_rig->folder("p/" + std::to_string(i) + ".vst3");
    }
    m_rig->folder("p/some plug-in of number 0.vst3");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(search({m_rig->path("p/")}, false).size(), size_t(1000));
    QVERIFY2(timer.elapsed() < 30000, QByteArray::number(timer.elapsed()).constData());
}

void TestPathFinder::theTableHas62Rows()
{
    QCOMPARE(InstrumentNames::Rows.size(), size_t(62));
    std::set<std::string_view> names;
    for (const InstrumentNames::Row &row : InstrumentNames::Rows) {
        QVERIFY(!row.baseName.empty());
        QVERIFY(!row.names[0].empty());
        QVERIFY2(names.insert(row.baseName).second, std::string(row.baseName).c_str());
        const std::vector<std::string> found =
            finder().GetVSTiName("/p/" + std::string(row.baseName) + ".vst");
        QVERIFY(!found.empty());
        QCOMPARE(found.front(), std::string(row.names[0]));
    }
}

void TestPathFinder::nineRowsHaveNamesOfTheirOwn()
{
    Paths endings;
    size_t others = 0;
    size_t threefold = 0;
    for (const InstrumentNames::Row &row : InstrumentNames::Rows) {
        if (row.names[0] == row.baseName && row.names[1].empty()) {
            continue;
        }
        threefold += row.names[2].empty() ? 0 : 1;
        if (row.baseName.substr(0, row.names[0].size()) == row.names[0]) {
            endings.emplace_back(row.baseName.substr(row.names[0].size()));
        } else {
            ++others;
        }
    }
    std::sort(endings.begin(), endings.end());
    QCOMPARE(endings, (Paths{" VST OSX", " VST OSX", "_VST2Carbon", "_VST2Carbon", "_x64"}));
    // The bundle of three, its two editions, and the keyboard's own.
    QCOMPARE(others, size_t(4));
    QCOMPARE(threefold, size_t(1));
}

void TestPathFinder::namesOfTheTable_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArrayList>("names");
    const auto row = [](const char *title, const char *path, const QByteArrayList &names) {
        QTest::newRow(title) << QByteArray(path) << names;
    };
    row("by its own name", "/p/Dexed.vst", {"Dexed"});
    row("whatever the extension", "/p/Dexed.vst3", {"Dexed"});
    row("without extension", "/p/Dexed", {"Dexed"});
    row("the keyboard's own", "/p/TARN_TERN.vst3", {"TARN/TERN VST"});
    row("three in one file", "/p/Brandholm Instruments.vst3", {"Penwick", "Sorrelby", "Thornmoor"});
    row("small edition", "/p/Brandholm Instruments LE.vst3", {"Penwick"});
    row("other small edition", "/p/Brandholm Instruments AI.vst3", {"Penwick"});
    row("64 bits", "/p/Obxd_x64.so", {"Obxd"});
    row("marked by its format", "/p/ZynAddSubFX VST OSX.vst", {"ZynAddSubFX"});
    row("the plain form of the same", "/p/ZynAddSubFX.so", {"ZynAddSubFX"});
    row("marked otherwise", "/p/mdaPiano_VST2Carbon.vst", {"mdaPiano"});
    row("other case", "/p/dexed.vst", {});
    row("longer", "/p/Dexed2.vst", {});
    row("two extensions", "/p/Dexed.x.vst", {});
    row("folder of that name", "/Dexed/x.vst", {});
    row("relative", "Dexed.vst", {});
    row("no name", "/p/", {});
    row("empty", "", {});
}

void TestPathFinder::namesOfTheTable()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArrayList, names);
    QByteArrayList found;
    for (const std::string &name : finder().GetVSTiName(path.toStdString())) {
        found.append(QByteArray::fromStdString(name));
    }
    QCOMPARE(found, names);
}

void TestPathFinder::thePresetsAreInStepWithTheTable()
{
    std::set<QString> known;
    for (const InstrumentNames::Row &row : InstrumentNames::Rows) {
        for (const std::string_view name : row.names) {
            known.insert(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
        }
    }
    QFile file(QStringLiteral(TRN_SOURCE_DIR "/resources/VSTiPreset.xml"));
    QDomDocument document;
    QVERIFY(PluginXml::parseFile(file, &document));
    QStringList presets;
    for (QDomElement vsti = document.documentElement().firstChildElement(); !vsti.isNull();
         vsti = vsti.nextSiblingElement()) {
        presets.append(vsti.attribute(QStringLiteral("name")));
    }
    QVERIFY(!presets.isEmpty());
    for (const QString &preset : std::as_const(presets)) {
        QVERIFY2(known.count(preset) != 0, qPrintable(preset));
    }
    // This product's own has its parameters at hand whether or not it can be questioned.
    for (const char *own : {"TARN/TERN VST", "Orskvale", "Tamberline"}) {
        QVERIFY2(presets.contains(QString::fromLatin1(own)), own);
    }
}

QTEST_GUILESS_MAIN(TestPathFinder)
#include "tst_pathfinder.moc"
