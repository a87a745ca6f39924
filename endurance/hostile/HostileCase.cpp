#include "HostileCase.h"

#include "HostileBodies.h"
#include "HostileFiles.h"
#include "HostileText.h"
#include "WireFaults.h"

using namespace Qt::StringLiterals;

namespace {

const QStringList subjects{u"wire"_s, u"answer"_s, u"file"_s, u"text"_s};
const QStringList endpoints{u"version"_s, u"tags"_s, u"ps"_s,       u"show"_s,
                            u"chat"_s,    u"pull"_s, u"generate"_s, u"delete"_s};
const QStringList wishes{u"send"_s,   u"paste"_s,  u"search"_s, u"rename"_s,
                         u"banner"_s, u"prompt"_s, u"pull"_s};

} // namespace

QString HostileCase::title() const
{
    return QStringList{subjects.at(subject), where, u'/' + name + u'/'}.join(u' ');
}

QList<HostileCase> HostileCase::all()
{
    QList<HostileCase> cases;
    for (const QString &endpoint : endpoints) {
        for (const QString &name : WireFaults::names())
            cases.append({wire, endpoint, name});
        for (const QString &name : HostileBodies::names(endpoint))
            cases.append({answer, endpoint, name});
    }
    for (const QString &name : HostileFiles::names())
        cases.append({file, u"chats"_s, name});
    for (const QString &wish : wishes) {
        for (const QString &name : HostileText::names())
            cases.append({text, wish, name});
    }
    return cases;
}
