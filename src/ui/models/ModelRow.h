// One model of the library with what can be done about it now: download it, follow its download, or chat with
// it, look at it and delete it.
#pragma once

#include "core/models/ModelCatalog.h"
#include "ui/widgets/Card.h"

#include <optional>

class AppState;
class Button;
class DownloadProgressView;
class ProminentButton;
class QBoxLayout;
class Spinner;
class StatusDot;
class TextLabel;

class ModelRow : public Card
{
    Q_OBJECT

public:
    // `catalog` is absent for a model outside the catalogue.
    ModelRow(AppState &state, const QString &name, const std::optional<CatalogModel> &catalog, bool isBest,
             QWidget *parent = nullptr);

    const QString &name() const { return m_name; }
    // The screen's own render() calls this.
    void render();

Q_SIGNALS:
    // Both with the name under which the model is installed.
    void deleteRequested(const QString &name);
    void detailsRequested(const QString &name);

private:
    QBoxLayout *makeTexts(bool isBest);
    QWidget *makeActions();
    void fillInstalled();
    void renderUnloading(bool unloading);

    AppState &m_state;
    const QString m_name;
    const std::optional<CatalogModel> m_catalog;
    QString m_installedName;
    TextLabel *const m_size;
    // One of these three shows.
    DownloadProgressView *const m_progress;
    QWidget *const m_installed;
    ProminentButton *const m_download;
    // In m_installed; the last three are in m_loaded.
    ProminentButton *const m_chat;
    QWidget *const m_loaded;
    StatusDot *const m_inMemory;
    Spinner *const m_unloading;
    Button *const m_unload;
};
