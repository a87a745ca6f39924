// Asks, as an assistive program might, for all there is below a window and for what is not.
#pragma once

#include <QAccessible>
#include <QTest>
#include <QWidget>

#include <climits>
#include <set>

// Everything below a window that an assistive program has come across, the gone things among it.
class AccessibleExplorer
{
public:
    // Asks for all there is, and for what is not.
    void explore(QWidget &window)
    {
        m_seen.clear();
        explore(QAccessible::queryAccessibleInterface(&window));
        const std::set<QAccessible::Id> known = m_known;
        for (const QAccessible::Id id : known) {
            QAccessibleInterface *const one = QAccessible::accessibleInterface(id);
            if (one && !m_seen.contains(id))
                ask(*one);
        }
    }

    size_t met() const { return m_known.size(); }

private:
    void explore(QAccessibleInterface *one)
    {
        if (!one || !one->isValid())
            return;
        m_seen.insert(QAccessible::uniqueId(one));
        m_known.insert(QAccessible::uniqueId(one));
        for (int index = 0; index < one->childCount(); ++index)
            explore(one->child(index));
        ask(*one);
    }

    static void ask(QAccessibleInterface &one)
    {
        if (!one.isValid())
            return;
        const int count = one.childCount();
        // Qt's menus read before their list; no bridge of Qt's asks for less than the first.
        const bool isMenu = one.role() == QAccessible::MenuBar || one.role() == QAccessible::PopupMenu;
        for (const int index : {isMenu ? INT_MAX : -1, count, count + 1, INT_MAX})
            QVERIFY(!one.child(index));
        one.childAt(-30'000, 30'000);
        one.childAt(one.rect().x(), one.rect().y());
        one.focusChild();
        one.relations();
        one.indexOfChild(one.parent());
        one.state();
        one.window();
        for (const auto kind : {QAccessible::Name, QAccessible::Description, QAccessible::Value})
            one.text(kind);
        if (auto *const table = one.tableInterface()) {
            for (const int row : {-1, table->rowCount(), INT_MAX})
                QVERIFY(!table->cellAt(row, 0));
            table->selectedCells();
        }
        if (auto *const text = one.textInterface()) {
            int from = 0;
            int to = 0;
            for (const int offset : {-1, text->characterCount(), INT_MAX}) {
                text->characterRect(offset);
                for (const auto boundary : {QAccessible::WordBoundary, QAccessible::LineBoundary})
                    text->textAtOffset(offset, boundary, &from, &to);
            }
        }
    }

    std::set<QAccessible::Id> m_known;
    std::set<QAccessible::Id> m_seen; // this time
};
