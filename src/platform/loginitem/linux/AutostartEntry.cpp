#include "platform/loginitem/linux/AutostartEntry.h"

#include "platform/error/SystemError.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/RegularFile.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// As every text in such a file is written, and read again.
constexpr std::pair<char16_t, char16_t> escapes[] = {
    {u'\\', u'\\'}, {u'\n', u'n'}, {u'\t', u't'}, {u'\r', u'r'}};

QString escaped(const QString &text)
{
    QString result = text;
    for (const auto &[character, letter] : escapes)
        result.replace(QChar(character), QString(u'\\') + QChar(letter));
    return result;
}

QString unescaped(const QString &text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto isNext = [next = text.mid(i + 1, 1)](const auto &escape) {
            return next == QChar(escape.second);
        };
        const auto known = std::find_if(std::begin(escapes), std::end(escapes), isNext);
        const bool isEscape = text[i] == u'\\' && known != std::end(escapes);
        result += isEscape ? QChar(known->first) : text[i];
        i += isEscape ? 1 : 0;
    }
    return result;
}

// Quoted for the command line.
QString quoted(const QString &argument)
{
    QString result;
    for (const QChar character : argument) {
        if (u"\"`$\\"_s.contains(character))
            result += u'\\';
        result += character;
    }
    return u'"' + result.replace(u'%', u"%%"_s) + u'"';
}

QByteArray entry(const QString &program, const QStringList &arguments)
{
    QString command = quoted(program);
    for (const QString &argument : arguments)
        command += u' ' + quoted(argument);
    return u"[Desktop Entry]\nType=Application\nName=Tarnwick\nTryExec=%1\nExec=%2\nTerminal=false\n"_s
        .arg(escaped(program), escaped(command))
        .toUtf8();
}

// Two profiles do not take each other's entry away.
QString fileName(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return u"tarnwick.desktop"_s;
    const QByteArray text = arguments.join(u'\n').toUtf8();
    const QByteArray digest = QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
    return u"tarnwick-%1.desktop"_s.arg(QLatin1StringView(digest.first(16)));
}

// What stands in the file's main group.
QHash<QString, QString> readEntry(const QString &path)
{
    QHash<QString, QString> values;
    constexpr qint64 mostBytes = 1024 * 1024;
    const QByteArray content = readRegularFile(path, mostBytes).value_or(QByteArray());
    bool inEntry = false;
    const QStringList lines = QString::fromUtf8(content).split(u'\n');
    for (const QString &line : lines) {
        const QString text = line.trimmed();
        const qsizetype equals = text.indexOf(u'=');
        if (text.startsWith(u'['))
            inEntry = text == "[Desktop Entry]"_L1;
        else if (inEntry && equals > 0 && !text.startsWith(u'#'))
            values.insert(text.first(equals).trimmed(), text.sliced(equals + 1).trimmed());
    }
    return values;
}

} // namespace

AutostartEntry::AutostartEntry(const QString &folder, QString program, QStringList arguments)
    : m_file(folder + u'/' + fileName(arguments)),
      m_program(std::move(program)),
      m_arguments(std::move(arguments))
{
}

bool AutostartEntry::isEnabled() const
{
    const QHash<QString, QString> values = readEntry(m_file);
    const QString needed = unescaped(values.value(u"TryExec"_s));
    const bool isThere = needed.isEmpty() || !QStandardPaths::findExecutable(needed).isEmpty();
    return isThere && !values.value(u"Exec"_s).isEmpty() && values.value(u"Hidden"_s) != "true"_L1 &&
           values.value(u"X-GNOME-Autostart-enabled"_s) != "false"_L1;
}

void AutostartEntry::enable()
{
    std::error_code error;
    std::filesystem::create_directories(QFileInfo(m_file).filesystemAbsolutePath(), error);
    if (error)
        throw SystemError(error.value());
    AtomicFile::write(m_file, entry(m_program, m_arguments), AtomicFile::Access::asUsual);
}

void AutostartEntry::disable()
{
    if (::unlink(QFile::encodeName(m_file).constData()) != 0 && errno != ENOENT && errno != ENOTDIR)
        throw SystemError(errno);
}

QString installedProgram()
{
    const QString running = QCoreApplication::applicationFilePath();
    // A link on the search path outlives the version that it points to today.
    const QString known = QStandardPaths::findExecutable(QFileInfo(running).fileName());
    const bool same = QFileInfo(known).canonicalFilePath() == QFileInfo(running).canonicalFilePath();
    return !known.isEmpty() && same ? known : running;
}

std::unique_ptr<LoginItem> LoginItem::ofDesktop(const QStringList &arguments)
{
    const QString settings = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::make_unique<AutostartEntry>(settings + "/autostart"_L1, installedProgram(), arguments);
}
