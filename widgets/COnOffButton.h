// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemProxy.h"
#include "widgets/ButtonSkin.h"

#include <QtWidgets/QPushButton>

// A button of one picture, bound to a parameter: when checkable, its two states stand for two
// values there. A third value leaves it as it is. Owner: its Qt parent. Thread: GUI.
class COnOffButton : public QPushButton, public ButtonSkin, public MemProxy
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
    Q_PROPERTY(TOnOffStateTrigger onStateTrigger READ onStateTrigger WRITE setOnStateTrigger)
    Q_PROPERTY(TOnOffStateTrigger offStateTrigger READ offStateTrigger WRITE setOffStateTrigger)
    Q_PROPERTY(int onValue READ onValue WRITE setOnValue)
    Q_PROPERTY(int offValue READ offValue WRITE setOffValue)
    Q_PROPERTY(QPixmap combinedImage READ combinedImage WRITE setCombinedImage)
    Q_PROPERTY(bool hasDownImage READ hasDownImage WRITE setHasDownImage)
    Q_PROPERTY(int imageCategories READ imageCategories WRITE setImageCategories)
    Q_PROPERTY(QString namedAddress READ getNamedAddress WRITE setNamedAddress)

public:
    enum TOnOffStateTrigger { buttonRelease, buttonPush };
    Q_ENUM(TOnOffStateTrigger)

    explicit COnOffButton(QWidget *parent = nullptr);
    ~COnOffButton() override;

    // When a checkable button turns on and off. With both at the push, an unchecked button turns on
    // and off again in one push, and on when it is released.
    TOnOffStateTrigger onStateTrigger() const { return m_onStateTrigger; }
    void setOnStateTrigger(TOnOffStateTrigger trigger);
    TOnOffStateTrigger offStateTrigger() const { return m_offStateTrigger; }
    void setOffStateTrigger(TOnOffStateTrigger trigger);
    // The memory's value of each state; written at once if the button is in that state.
    int onValue() const { return m_onValue; }
    void setOnValue(int value);
    int offValue() const { return m_offValue; }
    void setOffValue(int value);

    void assignMemAPI() override;
    void updateMemAPI() override;

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private Q_SLOTS:
    void checkUpdate();

private:
    TOnOffStateTrigger m_onStateTrigger = buttonRelease;
    TOnOffStateTrigger m_offStateTrigger = buttonRelease;
    int m_onValue = 1;
    int m_offValue = 0;
};
