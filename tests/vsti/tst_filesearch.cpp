// SPDX-License-Identifier: GPL-3.0-or-later
#include "VSTiPathFinder/source/filesearch.h"

#include "vsti/PathRig.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include <sys/wait.h>

// The walk through folders, and the texts that it takes apart.

namespace
{

// The paths below the rig, sorted.
using Paths = std::vector<std::string>;

Paths found(const CFileSearch &search, unsigned row = 0)
{
    Paths paths;
    for (unsigned i = 0; i < search.GetNumberOfPaths(row); ++i) {
        paths.push_back(search.GetPath(row, i));
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

Paths sorted(Paths paths)
{
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string deep(int levels)
{
    std::string text;
    for (int i = 0; i < levels; ++i) {
        text += "d/";
    }
    return text;
}

// A walk that would not end in a lifetime fails here.
constexpr qint64 PatienceMs = 30000;

} // namespace

class TestFileSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<PathRig>(); }
    void cleanup() { m_rig.reset(); }

    void splitPath_data();
    void splitPath();
    void splittingFillsWhatIsAskedFor();
    void directoryNames_data();
    void directoryNames();
    void lettersOfASCIIAreLowered_data();
    void lettersOfASCIIAreLowered();
    void extensionsAreRegisteredOnceInLowerCase();
    void packageTypesAreRegisteredOnceAsTheyAre();
    void keywordsAreFoundByKind();
    void removingAKeywordMovesLaterOnesUp();
    void ignorablePathsLoseTheirSlash();
    void resettingForgetsEverything();
    void indicesOutOfRangeGiveNothing();
    void theLimitsOfAWalk_data();
    void theLimitsOfAWalk();
    void theLimitOfPathsIsThatOfAllKeywordsTogether();

    void noFolderGivesFalse_data();
    void noFolderGivesFalse();
    void anEmptyFolderIsAResult();
    void aFileAtDepth19IsFoundAndOneAtDepth20IsNot();
    void anExtensionInCapitalsFits();
    void extensionsAreComparedWhole();
    void aFileWithoutExtensionFitsTheEmptyOne();
    void eachKeywordCollectsItsOwn();
    void bundlesAreCollectedAndEntered();
    void hiddenEntriesCount();
    void ofTwoFilesOfOneNameTheFirstListedIsKept();
    void uniqueNamesAreComparedWithoutExtension();
    void namesThatDifferInCaseAreTwo();
    void withoutUniqueNamesAllAreKept();
    void packageTypesCollectNothingInAWalk();
    void aPackageTypeThatIsToldCollects();
    void ignorablePathsAreNeitherCollectedNorEntered();
    void ignorablePathsAreExact();
    void aTrailingSlashOfTheFolderIsNotDoubled();
    void moreThan1023BytesOfAPathAreNotLookedAt();
    void noMoreThan1024PathsAreCollected();
    void namesOfAnyBytesComeBackAsTheyAre();
    void linksToFilesAndFoldersAreFollowed();
    void linksToNothingAndPipesAreNothing();
    void linksToTheirOwnFolderEnd();
    void linksInACircleOfFoldersEnd();
    void linksThatMultiplyEnd();
    void aFolderThatLinksReachedTooDeepIsEnteredFurtherUp();
    void anIgnoredFolderIsFoundThroughALinkAfterwards();
    void aSecondWalkSeesTheSame();
    void aHundredThousandFilesAreWalkedThrough();
    void aHundredThousandHitsAreCutOff();
    void unreadablePartsHideNothingElse();
    void anUnreadableFolderGivesFalse();
    void anEntryOfNullStopsTheProgram();

private:
    // Walks from the rig's root.
    Paths search(const char *extension, bool unique = true) const
    {
        CFileSearch search;
        search.SetSearchExtension(extension);
        return search.SearchFiles(m_rig->root().c_str(), 0, unique) ? found(search)
                                                                    : Paths{"false"};
    }

    std::unique_ptr<PathRig> m_rig;
};

void TestFileSearch::splitPath_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("noDirectory");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QByteArray>("dir");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("ext");
    const auto row = [](const char *path, bool noDirectory, bool result, const char *dir,
                        const char *name, const char *ext) {
        QTest::addRow("%s%s", path, noDirectory ? " as a file name" : "")
            << QByteArray(path) << noDirectory << result << QByteArray(dir) << QByteArray(name)
            << QByteArray(ext);
    };
    row("/a/b.vst", false, true, "/a/", "b", ".vst");
    row("/a/b.c.vst", false, true, "/a/", "b.c", ".vst");
    row("/a.b/c", false, true, "/a.b/", "c", "");
    row("/a/.hidden", false, true, "/a/", ".hidden", "");
    row("/a/..x", false, true, "/a/", ".", ".x");
    row("/a/b.", false, true, "/a/", "b.", "");
    row("/a/b..", false, true, "/a/", "b..", "");
    row("/a/.", false, true, "/a/", ".", "");
    row("/a/", false, true, "/a/", "", "");
    row("/", false, true, "/", "", "");
    row(":a/b.x", false, true, ":a/", "b", ".x");
    row(":a", false, false, "", "", "");
    row("a/b.vst", false, false, "", "", "");
    row("b.vst", false, false, "", "", "");
    row("", false, false, "", "", "");
    row("", true, false, "", "", "");
    row("b.vst", true, true, "", "b", ".vst");
    row("/a.b/c.vst", true, true, "", "/a.b/c", ".vst");
    row("/a.b/c", true, true, "", "/a", ".b/c");
}

void TestFileSearch::splitPath()
{
    QFETCH(QByteArray, path);
    QFETCH(bool, noDirectory);
    QFETCH(bool, result);
    QFETCH(QByteArray, dir);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, ext);
    std::string foundDir = "x";
    std::string foundName = "x";
    std::string foundExt = "x";
    const std::string text = path.toStdString();
    QCOMPARE(CFileSearch::SplitPath(&text, &foundDir, &foundName, &foundExt, noDirectory), result);
    QCOMPARE(QByteArray::fromStdString(foundDir), dir);
    QCOMPARE(QByteArray::fromStdString(foundName), name);
    QCOMPARE(QByteArray::fromStdString(foundExt), ext);
}

void TestFileSearch::splittingFillsWhatIsAskedFor()
{
    const std::string path = "/a/b.vst";
    QVERIFY(CFileSearch::SplitPath(&path, nullptr, nullptr, nullptr, false));
    std::string self = path;
    QVERIFY(CFileSearch::SplitPath(&self, nullptr, &self, nullptr, false));
    QCOMPARE(self, std::string("b"));
    std::string text = "x";
    QVERIFY(!CFileSearch::SplitPath(nullptr, &text, nullptr, nullptr, false));
    QVERIFY(text.empty());
}

void TestFileSearch::directoryNames_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("name"); // null: false
    QTest::newRow("file") << QByteArray("/a/b/c.vst") << QByteArray("b");
    QTest::newRow("folder") << QByteArray("/a/b/") << QByteArray("b");
    QTest::newRow("in the topmost") << QByteArray("/a/c.vst") << QByteArray("a");
    QTest::newRow("two slashes") << QByteArray("//c") << QByteArray("");
    QTest::newRow("in the root") << QByteArray("/c.vst") << QByteArray();
    QTest::newRow("colon") << QByteArray(":a/c") << QByteArray();
    QTest::newRow("relative") << QByteArray("a/b/c") << QByteArray();
    QTest::newRow("empty") << QByteArray("") << QByteArray();
}

void TestFileSearch::directoryNames()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, name);
    const std::string text = path.toStdString();
    std::string folder;
    QCOMPARE(CFileSearch::GetDirectoryName(&text, &folder), !name.isNull());
    QCOMPARE(QByteArray::fromStdString(folder), name);
    QVERIFY(!CFileSearch::GetDirectoryName(nullptr, &folder));
    QVERIFY(!CFileSearch::GetDirectoryName(&text, nullptr));
}

void TestFileSearch::lettersOfASCIIAreLowered_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("lowered");
    QTest::newRow("letters") << QByteArray("AZazVst3") << QByteArray("azazvst3");
    QTest::newRow("neighbours of letters") << QByteArray("@[`{") << QByteArray("@[`{");
    QTest::newRow("beyond ASCII") << QByteArray("VST\xc3\x84") << QByteArray("VST\xc3\x84");
    QTest::newRow("empty") << QByteArray("") << QByteArray("");
}

void TestFileSearch::lettersOfASCIIAreLowered()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, lowered);
    std::string bytes = text.toStdString();
    const CFileSearch search;
    search.MakeStringAllLower(&bytes);
    QCOMPARE(QByteArray::fromStdString(bytes), lowered);
    search.MakeStringAllLower(nullptr);
}

void TestFileSearch::extensionsAreRegisteredOnceInLowerCase()
{
    CFileSearch search;
    QVERIFY(!search.SetSearchExtension(nullptr));
    QVERIFY(search.SetSearchExtension(".VsT"));
    QVERIFY(!search.SetSearchExtension("vst"));
    QVERIFY(!search.SetSearchExtension(".vst"));
    QVERIFY(search.SetSearchExtension("vst3"));
    QCOMPARE(search.GetNumberOfSearchKeywords(), 2U);
    std::string text;
    QVERIFY(search.GetSearchExtension(0, &text));
    QCOMPARE(text, std::string("vst"));
    QVERIFY(!search.GetSearchPackageType(0, &text));
    QVERIFY(!search.GetSearchExtension(0, nullptr));
}

void TestFileSearch::packageTypesAreRegisteredOnceAsTheyAre()
{
    CFileSearch search;
    QVERIFY(!search.SetSearchPackageType(nullptr));
    QVERIFY(search.SetSearchPackageType("aPcs"));
    QVERIFY(!search.SetSearchPackageType("aPcs"));
    QVERIFY(search.SetSearchPackageType("apcs"));
    std::string text;
    QVERIFY(search.GetSearchPackageType(0, &text));
    QCOMPARE(text, std::string("aPcs"));
    QVERIFY(!search.GetSearchExtension(0, &text));
    QVERIFY(!search.GetSearchPackageType(0, nullptr));
}

void TestFileSearch::keywordsAreFoundByKind()
{
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.SetSearchPackageType("vst");
    search.SetSearchPackageType("aPcs");
    QCOMPARE(search.GetKeywordIndex("vst", true), 0);
    QCOMPARE(search.GetKeywordIndex(".VST", true), 0);
    QCOMPARE(search.GetKeywordIndex("vst", false), 1);
    QCOMPARE(search.GetKeywordIndex("aPcs", false), 2);
    QCOMPARE(search.GetKeywordIndex("apcs", false), -1);
    QCOMPARE(search.GetKeywordIndex("aPcs", true), -1);
    QCOMPARE(search.GetKeywordIndex(nullptr, true), -1);
}

void TestFileSearch::removingAKeywordMovesLaterOnesUp()
{
    CFileSearch search;
    search.SetSearchExtension("a");
    search.SetSearchExtension("b");
    QVERIFY(search.RemoveSearchKeywordAndPaths(0));
    QCOMPARE(search.GetKeywordIndex("b", true), 0);
    QCOMPARE(search.GetKeywordIndex("a", true), -1);
    QVERIFY(!search.RemoveSearchKeywordAndPaths(1));
}

void TestFileSearch::ignorablePathsLoseTheirSlash()
{
    CFileSearch search;
    QVERIFY(!search.SetIgnorableDirPath(nullptr));
    QVERIFY(!search.SetIgnorableDirPath(""));
    QVERIFY(search.SetIgnorableDirPath("/a/"));
    QVERIFY(search.SetIgnorableDirPath("/b"));
    QCOMPARE(search.GetNumberOfIgnorableDirPaths(), 2U);
    std::string text;
    QVERIFY(search.GetIgnorableDirPath(0, &text));
    QCOMPARE(text, std::string("/a"));
    QVERIFY(!search.GetIgnorableDirPath(2, &text));
    QVERIFY(!search.GetIgnorableDirPath(0, nullptr));
    QVERIFY(!search.RemoveIgnorableDirPath(2));
    QVERIFY(search.RemoveIgnorableDirPath(0));
    QVERIFY(search.GetIgnorableDirPath(0, &text));
    QCOMPARE(text, std::string("/b"));
}

void TestFileSearch::resettingForgetsEverything()
{
    CFileSearch search;
    search.SetSearchExtension("a");
    search.SetIgnorableDirPath("/a");
    search.AddPath("/x/y.a", nullptr, true);
    search.ResetAll();
    QCOMPARE(search.GetNumberOfSearchKeywords(), 0U);
    QCOMPARE(search.GetNumberOfIgnorableDirPaths(), 0U);
    search.SetSearchExtension("a");
    QCOMPARE(search.GetNumberOfPaths(0), 0U);
    search.AddPath("/x/y.a", nullptr, true);
    QCOMPARE(search.GetNumberOfPaths(0), 1U);
}

void TestFileSearch::indicesOutOfRangeGiveNothing()
{
    CFileSearch search;
    search.SetSearchExtension("a");
    search.AddPath("/x/y.a", nullptr, true);
    std::string text = "x";
    QVERIFY(search.GetPath(0, 0, &text));
    QCOMPARE(text, std::string("/x/y.a"));
    QVERIFY(!search.GetPath(0, 1, &text));
    QVERIFY(!search.GetPath(1, 0, &text));
    QVERIFY(!search.GetPath(0, 0, nullptr));
    QCOMPARE(search.GetPath(0, 1), std::string());
    QCOMPARE(search.GetNumberOfPaths(1), 0U);
    QVERIFY(!search.GetSearchExtension(1, &text));
    QVERIFY(!search.GetSearchPackageType(1, &text));
}

void TestFileSearch::theLimitsOfAWalk_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("depth");
    QTest::addColumn<bool>("isOK");
    QTest::newRow("nothing special") << 10 << 0 << true;
    QTest::newRow("deepest") << 10 << 19 << true;
    QTest::newRow("too deep") << 10 << 20 << false;
    QTest::newRow("longest") << 1023 << 0 << true;
    QTest::newRow("too long") << 1024 << 0 << false;
}

void TestFileSearch::theLimitsOfAWalk()
{
    QFETCH(int, length);
    QFETCH(int, depth);
    QFETCH(bool, isOK);
    const std::string path = '/' + std::string(static_cast<size_t>(length - 1), 'a');
    CFileSearch search;
    QCOMPARE(search.IsOKToKeepSearching(path.c_str(), depth), isOK);
    // No such folder: false where it is looked for, true where a limit ends the walk.
    QCOMPARE(search.SearchFiles(path.c_str(), depth, true), !isOK);
}

void TestFileSearch::theLimitOfPathsIsThatOfAllKeywordsTogether()
{
    CFileSearch search;
    search.SetSearchExtension("a");
    search.SetSearchExtension("b");
    for (int i = 0; i < 512; ++i) {
        QVERIFY(search.IsOKToKeepSearching("/", 0));
        search.AddPath("/x.a", nullptr, false);
        QVERIFY(search.IsOKToKeepSearching("/", 0));
        search.AddPath("/x.b", nullptr, false);
    }
    QVERIFY(!search.IsOKToKeepSearching("/", 0));
}

void TestFileSearch::noFolderGivesFalse_data()
{
    QTest::addColumn<QByteArray>("below");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("file") << QByteArray("a.vst");
    QTest::newRow("below a file") << QByteArray("a.vst/b");
    QTest::newRow("link to nothing") << QByteArray("nowhere");
    QTest::newRow("link to itself") << QByteArray("self");
}

void TestFileSearch::noFolderGivesFalse()
{
    QFETCH(QByteArray, below);
    m_rig->file("a.vst");
    m_rig->link("missing", "nowhere");
    m_rig->link("self", "self");
    CFileSearch search;
    search.SetSearchExtension("vst");
    QVERIFY(!search.SearchFiles(m_rig->path(below.toStdString()).c_str(), 0, true));
    QCOMPARE(search.GetNumberOfPaths(0), 0U);
    QVERIFY(!search.SearchFiles(nullptr, 0, true));
    QVERIFY(!search.SearchFiles("", 0, true));
}

void TestFileSearch::anEmptyFolderIsAResult()
{
    QCOMPARE(search("vst"), Paths{});
}

void TestFileSearch::aFileAtDepth19IsFoundAndOneAtDepth20IsNot()
{
    const std::string deepest = m_rig->file(deep(19) + "in.vst");
    m_rig->file(deep(20) + "out.vst");
    QCOMPARE(search("vst"), Paths{deepest});
}

void TestFileSearch::anExtensionInCapitalsFits()
{
    const Paths files = {m_rig->file("a.VST"), m_rig->file("b.Vst"), m_rig->file("c.vst")};
    QCOMPARE(search("vst"), files);
    QCOMPARE(search("VST"), files);
}

void TestFileSearch::extensionsAreComparedWhole()
{
    const std::string two = m_rig->file("a.vst");
    const std::string three = m_rig->file("b.vst3");
    m_rig->file("vst");
    m_rig->file("c.vst.bak");
    m_rig->file(".vst");
    QCOMPARE(search("vst"), Paths{two});
    QCOMPARE(search("vst3"), Paths{three});
}

void TestFileSearch::aFileWithoutExtensionFitsTheEmptyOne()
{
    const std::string file = m_rig->file("a");
    m_rig->file("b.vst");
    QCOMPARE(search(""), Paths{file});
}

void TestFileSearch::eachKeywordCollectsItsOwn()
{
    const std::string two = m_rig->file("a.vst");
    const std::string three = m_rig->file("a.vst3");
    CFileSearch search;
    search.SetSearchExtension("vst3");
    search.SetSearchExtension("vst");
    QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
    QCOMPARE(found(search, 0), Paths{three});
    QCOMPARE(found(search, 1), Paths{two});
}

void TestFileSearch::bundlesAreCollectedAndEntered()
{
    const std::string inner = m_rig->file("Outer.vst/Contents/Inner.vst");
    QCOMPARE(search("vst"), sorted({m_rig->path("Outer.vst"), inner}));
}

void TestFileSearch::hiddenEntriesCount()
{
    const Paths files = {m_rig->file(".folder/.a.vst"), m_rig->file(".folder/b.vst")};
    QCOMPARE(search("vst"), files);
}

void TestFileSearch::ofTwoFilesOfOneNameTheFirstListedIsKept()
{
    for (const char *folder : {"one", "two", "three", "four"}) {
        m_rig->file(std::string(folder) + "/a.vst");
    }
    const std::filesystem::directory_iterator first(m_rig->root());
    QCOMPARE(search("vst"), Paths{first->path().native() + "/a.vst"});
}

void TestFileSearch::uniqueNamesAreComparedWithoutExtension()
{
    m_rig->file("one/a.vst");
    m_rig->file("two/a.VST");
    QCOMPARE(search("vst").size(), size_t(1));
}

void TestFileSearch::namesThatDifferInCaseAreTwo()
{
    m_rig->file("one/a.vst");
    m_rig->file("two/A.vst");
    QCOMPARE(search("vst").size(), size_t(2));
}

void TestFileSearch::withoutUniqueNamesAllAreKept()
{
    const Paths files = {m_rig->file("one/a.vst"), m_rig->file("two/a.vst")};
    QCOMPARE(search("vst", false), files);
}

void TestFileSearch::packageTypesCollectNothingInAWalk()
{
    m_rig->file("a.aPcs");
    m_rig->file("b.apcs");
    CFileSearch search;
    search.SetSearchPackageType("aPcs");
    QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
    QCOMPARE(search.GetNumberOfPaths(0), 0U);
}

void TestFileSearch::aPackageTypeThatIsToldCollects()
{
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.SetSearchPackageType("aPcs");
    search.AddPath("/x/a.vst", "aPcs", true);
    search.AddPath("/x/b", "aPcs", true);
    search.AddPath("/x/c.vst", "else", true);
    search.AddPath("relative.vst", "aPcs", true);
    QCOMPARE(found(search, 0), (Paths{"/x/a.vst", "/x/c.vst"}));
    QCOMPARE(found(search, 1), (Paths{"/x/a.vst", "/x/b"}));
}

void TestFileSearch::ignorablePathsAreNeitherCollectedNorEntered()
{
    m_rig->file("a.vst/b.vst");
    const std::string kept = m_rig->file("c.vst");
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.SetIgnorableDirPath(m_rig->path("a.vst/").c_str());
    QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
    QCOMPARE(found(search), Paths{kept});
}

void TestFileSearch::ignorablePathsAreExact()
{
    const Paths kept = {m_rig->file("Reverb2/a.vst"), m_rig->file("reverb/b.vst"),
                        m_rig->file("x/Reverb/c.vst")};
    m_rig->file("Reverb/d.vst");
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.SetIgnorableDirPath(m_rig->path("Reverb").c_str());
    QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
    QCOMPARE(found(search), kept);
}

void TestFileSearch::aTrailingSlashOfTheFolderIsNotDoubled()
{
    const std::string file = m_rig->file("a.vst");
    CFileSearch search;
    search.SetSearchExtension("vst");
    QVERIFY(search.SearchFiles((m_rig->root() + '/').c_str(), 0, true));
    QCOMPARE(found(search), Paths{file});
}

void TestFileSearch::moreThan1023BytesOfAPathAreNotLookedAt()
{
    // Names fill up the path to the limit.
    std::string below;
    for (int i = 0; i < 4; ++i) {
        below.append(200, 'd').append(1, '/');
    }
    const size_t left = CFileSearch::MaximumPathBytes - m_rig->path(below).size();
    const std::string extension = ".vst";
    const std::string in =
        m_rig->file(below + std::string(left - extension.size(), 'a') + extension);
    m_rig->file(below + std::string(left - extension.size() + 1, 'b') + extension);
    QCOMPARE(in.size(), CFileSearch::MaximumPathBytes);
    QCOMPARE(search("vst"), Paths{in});
}

void TestFileSearch::noMoreThan1024PathsAreCollected()
{
    for (int i = 0; i < 1030; ++i) {
        m_rig->file(std::to_string(i) + (i % 2 == 0 ? ".vst" : ".so"));
    }
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.SetSearchExtension("so");
    QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
    QCOMPARE(search.GetNumberOfPaths(0) + search.GetNumberOfPaths(1), 1024U);
}

void TestFileSearch::namesOfAnyBytesComeBackAsTheyAre()
{
    Paths files;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') {
            const std::string name(1, static_cast<char>(byte));
            files.push_back(m_rig->file("d" + name + "/n" + name + ".vst3"));
        }
    }
    QCOMPARE(search("vst3"), sorted(files));
}

void TestFileSearch::linksToFilesAndFoldersAreFollowed()
{
    const PathRig elsewhere;
    elsewhere.file("folder/a.vst");
    elsewhere.file("some.so");
    m_rig->link(elsewhere.path("folder"), "in");
    const std::string link = m_rig->link(elsewhere.path("some.so"), "b.vst");
    QCOMPARE(search("vst"), sorted({m_rig->path("in/a.vst"), link}));
}

void TestFileSearch::linksToNothingAndPipesAreNothing()
{
    m_rig->link("missing", "a.vst");
    m_rig->link("b.vst", "b.vst");
    QCOMPARE(mkfifo(m_rig->path("c.vst").c_str(), 0600), 0);
    m_rig->link("/dev/null", "d.vst");
    const std::string file = m_rig->file("e.vst");
    QCOMPARE(search("vst"), Paths{file});
}

// Three ways back at each of twenty levels would be a thousand million visits.
void TestFileSearch::linksToTheirOwnFolderEnd()
{
    const std::string file = m_rig->file("a.vst");
    for (const char *name : {"x", "y", "z"}) {
        m_rig->link(".", name);
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(search("vst"), Paths{file});
    QCOMPARE(search("vst", false), Paths{file});
    QVERIFY(timer.elapsed() < PatienceMs);
}

void TestFileSearch::linksInACircleOfFoldersEnd()
{
    const Paths files = {m_rig->file("one/a.vst"), m_rig->file("two/b.vst")};
    for (const char *name : {"x", "y", "z"}) {
        m_rig->link("../two", std::string("one/") + name);
        m_rig->link("../one", std::string("two/") + name);
        m_rig->link("..", std::string("two/up") + name);
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(search("vst").size(), files.size());
    QVERIFY(timer.elapsed() < PatienceMs);
}

// No circle, but four ways from each level to the next.
void TestFileSearch::linksThatMultiplyEnd()
{
    const PathRig levels;
    for (int level = 0; level < 18; ++level) {
        const std::string name = std::to_string(level);
        levels.folder(name);
        for (const char *way : {"a", "b", "c", "d"}) {
            levels.link("../" + std::to_string(level + 1), name + '/' + way);
        }
    }
    levels.file("18/deep.vst");
    m_rig->link(levels.path("0"), "in");
    QElapsedTimer timer;
    timer.start();
    const Paths paths = search("vst");
    QCOMPARE(paths.size(), size_t(1));
    QVERIFY(QByteArray::fromStdString(paths[0]).endsWith("/deep.vst"));
    QVERIFY(timer.elapsed() < PatienceMs);
}

// Whichever way the listing yields first: what one way reaches at the deepest level, the other
// reaches with all that lies below.
void TestFileSearch::aFolderThatLinksReachedTooDeepIsEnteredFurtherUp()
{
    const PathRig elsewhere;
    elsewhere.file("far/below/a.vst");
    for (const char *name : {"a", "b", "c", "d", "y", "z"}) {
        m_rig->folder(name + ('/' + deep(17)));
        m_rig->link(elsewhere.path("far"), name + ('/' + deep(17)) + "far");
    }
    m_rig->link(elsewhere.path("far"), "m");
    QCOMPARE(search("vst").size(), size_t(1));
}

void TestFileSearch::anIgnoredFolderIsFoundThroughALinkAfterwards()
{
    m_rig->file("one/Reverb/a.vst");
    CFileSearch search;
    search.SetSearchExtension("vst");
    search.SetIgnorableDirPath(m_rig->path("one/Reverb").c_str());
    const PathRig links;
    for (const char *name : {"b", "c", "y", "z"}) {
        links.link(m_rig->path("one"), name);
    }
    m_rig->link(links.root(), "links");
    QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
    QCOMPARE(search.GetNumberOfPaths(0), 1U);
    QVERIFY(QByteArray::fromStdString(search.GetPath(0, 0)).contains("/links/"));
}

void TestFileSearch::aSecondWalkSeesTheSame()
{
    const std::string file = m_rig->file("in/a.vst");
    CFileSearch search;
    for (int i = 0; i < 2; ++i) {
        search.ResetAll();
        search.SetSearchExtension("vst");
        QVERIFY(search.SearchFiles(m_rig->root().c_str(), 0, true));
        QCOMPARE(found(search), Paths{file});
    }
}

void TestFileSearch::aHundredThousandFilesAreWalkedThrough()
{
    m_rig = std::make_unique<PathRig>(folderForManyFiles());
    for (int i = 0; i < 100000; ++i) {
        const std::string path = m_rig->path(std::to_string(i) + ".wav");
        QCOMPARE(mknod(path.c_str(), S_IFREG | 0600, 0), 0);
    }
    const std::string file = m_rig->file("a.vst");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(search("vst"), Paths{file});
    QVERIFY2(timer.elapsed() < PatienceMs, QByteArray::number(timer.elapsed()).constData());
}

// Half of them under names that were found before.
void TestFileSearch::aHundredThousandHitsAreCutOff()
{
    m_rig = std::make_unique<PathRig>(folderForManyFiles());
    m_rig->folder("x");
    m_rig->folder("y");
    for (int i = 0; i < 50000; ++i) {
        const std::string name = std::to_string(i) + ".vst";
        QCOMPARE(mknod(m_rig->path("x/" + name).c_str(), S_IFREG | 0600, 0), 0);
        QCOMPARE(link(m_rig->path("x/" + name).c_str(), m_rig->path("y/" + name).c_str()), 0);
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(search("vst").size(), CFileSearch::MaximumPaths);
    QCOMPARE(search("vst", false).size(), CFileSearch::MaximumPaths);
    QVERIFY2(timer.elapsed() < PatienceMs, QByteArray::number(timer.elapsed()).constData());
}

void TestFileSearch::unreadablePartsHideNothingElse()
{
    const Paths files = {m_rig->file("a/a.vst"), m_rig->file("z/z.vst")};
    m_rig->file("m/hidden.vst");
    const std::string bundle = m_rig->folder("n.vst");
    m_rig->file("n.vst/hidden2.vst");
    QCOMPARE(chmod(m_rig->root().c_str(), 0755), 0);
    QCOMPARE(chmod(m_rig->path("m").c_str(), 0), 0);
    QCOMPARE(chmod(bundle.c_str(), 0), 0);
    Paths paths;
    {
        const OrdinaryUser user;
        paths = search("vst");
    }
    QCOMPARE(chmod(m_rig->path("m").c_str(), 0755), 0);
    QCOMPARE(chmod(bundle.c_str(), 0755), 0);
    QCOMPARE(paths, (Paths{files[0], bundle, files[1]}));
}

void TestFileSearch::anUnreadableFolderGivesFalse()
{
    m_rig->file("a.vst");
    QCOMPARE(chmod(m_rig->root().c_str(), 0), 0);
    Paths paths;
    {
        const OrdinaryUser user;
        paths = search("vst");
    }
    QCOMPARE(chmod(m_rig->root().c_str(), 0755), 0);
    QCOMPARE(paths, Paths{"false"});
}

void TestFileSearch::anEntryOfNullStopsTheProgram()
{
    int said[2];
    QCOMPARE(pipe(said), 0);
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL);
        dup2(said[1], STDERR_FILENO);
        CFileSearch search;
        search.SearchSubDirAndFile(nullptr, 0, true);
        _exit(0);
    }
    ::close(said[1]);
    QByteArray text(1024, '\0');
    text.truncate(std::max<qsizetype>(0, ::read(said[0], text.data(), 1024)));
    ::close(said[0]);
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGABRT);
    for (const char *part :
         {"SearchSubDirAndFile", "VSTiPathFinder/source/filesearch", "78", "false"}) {
        QVERIFY2(text.contains(part), text.constData());
    }
}

QTEST_GUILESS_MAIN(TestFileSearch)
#include "tst_filesearch.moc"
