// Chooses the model of a conversation among those that are installed, however many there are.
#pragma once

#include "ui/chat/ModelChoices.h"

#include <QComboBox>

class QStringListModel;

class ModelPicker : public QComboBox
{
    Q_OBJECT

public:
    explicit ModelPicker(QWidget *parent = nullptr);

    // Offers the `installed` ones and shows `model`, the conversation's, as the current one.
    void showModels(const InstalledIndex &installed, const QString &model);

    void showPopup() override;

Q_SIGNALS:
    // By the user.
    void chosen(const QString &model);

protected:
    void initStyleOption(QStyleOptionComboBox *option) const override;

private:
    QStringListModel *const m_entries;
    // What the choices were last made of.
    InstalledIndex m_installed;
    QString m_shown;
    ModelChoices m_choices;
    bool m_isLong = false;
    bool m_opens = false;
};
