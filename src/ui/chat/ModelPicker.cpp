#include "ui/chat/ModelPicker.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/PlainText.h"

#include <QListView>
#include <QScopedValueRollback>
#include <QStringListModel>
#include <QStyleOptionComboBox>

namespace {

constexpr int widest = 280;
constexpr qsizetype mostMeasured = 200; // entries, for the width that they need

// Makes names presentable when they are drawn, not thousands of them before.
class Entries : public QStringListModel
{
public:
    using QStringListModel::QStringListModel;

    QVariant data(const QModelIndex &index, int role) const override
    {
        const QVariant value = QStringListModel::data(index, role);
        return value.isValid() ? shownLine(value.toString()) : value;
    }
};

} // namespace

ModelPicker::ModelPicker(QWidget *parent) : QComboBox(parent), m_entries(new Entries(this))
{
    setMaximumWidth(widest);
    setModel(m_entries);
    qobject_cast<QListView *>(view())->setUniformItemSizes(true); // what a box has unless told otherwise
    connect(this, &QComboBox::activated, this, [this](int entry) {
        if (!m_choices.hasExtra || entry != 0)
            Q_EMIT chosen(m_choices.entries.at(entry));
    });
}

void ModelPicker::showModels(const InstalledIndex &installed, const QString &model)
{
    // An unchanged list is the very same one, and not gone through.
    if (count() > 0 && model == m_shown && installed == m_installed)
        return;
    m_installed = installed;
    m_shown = model;
    const ModelChoices choices = ModelChoices::make(installed, model);
    if (choices.entries != m_choices.entries || count() == 0) {
        m_isLong = choices.entries.size() > mostMeasured;
        setSizeAdjustPolicy(m_isLong ? AdjustToMinimumContentsLengthWithIcon : AdjustToContents);
        setMinimumContentsLength(m_isLong ? widest : 0); // more than there is room for
        m_entries->setStringList(choices.entries);
    }
    m_choices = choices;
    setCurrentIndex(choices.current);
    setToolTip(plainToolTip(choices.entries.at(choices.current)));
}

void ModelPicker::showPopup()
{
    const QScopedValueRollback<bool> opening(m_opens, true);
    QComboBox::showPopup();
}

// A list in the style of a menu is measured to its end before it opens; that of a box which can be edited is
// of ten entries, and scrolls.
void ModelPicker::initStyleOption(QStyleOptionComboBox *option) const
{
    QComboBox::initStyleOption(option);
    if (m_opens && m_isLong)
        option->editable = true;
}
