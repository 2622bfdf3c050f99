// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CombinedImage.h"
#include "widgets/DoubleBuffer.h"

class QAbstractButton;

// The looks of a button as slices of one picture, and the states that its user has last acted on.
//
//   row   shown while
//   0     neither checked nor down
//   1     otherwise
//   2     down, with a down image
//
// Owner: the button itself. Thread: GUI.
class ButtonSkin : public DoubleBuffer
{
public:
    // Where the slice is drawn within the button.
    Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);
    QPixmap combinedImage() const { return m_combinedImage.pixmap(); }
    void setCombinedImage(const QPixmap &pixmap);
    // Whether the picture has a third row.
    bool hasDownImage() const { return m_hasDownImage; }
    void setHasDownImage(bool has);
    // At least 1.
    int imageCategories() const { return m_combinedImage.imageCategories(); }
    void setImageCategories(int categories);
    // Kept between 0 and one less than there are categories.
    int category() const { return m_combinedImage.category(); }
    void setCategory(int category);

    void paintDoubleBuffer(QPainter *painter) override;

protected:
    explicit ButtonSkin(QAbstractButton *served);

    // Whether the button is down or checked otherwise than at the last call.
    bool takeStateChange();

private:
    QAbstractButton *m_button;
    Qt::Alignment m_alignment = Qt::AlignCenter;
    CombinedImage m_combinedImage;
    bool m_hasDownImage = true;
    bool m_lastDown = false;
    bool m_lastChecked = false;
};
