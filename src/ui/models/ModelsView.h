// The models tab: the engine's banner, the catalogue with a row per model, other models, and a field to
// download any model by its name.
#pragma once

#include "ui/widgets/ScrollPage.h"

#include <QList>
#include <QString>

class AppState;
class Card;
class ModelRow;
class ProminentButton;
class QLineEdit;

class ModelsView : public ScrollPage
{
    Q_OBJECT

public:
    explicit ModelsView(AppState &state, QWidget *parent = nullptr);

private:
    void render();
    void renderOtherModels();
    void orderFocus();
    QWidget *makeHeader();
    void fillAddSection();
    void adopt(ModelRow *row);
    void download();
    void confirmDelete(const QString &name);
    void showDetails(const QString &name);

    AppState &m_state;
    QList<ModelRow *> m_catalogRows;
    QWidget *const m_others; // its heading and its rows
    QVBoxLayout *const m_otherColumn;
    QList<ModelRow *> m_otherRows;
    Card *const m_add;
    QLineEdit *const m_custom;
    ProminentButton *const m_download;
};
