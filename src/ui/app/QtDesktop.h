// The user's desktop by way of Qt: its file panels, clipboard and file manager.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/instance/Activation.h"

#include <QFileDialog>
#include <QPointer>
#include <QWidget>

class QtDesktop : public Desktop
{
public:
    // The window that panels belong to and that is brought to the front.
    void setMainWindow(QWidget *window) { m_window = window; }

    // Neither blocks. Both give nothing when quitting begins or the window goes.
    Task<std::optional<QString>> chooseSaveFile(QString suggestedName) override;
    Task<std::optional<QString>> chooseFile(QString title) override;

    void copyText(const QString &text) override;
    void revealInFileManager(const QString &path) override;
    void bringToFront() override;
    // With what the desktop gave a launch for that, where it gave something.
    void bringToFront(const Activation &activation);

private:
    QFileDialog *makePanel();
    static Task<std::optional<QString>> choose(QFileDialog *dialog);

    QPointer<QWidget> m_window;
    QPointer<QFileDialog> m_panel;
};
