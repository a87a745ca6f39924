#include "ui/app/SettingsView.h"

#include "core/app/AppState.h"
#include "core/engine/AppPaths.h"
#include "platform/async/WorkerQueue.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/desktop/Desktop.h"
#include "platform/error/Error.h"
#include "platform/loginitem/LoginItem.h"
#include "platform/text/ByteCount.h"
#include "platform/text/OutsideText.h"
#include "ui/engine/ServerRestart.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/Card.h"
#include "ui/widgets/LineEdit.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/ScrollPage.h"
#include "ui/widgets/SelectableText.h"
#include "ui/widgets/Switch.h"
#include "ui/widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace {

const QString statusItemKey = u"showMenuBar"_s;

// What was typed, as a TCP port; nothing when it is none.
std::optional<int> portFrom(const QString &text)
{
    bool whole = false;
    const int port = text.trimmed().toInt(&whole);
    return whole && port >= 1 && port <= 65535 ? std::optional(port) : std::nullopt;
}

TextLabel *makeCaption(const QString &text)
{
    auto *caption = new TextLabel(text, TextStyle::caption, Tint::secondary);
    caption->setWrapping();
    return caption;
}

} // namespace

SettingsView::SettingsView(AppState &state, Desktop &desktop, UserDefaults &defaults, LoginItem &loginItem,
                           QWidget *parent)
    : QDialog(parent, Qt::Window),
      m_state(state),
      m_defaults(defaults),
      m_loginItem(loginItem),
      m_size(new TextLabel(TextStyle::body, Tint::secondary)),
      m_port(new LineEdit),
      m_restart(new Button(tr("Restart server"))),
      m_login(new Switch(tr("Launch at login"))),
      m_loginFailure(new SelectableText(TextStyle::caption, Tint::red)),
      m_statusItem(new Switch(tr("Show status in the menu bar"))),
      m_launchAtLogin(loginItem.isEnabled()),
      m_stop(quitToken())
{
    setWindowTitle(tr("Settings"));
    setFixedSize(520, 520);
    auto *page = new ScrollPage;
    page->column()->setContentsMargins(20, 20, 20, 20);
    page->column()->setSpacing(12);
    for (Card *section : {makeStorage(desktop), makeServer(), makeGeneral(), makeAbout()})
        page->column()->addWidget(section);
    page->column()->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(page);
    new QShortcut(QKeySequence::Close, this, this, &QWidget::close);

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(&m_state.engine(), &EngineManager::enginePathChanged, &EngineManager::portChanged);
    scheduler->follow(&m_defaults, &UserDefaults::changed);
    launch([this] { return measure(this, m_stop.token()); });
}

SettingsView::~SettingsView()
{
    m_stop.requestStop();
    // Going, the window takes the focus from the field, which would have its text committed to a view half
    // gone.
    m_port->disconnect(this);
}

void SettingsView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel))
        m_port->setModified(false); // going, the field would have it committed
    QDialog::keyPressEvent(event);
}

Card *SettingsView::makeStorage(Desktop &desktop)
{
    auto *path = new SelectableText(TextStyle::caption);
    path->setMonospaced();
    path->setAccessibleName(tr("Models folder"));
    path->showText(AppPaths::modelsDir());
    auto *show = new Button(tr("Show in Finder"));
    connect(show, &QPushButton::clicked, this, [&desktop] {
        AppPaths::ensure(AppPaths::modelsDir());
        desktop.revealInFileManager(AppPaths::modelsDir());
    });
    show->setAutoDefault(false); // Return commits the port
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(show);
    row->addWidget(m_size, 1);
    auto *section = new Card;
    section->addHeading(tr("Storage"));
    section->column()->addWidget(path);
    section->column()->addLayout(row);
    return section;
}

Card *SettingsView::makeServer()
{
    auto *label = new TextLabel(tr("Port"));
    label->setBuddy(m_port);
    m_port->setAccessibleName(tr("Port"));
    m_port->setMaxLength(longestLine);
    m_port->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_port->setAlignment(Qt::AlignTrailing);
    connect(m_port, &QLineEdit::editingFinished, this, &SettingsView::commitPort);
    m_restart->setAutoDefault(false);
    connect(m_restart, &QPushButton::clicked, this, [this] {
        commitPort(); // where a click leaves the focus in the field
        restartServer(m_state.engine());
    });
    auto *row = new QHBoxLayout;
    row->addWidget(label, 1);
    row->addWidget(m_port);
    auto *section = new Card;
    section->addHeading(tr("Server"));
    section->column()->addLayout(row);
    section->column()->addWidget(makeCaption(tr("Takes effect the next time the server starts. Default "
                                                "11435, separate from the Ollama app's 11434.")));
    section->column()->addWidget(m_restart, 0, Qt::AlignLeading);
    return section;
}

Card *SettingsView::makeGeneral()
{
    m_loginFailure->setAccessibleName(tr("Error message"));
    connect(m_login, &Switch::clicked, this, &SettingsView::setLogin);
    connect(m_statusItem, &Switch::clicked, this, [this](bool on) { m_defaults.set(statusItemKey, on); });
    auto *section = new Card;
    section->addHeading(tr("General"));
    section->column()->addWidget(m_login, 0, Qt::AlignLeading);
    section->column()->addWidget(m_loginFailure);
    section->column()->addWidget(m_statusItem, 0, Qt::AlignLeading);
    return section;
}

Card *SettingsView::makeAbout()
{
    auto *text = new TextLabel(
        tr("Tarnwick controls Ollama on your Mac: install the engine, download models and chat, all "
           "offline."));
    text->setWrapping();
    auto *section = new Card;
    section->addHeading(tr("About"));
    section->column()->addWidget(text);
    section->column()->addWidget(
        makeCaption(tr("Ollama is a separate open source project (MIT license). Models have their own "
                       "licenses; see each model's details.")));
    return section;
}

void SettingsView::render()
{
    const EngineManager &engine = m_state.engine();
    m_size->setText(m_usedBytes ? tr("Total size used: %1").arg(byteCountText(*m_usedBytes))
                                : tr("Measuring…"));
    // Setting even the same text would drop a selection.
    const QString port = QString::number(engine.port());
    if (!m_port->isModified() && m_port->text() != port)
        m_port->setText(port);
    m_restart->setEnabled(!engine.enginePath().isEmpty());
    m_login->setChecked(m_launchAtLogin);
    m_loginFailure->showText(m_loginError.value_or(QString()));
    m_loginFailure->setVisible(m_loginError.has_value());
    m_statusItem->setChecked(m_defaults.boolean(statusItemKey));
}

void SettingsView::commitPort()
{
    if (const std::optional<int> port = m_port->isModified() ? portFrom(m_port->text()) : std::nullopt)
        m_state.engine().setPort(*port);
    m_port->setModified(false);
    render();
}

void SettingsView::setLogin(bool on)
{
    try {
        on ? m_loginItem.enable() : m_loginItem.disable();
        m_launchAtLogin = on;
        m_loginError.reset();
    } catch (const Error &error) {
        m_launchAtLogin = m_loginItem.isEnabled();
        m_loginError = tr("Could not change this setting: %1").arg(isolated(error.description()));
    }
    render();
}

Task<> SettingsView::measure(QPointer<SettingsView> self, StopToken stop)
{
    const auto work = [folder = AppPaths::modelsDir(), stop] {
        return AppPaths::directorySize(folder, stop);
    };
    const qint64 bytes = co_await WorkerQueue::shared().run(work);
    if (stop.stopRequested() || !self)
        co_return;
    self->m_usedBytes = bytes;
    self->render();
}
