// A sheet with what the engine reports about one installed model, asked for once when it opens.
#pragma once

#include "core/api/ModelDetails.h"
#include "platform/async/Job.h"
#include "platform/async/Task.h"

#include <QDialog>
#include <QPointer>

#include <optional>

class ScrollPage;
class SelectableText;
class Spinner;

// To be shown with open(); deletes itself when it closes.
class ModelDetailsView : public QDialog
{
    Q_OBJECT

public:
    // Asks the engine on `port`.
    ModelDetailsView(int port, const QString &model, QWidget *parent);
    // The request is stopped.
    ~ModelDetailsView() override;

private:
    static Task<> load(QPointer<ModelDetailsView> self, int port, QString model, StopToken stop);
    void render();
    void renderDetails();
    void addRow(const QString &label, const QString &value);
    void addText(const QString &heading, const QString &text, bool monospaced);

    std::optional<ModelDetails> m_details;
    std::optional<QString> m_error;
    Spinner *const m_spinner;
    SelectableText *const m_failure;
    ScrollPage *const m_page;
    Job m_request;
};
