// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemControllerFactory.h"
#include "memory/RemoteMemAPI.h"

#include <QtWidgets/QWidget>

#include <memory>

class CListView;
class QScrollArea;
class QStackedWidget;

// The gallery: a list of pages at the left, the page at the right. It owns the memory that the
// pages' controls stand on. Thread: GUI.
class GalleryWindow : public QWidget
{
    Q_OBJECT

public:
    GalleryWindow();
    ~GalleryWindow() override;

    // Writes each page whole, each menu and each popup into the folder as NAME.png, or
    // NAME@2x.png where the screen has two pixels per pixel. The folder is made if need be. False,
    // with the file or folder in *failed, when one can't be written.
    bool saveScreenshots(const QString &folder, QString *failed);

private:
    void addPage(const QString &title, const QString &fileName, QWidget *page);
    void showPage(int index);

    RemoteMemAPI m_memory;
    MemControllerFactory m_factory;
    CListView *m_list;
    QStackedWidget *m_stack;
    struct Page
    {
        QString fileName;
        QWidget *content;
    };
    QList<Page> m_pages;
};
