// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemProxy.h"
#include "widgets/ButtonSkin.h"

#include <QtWidgets/QRadioButton>

// One choice of several, of one picture, bound to a parameter: it writes its value when it turns
// on, and turns on when the parameter has that value. Turning off is left to the others of its
// group. Owner: its Qt parent. Thread: GUI.
class CRadioButton : public QRadioButton, public ButtonSkin, public MemProxy
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
    Q_PROPERTY(
        TRadioStateTrigger radioStateTrigger READ radioStateTrigger WRITE setRadioStateTrigger)
    Q_PROPERTY(int onValue READ onValue WRITE setOnValue)
    Q_PROPERTY(QPixmap combinedImage READ combinedImage WRITE setCombinedImage)
    Q_PROPERTY(bool hasDownImage READ hasDownImage WRITE setHasDownImage)
    Q_PROPERTY(int imageCategories READ imageCategories WRITE setImageCategories)
    Q_PROPERTY(QString namedAddress READ getNamedAddress WRITE setNamedAddress)

public:
    enum TRadioStateTrigger { buttonRelease, buttonPush };
    Q_ENUM(TRadioStateTrigger)

    explicit CRadioButton(QWidget *parent = nullptr);
    ~CRadioButton() override;

    TRadioStateTrigger radioStateTrigger() const { return m_radioStateTrigger; }
    void setRadioStateTrigger(TRadioStateTrigger trigger);
    // The memory's value of this choice; written at once if the button is on.
    int onValue() const { return m_onValue; }
    void setOnValue(int value);

    void assignMemAPI() override;
    void updateMemAPI() override;

protected:
    bool event(QEvent *event) override;
    // The whole rectangle, and not only where an indicator would be.
    bool hitButton(const QPoint &position) const override;
    void mousePressEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private Q_SLOTS:
    void checkUpdate();

private:
    TRadioStateTrigger m_radioStateTrigger = buttonRelease;
    int m_onValue = 1;
};
