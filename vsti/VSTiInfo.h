// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "vsti/DatabaseLock.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <string>

class CVSTiPathFinder;
class QDomDocument;
class QDomElement;
class QFile;
class QXmlStreamReader;

// One parameter as a scan reports it. Names are UTF-8.
struct SVSTiParameterInfo
{
    QString id;
    QByteArray name;
    QList<QByteArray> groups; // outermost first
};

// One software instrument as a scan reports it. The name is UTF-8, the path as the file system has
// it.
struct SVSTiInfo
{
    QByteArray name;
    QByteArray path;
    bool isVST2 = false;
    QList<SVSTiParameterInfo> parameters; // may be empty: then it is known by name only
};

// What is known, for the selected DAW, of the software instruments on the machine and of their
// parameters: from the database file of earlier scans, from a scan, from the makers' parameter
// descriptions, and from the preset file that comes with the program. Names are case-sensitive.
//
// Owner: the main window, for the whole run. Thread: GUI, but for a scan, which holds the mutex on
// a thread of its own while the window is locked; the lookups therefore take no lock.
//
// Nothing here fails aloud: what cannot be read counts as empty, and the next scan mends it. All
// files count as hostile, and so does what plug-ins report.
class VSTiInfo : public QObject
{
    Q_OBJECT

public:
    struct Parameter
    {
        QString id;       // a type digit and eight hexadecimal digits, lower case
        QStringList path; // group names from the outermost to the innermost, then its own name
    };

    // The file behind a name.
    struct VSTiFileInfo
    {
        QFileInfo fileInfo; // plug-in file or bundle; that of nothing for the control groups
        int version = 0;    // 2 or 3 for a plug-in of that format, 0 for the control groups
    };

    // Deeper paths would make a database that is refused when it is read again; what a plug-in
    // reports beyond is left out of the path.
    static constexpr int MaximumGroups = 252;

    // moduleFolder: where the helper tool lies; presetFolder: the preset file; databaseFolder: the
    // database and the list of what is no instrument, made when it is first written to.
    // Afterwards the presets and the three control groups are known.
    VSTiInfo(const QDir &moduleFolder, const QDir &presetFolder, const QDir &databaseFolder);
    ~VSTiInfo() override;

    // Makes a DAW current and loads what its section of the database still rightly says. The names
    // to show stay as they were until entryVSTiParameter(), which a scan always ends with.
    void selectDAW(const QString &name);
    // Questions what is new in the DAW's plug-in folders, and keeps the answers until they are
    // entered. May take a minute for each plug-in; ends early, with what it has until then, if the
    // thread is told to. Thread: a scan's, between the other two.
    void analyzeVSTi();
    // Enters a scan's results, writes the database, and makes the names to show anew: those with a
    // file, sorted without regard to case, then the control groups.
    void entryVSTiParameter();
    // Forgets the files of earlier scans: everything is examined anew.
    void initializeDatabase();
    // Forgets which files are no instruments: they are examined anew.
    void clearNotSynthList();

    // Display names, ascending.
    QStringList getDAWList() const;
    // The names to show.
    QStringList getVSTiList() const;
    // Every name with a parameter list, installed or not, in the order of a hash.
    QStringList getVSTiExistsAndPresetList() const;
    // An unknown name gives an empty list.
    QList<Parameter> getVSTiParameterList(const QString &vstiName) const;
    // From id to path.
    QHash<QString, QStringList> getVSTiParameterMap(const QString &vstiName) const;
    // The path of an id in any case; empty if the name or the id is unknown.
    QStringList getVSTiParameterName(const QString &vstiName, const QString &id) const;
    // The same, but the ids of the track controls mean the same for every name. Volume, pan and no
    // assign are known in lower case only.
    QStringList getParameterName(const QString &vstiName, const QString &id) const;
    QList<Parameter> getTrackControlParameterList() const;
    // The short form that a template stores: without blanks, at most twelve characters.
    QString getVSTiExtensionNameFromVSTiName(const QString &name) const;
    // Null if no name has that short form. Of two names that share one, always the same.
    QString getVSTiNameFromVSTiExtensionName(const QString &extensionName) const;

Q_SIGNALS:
    // A scan turns to that file; null at its end. Emitted on the scan's thread.
    void analyzingVSTi(const QString &fileName);

protected:
    // The installed DAWs into dawSettings. A DAW that is installed later appears at the next start.
    void searchDAW();
    // An application's preferences, existing or not.
    QDir getDAWSettingFolder(const QString &applicationName) const;
    // Edition and version, as the user sees them. fileStem: a settings file's name without ending
    // and without the mark of the 64-bit files. Empty if the file stands for nothing to be listed.
    QString getDAWDisplayNameFromSettingFileName(const QString &fileStem,
                                                 const QString &versionText, float version) const;
    // The current DAW's folders, existing or not, each once and its own in front; none without a
    // DAW.
    void getVSTi2Folder();
    void getVSTi3Folder();
    // What a settings file names, behind what vst2Folders holds. Nothing if it cannot be read.
    void analyzeXmlToFindVST2Folders(const QString &filePath);
    // Presets for what is known by name only, and the three control groups.
    void appendPreset();
    void createParameterListFromPreset(QFile &file);
    void createParameterListFromDatabase(QFile &file);
    // The current DAW's section anew, the others' as they stand, in one step. False if the file
    // could not be replaced; it is then as it was.
    bool writeParameterListDatabase(QFile &file) const;
    // The groups and parameters below the element into the list and into the name's map, with the
    // prefix in front of every path. Of ids that repeat the first counts.
    void appendParameterTree(QList<Parameter> *list, const QString &vstiName,
                             const QDomElement &element, const QStringList &prefix);

    // Lets the helper question one plug-in and takes its answer, or what is known by its name.
    void getVSTiParamInfo(const QString &path, bool isVST2, CVSTiPathFinder *finder);
    // toolPath: the helper as a bundle. noFallback: where the helper itself failed, nothing is
    // recorded. Afterwards there is no result file. The result says whether there was an answer.
    bool execVSTiInfoFinder(const QString &toolPath, const QString &pluginPath,
                            const QString &resultPath, bool isVST2, CVSTiPathFinder *finder,
                            bool noFallback);
    // What is known by the file's name into the scan's results. False if nothing is.
    bool entryVSTiPreset(const QString &path, bool isVST2, CVSTiPathFinder *finder);

    // A maker's parameter description into the lists of a name; ParameterDescription tells the
    // format. Primary: the description is the authority, renames what is known and adds the rest.
    // Otherwise only what is known stays, under the description's names and in its order, with the
    // bypass switch first.
    void updateParameterListFromVSTXMLFile(QFile &file, const QString &vstiName, bool primary);
    void updateParameterListFromVSTXMLData(const QByteArray &data, const QString &vstiName,
                                           bool primary);
    void updateParameterListFromVSTXMLDomDocument(const QDomDocument &document,
                                                  const QString &vstiName, bool primary);
    // The walk itself, whatever the lists hold.
    void appendParameterTreeFromVSTXML(QList<Parameter> *list, QHash<QString, QStringList> *map,
                                       const QDomElement &element, const QHash<QString, int> &keys,
                                       const QStringList &prefix);
    void appendParameterTemplateFromVSTXML(QList<Parameter> *list, QHash<QString, QStringList> *map,
                                           const QDomElement &group,
                                           const QHash<QString, int> &keys,
                                           const QStringList &prefix, const QString &templateName);
    int getIntValue(const QString &expression, const QHash<QString, int> &keys) const;

    // Display name to application folder name and settings file name.
    QMap<QString, QPair<QString, QString>> dawSettings;
    QString currentDAW; // display name; empty until selectDAW()
    QDir dawSettingFolder;
    QList<QDir> vst2Folders;
    QList<QDir> vst3Folders;
    QDir moduleFolder;
    QDir presetFolder;
    QDir databaseFolder;
    // Per name: the parameters in their order, and from id to path. The same ids and paths stand in
    // both; a name without parameters may stand in the first alone.
    QHash<QString, QList<Parameter>> parameterLists;
    QHash<QString, QHash<QString, QStringList>> parameterMaps;
    QHash<QString, VSTiFileInfo> fileInfos;
    QStringList vstiList;
    RecursiveMutex mutex; // held through all of selectDAW(), a scan, and entryVSTiParameter()
    // Filled by a scan, entered by entryVSTiParameter(), cleared by the next scan.
    std::unique_ptr<QList<SVSTiInfo>> scanResults;
    QHash<QString, QByteArray> vstXmlData; // name to the text of a parameter description
    QHash<QString, QString> vstXmlFiles;   // name to the path of one
    QStringList vstXmlPrimaryNames;        // names whose description is the authority
    // How long the helper may take for one plug-in. Plug-ins hang.
    int helperTimeoutMs = 60000;

private:
    // From a scan's begin until its results are entered.
    DatabaseLock m_databaseLock;

    // One instrument of the database, which the stream has just begun. False if it does not count;
    // the stream then stands where it stood.
    bool createParameterListFromEntry(QXmlStreamReader *stream);
    void questionVSTi(const std::string &path, bool isVST2, CVSTiPathFinder *finder);
    // The instruments of a result file into the scan's results. namesCount: false where only those
    // with a description count. False if the file is cut off or damaged; what stood before counts.
    bool readScanResult(QFile *file, const QString &pluginPath, bool isVST2,
                        CVSTiPathFinder *finder, bool namesCount);
    void enterScanResult(const SVSTiInfo &info, const QString &name, const QString &pluginPath,
                         CVSTiPathFinder *finder, bool namesCount);
    // The two ways of entering a description.
    void refineParameterList(const QList<Parameter> &described, const QString &vstiName);
    void extendParameterList(const QList<Parameter> &described, const QString &vstiName);

    // How many more names the paths of the document being read may hold; negative once a path was
    // left out for it.
    qint64 m_namesLeft = 0;
};

// The sum of the sizes of a file, or of all files in a bundle: links to files count as the files,
// links to folders are not followed. 0 if there is nothing.
qint64 getVSTiFileSize(const QFileInfo &fileInfo);

// The next line of a scan's result file, trimmed. At the end of the file the error is set; once it
// is set, nothing is read.
QString getStringFromFile(QFile *file, bool *error);
// The same as a decimal number; what is none sets the error and gives 0.
int getIntFromFile(QFile *file, bool *error);
