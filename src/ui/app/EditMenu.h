// The usual editing entries, which work on whichever field or text has the focus.
#pragma once

#include <QMenu>

class EditMenu : public QMenu
{
    Q_OBJECT

public:
    explicit EditMenu(QWidget *parent = nullptr);

private:
    // `method` is what text widgets call it; `edits` when it changes their text.
    void add(const QString &text, const QKeySequence &keys, const char *method, bool edits);
    void enableFitting();
};
