// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtXml/QDomDocument>
#include <QtXml/QDomElement>

class RemoteMemAPI;

// The XML form of banks, templates and knobs, for editor files and the clipboard. Knows no files.
//
//   bank        template1 .. template50                  the bank's templates
//               editBuffTemplate1 .. editBuffTemplate50  those of bank 0, with the edit buffer
//               bankInfo / templateNumber                of bank 0, with the edit buffer
//   template    name, vstiname, controltype, knobA1, knobB1 .. knobD3
//   knob        displayname, ccnumber, displayformat, remotenumber
//
// All values are text, numbers in decimal. Without state. Thread: GUI. Writing goes value by value
// through RemoteMemAPI::setParam, so observers hear of each, and a value out of its range is not
// taken. A result of false means that a part was missing; what was there has been written.
class EditorData
{
public:
    // tag: of the element; empty for its default, "bank", "template" or "controller".
    static QDomElement getBankDomElement(RemoteMemAPI *api, QDomDocument *document, int bank,
                                         const QString &tag, bool withEditBuffer);
    static QDomElement getTemplateDomElement(RemoteMemAPI *api, QDomDocument *document, int bank,
                                             int template_, const QString &tag);
    static QDomElement getControllerDomElement(RemoteMemAPI *api, QDomDocument *document, int bank,
                                               int template_, int controller, const QString &tag);

    // tag: which the element must have; empty for any. fromEditBuffer: read the elements that bear
    // the edit buffer's tags. A docType that is no editor file's reads nothing and gives true.
    static bool setBankDomElement(RemoteMemAPI *api, const QDomElement &element, int bank,
                                  const QString &docType, bool fromEditBuffer, const QString &tag);
    static bool setTemplateDomElement(RemoteMemAPI *api, const QDomElement &element, int bank,
                                      int template_, const QString &docType, const QString &tag);
    static bool setControllerDomElement(RemoteMemAPI *api, const QDomElement &element, int bank,
                                        int template_, int controller, const QString &docType,
                                        const QString &tag);
    // Whether every part is there and the memory would take every value, for data that must be
    // written whole or not at all. Here a text that is no number is not taken for 0.
    static bool isWholeTemplateElement(const QDomElement &element, const QString &tag);
    static bool isWholeControllerElement(const QDomElement &element, const QString &tag);
    // The first child with that tag, parsed in decimal, at the address of four numbers. True if it
    // was there, whether or not the value was taken. Text that is no number counts as 0.
    static bool setNumericParamFromDomElement(RemoteMemAPI *api, const QDomElement &parent,
                                              const QString &docType, const QString &tag, int bank,
                                              int template_, int controller, int parameter);

    // A remote identifier has two forms. T: a type digit and eight hexadecimal digits, lower case,
    // which memory and editor files hold. Vd: a type digit and ten decimal digits, which the
    // plug-in database holds.
    static QString translateVdremoteparam2Tremoteparam(const QString &vd);
    static QString translateTremoteparam2Vdremoteparam(const QString &t);
    static unsigned getRemoteParamContentsFromTRemoteStringParam(const QString &t);
    static unsigned getRemoteParamTypeFromTRemoteStringParam(const QString &t);

    static const QString FileVersion;
    static const QString DocType;
    static const QString TagEditorBank;
    static const QString TagBankInfo;
    static const QString TagCurrentTemplateNumber;
    static const QString AttributeVersion;
    // Attributes of clipboard roots: where the data came from.
    static const QString AttributeTemplateNumber;
    static const QString AttributeBankNumber;
    static const QString AttributeKnobNumber;
};

// Each appends an element with the value at the address of four numbers.
void getStringParamToDomElement(RemoteMemAPI *api, QDomDocument *document, QDomElement *parent,
                                const QString &tag, int bank, int template_, int controller,
                                int parameter);
void getNumericParamToDomElement(RemoteMemAPI *api, QDomDocument *document, QDomElement *parent,
                                 const QString &tag, int bank, int template_, int controller,
                                 int parameter);
// The string twin of setNumericParamFromDomElement; a remote identifier is turned to lower case.
bool setStringParamFromDomElement(RemoteMemAPI *api, const QDomElement &parent,
                                  const QString &docType, const QString &tag, int bank,
                                  int template_, int controller, int parameter);
