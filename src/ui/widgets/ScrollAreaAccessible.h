// A scroll area as assistive programs see it: its viewport and those of its scroll bars that show. Qt 6.4's
// own one reads past its list when it is asked for a child that has gone.
#pragma once

#include <QAccessibleWidget>
#include <QWidgetList>

class QAbstractScrollArea;

class ScrollAreaAccessible : public QAccessibleWidget
{
public:
    explicit ScrollAreaAccessible(QAbstractScrollArea *area);

    // Lets every scroll area be seen in this way for which Qt has nothing more special, as it has for texts
    // and lists.
    static void install();

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;

private:
    QWidgetList parts() const;
};
