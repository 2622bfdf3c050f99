// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QRegularExpression>
#include <QtCore/QString>

// The vocabulary of the system: names, file names, XML words and identifiers that more than one
// place must agree on. Every source file gets a private copy (internal linkage), so that none of
// them depends on the order in which other files are initialised.
//
// Nothing here needs the graphical modules; key sequences stand in Shortcuts.h.

// --- Identity, bank names and clipboard types ---------------------------------------------------

static const QString EditorName = QStringLiteral("TARN/TERN Remote Editor");
static const QString CorporationName = QStringLiteral("Corvan");
static const QString SettingName = QStringLiteral("TARN_TERNRemoteEditor");
static const QString HelpFileName = QStringLiteral("TARN_TERN Remote Editor.pdf");
static const QString PlistCorpName = QStringLiteral("com.corvan.");
static const QString OtherDAW = QStringLiteral("Other");
static const QString BankNameCurrent = QStringLiteral("Current");
static const QString BankNameEditorBackup = QStringLiteral("Editor Backup");
static const QString BankNamePreset = QStringLiteral("Preset");
static const QString BankNameNoTitle = QStringLiteral("no title");
static const QString BankNameValidator = QStringLiteral("[ !;#$%&'()+,-.0-9=@A-Z[\\]^_`a-z{}]*");
static const QString EditorFileUserBankPrefix = QStringLiteral("UserBank");
static const QString BankDocType = QStringLiteral("TARN_TERN_RemoteEditorBank");
static const QString TemplateDocType = QStringLiteral("TARN_TERN_RemoteEditorTemplate");
static const QString KnobDocType = QStringLiteral("TARN_TERN_RemoteEditorKnob");
static const QString BankMimeType = QStringLiteral("application/x-corvan-trn-remote-bank");
static const QString TemplateMimeType = QStringLiteral("application/x-corvan-trn-remote-template");
static const QString KnobMimeType = QStringLiteral("application/x-corvan-trn-remote-knob");

// --- Editor files -------------------------------------------------------------------------------

static const QString EditorFileExtensionWord = QStringLiteral("Q7V");
static const QString EditorFileExtension = QStringLiteral(".") + EditorFileExtensionWord;
static const QString EditorFileFilter = QStringLiteral("Q7V Files (*.Q7V)");
static const QString EditorOpenFileFilter = QStringLiteral("Q7V Files (*.Q7V)");
// "%1" takes the number of the preset bank; there is one, number 1.
static const QString PresetBankFile = QStringLiteral("BankPreset%1");

// --- Menu texts ---------------------------------------------------------------------------------

static const QString MenuFileMenu = QStringLiteral("&File");
static const QString MenuFileNew = QStringLiteral("&New");
static const QString MenuFileOpen = QStringLiteral("&Open...");
static const QString MenuFileSave = QStringLiteral("&Save");
static const QString MenuFileSaveAs = QStringLiteral("Save &As...");
static const QString MenuFileImportTemplate = QStringLiteral("&Import Template...");
static const QString MenuFileNewBank = QStringLiteral("&New Bank");
static const QString MenuFileImport = QStringLiteral("&Import...");
static const QString MenuFileExport = QStringLiteral("&Export...");
static const QString MenuFileDuplicateBank = QStringLiteral("Duplicate Bank");
static const QString MenuFileDeleteBank = QStringLiteral("&Delete Bank");
static const QString MenuFileSetup = QStringLiteral("Set&up");
static const QString MenuFileVSTiDatabase = QStringLiteral("&VSTi Database");
static const QString MenuFileVSTiDatabaseFullScan = QStringLiteral("&Full Scan");
static const QString MenuFileVSTiDatabaseUpdate = QStringLiteral("&Update");
static const QString MenuEditMenu = QStringLiteral("&Edit");
static const QString MenuEditCopy = QStringLiteral("&Copy");
static const QString MenuEditPaste = QStringLiteral("&Paste");
static const QString MenuEditInitialize = QStringLiteral("Initialize Template");
static const QString MenuEditResetStored = QStringLiteral("Reset to Stored Data");
static const QString MenuEditRestoreHW = QStringLiteral("Reset to Original Data at Startup");
static const QString MenuEditResetFactory = QStringLiteral("Reset to Factory Settings");
static const QString MenuHelpMenu = QStringLiteral("&Help");
static const QString MenuHelpManual = QStringLiteral("&Manual");
static const QString MenuHelpAbout = QStringLiteral("&About");

// --- VSTi database files and their XML vocabulary -----------------------------------------------

static const QString NotSynthListFileName = QStringLiteral("NotSynthList.txt");
static const QString PresetFileName = QStringLiteral("VSTiPreset.xml");
static const QString PresetDocType = QStringLiteral("VSTiPreset");
static const QString DatabaseFileName = QStringLiteral("VSTiDatabase.xml");
static const QString DatabaseLockFileName = QStringLiteral("VSTiDatabase.lock");
static const QString DatabaseDocType = QStringLiteral("VSTiDatabase");
static const QString TagDAWList = QStringLiteral("dawlist");
static const QString TagDAW = QStringLiteral("daw");
static const QString AttributeDAWName = QStringLiteral("name");
static const QString AttributeVSTiPath = QStringLiteral("path");
static const QString AttributeVSTiTime = QStringLiteral("time");
static const QString AttributeVSTiSize = QStringLiteral("size");
static const QString AttributeVSTiVersion = QStringLiteral("version");
static const QString TagVSTiList = QStringLiteral("vstilist");
static const QString TagVSTi = QStringLiteral("vsti");
static const QString TagParameterGroup = QStringLiteral("group");
static const QString TagParameter = QStringLiteral("parameter");
static const QString AttributeVSTiName = QStringLiteral("name");
static const QString AttributeParameterID = QStringLiteral("id");
static const QString AttributeParameterName = QStringLiteral("name");
static const QString AttributeParameterGroupName = QStringLiteral("name");

// --- DAW settings files and their XML vocabulary ------------------------------------------------

static const QString k_vst2xSettingFileNameWithoutExt = QStringLiteral("Vst2xPlugins");
static const QString k_vst2xSettingFileNameWithoutExtForTrevia9orLater =
    QStringLiteral("Vst2xPlugin SearchPaths");
static const QString k_vst2xSettingFileExtension = QStringLiteral(".xml");
static const QString k_vst2xSettingFileMac64Suffix = QStringLiteral(" (x86_64)");
static const QString VST2xSettingFileName =
    k_vst2xSettingFileNameWithoutExt + k_vst2xSettingFileExtension;
static const QString VST2xSettingFileNameForTrevia9orLater =
    k_vst2xSettingFileNameWithoutExtForTrevia9orLater + k_vst2xSettingFileExtension;
static const QString TagVST2xPluginsForTrevia9orLater = QStringLiteral("Vst2xPathlist");
static const QString TagVST2xPlugins = QStringLiteral("Vst2xPlugins");
static const QString TagEntryList = QStringLiteral("list");
static const QString TagEntryItem = QStringLiteral("item");
static const QString TagItemString = QStringLiteral("string");
static const QString TagItemMember = QStringLiteral("member");
static const QString TagMember = QStringLiteral("member");
static const QString TagMemberList = QStringLiteral("list");
static const QString TagListObj = QStringLiteral("obj");
static const QString TagObjString = QStringLiteral("string");
static const QString AttributeEntryListName = QStringLiteral("name");
static const QString AttributeEntryListType = QStringLiteral("type");
static const QString AttributeEntryItemName = QStringLiteral("name");
static const QString AttributeEntryItemValue = QStringLiteral("value");
static const QString AttributeItemMemberName = QStringLiteral("name");
static const QString AttributeMemberName = QStringLiteral("name");
static const QString AttributeMemberListName = QStringLiteral("name");
static const QString AttributeMemberListType = QStringLiteral("type");
static const QString AttributeObjClass = QStringLiteral("class");
static const QString AttributeObjStringName = QStringLiteral("name");
static const QString AttributeObjStringValue = QStringLiteral("value");
static const QString EntryListName = QStringLiteral("Entries");
static const QString EntryListType = QStringLiteral("list");
static const QString EntryItemName = QStringLiteral("Group");
static const QString EntryItemValue = QStringLiteral("Vst2xPlugManager");
static const QString EntryItemValueForTrevia9orLater = QStringLiteral("PathList");
static const QString ItemMemberName = QStringLiteral("Values");
static const QString MemberName = QStringLiteral("PathList");
static const QString MemberListName = QStringLiteral("paths");
static const QString MemberListType = QStringLiteral("obj");
static const QString ObjClass = QStringLiteral("FNPath");
static const QString ObjStringNameName = QStringLiteral("Name");
static const QString ObjStringNamePath = QStringLiteral("Path");

// --- Plug-in parameter description files, and the base path of DAW settings ---------------------

static const QString TagVSTParametersStructure = QStringLiteral("VSTParametersStructure");
static const QString TagGroup = QStringLiteral("Group");
static const QString TagParam = QStringLiteral("Param");
static const QString TagControlTemplate = QStringLiteral("Template");
static const QString AttributeGroupName = QStringLiteral("name");
static const QString AttributeGroupTemplate = QStringLiteral("template");
static const QString AttributeGroupValues = QStringLiteral("values");
static const QString AttributeParamName = QStringLiteral("name");
static const QString AttributeParamID = QStringLiteral("id");
static const QString AttributeTemplateName = QStringLiteral("name");
static const QString ResourceVSTXML = QStringLiteral("/Contents/Resources/");
static const QString ExtensionVSTXML = QStringLiteral(".vstxml");
static const QString DAWSettingBasePath = QStringLiteral("/Library/Preferences");

// --- Track names and fixed remote identifiers ---------------------------------------------------
// Identifiers in the T form: one type digit and eight hexadecimal digits. Those named VD... come
// from the plug-in database's vocabulary.

static const QString AudioTrackName = QStringLiteral("Audio Track");
static const QString MIDITrackName = QStringLiteral("MIDI Track");
static const QString GenericName = QStringLiteral("Generic");
static const QString VDBypassID = QStringLiteral("010004202");
static const QString BypassID = QStringLiteral("00098a6ea");
static const QString VDTrackControlVolumeID = QStringLiteral("100001025");
static const QString TrackControlVolumeID = QStringLiteral("100000401");
static const QString TrackControlPanID = QStringLiteral("100001069");
static const QString VDTrackControlPanID = QStringLiteral("100004201");
static const QString TrackControlNoAssignID = QStringLiteral("204143dff");
static const QString VDTrackControlNoAssignID = QStringLiteral("268435455");
static const QString TrackControlQuickControlID = QStringLiteral("100000001");
static const QString TrackControlVolumeName = QStringLiteral("Volume");
static const QString TrackControlPanName = QStringLiteral("Pan Left-Right");
static const QString TrackControlNoAssignName = QStringLiteral("No Assign");
static const QString TrackControlQuickControlFolderName = QStringLiteral("QuickCtrl");
static const QString TrackControlQuickControlName = QStringLiteral("QuickCtrl");

// --- External helper tools ----------------------------------------------------------------------

static const QString VSTiInfoFinderX86Module = QStringLiteral("vif_tarn_tern_x86.app");
static const QString VSTiInfoFinderX64Module = QStringLiteral("vif_tarn_tern_x64.app");
static const QString VSTiInfoFinderTempFileName = QStringLiteral("VSTiInfoFinder.txt");

// --- Device ports and protocol ------------------------------------------------------------------

// Members of the instrument's family of five ports: active sensing comes on the first, every
// message of the device protocol passes on the fifth.
static constexpr int ActiveSensePort = 1;
static constexpr int CommunicationPort = 5;
static const QString ModelName = QStringLiteral("TARN/TERN Remote Editor");

// Separates number and name in an encoded port name ("3;DEVICE Port1").
static const QString PortIDNameAndNumberDelimiter = QStringLiteral(";");
static const QString PortNotAssigned = QStringLiteral("Not Assigned");
// Finds the family number at the end of a port's name; it is replaced by the delimiter and number.
static const QRegularExpression PortNameNumberReplace(QStringLiteral("\\ *Port([0-9]*)$"));
static const QString PortNameNumberDelimiter = QStringLiteral("-");
static const QRegularExpression
    PortNameFilter(QStringLiteral(".*C[Oo][Rr][Vv][Aa][Nn]\\ TARN\\/TERN.*"));

// The knob names in index order; the suffixes "/remoteNumber" and "/ccNumber" make them addresses.
static constexpr const char *LCDSelectAddressUpper[12] = {"knobA1", "knobB1", "knobC1", "knobD1",
                                                          "knobA2", "knobB2", "knobC2", "knobD2",
                                                          "knobA3", "knobB3", "knobC3", "knobD3"};
