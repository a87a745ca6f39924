// The line above a conversation: which model answers, whether it reasons first, whether it is in memory, and
// the buttons that open the model's settings, export the conversation and delete it.
#pragma once

#include <QUuid>
#include <QWidget>

class AppState;
class BorderlessButton;
class ModelPicker;
class Switch;

class ChatHeader : public QWidget
{
    Q_OBJECT

public:
    ChatHeader(AppState &state, const QUuid &id, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void render();
    void askForCapabilities(const QString &model);
    void chooseModel(const QString &model);
    void openSettings();

    AppState &m_state;
    const QUuid m_id;
    ModelPicker *const m_model;
    Switch *const m_think;
    QWidget *const m_inMemory;
    BorderlessButton *const m_settings;
    QString m_askedModel; // whose capabilities were asked for while the engine ran
};
