// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/BoundSlider.h"
#include "widgets/CombinedImage.h"

#include <QtCore/QTimer>

class COnOffButton;

// Steps a parameter up and down: two unseen buttons over one picture, of three rows.
//
//   row   shown while
//   0     neither
//   1     the upper half is pressed
//   2     the lower half is pressed
//
// The wheel and the keys show a pressed half for a tenth of a second. Owner: its Qt parent.
// Thread: GUI.
class CSpinButton : public BoundSlider
{
    Q_OBJECT
    Q_PROPERTY(QPixmap combinedImage READ combinedImage WRITE setCombinedImage)
    Q_PROPERTY(int imageCategories READ imageCategories WRITE setImageCategories)

public:
    explicit CSpinButton(QWidget *parent = nullptr);
    ~CSpinButton() override;

    QPixmap combinedImage() const { return m_combinedImage.pixmap(); }
    void setCombinedImage(const QPixmap &pixmap);
    // At least 1.
    int imageCategories() const { return m_combinedImage.imageCategories(); }
    void setImageCategories(int categories);
    // Kept between 0 and one less than there are categories.
    int category() const { return m_combinedImage.category(); }
    void setCategory(int category);

    void paintDoubleBuffer(QPainter *painter) override;

protected:
    void sliderChange(SliderChange change) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private Q_SLOTS:
    void checkUpdate();

private:
    COnOffButton *makeHalf(const QString &says);
    void placeHalves();
    void enableHalves();
    // Shows a half pressed, for a tenth of a second.
    void showPressed(bool up);

    CombinedImage m_combinedImage;
    COnOffButton *m_upButton;
    COnOffButton *m_downButton;
    QTimer m_releaseTimer;
    bool m_upShown = false;
    bool m_downShown = false;
};
