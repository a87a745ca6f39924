// Asks for a new title of a chat. To be shown with open(); deletes itself when it closes.
#pragma once

#include <QDialog>

class QLineEdit;

class RenameDialog : public QDialog
{
    Q_OBJECT

public:
    RenameDialog(const QString &title, QWidget *parent);

Q_SIGNALS:
    void renamed(const QString &title);

private:
    QLineEdit *const m_title;
};
