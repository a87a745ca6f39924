#include "ui/app/QtDesktop.h"

#include "platform/async/Completion.h"
#include "platform/async/Launch.h"
#include "platform/desktop/FileReveal.h"
#include "platform/desktop/StartupNotice.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QFileDialog>
#include <QGuiApplication>
#include <QStandardPaths>

using Choice = std::optional<QString>;

// One panel at a time: while one is open, it comes to the front instead of another.
QFileDialog *QtDesktop::makePanel()
{
    if (m_panel && m_panel->isVisible()) {
        m_panel->raise();
        m_panel->activateWindow();
        return nullptr;
    }
    m_panel = new QFileDialog(m_window);
    return m_panel;
}

Task<Choice> QtDesktop::choose(QFileDialog *dialog)
{
    if (!dialog)
        co_return std::nullopt;
    const Completion<Choice> chosen;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [chosen](const QString &path) { chosen.complete(path); });
    QObject::connect(dialog, &QFileDialog::rejected, dialog, [chosen] { chosen.complete({}); });
    // With the window that it belongs to.
    QObject::connect(dialog, &QObject::destroyed, qApp, [chosen] { chosen.complete({}); });
    const StopCallback atQuit(quitToken(), [panel = QPointer(dialog)] {
        if (panel)
            panel->reject();
    });
    dialog->open();
    co_return co_await chosen.wait();
}

Task<Choice> QtDesktop::chooseSaveFile(QString suggestedName)
{
    QFileDialog *dialog = makePanel();
    if (!dialog)
        return choose(nullptr);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters({QCoreApplication::translate("QtDesktop", "Text files (*.md *.txt)"),
                            QCoreApplication::translate("QtDesktop", "All files (*)")});
    dialog->setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog->setDefaultSuffix(QStringLiteral("md"));
#ifndef Q_OS_MACOS
    // Between such marks Qt's own panel takes it for one of several names.
    suggestedName.replace(u'"', u'\'');
#endif
    dialog->selectFile(suggestedName);
    return choose(dialog);
}

Task<Choice> QtDesktop::chooseFile(QString title)
{
    QFileDialog *dialog = makePanel();
    if (!dialog)
        return choose(nullptr);
    dialog->setWindowTitle(title);
    dialog->setFileMode(QFileDialog::ExistingFile);
    return choose(dialog);
}

void QtDesktop::copyText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

void QtDesktop::revealInFileManager(const QString &path)
{
    revealFile(path);
}

void QtDesktop::bringToFront()
{
    if (!m_window)
        return;
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void QtDesktop::bringToFront(const Activation &activation)
{
    // On Wayland Qt takes it from there, and from nowhere else.
    if (!activation.token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activation.token);
    bringToFront();
    Activation::clearEnvironment();
    if (m_window)
        noticeStartup(m_window->winId(), activation.startupId);
}
