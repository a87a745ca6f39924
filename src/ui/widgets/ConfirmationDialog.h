// Asks whether to go on: a question, what it means, the button that does it and "Cancel". To be shown with
// open(), which does not block; it says accepted() when the user goes on and deletes itself in any case.
#pragma once

#include <QDialog>

class ConfirmationDialog : public QDialog
{
    Q_OBJECT

public:
    struct Texts
    {
        QString title;
        QString message;
        QString action;           // on the button
        bool destructive = false; // what it does cannot be undone
    };

    ConfirmationDialog(const Texts &texts, QWidget *parent);
};
