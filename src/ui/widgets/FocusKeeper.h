// While a view changes what it shows: when the control that had the focus goes, the first one that then shows
// takes it, so that the keyboard stays where the user was. Stands at the head of a render().
#pragma once

#include <QPointer>
#include <QWidget>

class FocusKeeper
{
public:
    // Looks after the controls below `area`.
    explicit FocusKeeper(QWidget *area);
    ~FocusKeeper();
    FocusKeeper(const FocusKeeper &) = delete;
    FocusKeeper &operator=(const FocusKeeper &) = delete;

private:
    QWidget *const m_area;
    QPointer<QWidget> m_focused; // null when the focus was elsewhere
};
