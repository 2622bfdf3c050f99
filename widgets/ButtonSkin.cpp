// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ButtonSkin.h"

#include <QtWidgets/QAbstractButton>

namespace
{

enum Row { OffRow, OnRow, DownRow };

} // namespace

ButtonSkin::ButtonSkin(QAbstractButton *served)
    : DoubleBuffer(served)
    , m_button(served)
{
}

void ButtonSkin::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    updateDoubleBuffer();
}

void ButtonSkin::setCombinedImage(const QPixmap &pixmap)
{
    m_combinedImage.setPixmap(pixmap);
    updateDoubleBuffer();
}

void ButtonSkin::setHasDownImage(bool has)
{
    m_hasDownImage = has;
    updateDoubleBuffer();
}

void ButtonSkin::setImageCategories(int categories)
{
    m_combinedImage.setImageCategories(categories);
    updateDoubleBuffer();
}

void ButtonSkin::setCategory(int category)
{
    m_combinedImage.setCategory(category);
    updateDoubleBuffer();
}

void ButtonSkin::paintDoubleBuffer(QPainter *painter)
{
    int row = OnRow;
    if (m_hasDownImage && m_button->isDown()) {
        row = DownRow;
    } else if (!m_button->isChecked() && !m_button->isDown()) {
        row = OffRow;
    }
    m_combinedImage.paint(painter, m_button->rect(), m_alignment, row, m_hasDownImage ? 3 : 2);
}

bool ButtonSkin::takeStateChange()
{
    if (m_button->isDown() == m_lastDown && m_button->isChecked() == m_lastChecked) {
        return false;
    }
    m_lastDown = m_button->isDown();
    m_lastChecked = m_button->isChecked();
    return true;
}
