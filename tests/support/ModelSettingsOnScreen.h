// The settings of a model on the screen, and the hands that change them.
#pragma once

#include "core/app/AppState.h"
#include "support/OnScreen.h"
#include "ui/chat/ModelSettingsView.h"
#include "ui/chat/PromptEditor.h"
#include "ui/widgets/ContinuousSlider.h"

#include <QComboBox>
#include <QListView>
#include <QPointer>
#include <QTest>

struct ModelSettingsOnScreen
{
    explicit ModelSettingsOnScreen(AppState &state, const QString &name = QStringLiteral("gemma3:4b"))
        : app(state), model(name), view(new ModelSettingsView(state, name, &window))
    {
        window.show();
        view->open();
    }

    auto *prompt() const { return onscreen::find<PromptEditor>(view, QStringLiteral("System prompt")); }
    auto *slider(const QString &name) const { return onscreen::find<ContinuousSlider>(view, name); }
    auto *picker(const QString &name) const { return onscreen::find<QComboBox>(view, name); }
    ModelSettings stored() const { return app.settings(model); }
    bool showsDefaults() const
    {
        return prompt()->toPlainText().isEmpty() && onscreen::shows(view, QStringLiteral("0.80")) &&
               onscreen::shows(view, QStringLiteral("0.90")) &&
               picker(QStringLiteral("Context length"))->currentText() == QLatin1StringView("4096 tokens") &&
               picker(QStringLiteral("Keep loaded"))->currentText() == QLatin1StringView("5 minutes");
    }

    AppState &app;
    const QString model;
    QWidget window;
    QPointer<ModelSettingsView> view;
};

// As with the keyboard.
inline void choose(QComboBox *picker, const QString &entry)
{
    picker->showPopup();
    QTest::keyClick(picker->view(), Qt::Key_Home);
    for (int step = picker->findText(entry); step > 0; --step)
        QTest::keyClick(picker->view(), Qt::Key_Down);
    QTest::keyClick(picker->view(), Qt::Key_Return);
}
