#include "Scenario.h"
#include "Words.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>

using namespace Qt::StringLiterals;

namespace {

QString kindOf(const QMetaMethod &method)
{
    const QString access = method.access() == QMetaMethod::Private     ? u"private "_s
                           : method.access() == QMetaMethod::Protected ? u"protected "_s
                                                                       : QString();
    switch (method.methodType()) {
    case QMetaMethod::Signal:
        return u"signal"_s;  // is always public
    case QMetaMethod::Slot:
        return access + u"slot"_s;
    case QMetaMethod::Constructor:
        return access + u"constructor"_s;
    case QMetaMethod::Method:
        break;
    }
    return access + u"method"_s;
}

// "private slot onPPIDChanged(QString ppid)"
QString textOf(const QMetaMethod &method)
{
    QStringList parameters;
    for (int index = 0; index < method.parameterCount(); ++index)
        parameters.append(QString::fromLatin1(method.parameterTypeName(index)) + u' ' +
                          QString::fromLatin1(method.parameterNames().at(index)));
    return kindOf(method) + u' ' + QString::fromLatin1(method.name()) + u'(' + parameters.join(u", "_s) +
           u')';
}

// "LogicalDevice with 45 methods", and what else the class has of its own.
QString outlineOf(const QMetaObject &meta)
{
    QStringList parts;
    const auto add = [&](int count, const QString &what) {
        if (count != 0)
            parts.append(QString::number(count) + u' ' + what);
    };
    add(meta.methodCount() - meta.methodOffset(), u"methods"_s);
    add(meta.propertyCount() - meta.propertyOffset(), u"properties"_s);
    add(meta.enumeratorCount() - meta.enumeratorOffset(), u"enumerations"_s);
    add(meta.classInfoCount() - meta.classInfoOffset(), u"class informations"_s);
    add(meta.constructorCount(), u"constructors"_s);
    const QString name = QString::fromLatin1(meta.className());
    return parts.isEmpty() ? name : name + u" with "_s + parts.join(u", "_s);
}

}  // namespace

std::optional<CommandResult> Scenario::expectOfObject(QObject *object, const QString &words)
{
    const QString name = wordsOf(words).value_or(QStringList()).value(0);
    const QString rest = behindFirstWord(words);
    if (name == u"class")
        return expectClass(object, rest);
    if (name == u"method")
        return expectMethod(object, rest);
    if (name == u"cast")
        return expectCast(object, rest);
    return std::nullopt;
}

CommandResult Scenario::expectClass(const QObject *object, const QString &expected)
{
    return compare(u"the class"_s, expected, outlineOf(*object->metaObject()));
}

CommandResult Scenario::expectMethod(const QObject *object, const QString &expected)
{
    const QStringList words = wordsOf(expected).value_or(QStringList());
    const std::optional<int> index = words.isEmpty() ? std::nullopt : numberOf(words.first());
    if (!index || *index < 0)
        return wrongWord(words.value(0), u"the index of a method, from 0"_s);
    const QMetaMethod method = object->metaObject()->method(object->metaObject()->methodOffset() + *index);
    return compare(u"method %1"_s.arg(*index), behindFirstWord(expected),
                   method.isValid() ? textOf(method) : QString());
}

CommandResult Scenario::expectCast(QObject *object, const QString &expected)
{
    const QStringList words = wordsOf(expected).value_or(QStringList());
    if (words.size() != 2 || (words.at(1) != u"yes" && words.at(1) != u"no"))
        return wrongWord(expected, u"the name of a class or an interface, and yes or no"_s);
    const QString seen = object->qt_metacast(words.first().toUtf8().constData()) ? u"yes"_s : u"no"_s;
    return compare(u"the cast to "_s + words.first(), words.at(1), seen);
}
