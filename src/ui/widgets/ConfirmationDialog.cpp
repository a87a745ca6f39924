#include "ui/widgets/ConfirmationDialog.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ConfirmationDialog::ConfirmationDialog(const Texts &texts, QWidget *parent) : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(shownLine(texts.title));

    auto *title = new TextLabel(texts.title, TextStyle::headline);
    title->setWrapping();
    auto *message = new SelectableText(TextStyle::body); // which breaks words of any length
    message->setAccessibleName(accessibleName());
    message->showText(texts.message);
    Button *action =
        texts.destructive ? new ProminentButton(texts.action, Tint::red) : new Button(texts.action);
    action->setAutoDefault(false);
    auto *cancel = new Button(tr("Cancel"));
    auto *buttons = new QDialogButtonBox;
    buttons->addButton(action, QDialogButtonBox::AcceptRole);
    buttons->addButton(cancel, QDialogButtonBox::RejectRole);
    cancel->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *text = new QVBoxLayout;
    text->setSpacing(8);
    text->addWidget(title);
    text->addWidget(message);
    auto *top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(new SymbolLabel(u"exclamationmark.triangle.fill"_s, 32, Tint::orange), 0, Qt::AlignTop);
    top->addLayout(text, 1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(20);
    column->addLayout(top);
    column->addWidget(buttons);
    setMinimumWidth(420);
    cancel->setFocus();
}
