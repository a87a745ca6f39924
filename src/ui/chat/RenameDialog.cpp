#include "ui/chat/RenameDialog.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/LineEdit.h"
#include "ui/widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QPushButton>

RenameDialog::RenameDialog(const QString &title, QWidget *parent) : QDialog(parent), m_title(new LineEdit)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(tr("Rename chat"));
    m_title->setPlaceholderText(tr("Title"));
    m_title->setAccessibleName(tr("Title"));
    m_title->setFixedWidth(300);
    m_title->setMaxLength(longestLine);
    m_title->setText(title);
    m_title->selectAll();
    auto *cancel = new QPushButton(tr("Cancel"));
    cancel->setAutoDefault(false);
    auto *rename = new QPushButton(tr("Rename"));
    rename->setDefault(true);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(rename);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(rename, &QPushButton::clicked, this, &QDialog::accept);
    connect(this, &QDialog::accepted, this, [this] { Q_EMIT renamed(m_title->text()); });

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(12);
    column->addWidget(new TextLabel(tr("Rename chat"), TextStyle::headline));
    column->addWidget(m_title);
    column->addLayout(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
}
