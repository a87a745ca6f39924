// The models tab: the engine's banner, the catalogue with a row per model, other models, and a field to
// download any model by its name.
#pragma once

#include "core/models/InstalledIndex.h"
#include "ui/widgets/ScrollPage.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class AppState;
class Card;
class LazyColumn;
class ModelRow;
class ProminentButton;
class QLineEdit;
struct CatalogModel;

class ModelsView : public ScrollPage
{
    Q_OBJECT

public:
    explicit ModelsView(AppState &state, QWidget *parent = nullptr);

private:
    void render();
    void renderOtherModels();
    QList<ModelRow *> otherRows() const;
    void orderFocus();
    QWidget *makeHeader();
    void fillAddSection();
    ModelRow *makeRow(const QString &name, const std::optional<CatalogModel> &catalog, bool isBest);
    void download();
    void confirmDelete(const QString &name);
    void showDetails(const QString &name);

    AppState &m_state;
    QList<ModelRow *> m_catalogRows;
    QWidget *const m_others; // its heading and its rows
    LazyColumn *const m_otherColumn;
    // What the other names were last made of.
    InstalledIndex m_listedInstalled;
    QStringList m_listedDownloads;
    Card *const m_add;
    QLineEdit *const m_custom;
    ProminentButton *const m_download;
};
