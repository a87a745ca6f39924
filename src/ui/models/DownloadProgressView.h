// One download: how far it is or why it ended, with the buttons that cancel, resume or dismiss it.
#pragma once

#include "core/models/DownloadItem.h"

#include <QWidget>

class Button;
class DownloadQueue;
class ElidedLabel;
class ProgressBar;
class SelectableText;
class TextLabel;

class DownloadProgressView : public QWidget
{
    Q_OBJECT

public:
    // `buttons` says at which end "Resume" and "Dismiss" stand.
    explicit DownloadProgressView(DownloadQueue &queue, Qt::AlignmentFlag buttons = Qt::AlignTrailing,
                                  QWidget *parent = nullptr);

    void showItem(const DownloadItem &item);

private:
    void lay(Qt::AlignmentFlag buttons);
    void showProgress(const DownloadItem &item);

    DownloadItem m_item;
    ProgressBar *const m_bar;
    TextLabel *const m_phase;
    SelectableText *const m_reason;
    TextLabel *const m_progress;
    ElidedLabel *const m_status;
    Button *const m_cancel;
    Button *const m_resume;
    Button *const m_dismiss;
};
